#!/usr/bin/env bash
# Installs what is missing, builds quernal-cli, makes a calendar for this
# year and shows what it holds.
set -euo pipefail
cd "$(dirname "$0")/.."
bash tools/setup-debian.sh
bash tools/build.sh --target quernal-cli
year=$(date +%Y)
out="build/Calendar-$year.CLN"
build/bin/quernal-cli new --year "$year" -o "$out"
build/bin/quernal-cli summary "$out" --app-dir res
