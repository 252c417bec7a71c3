#!/usr/bin/env bash
# Builds bundle and archive a second time, from a copy of the sources in another folder: it must be the same
# to the byte.
#
#   reproducible_test.sh SOURCES SCRATCH
set -euo pipefail
sources=$1 scratch="$2/in another folder"

cache=${ZIG_GLOBAL_CACHE_DIR-$sources/build/zig-cache}
rm -rf "$scratch"
mkdir -p "$scratch/build"
tar --create --directory "$sources" --exclude=./build --exclude=./.git . |
  tar --extract --directory "$scratch"
ln -s "$sources/build/tools" "$scratch/build/tools"

ZIG_GLOBAL_CACHE_DIR=$cache "$scratch/scripts/bundle" --archive
diff --recursive "$sources/build/bundle" "$scratch/build/bundle"
rm -rf "$scratch"
