#!/usr/bin/env bash
# Renders the pictures of the main window and its windows into docs/screenshots/:
# builds the window test and runs it on a virtual X display (xvfb-run) with
# VEXO_SCREENSHOT_DIR set, so the test saves each state it reaches as a PNG. Without
# xvfb-run the offscreen platform is used instead. BUILD_DIR picks the build folder.
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD_DIR="${BUILD_DIR:-build}"
OUT="$PWD/docs/screenshots"
mkdir -p "$OUT"
if [ ! -f "$BUILD_DIR/build.ninja" ]; then
  cmake -S . -B "$BUILD_DIR" -G Ninja -DVEXO_BUILD_GUI=ON
fi
cmake --build "$BUILD_DIR" --target uitest_main_window korvhw -j 2
run=("$BUILD_DIR/bin/uitest_main_window")
if command -v xvfb-run >/dev/null 2>&1; then
  export QT_QPA_PLATFORM=xcb
  VEXO_SCREENSHOT_DIR="$OUT" xvfb-run -a -s "-screen 0 1280x800x24" "${run[@]}"
else
  export QT_QPA_PLATFORM=offscreen
  VEXO_SCREENSHOT_DIR="$OUT" "${run[@]}"
fi
echo "Screenshots written to $OUT:"
ls -1 "$OUT"
