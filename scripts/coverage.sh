#!/usr/bin/env bash
# Builds with gcov instrumentation in build-coverage/, runs every unit and window test,
# and prints the line and branch coverage of src/ and platform/ (gcovr). The summary
# lines come last; a full per-file table goes to build-coverage/coverage.txt.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
BUILD_DIR=${BUILD_DIR:-build-coverage}
cmake -S . -B "$BUILD_DIR" -G Ninja -DCMAKE_BUILD_TYPE=Debug \
  -DCMAKE_CXX_FLAGS="--coverage -O0" -DCMAKE_C_FLAGS="--coverage -O0" \
  -DCMAKE_EXE_LINKER_FLAGS=--coverage -DCMAKE_SHARED_LINKER_FLAGS=--coverage \
  -DVEXO_BUILD_BENCH=OFF >/dev/null
cmake --build "$BUILD_DIR" -j"$(nproc)"
find "$BUILD_DIR" -name '*.gcda' -delete
export QT_QPA_PLATFORM=offscreen
(cd "$BUILD_DIR" && ctest -j"$(nproc)" --timeout 600 --output-on-failure) || true
# Moc output and the tests themselves are not product code.
gcovr --root . --object-directory "$BUILD_DIR" --filter 'src/' --filter 'platform/' \
  --exclude '.*_autogen/.*' --exclude-unreachable-branches --exclude-throw-branches \
  --txt "$BUILD_DIR/coverage.txt" --print-summary
