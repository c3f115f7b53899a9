#!/usr/bin/env bash
# check_headers.sh INCLUDE_FOLDER COMPILER...: every public header compiles alone and when it is included
# twice, with each compiler, and as C++17 and as C++20. All of them compile in reverse order with each
# compiler as each of the two. Nothing else is on the include path but what the compiler brings, so
# nothing private leaks in. vela.h includes every other header. A compiler that is missing fails the check.
#
# Of two compilers the first takes each header alone as C++17 and the second as C++20: a missing include
# depends on the standard, whose library both share, and what only one compiler or one standard refuses
# the compilation of all headers finds too. All four combinations would take twice as long.
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
standards=(c++17 c++20)
compilations() {
  local i standard header
  for ((i = 1; i <= $#; i++)); do
    for standard in "${standards[@]}"; do
      echo "${!i} $standard $reversed"
    done
  done
  for ((i = 1; i <= $#; i++)); do
    for standard in "${standards[@]}"; do
      (($# == 1)) || [[ $standard == "${standards[(i - 1) % 2]}" ]] || continue
      for header in "${headers[@]}"; do
        echo "${!i} $standard $header $header"
      done
    done
  done
}

# Compiles to a file and not for the errors alone, and by relative names, so that ccache knows what it has seen.
compile() {
  local compiler="$1" standard="$2" name
  shift 2
  name="${compiler##*/}_${standard}_$#_${1//\//_}"
  printf '#include <%s>\n' "$@" >"$name.cpp"
  if ! $launcher "$compiler" -std="$standard" -Wall -Wextra -Wpedantic -Werror -I "$include" -c "$name.cpp" -o "$name.o"; then
    echo "$compiler -std=$standard refuses: $*"
    return 1
  fi
}
launcher="$(command -v ccache || true)"
export -f compile
export include launcher

folder="$(mktemp -d)"
trap 'rm -rf -- "$folder"' EXIT
cd -- "$folder"
compilations "$@" | tr '\n' '\0' | xargs -0 -P "$(nproc)" -n 1 bash -c 'compile $0' || status=1
((status == 0)) && echo "${#headers[@]} headers, each alone and twice, and all in reverse order, with $*"
exit $status
