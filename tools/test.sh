#!/usr/bin/env bash
# Installs what is missing, builds everything and runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."
bash tools/setup-debian.sh
bash tools/build.sh
ctest --test-dir build -j2 --output-on-failure
