#!/usr/bin/env bash
# Derives the nuclide database data/NuclWalletCards.sqlite (table NuclearWalletCards, one
# row per emission line) from every file of the DDEP recommended decay data (LNE-LNHB
# LARA files, ../shared/nucdata/lara/ by default). Only the derived database is kept in
# the project; the decay-data files stay where they are. The same files give the same
# database, byte for byte.
#
# usage: scripts/make_nuclide_database.sh [LARA_DIR]
# Decay data: DDEP / LNE-LNHB.
set -euo pipefail
cd "$(dirname "$0")/.."
LARA_DIR=${1:-../shared/nucdata/lara}
BUILD_DIR=${BUILD_DIR:-build-nuclib}

if [ ! -d "$LARA_DIR" ]; then
  echo "make_nuclide_database: no decay data folder $LARA_DIR" >&2
  exit 1
fi

cmake -S . -B "$BUILD_DIR" -G Ninja -DCMAKE_BUILD_TYPE=Release -DVEXO_BUILD_GUI=OFF \
  -DVEXO_BUILD_TESTS=OFF -DVEXO_BUILD_BENCH=OFF >/dev/null
cmake --build "$BUILD_DIR" --target vexo-cli >/dev/null

mkdir -p data
"$BUILD_DIR/bin/vexo-cli" nucdb build --lara "$LARA_DIR" --out data/NuclWalletCards.sqlite
