#!/bin/sh
# Installs the build below a directory of its own, and there builds and runs a client in C++ that
# sees nothing else: through the CMake package, and through pkg-config.
#
#   run.sh CMAKE BUILD_DIR CLIENT_DIR CXX
set -eu
cmake=$1 build=$2 client=$3 cxx=$4
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
"$cmake" --install "$build" --prefix "$prefix" >/dev/null
cp -r "$client" "$prefix/client"
cd "$prefix/client"
library=$(dirname "$(find "$prefix" -name libtdm_c.so.4)")

# What clients don't need stays at home: records, model, and the runtime of the lexer.
if grep -rE 'antlr|#include.*(language|model|preprocessor)/|#include "' "$prefix/include"; then
  exit 1
fi

"$cmake" -S . -B by-cmake -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_COMPILER="$cxx" >/dev/null
"$cmake" --build by-cmake --parallel 2 >by-cmake.log || { cat by-cmake.log; exit 1; }
LD_LIBRARY_PATH="$library" by-cmake/client "$PWD/chip.tdm"

# The paths in the file go by the place of the file.
flags=$(PKG_CONFIG_PATH="$library/pkgconfig" pkg-config --cflags --libs tdm_c)
"$cxx" -std=c++20 -o by-pkg-config *.cpp $flags
LD_LIBRARY_PATH="$library" ./by-pkg-config "$PWD/chip.tdm"
