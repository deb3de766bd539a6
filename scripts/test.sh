#!/usr/bin/env bash
# Sets up, builds and runs every test: unit and window tests (ctest), then a short
# smoke run of every fuzzer. FUZZ_SECONDS sets the time per fuzzer (default 20).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
bash scripts/build.sh
export QT_QPA_PLATFORM=offscreen
(cd build && ctest --output-on-failure -j"$(nproc)" --timeout 600)
bash scripts/fuzz.sh "${FUZZ_SECONDS:-20}"
