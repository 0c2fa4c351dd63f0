#!/usr/bin/env bash
# Installs what is missing and builds one preset, through ccache when it is there.
#   build.sh PRESET [BUILD_OPTION...]         for instance: build.sh release --target quarvel
# QUARVEL_CMAKE_OPTIONS adds to the configuration, for instance -DQUARVEL_WERROR=ON.
set -euo pipefail
cd "$(dirname "$0")/.."

preset=${1:?usage: build.sh PRESET [BUILD_OPTION...]}
shift
./scripts/install_dependencies.sh
read -ra options <<<"${QUARVEL_CMAKE_OPTIONS:-}"
if command -v ccache >/dev/null; then options+=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache); fi
cmake --preset "$preset" "${options[@]}" >/dev/null
cmake --build --preset "$preset" "$@"
