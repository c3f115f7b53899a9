#!/usr/bin/env bash
# check_headers_selftest.sh COMPILER...: gives check_headers.sh headers that are wrong, each in one way.
set -euo pipefail

here="$(realpath -- "$(dirname -- "${BASH_SOURCE[0]}")")"
root="$(mktemp -d)"
trap 'rm -rf -- "$root"' EXIT
failures=0

# expect 0|1 TITLE COMPILER...: what check_headers.sh answers for one.h, which is read from standard input.
expect() {
  local wanted="$1" title="$2" got=0
  cat >"$root/one.h"
  "$here/check_headers.sh" "$root" "${@:3}" >"$root/output" 2>&1 || got=1
  if ((got != wanted)); then
    echo "$title: expected $wanted, got $got"
    cat "$root/output"
    failures=$((failures + 1))
  fi
}

printf '#pragma once\n#include <two.h>\n#include <one.h>\n' >"$root/vela.h"
printf '#pragma once\n#include <vector>\n' >"$root/two.h"
for compiler in "$@"; do
  expect 0 "a good header with $compiler" "$compiler" <<<$'#pragma once\n#include <string>\ninline std::string one() { return {}; }'
  expect 1 "a header that does not compile alone with $compiler" "$compiler" <<<$'#pragma once\ninline std::vector<int> one() { return {}; }'
  expect 1 "a header without a guard with $compiler" "$compiler" <<<$'struct One {};'
  expect 1 "a header that needs C++20 with $compiler" "$compiler" <<<$'#pragma once\nconsteval int one() { return 1; }'
  expect 1 "a header that is no C++20 with $compiler" "$compiler" <<<$'#pragma once\nstruct requires {};'
  expect 1 "a header with a warning with $compiler" "$compiler" <<<$'#pragma once\ninline int one(int unused) { return 1; }'
done
expect 1 "a compiler that is not there" vela-no-such-compiler <<<$'#pragma once'
printf '#pragma once\n#include <two.h>\n' >"$root/vela.h"
expect 1 "a header that vela.h forgets" "$1" <<<$'#pragma once'
printf '#pragma once\n#include <one.h>\n#include <two.h>\n' >"$root/vela.h"
printf '#pragma once\n#define TWO\n' >"$root/two.h"
expect 1 "a header that breaks behind another" "$1" <<<$'#pragma once\n#ifdef TWO\n#error\n#endif'

exit $((failures > 0))
