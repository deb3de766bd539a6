#!/usr/bin/env bash
# Builds and runs the benchmarks (Release build in build-bench/).
set -euo pipefail
cd "$(dirname "$0")/.."
cmake -S . -B build-bench -G Ninja -DCMAKE_BUILD_TYPE=Release -DVEXO_BUILD_TESTS=OFF >/dev/null
cmake --build build-bench -j"$(nproc)"
export QT_QPA_PLATFORM=offscreen
for b in build-bench/bin/vexo-bench*; do
  [ -x "$b" ] && "$b" --benchmark_min_time=0.2
done
