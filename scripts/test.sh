#!/usr/bin/env bash
# Installs what is missing, builds and runs every test. Arguments go to ctest:
#   test.sh                     everything
#   test.sh -R Mover            tests whose name matches
# QUARVEL_PRESET chooses the build (dev, release, asan), QUARVEL_CMAKE_OPTIONS adds to its configuration.
set -euo pipefail
cd "$(dirname "$0")/.."

preset=${QUARVEL_PRESET:-dev}
./scripts/build.sh "$preset"
ctest --preset "$preset" --parallel "$(nproc)" --no-tests=error "$@"
