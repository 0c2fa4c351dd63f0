#!/usr/bin/env bash
# Checks the format of every source file of the repository. With --fix it formats them.
set -euo pipefail
cd "$(dirname "$0")/.."

# Other versions format differently.
program=$(command -v clang-format-14 || command -v clang-format)
version=$("$program" --version)
case $version in *"version 14."*) ;; *) echo "clang-format 14 is needed, here is: $version" >&2; exit 1 ;; esac

mode=(--dry-run --Werror)
if [ "${1:-}" = --fix ]; then mode=(-i); fi
git ls-files -z '*.cpp' '*.h' | xargs -0 --no-run-if-empty "$program" --style=file "${mode[@]}"
echo "Format: done."
