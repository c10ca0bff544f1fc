#!/bin/sh
# Uses the libraries as a host does that has them installed: checkInstalledPackage.sh WAY BUILD PREFIX COMPILER
#
#   install    installs the build into the folder PREFIX, which is emptied first
#   cmake      builds the consumer beside this script with find_package and runs it
#   pkgconfig  builds it with the flags that pkg-config gives and runs it
#
# Ends with 77 where a tool is missing.
set -eu

way=$1
build=$2
prefix=$3
compiler=$4
here=$(cd "$(dirname "$0")" && pwd)
expected="part.width is a double of zovMetamodel"

runs() { # PROGRAM
    said=$("$1")
    [ "$said" = "$expected" ] || { echo "$1 says '$said' instead of '$expected'"; exit 1; }
    echo "$said"
}

case $way in
install)
    rm -rf "$prefix"
    cmake --install "$build" --prefix "$prefix" >/dev/null
    for header in "$here"/../../libs/*/inc/*.h; do
        [ -f "$prefix/include/zov/$(basename "$header")" ] || { echo "$(basename "$header") is not installed"; exit 1; }
    done
    ;;
cmake)
    work=$prefix/consumerOfCMake
    cmake -S "$here/consumer" -B "$work" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_COMPILER="$compiler"
    cmake --build "$work"
    runs "$work/consumer"
    ;;
pkgconfig)
    command -v pkg-config >/dev/null || { echo "skipped: there is no pkg-config"; exit 77; }
    work=$prefix/consumerOfPkgConfig
    mkdir -p "$work"
    PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name zovMetamodel.pc)")
    export PKG_CONFIG_PATH
    flags=$(pkg-config --cflags --libs zovMetamodel)
    libraries=$(pkg-config --variable=libdir zovMetamodel)
    # The flags are words, one each.
    # shellcheck disable=SC2086
    "$compiler" -std=c++20 -o "$work/consumer" "$here/consumer/consumer.cpp" $flags "-Wl,-rpath,$libraries"
    runs "$work/consumer"
    ;;
esac
