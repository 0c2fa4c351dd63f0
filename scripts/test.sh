#!/usr/bin/env bash
# Installs what is missing, builds and runs every test. Arguments go to ctest:
#   test.sh                     everything, and pages in a browser when Chromium, Node.js and npm are there
#   test.sh -R Mover            tests whose name matches
# QUARVEL_PRESET chooses the build (dev, release, asan), QUARVEL_CMAKE_OPTIONS adds to its configuration.
set -euo pipefail
cd "$(dirname "$0")/.."

preset=${QUARVEL_PRESET:-dev}
./scripts/build.sh "$preset"
ctest --preset "$preset" --parallel "$(nproc)" --no-tests=error "$@"

# Pages are walked in when everything is run; sanitizers have nothing to see there that the tests above have not shown.
if [ $# -eq 0 ] && [ "$preset" != asan ]; then
  code=0
  ./tests/page/run.sh "build/$preset/app/quarvel" || code=$?
  if [ "$code" -ne 77 ]; then exit "$code"; fi
fi
