#!/usr/bin/env bash
# Installs what building and testing needs and this machine lacks. Calls apt only when something is missing.
#   install_dependencies.sh [--without-window] [PACKAGE...]    further packages to have, for instance clang-format
# PACKAGE may be "package:command": it is wanted only where the command is missing, however that came to be installed.
set -euo pipefail

window=(qt6-base-dev)
if [ "${1:-}" = --without-window ]; then
  window=()
  shift
fi

# "a|b": either satisfies, the first is installed.
needed=(build-essential g++ cmake ninja-build
        libpugixml-dev libsimpleini-dev libcli11-dev nlohmann-json3-dev libutf8proc-dev libxxhash-dev libpng-dev zlib1g-dev
        "libjpeg-dev|libjpeg62-turbo-dev|libjpeg-turbo8-dev" libembree-dev libstb-dev
        "${window[@]}" libgtest-dev libbenchmark-dev "$@")

if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
  cat >&2 <<'MESSAGE'
This is not a Debian-based system, so nothing is installed here. Quarvel needs a C++20 compiler (g++ 12 or newer),
CMake 3.25 or newer, Ninja, and with their headers the libraries pugixml, SimpleIni, CLI11, JSON for Modern C++, utf8proc, xxHash, libpng, zlib,
libjpeg-turbo, Embree 3, stb, Qt 6 Widgets, GoogleTest and Google Benchmark. Install them with your package manager and
run this again.
MESSAGE
  for tool in c++ cmake ninja; do
    command -v "$tool" >/dev/null || { echo "Missing: $tool" >&2; exit 1; }
  done
  exit 0
fi

is_installed() { [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]; }

missing=()
for entry in "${needed[@]}"; do
  if [[ $entry == *:* ]]; then
    command -v "${entry#*:}" >/dev/null || missing+=("${entry%%:*}")
    continue
  fi
  IFS='|' read -ra choices <<<"$entry"
  found=
  for package in "${choices[@]}"; do
    if is_installed "$package"; then found=yes; break; fi
  done
  [ -n "$found" ] || missing+=("${choices[0]}")
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || { echo "Please install as root: apt-get install ${missing[*]}" >&2; exit 1; }
  as_root=(sudo)
fi

echo "Installing: ${missing[*]}"
"${as_root[@]}" apt-get update -qq </dev/null
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" \
  </dev/null >/dev/null
