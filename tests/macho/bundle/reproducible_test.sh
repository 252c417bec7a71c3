#!/usr/bin/env bash
# Builds bundle and archive a second time, from a copy of the sources in another folder: they must be
# the same to the byte. The copy stays, for the tests that build it with options.
#
#   reproducible_test.sh SOURCES COPY
set -euo pipefail
sources=$1 copy=$2

cache=${ZIG_GLOBAL_CACHE_DIR-$sources/build/zig-cache}
rm -rf "$copy"
mkdir -p "$copy/build"
tar --create --directory "$sources" --exclude=./build --exclude=./.git . |
  tar --extract --directory "$copy"
ln -s "$sources/build/tools" "$copy/build/tools"

ZIG_GLOBAL_CACHE_DIR=$cache "$copy/scripts/bundle" --archive
diff --recursive "$sources/build/bundle" "$copy/build/bundle"
