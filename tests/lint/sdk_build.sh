#!/usr/bin/env bash
# Builds the toolkit with QXMT_HOST=maya against a tree laid out like an SDK: include/maya and nothing else.
# usage: sdk_build.sh SOURCE BUILD
set -euo pipefail
source_dir=$1
build_dir=$2
rm -rf "$build_dir"
mkdir -p "$build_dir/sdk/include" "$build_dir/sdk/lib"
cp -r "$source_dir/host/include/maya" "$build_dir/sdk/include/"
cmake -S "$source_dir" -B "$build_dir/build" -G Ninja -DQXMT_HOST=maya -DMAYA_LOCATION="$build_dir/sdk"
cmake --build "$build_dir/build" --target qxModelingToolkit
test -f "$build_dir/build/lib/qxModelingToolkit.so"
