#!/usr/bin/env bash
# install_test.sh BUILD_DIR C_COMPILER CXX_COMPILER CMAKE SANITIZERS: installs the build into a prefix, moves the
# prefix, and builds and runs a C99 and a C++17 program against it.
set -euo pipefail
build=$1 c=$2 cxx=$3 cmake=$4 sanitizers=$5
consumer=$(cd "$(dirname "$0")" && pwd)/consumer
work=$build/install_test
prefix="$work/moved prefix"
flags=()
[[ -z $sanitizers ]] || flags=("-fsanitize=$sanitizers")

rm -rf "$work"
"$cmake" --install "$build" --prefix "$work/prefix" >"$work.log"
mv "$work/prefix" "$prefix"
libraries=$(dirname "$(find "$prefix" -name libvekjq3.so)")

# expect_version COMMAND...
expect_version() {
  local answer
  answer=$("$@")
  if [[ $answer != "7.1.1 (r37466)" ]]; then
    echo "$* printed '$answer'" >&2
    return 1
  fi
}

echo "by the CMake package"
"$cmake" -S "$consumer" -B "$work/cmake" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_C_COMPILER="$c" \
  -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_C_FLAGS="${flags[*]}" -DCMAKE_CXX_FLAGS="${flags[*]}"
"$cmake" --build "$work/cmake"
expect_version "$work/cmake/consumer_c"
expect_version "$work/cmake/consumer_cpp"

echo "by pkg-config"
export PKG_CONFIG_PATH=$libraries/pkgconfig
eval "options=($(pkg-config --cflags --libs vekjq3 vekcore))"
"$c" -std=c99 -pedantic-errors -Wall -Werror "${flags[@]}" "$consumer/main.c" "${options[@]}" -o "$work/pkgconfig_c"
"$cxx" -std=c++17 -pedantic-errors -Wall -Werror "${flags[@]}" "$consumer/main.cpp" "${options[@]}" \
  -o "$work/pkgconfig_cpp"
export LD_LIBRARY_PATH=$libraries
expect_version "$work/pkgconfig_c"
expect_version "$work/pkgconfig_cpp"
