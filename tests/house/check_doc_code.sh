#!/usr/bin/env bash
# check_doc_code.sh ROOT: a fenced block of a page (*.md in ROOT and ROOT/docs) below a line
# `<!-- PATH -->` is the file PATH to the letter, and every block of C++ has such a line: what the
# pages show is what the tests build, run and compare.
set -euo pipefail
export LC_ALL=C

cd -- "$1"
mapfile -t pages < <(find . -maxdepth 1 -name '*.md' -printf '%P\n'; find docs -name '*.md' 2>/dev/null || true)
blocks=0
status=0

# Each marked block as "FIRST_LINE PATH", each block of C++ without a mark as "FIRST_LINE".
block_list() {
  awk '/^```/ && !inside {
         inside = 1
         if (before ~ /^<!-- .* -->$/) { split(before, word, " "); print FNR + 1, word[2] }
         else if ($0 == "```cpp") print FNR + 1
         next
       }
       /^```/ { inside = 0 }
       { before = $0 }' "$1"
}

for page in "${pages[@]}"; do
  while read -r line path; do
    blocks=$((blocks + 1))
    if [[ -z $path ]]; then
      echo "$page:$line: C++ without a line that names its file"
      status=1
    elif [[ ! -f $path ]]; then
      echo "$page:$line: there is no $path"
      status=1
    elif ! diff -u --label "$page:$line" --label "$path" <(tail -n "+$line" "$page" | sed '/^```/,$d') "$path"; then
      status=1
    fi
  done < <(block_list "$page")
done

if ((blocks == 0)); then
  echo "found no blocks"
  exit 1
fi
((status == 0)) && echo "$blocks blocks"
exit $status
