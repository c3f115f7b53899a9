#!/usr/bin/env bash
# check_doc_paths.sh ROOT: what the pages (*.md beside ROOT/dev and in ROOT/docs) name exists: links,
# `paths/in/backticks` from the root or from include/, and `./dev COMMAND`.
set -euo pipefail
export LC_ALL=C

cd -- "$1"
mapfile -t pages < <(find . -maxdepth 1 -name '*.md' -printf '%P\n'; find docs -name '*.md' 2>/dev/null || true)
checked=0
status=0

complain() {
  echo "$1"
  status=1
}

# prose PAGE: the page without its fenced blocks.
prose() { awk '/^ *```/ { fenced = !fenced; next } !fenced' "$1"; }

for page in "${pages[@]}"; do
  while IFS= read -r path; do
    checked=$((checked + 1))
    case "$path" in
      build/* | demo-out/* | include/vela/*) ;; # made by ./dev and by the installation
      *) [[ -e $path || -e include/$path ]] || complain "$page: there is no $path" ;;
    esac
  done < <(prose "$page" | grep -oE '`[^`]*`' | tr -d '`' | grep -E '^[A-Za-z0-9_.][A-Za-z0-9_./-]*$' | grep -F / || true)

  while IFS= read -r target; do
    checked=$((checked + 1))
    [[ -e $(dirname -- "$page")/$target ]] || complain "$page: link to $target, which is not there"
  done < <(prose "$page" | grep -oE '\]\([^)#]+' | sed 's/^](//' | grep -vE '^(https?|mailto):' || true)

  while IFS= read -r name; do
    checked=$((checked + 1))
    grep -q "^command_$name()" dev || complain "$page: ./dev has no command $name"
  done < <(grep -oE '\./dev [a-z]+' "$page" | sed 's|^./dev ||' || true)
done

((checked > 0)) || complain "the pages name nothing, which cannot be"
((status == 0)) && echo "$checked names in ${#pages[@]} pages"
exit $status
