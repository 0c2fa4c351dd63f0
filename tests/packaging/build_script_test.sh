#!/usr/bin/env bash
# What build.sh hands to whom, with stand-ins that only say how they were called:   build_script_test.sh BUILD_SH
set -euo pipefail
unset QUARVEL_CMAKE_OPTIONS # of whoever builds what is tested
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mkdir "$folder/scripts"
cp "$1" "$folder/scripts/build.sh"
for name in cmake scripts/install_dependencies.sh; do
  printf '#!/bin/sh\necho %s "$@" >>"%s/said"\n' "${name##*/}" "$folder" >"$folder/$name"
  chmod +x "$folder/$name"
done
said() { PATH="$folder:$PATH" "$folder/scripts/build.sh" "$@" && sed 's/ -DCMAKE_CXX_COMPILER_LAUNCHER=ccache$//' "$folder/said" && rm "$folder/said"; }

diff <(said release -DQUARVEL_BUILD_DESKTOP=off -DX=1 --target quarvel) - <<'EXPECTED'
install_dependencies.sh --without-window
cmake --preset release -DQUARVEL_BUILD_DESKTOP=off -DX=1
cmake --build --preset release --target quarvel
EXPECTED
diff <(QUARVEL_CMAKE_OPTIONS=-DX=2 said dev) - <<'EXPECTED'
install_dependencies.sh
cmake --preset dev -DX=2
cmake --build --preset dev
EXPECTED
