#!/usr/bin/env bash
# check_install.sh SOURCE_FOLDER BUILD_FOLDER CXX VBF_FILE: installs the build into a fresh prefix, moves
# the prefix, and builds and runs a program against it twice, by find_package and by pkg-config.
# VBF_FILE holds one stack.
set -euo pipefail
export LC_ALL=C
unset LD_LIBRARY_PATH PKG_CONFIG_PATH CMAKE_PREFIX_PATH CXXFLAGS LDFLAGS

source_folder="$(realpath -- "$1")"
build_folder="$(realpath -- "$2")"
compiler="$3"
vbf_file="$(realpath -- "$4")"
root="$(mktemp -d)"
trap 'rm -rf -- "$root"' EXIT
prefix="$root/moved prefix"

fail() {
  printf '%s\n' "$*"
  exit 1
}

# expect STATUS TEXT COMMAND...: COMMAND ends with STATUS and prints TEXT.
expect() {
  local status=0 output
  output="$("${@:3}")" || status=$?
  [[ $status == "$1" && $output == "$2" ]] ||
    fail "${*:3}: ended with $status, expected $1; printed:" "$output" "expected:" "$2"
}

cmake --install "$build_folder" --prefix "$root/first prefix" >"$root/log" 2>&1 || fail "$(cat "$root/log")"
mv "$root/first prefix" "$prefix"

cmp <(cd "$source_folder/include" && find . -type f | sort) <(cd "$prefix/include" && find vela -type f -printf './%P\n' | sort) ||
  fail "the headers of the prefix and of the tree differ:" "$(cd "$prefix/include" && find . -type f | sort)"

# Nothing of what is read by other builds knows where it came from.
leaks="$(grep -rIlF -e "$source_folder" -e "$build_folder" -e "$root" "$prefix" || true)"
[[ -z $leaks ]] || fail "these installed files name the folder they were made in:" "$leaks"

library="$(find "$prefix" -name libvela.so)"
[[ -n $library ]] || fail "no libvela.so in the prefix"
library_folder="$(dirname "$library")"
run_path="$(readelf -d "$library" "$prefix/bin/vbf" | grep -E 'RPATH|RUNPATH' | grep -F "$source_folder" || true)"
[[ -z $run_path ]] || fail "a run path leads into the tree: $run_path"

version="$(sed -n 's/^#define VELA_VERSION_[A-Z]* //p' "$source_folder/include/VelaBase/version.h" | paste -sd .)"

# try_program PROGRAM: it finds the library of the prefix, reads the file, and catches what the library throws.
try_program() {
  ldd "$1" | grep -F 'libvela.so' | grep -qF "$library_folder/" || fail "$1 does not use the library of the prefix:" "$(ldd "$1")"
  expect 0 "vela $version"$'\n'"1 stacks" "$1" "$vbf_file"
  expect 1 "vela $version"$'\n'"Could not open file!" "$1" "$root/missing.vbf"
}

echo "find_package"
cp -r "$(dirname -- "${BASH_SOURCE[0]}")/install_consumer" "$root/consumer"
{
  cmake -G Ninja -S "$root/consumer" -B "$root/build" -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_PREFIX_PATH="$prefix" &&
    cmake --build "$root/build"
} >"$root/log" 2>&1 || fail "$(cat "$root/log")"
try_program "$root/build/consumer"

echo "pkg-config"
export PKG_CONFIG_PATH="$library_folder/pkgconfig"
expect 0 "$version" pkg-config --modversion vela
eval "flags=($(pkg-config --cflags --libs vela))" # eval: the prefix has a blank, which pkg-config escapes
"$compiler" -std=c++17 -Wall -Wextra -Wpedantic -Werror "$root/consumer/consumer.cpp" -o "$root/by_pkg_config" "${flags[@]}"
export LD_LIBRARY_PATH="$library_folder"
try_program "$root/by_pkg_config"
unset LD_LIBRARY_PATH

echo "program"
ldd "$prefix/bin/vbf" | grep -F 'libvela.so' | grep -qF "$(dirname "$library")/" ||
  ldd "$prefix/bin/vbf" | grep -F 'libvela.so' | grep -qF "$prefix/" ||
  fail "vbf does not find the library of the prefix:" "$(ldd "$prefix/bin/vbf")"
"$prefix/bin/vbf" info "$vbf_file" >"$root/log" || fail "vbf info failed"
[[ -s $root/log ]] || fail "vbf info printed nothing"
