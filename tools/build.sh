#!/usr/bin/env bash
# Configures and builds Quernal in ./build: the native build with its tests,
# quernal-cli and benchmarks, and the Windows and fuzzing sub-builds.
# Extra arguments go to the build tool (for example --target quernal-cli).
set -euo pipefail
cd "$(dirname "$0")/.."
if [ ! -f build/CMakeCache.txt ]; then
  cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
fi
cmake --build build "$@"
