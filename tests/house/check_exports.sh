#!/usr/bin/env bash
# check_exports.sh LIBRARY LIST: the dynamic names of LIBRARY against LIST (see exported_names.txt).
set -euo pipefail
export LC_ALL=C

library="$1"
list="$2"
status=0

names="$(nm -D --defined-only --without-symbol-versions -C "$library" | sed -E 's/^[0-9a-f]* *[^ ] //' | sort -u)"
if [[ -z $names ]]; then
  echo "$library exports nothing"
  exit 1
fi

ours="$(sed -n 's/^ours //p' "$list")"
needed="$(sed -n 's/^needed //p' "$list" | sort -u)"
foreign="$(grep -vE -f <(echo "$ours") <<<"$names" || true)"
if [[ -n $foreign ]]; then
  printf 'exported, but not ours:\n%s\n' "$foreign"
  status=1
fi
missing="$(comm -13 <(echo "$names") <(echo "$needed"))"
if [[ -n $missing ]]; then
  printf 'not exported:\n%s\n' "$missing"
  status=1
fi
((status == 0)) && echo "$(wc -l <<<"$names") names, $(wc -l <<<"$needed") of them needed"
exit $status
