#!/usr/bin/env bash
# check_includes.sh ROOT TABLE: holds every #include of the sources below ROOT against TABLE
# (see floors.txt). Prints what breaks a rule and fails.
set -euo pipefail
export LC_ALL=C

table="$(realpath -- "$2")"
here="$(realpath -- "$(dirname -- "${BASH_SOURCE[0]}")")"
cd -- "$1"

files="$(find . -mindepth 1 \( -name '.?*' -o -path ./build -o -path ./demo-out \) -prune -o \
  -type f \( -name '*.h' -o -name '*.hpp' -o -name '*.c' -o -name '*.cpp' -o -name '*.cc' -o -name '*.cxx' \) -print |
  sed 's|^\./||' | sort)"
if [[ -z $files ]]; then
  echo "no sources below $1" >&2
  exit 1
fi

includes="$(tr '\n' '\0' <<<"$files" | xargs -0 grep -nHE '^[[:space:]]*#[[:space:]]*(include|import)' || true)"

awk -f "$here/check_includes.awk" "$table" <(echo "$files") <(echo "$includes")
