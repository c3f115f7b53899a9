#!/usr/bin/env bash
# check_headers.sh INCLUDE_FOLDER COMPILER...: with each compiler, as C++17 and as C++20, every public
# header compiles alone and when it is included twice, and all of them compile in reverse order.
# Nothing else is on the include path but what the compiler brings, so nothing private leaks in.
# vela.h includes every other header. A compiler that is missing fails the check.
set -euo pipefail
export LC_ALL=C

include="$(realpath -- "$1")"
shift
mapfile -t headers < <(cd -- "$include" && find . -name '*.h' -printf '%P\n' | sort)
if ((${#headers[@]} < 2 || $# == 0)); then
  echo "no headers or no compilers to check" >&2
  exit 1
fi
status=0

for compiler in "$@"; do
  if ! command -v "$compiler" >/dev/null; then
    echo "$compiler is not installed"
    exit 1
  fi
done

for header in "${headers[@]}"; do
  if [[ $header != vela.h ]] && ! grep -qxF "#include <$header>" "$include/vela.h"; then
    echo "vela.h does not include $header"
    status=1
  fi
done

# vela.h has an order of its own, so it comes last.
reversed="vela.h"
for header in "${headers[@]}"; do
  [[ $header == vela.h ]] || reversed="$header $reversed"
done

# One line a compilation: compiler, standard, headers in their order. A header that is included twice
# has compiled alone the first time, so one compilation shows both.
compilations() {
  local compiler standard header
  for compiler in "$@"; do
    for standard in c++17 c++20; do
      echo "$compiler $standard $reversed"
      for header in "${headers[@]}"; do
        echo "$compiler $standard $header $header"
      done
    done
  done
}

compile() {
  local compiler="$1" standard="$2"
  shift 2
  if ! printf '#include <%s>\n' "$@" |
    "$compiler" -std="$standard" -fsyntax-only -Wall -Wextra -Wpedantic -Werror -I "$include" -x c++ -; then
    echo "$compiler -std=$standard refuses: $*"
    return 1
  fi
}
export -f compile
export include

compilations "$@" | tr '\n' '\0' | xargs -0 -P "$(nproc)" -n 1 bash -c 'compile $0' || status=1
((status == 0)) && echo "${#headers[@]} headers, each alone and twice, and all in reverse order, with $*"
exit $status
