#!/usr/bin/env bash
# Lets a header and the page of a tiny tree differ and expects check_errors.sh to see it.
set -euo pipefail

here="$(realpath -- "$(dirname -- "${BASH_SOURCE[0]}")")"
root="$(mktemp -d)"
trap 'rm -rf -- "$root"' EXIT
failures=0
mkdir -p "$root/include/Any" "$root/docs"

# expect STATUS LAST_LINE: what the checker answers.
expect() {
  local status=0 output
  output="$("$here/check_errors.sh" "$root")" || status=1
  if [[ $status != "$1" || "${output##*$'\n'}" != "$2" ]]; then
    printf 'expected %s: %s\ngot      %s: %s\n' "$1" "$2" "$status" "$output"
    failures=$((failures + 1))
  fi
}

printf '%s\n' '/// @throws VelaError id -10 "Zip error (%d)!" on the code' '/// - `std::invalid_argument` "Unknown '"'%d'"'": why' \
  >"$root/include/Any/any.h"
printf '%s\n' '| id | text | cause | cure |' '|---|---|---|---|' '| -10 | Zip error (%d)! | damaged | |' \
  "| \`std::invalid_argument\` | Unknown '%d' | wrong | |" >"$root/docs/errors.md"
expect 0 "2 failures"

echo '/// @throws VelaError id -4 "New!": it is' >"$root/include/Any/new.h"
expect 1 "+-4 New!"
echo '| `VelaError`, id -4 | New! | it is | |' >>"$root/docs/errors.md"
expect 0 "3 failures"
echo '| -5 | Old! | it was | |' >>"$root/docs/errors.md"
expect 1 "--5 Old!"
sed -i '/Old/d; s/-10/-11/' "$root/docs/errors.md"
expect 1 "+-10 Zip error (%d)!"
echo >"$root/docs/errors.md"
expect 1 "found no failures"

exit $((failures > 0))
