#!/usr/bin/env bash
# check_readme.sh README SOURCE PROGRAM ARGUMENT...: the first C++ block of README is SOURCE to the
# letter, and the first text block behind it is what PROGRAM prints.
set -euo pipefail

# block LANGUAGE: the first fenced block of that language.
block() { awk -v fence="\`\`\`$1" '$0 == "```" && inside { exit } inside { print } $0 == fence { inside = 1 }' "$readme"; }

readme="$1"
source="$2"
shift 2
diff -u --label "$readme" --label "$source" <(block cpp) "$source"
output="$("$@")"
[[ -n $output ]] || {
  echo "the program prints nothing"
  exit 1
}
diff -u --label "$readme" --label "output" <(block text) - <<<"$output"
