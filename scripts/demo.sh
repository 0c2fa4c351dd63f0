#!/usr/bin/env bash
# Installs what is missing, builds, and makes a page to walk in of a level:
#   demo.sh [LEVEL.t3d [OUTPUT_FOLDER]]       without arguments the sample level, into build/demo
# QUARVEL_PROGRAM names a program that is built already.
set -euo pipefail
here=$PWD
cd "$(dirname "$0")/.."
root=$PWD

# Paths that the user typed are relative to where they stand.
absolute() { case $1 in /*) printf '%s' "$1" ;; *) printf '%s/%s' "$here" "$1" ;; esac; }

resources=()
if [ $# -gt 0 ]; then
  level=$(absolute "$1")
else
  level=$root/samples/harbour.t3d
  resources=(--textures "$root/samples/textures" --sounds "$root/samples/sounds" --meshes "$root/samples/meshes")
fi
if [ ! -r "$level" ]; then echo "demo.sh: cannot read $level" >&2; exit 2; fi
output=$root/build/demo
if [ $# -gt 1 ]; then output=$(absolute "$2"); fi

program=${QUARVEL_PROGRAM:-}
if [ -z "$program" ]; then
  ./scripts/build.sh release --target quarvel
  program=$root/build/release/app/quarvel
fi
./scripts/fetch_viewer.sh
base=$(basename "$level")
page=$output/${base%.*}.html
"$program" --web "${resources[@]}" "$level" "$page"

cat <<MESSAGE

The page is ready: open it in a browser and walk.
  $page
MESSAGE
