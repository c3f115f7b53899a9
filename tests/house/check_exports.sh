#!/usr/bin/env bash
# check_exports.sh LIBRARY LIST: the dynamic names of LIBRARY against LIST (see exported_names.txt).
set -euo pipefail
export LC_ALL=C

library="$1"
list="$2"
status=0

# Long names of the standard library are written short, as in the source.
names="$(nm -D --defined-only --without-symbol-versions -C "$library" | sed -E '
  s/^[0-9a-f]* *[^ ] //
  s/std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >/std::string/g
  s/std::__cxx11::basic_string<wchar_t, std::char_traits<wchar_t>, std::allocator<wchar_t> >/std::wstring/g
  s/std::map<std::string, std::string, .* > > >/VBFDictionary/g
  s/std::vector<([^<>]+), std::allocator<[^<>]+> >/std::vector<\1>/g
  s/\[abi:cxx11\]//g' | sort -u)"
if [[ -z $names ]]; then
  echo "$library exports nothing"
  exit 1
fi

ours="$(sed -n 's/^ours //p' "$list")"
needed="$(sed -n 's/^needed //p' "$list" | sort -u)"
if [[ -z $ours || -z $needed ]]; then
  echo "$list says nothing"
  exit 1
fi
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
