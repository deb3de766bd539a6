#!/usr/bin/env bash
# Configures and builds Vexo in build/ (Release with debug info, Ninja). ccache is used
# when it is installed.
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD_DIR=${BUILD_DIR:-build}
launcher=()
if command -v ccache >/dev/null; then
  launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache)
fi
cmake -S . -B "$BUILD_DIR" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "${launcher[@]}" "$@" >/dev/null
cmake --build "$BUILD_DIR" -j"$(nproc)"
