#!/usr/bin/env bash
# Sets up, builds and starts Vexo with the simulated analyser.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
bash scripts/build.sh
if [ -x build/bin/vexo ]; then
  exec build/bin/vexo "$@"
else
  exec build/bin/vexo-cli --help
fi
