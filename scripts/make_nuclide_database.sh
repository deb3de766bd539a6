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
source "$(dirname "$0")/nuclide_data_cli.sh" make_nuclide_database "${1:-}"

"$VEXO_CLI" nucdb build --lara "$LARA_DIR" --out data/NuclWalletCards.sqlite
