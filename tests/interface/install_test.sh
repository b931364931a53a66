#!/bin/sh
# Installs the build below a directory of its own, and uses it as a stranger would: through
# pkg-config, through the CMake package, and by running the tool.
#
#   install_test.sh CMAKE BUILD_DIR SOURCE_DIR
set -eu
cmake=$1 build=$2 source=$3
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
"$cmake" --install "$build" --prefix "$prefix" >/dev/null
library=$(dirname "$(find "$prefix" -name libtdm_c.so.4)")
export LD_LIBRARY_PATH="$library" PKG_CONFIG_PATH="$library/pkgconfig"

readelf -d "$library/libtdm_c.so" | grep -q 'SONAME.*\[libtdm_c.so.4\]'
"$prefix/bin/tdm" --version
bash -c 'source "$1" && complete -p tdm' bash "$prefix/share/bash-completion/completions/tdm"
[ -f "$prefix/share/zsh/site-functions/_tdm" ] && [ -f "$prefix/share/fish/vendor_completions.d/tdm.fish" ]
if command -v scdoc >/dev/null; then grep -q depfile "$prefix/share/man/man1/tdm.1"; fi

# The paths in the file go by the place of the file.
cd "$source"
cc -std=c99 -o "$prefix/by-pkg-config" examples/c/translate.c \
  $(pkg-config --cflags --libs tdm_c)
"$prefix/by-pkg-config" | grep .

"$cmake" -S tests/interface/consumer -B "$prefix/consumer" -DCMAKE_PREFIX_PATH="$prefix" \
  -DTDM_EXAMPLE="$source/examples/c/translate.c" >/dev/null
"$cmake" --build "$prefix/consumer" >/dev/null
"$prefix/consumer/translate" | grep .
