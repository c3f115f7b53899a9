#!/usr/bin/env bash
# check_exports_selftest.sh CXX: gives check_exports.sh small libraries that export too much or too little.
set -euo pipefail

here="$(realpath -- "$(dirname -- "${BASH_SOURCE[0]}")")"
root="$(mktemp -d)"
trap 'rm -rf -- "$root"' EXIT
failures=0

cat >"$root/list" <<'LIST'
# a comment
ours vela_[a-z_]+$
ours (vtable for |typeinfo for |typeinfo name for )?VThing(::|$)
needed vela_one
needed VThing::two() const
LIST

# expect STATUS TEXT: what the checker answers for a library made of the standard input.
expect() {
  local status=0 output
  "$compiler" -std=c++17 -shared -fPIC -fvisibility=hidden -x c++ - -o "$root/library.so"
  output="$("$here/check_exports.sh" "$root/library.so" "$root/list")" || status=1
  if [[ $status != "$1" || $output != "$2" ]]; then
    printf 'expected %s: %s\ngot      %s: %s\n' "$1" "$2" "$status" "$output"
    failures=$((failures + 1))
  fi
}

compiler="$1"
thing='struct __attribute__((visibility("default"))) VThing { int two() const; }; int VThing::two() const { return 2; }'
one='extern "C" __attribute__((visibility("default"))) int vela_one() { return 1; }'
mangled='__attribute__((visibility("default"))) int vela_one() { return 1; }'

expect 0 "2 names, 2 of them needed" <<<"$thing $one static int hidden() { return vela_one(); } int f() { return hidden(); }"
expect 1 $'not exported:\nvela_one' <<<"$thing"
expect 1 $'not exported:\nVThing::two() const' <<<"$one"
expect 1 $'exported, but not ours:\nvela_one()\nnot exported:\nvela_one' <<<"$thing $mangled"
expect 1 $'exported, but not ours:\nvoid std::helper<VThing>(VThing&)' \
  <<<"$thing $one namespace std { template <class T> __attribute__((visibility(\"default\"))) void helper(T&) {} template void helper(VThing&); }"

grep -v '^needed' "$root/list" >"$root/shorter" && mv "$root/shorter" "$root/list"
expect 1 "$root/list says nothing" <<<"$thing $one"

exit $((failures > 0))
