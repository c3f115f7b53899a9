#!/usr/bin/env bash
# Names things that do not exist on a tiny page and expects the complaint of check_doc_paths.sh.
set -euo pipefail

here="$(realpath -- "$(dirname -- "${BASH_SOURCE[0]}")")"
root="$(mktemp -d)"
trap 'rm -rf -- "$root"' EXIT
failures=0

mkdir -p "$root/docs/images" "$root/include/VelaBase" "$root/sources/file"
touch "$root/docs/images/a.png" "$root/include/VelaBase/VelaError.h"
echo 'command_test() { :; }' >"$root/dev"

# expect STATUS TEXT: what the checker answers for a page of the standard input.
expect() {
  local status=0 output
  cat >"$root/docs/page.md"
  output="$("$here/check_doc_paths.sh" "$root")" || status=1
  if [[ $status != "$1" || $output != "$2" ]]; then
    printf 'expected %s: %s\ngot      %s: %s\n' "$1" "$2" "$status" "$output"
    failures=$((failures + 1))
  fi
}

expect 0 "6 names in 1 pages" <<'PAGE'
`sources/file/`, `VelaBase/VelaError.h`, `include/VelaBase/VelaError.h`, `build/release/x`, `a / b`, `word`
![picture](images/a.png), [site](https://example.com/x), [below](#below)
`./dev test`
```
`fenced/is/not/looked/at`
```
PAGE
expect 1 "docs/page.md: there is no sources/missing/" <<<'text `sources/missing/` text'
expect 1 "docs/page.md: there is no VelaBase/Missing.h" <<<'`sources/file/`, `VelaBase/Missing.h`'
expect 1 "docs/page.md: link to missing.md, which is not there" <<<'[page](missing.md#part)'
expect 1 "docs/page.md: ./dev has no command missing" <<<$'```\n./dev missing\n```'
expect 1 "the pages name nothing, which cannot be" <<<'empty'

exit $((failures > 0))
