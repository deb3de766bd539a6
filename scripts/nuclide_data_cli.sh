# Sourced by the nuclide-data scripts: checks the decay-data folder and builds a headless
# vexo-cli in $BUILD_DIR (default build-nuclib) for them. Sets LARA_DIR and VEXO_CLI.
# usage: source scripts/nuclide_data_cli.sh SCRIPT_NAME [LARA_DIR]
cd "$(dirname "${BASH_SOURCE[0]}")/.."
LARA_DIR=${2:-}
LARA_DIR=${LARA_DIR:-../shared/nucdata/lara}
BUILD_DIR=${BUILD_DIR:-build-nuclib}

if [ ! -d "$LARA_DIR" ]; then
  echo "$1: no decay data folder $LARA_DIR" >&2
  exit 1
fi

cmake -S . -B "$BUILD_DIR" -G Ninja -DCMAKE_BUILD_TYPE=Release -DVEXO_BUILD_GUI=OFF \
  -DVEXO_BUILD_TESTS=OFF -DVEXO_BUILD_BENCH=OFF >/dev/null
cmake --build "$BUILD_DIR" --target vexo-cli >/dev/null
VEXO_CLI="$BUILD_DIR/bin/vexo-cli"
mkdir -p data
