#!/usr/bin/env bash
# Lets a tiny page and the file that it shows differ and expects check_doc_code.sh to see it.
set -euo pipefail

here="$(realpath -- "$(dirname -- "${BASH_SOURCE[0]}")")"
root="$(mktemp -d)"
trap 'rm -rf -- "$root"' EXIT
failures=0
mkdir -p "$root/docs" "$root/examples"
printf 'int a;\nint b;\n' >"$root/examples/a.cpp"
printf 'out\n' >"$root/examples/a.txt"

# expect STATUS LAST_LINE: what the checker answers for a page of the standard input.
expect() {
  local status=0 output
  cat >"$root/docs/page.md"
  output="$("$here/check_doc_code.sh" "$root")" || status=1
  if [[ $status != "$1" || "${output##*$'\n'}" != "$2" ]]; then
    printf 'expected %s: %s\ngot      %s: %s\n' "$1" "$2" "$status" "$output"
    failures=$((failures + 1))
  fi
}

cpp=$'<!-- examples/a.cpp -->\n```cpp\nint a;\nint b;\n```\n'
expect 0 "2 blocks" <<<$'Text\n'"$cpp"$'more\n<!-- examples/a.txt -->\n```\nout\n```\n```\nfree\n```'
expect 1 '-int c;' <<<"${cpp/int b/int b;$'\n'int c}"
expect 1 '+int b;' <<<"${cpp/int b;$'\n'/}"
expect 1 "docs/page.md:3: there is no examples/b.cpp" <<<"${cpp/a.cpp/b.cpp}"
expect 1 "docs/page.md:2: C++ without a line that names its file" <<<"${cpp#*$'\n'}"
expect 1 "found no blocks" <<<$'```\nfree\n```'

exit $((failures > 0))
