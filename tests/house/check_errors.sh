#!/usr/bin/env bash
# check_errors.sh ROOT: the failures that the public headers name and those that docs/errors.md lists
# are the same, by id (or standard exception) and text.
#
# A header names a failure as `VelaError id -1 "text"` or `std::invalid_argument "text"`, the page as
# `| -1 | text |` or `| std::invalid_argument | text |`.
set -euo pipefail
export LC_ALL=C

in_headers() {
  grep -rhE '(VelaError id -?[0-9]+|std::[a-z_]+`?) +"' "$1/include" |
    sed -E 's/.*(VelaError id (-?[0-9]+)|(std::[a-z_]+)`?) +"([^"]*)".*/\2\3 \4/' | sort -u
}

in_page() {
  sed -nE 's/^\| (`VelaError`, id )?`?(-?[0-9]+|std::[a-z_]+)`? \| ([^|]*[^ |]) \|.*\|.*\|$/\2 \3/p' "$1/docs/errors.md" | sort -u
}

headers="$(in_headers "$1")"
page="$(in_page "$1")"
if [[ -z $headers || -z $page ]]; then
  echo "found no failures"
  exit 1
fi
if ! diff -U0 --label docs/errors.md --label include/ <(echo "$page") <(echo "$headers"); then
  exit 1
fi
echo "$(wc -l <<<"$page") failures"
