#!/usr/bin/env bash
# Installs what is missing and builds one preset, through ccache when it is there.
#   build.sh PRESET [-DOPTION=VALUE...] [BUILD_OPTION...]
# For instance, the command line alone, without Qt:
#   build.sh release -DQUARVEL_BUILD_DESKTOP=OFF --target quarvel
# QUARVEL_CMAKE_OPTIONS adds to the configuration, too, for instance -DQUARVEL_WERROR=ON.
set -euo pipefail
cd "$(dirname "$0")/.."

preset=${1:?usage: build.sh PRESET [-DOPTION=VALUE...] [BUILD_OPTION...]}
shift
read -ra configuration <<<"${QUARVEL_CMAKE_OPTIONS:-}"
build=()
for option in "$@"; do
  case $option in
    -D?*) configuration+=("$option") ;;
    *) build+=("$option") ;;
  esac
done

without_window=
for option in "${configuration[@]}"; do
  case $option in -DQUARVEL_BUILD_DESKTOP=* | -DQUARVEL_BUILD_DESKTOP:*=*) ;; *) continue ;; esac
  value=${option#*=}
  case ${value^^} in OFF | NO | N | FALSE | 0) without_window=--without-window ;; *) without_window= ;; esac
done
./scripts/install_dependencies.sh $without_window

if command -v ccache >/dev/null; then configuration+=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache); fi
cmake --preset "$preset" "${configuration[@]}" >/dev/null
cmake --build --preset "$preset" "${build[@]}"
