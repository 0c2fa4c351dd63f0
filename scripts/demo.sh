#!/usr/bin/env bash
# Installs what is missing, builds, and converts a level:
#   demo.sh [LEVEL.t3d [OUTPUT_FOLDER]]       without arguments the sample level, into build/demo
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

./scripts/build.sh release --target quarvel
mkdir -p "$output"
base=$(basename "$level")
scene=$output/${base%.*}
"$root/build/release/app/quarvel" "${resources[@]}" "$level" "$scene.wrl"

cat <<MESSAGE

The scene is ready:
  $scene.wrl    VRML97
  $scene.x3d    X3D
Open either in any viewer for VRML or X3D, for instance view3dscene (apt install view3dscene), or drop the .x3d into
a web page that loads X_ITE or X3DOM.
MESSAGE
