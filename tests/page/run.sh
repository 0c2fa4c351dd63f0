#!/usr/bin/env bash
# Makes pages with a built quarvel and walks in them in a real browser:
#   run.sh QUARVEL [NAME...]                  only the tests whose title holds one of the names
# Needs Chromium (CHROMIUM names another program), Node.js and npm; without them it says so and exits with 77.
set -euo pipefail
quarvel=$(realpath "${1:?usage: run.sh QUARVEL [NAME...]}")
shift
cd "$(dirname "$0")"

skip() { echo "Page tests: skipped, $1"; exit 77; }
CHROMIUM=${CHROMIUM:-$(command -v chromium || command -v chromium-browser || true)}
[ -n "$CHROMIUM" ] || skip "there is no Chromium (apt install chromium)"
for tool in node npm; do
  command -v $tool >/dev/null || skip "there is no $tool (apt install nodejs npm)"
done

[ node_modules/.package-lock.json -nt package-lock.json ] || npm ci --ignore-scripts --no-audit --no-fund --loglevel=error </dev/null >/dev/null
../../scripts/fetch_viewer.sh
export CHROMIUM
exec node page_test.mjs "$quarvel" "$@"
