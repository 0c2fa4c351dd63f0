#!/usr/bin/env bash
# Fetches the viewer that pages hold (X_ITE, MIT licence) from npm, in the version and with the checksum of
# packaging/viewer/package-lock.json, into the program's data:
#   fetch_viewer.sh [FOLDER]                  FOLDER: somewhere else, for "quarvel --viewer FOLDER/x_ite.min.js"
set -euo pipefail
here=$PWD
cd "$(dirname "$0")/.."

folder=$PWD/resources/data/viewer
if [ $# -gt 0 ]; then case $1 in /*) folder=$1 ;; *) folder=$here/$1 ;; esac; fi
files=(x_ite.min.js x_ite.css LICENSE.md)
for component in EventUtilities Geometry2D KeyDeviceSensor Scripting Text; do
  files+=("assets/components/${component}Component.min.js")
done

wanted=$(sha256sum packaging/viewer/package-lock.json | cut -d' ' -f1)
if [ "$(cat "$folder/.fetched" 2>/dev/null)" = "$wanted" ]; then exit 0; fi

./scripts/install_dependencies.sh npm:npm
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp packaging/viewer/package.json packaging/viewer/package-lock.json "$work"
npm ci --prefix "$work" --ignore-scripts --no-audit --no-fund --loglevel=error </dev/null >/dev/null

for file in "${files[@]}"; do
  install -D -m 644 "$work/node_modules/x_ite/dist/$file" "$folder/$file"
done
echo "$wanted" >"$folder/.fetched"
echo "The viewer is in $folder"
