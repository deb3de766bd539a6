#!/usr/bin/env bash
# Renders the pictures of the main window and its windows into docs/screenshots/:
# builds the window tests and runs them on a virtual X display (xvfb-run) with
# VEXO_SCREENSHOT_DIR set, so the tests save each state it reaches as a PNG. Without
# xvfb-run the offscreen platform is used instead. BUILD_DIR picks the build folder.
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD_DIR="${BUILD_DIR:-build}"
OUT="$PWD/docs/screenshots"
mkdir -p "$OUT"
if [ ! -f "$BUILD_DIR/build.ninja" ]; then
  cmake -S . -B "$BUILD_DIR" -G Ninja -DVEXO_BUILD_GUI=ON
fi
tests="uitest_main_window uitest_device_windows uitest_print_preview"
# shellcheck disable=SC2086
cmake --build "$BUILD_DIR" --target $tests korvhw -j 2
for test in $tests; do
  if command -v xvfb-run >/dev/null 2>&1; then
    VEXO_SCREENSHOT_DIR="$OUT" QT_QPA_PLATFORM=xcb \
      xvfb-run -a -s "-screen 0 1280x800x24" "$BUILD_DIR/bin/$test"
  else
    VEXO_SCREENSHOT_DIR="$OUT" QT_QPA_PLATFORM=offscreen "$BUILD_DIR/bin/$test"
  fi
done
echo "Screenshots written to $OUT:"
ls -1 "$OUT"
