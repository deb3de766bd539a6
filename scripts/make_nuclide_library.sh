#!/usr/bin/env bash
# Derives the shipped nuclide library data/Vexo.nli from the DDEP recommended decay data
# (LNE-LNHB LARA files, ../shared/nucdata/lara/ by default). Only the derived library is
# kept in the project; the decay-data files stay where they are.
#
# The library holds the usual check and calibration sources with their strongest gamma
# lines (at least 1 % per decay, at most 10 per nuclide), intensities per decay of the
# nuclide named:
#   - Cs-137: its 661.66 keV line is emitted by the daughter Ba-137m. The evaluated data
#     already list it in the Cs-137 file (origin Ba-137, 85 % per Cs-137 decay), which is
#     where users look for it, so it is kept under Cs-137 and Ba-137m is not listed.
#   - Na-22 (and any other positron emitter): the 511 keV annihilation line is kept, as
#     radiation type "G ANH". It is the strongest peak of a Na-22 spectrum and a common
#     calibration point; its type keeps it apart from the nuclear gamma lines.
#   - Th-232 chain: Ac-228, Pb-212, Bi-212, Tl-208; U-238/Ra-226 chain: Ra-226, Pb-214,
#     Bi-214. Each line's intensity is per decay of that member; Tl-208's lines, for
#     instance, are per Tl-208 decay, which is 35.9 % of Bi-212 decays in equilibrium.
#
# usage: scripts/make_nuclide_library.sh [LARA_DIR]
# Decay data: DDEP / LNE-LNHB.
set -euo pipefail
source "$(dirname "$0")/nuclide_data_cli.sh" make_nuclide_library "${1:-}"

"$VEXO_CLI" nuclib --lara "$LARA_DIR" --out data/Vexo.nli \
  --min-intensity 1 --max-lines 10 \
  --note "Vexo nuclide library: strongest gamma lines of common check and calibration sources." \
  --note "Decay data: DDEP / LNE-LNHB (Decay Data Evaluation Project recommended values)." \
  --note "Derived by scripts/make_nuclide_library.sh; intensities in percent per decay." \
  Am-241 Ba-133 Cs-137 Co-57 Co-60 Eu-152 Na-22 Mn-54 K-40 \
  Ac-228 Pb-212 Bi-212 Tl-208 \
  Ra-226 Pb-214 Bi-214
