#!/usr/bin/env bash
# Checks that every file includes only what stands below it, and that Qt is seen by the window alone.
set -euo pipefail
cd "$(dirname "$0")/.."

# The folders in the order in which they stand on one another: a file includes what stands before its own folder.
order=(base math settings images packages t3d resources csg light scene terrain actors page core app/cli app/desktop)
declare -A place
for i in "${!order[@]}"; do place[${order[i]}]=$i; done

# The folder of the list above that a path lies in.
layer_of() {
  case $1 in
    app/*/*) local rest=${1#app/}; echo "app/${rest%%/*}" ;;
    *) echo "${1%%/*}" ;;
  esac
}

files=$(git ls-files '*.cpp' '*.h')
[ -n "$files" ] || { echo "check_layers.sh: git lists no source files here" >&2; exit 2; }

faults=0
fault() { echo "$1"; faults=$((faults + 1)); }

while IFS= read -r file; do
  layer=$(layer_of "$file")
  [ -n "${place[$layer]+known}" ] || continue
  while IFS=: read -r line header; do
    [ -n "$header" ] || continue
    from=$(layer_of "$header")
    [ "${place[$from]-99}" -le "${place[$layer]}" ] && continue
    fault "$file:$line: \"$header\" stands above $layer/"
  done < <(sed -nE '/^[[:space:]]*#[[:space:]]*include[[:space:]]*"/{=;s/.*"([^"]*)".*/\1/p}' "$file" | paste -d: - -)
done <<<"$files"

while IFS= read -r hit; do
  fault "$hit: Qt is for the window alone"
done < <(git grep -nE '#[[:space:]]*include[[:space:]]*<Q[A-Za-z/]+(\.h)?>' -- '*.cpp' '*.h' ':!*desktop/*' || true)

if [ "$faults" -gt 0 ]; then echo "Layers: $faults fault(s)"; exit 1; fi
echo "Layers: no file includes what stands above it."
