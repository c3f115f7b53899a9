#!/usr/bin/env bash
# Breaks each rule of check_includes.sh once in a tiny tree and expects the complaint.
set -euo pipefail

here="$(realpath -- "$(dirname -- "${BASH_SOURCE[0]}")")"
root="$(mktemp -d)"
trap 'rm -rf -- "$root"' EXIT
failures=0

# put FILE LINE...
put() {
  mkdir -p "$(dirname -- "$root/$1")"
  printf '%s\n' "${@:2}" >"$root/$1"
}

fresh_tree() {
  rm -rf -- "${root:?}"/*
  put include/VelaBase/VelaError.h '#include <exception>'
  put include/VelaProps/VProp.h '#include <VelaBase/VelaError.h>' '#include <boost/shared_ptr.hpp>'
  put include/Json/Value.h '#include <string>'
  put include/VelaBinaryIO/VBFFile.h '#include <VelaProps/VProp.h>'
  put sources/platform/posix.cpp '#include "sources/platform/platform.h"' '#include <unistd.h>' '#include <sys/file.h>'
  put sources/platform/platform.h '#include <cstdint>'
  put sources/error/VelaError.cpp '#include <VelaBase/VelaError.h>' '#include "sources/platform/platform.h"'
  put sources/file/codec.cpp '#include <zlib.h>' '#include <span>' '# include "codec.h"'
  put sources/file/codec.h '#include <vector>'
  put sources/binary_io/types/vela_dt.cpp '#include <VelaProps/VProp.h>'
  put tools/vbf/main.cpp '#include <VelaBinaryIO/VBFFile.h>' '#include <CLI/CLI.hpp>' '#include "main.h"'
  put tools/vbf/main.h '#include <vector>'
  put tests/odd.cpp '#include "sources/platform/platform.h"'
}

# complains TEXT: the checker fails and says TEXT.
complains() {
  local output
  if output="$("$here/check_includes.sh" "$root" "$here/floors.txt" 2>&1)"; then
    echo "passed, but should have said: $1"
    failures=$((failures + 1))
  elif [[ $output != *"$1"* || $(wc -l <<<"$output") != 1 ]]; then
    printf 'should have said only: %s\nbut said: %s\n' "$1" "$output"
    failures=$((failures + 1))
  fi
  fresh_tree
}

fresh_tree
if ! "$here/check_includes.sh" "$root" "$here/floors.txt"; then
  echo "the good tree was refused"
  failures=$((failures + 1))
fi

put sources/error/up.cpp '#include <VelaProps/VProp.h>'
complains 'sources/error/up.cpp:1: error (floor 2) reaches up to include/VelaProps/VProp.h of props (floor 7)'

put sources/binary_io/types/other.cpp '' '  #  include "VelaProps/VProp.h"'
complains 'sources/binary_io/types/other.cpp:2: types (floor 4) reaches up to include/VelaProps/VProp.h'

put include/VelaBase/vela_dt.h '#include <VelaProps/VProp.h>'
complains 'include/VelaBase/vela_dt.h:1: types (floor 4) reaches up'

put json/Value.cpp '#include <VelaProps/VProp.h>'
complains 'json/Value.cpp:1: json reaches sideways to include/VelaProps/VProp.h of props'

put sources/misc/odd.cpp '#include <string>'
complains 'sources/misc/odd.cpp: lies on no floor'

put plugins/odd.h '#include <string>'
complains 'plugins/odd.h: lies on no floor'

put include/VelaMisc/odd.h
complains 'include/VelaMisc/odd.h: lies on no floor'

put include/VelaFile/VFile.h '#include "sources/platform/platform.h"'
complains 'include/VelaFile/VFile.h:1: a public header includes the private sources/platform/platform.h'

put include/VelaFile/VFile.h '#include <zlib.h>'
complains 'include/VelaFile/VFile.h:1: <zlib.h> is neither ours nor standard'

put include/VelaFile/VFile.h '#include <span>'
complains 'include/VelaFile/VFile.h:1: <span> came with C++20'

for header in unistd.h fcntl.h sys/stat.h windows.h pthread.h errno.h cerrno csignal stdlib.h; do
  put sources/file/VFile.cpp "#include <$header>"
  complains "sources/file/VFile.cpp:1: <$header> is neither ours nor standard"
done

put sources/error/zip.cpp '#include <zlib.h>'
complains 'sources/error/zip.cpp:1: <zlib.h> is neither ours nor standard'

put tools/vbf/other.cpp '#include "sources/file/codec.h"'
complains 'tools/vbf/other.cpp:1: a program includes sources/file/codec.h'

put sources/file/other.cpp '#include "tools/vbf/main.h"'
complains 'sources/file/other.cpp:1: tools/vbf/main.h is no part of the library'

put sources/file/other.cpp '#include "missing.h"'
complains 'sources/file/other.cpp:1: "missing.h" is not in the tree'

put sources/file/other.cpp '#include "../platform/platform.h"'
complains 'sources/file/other.cpp:1: "../platform/platform.h" goes by . or ..'

put sources/file/other.cpp '#include HEADER'
complains 'sources/file/other.cpp:1: cannot tell what is included'

rm -rf -- "${root:?}"/*
put sources/file/nothing.cpp
complains 'no #include was checked'

exit $((failures > 0))
