#!/usr/bin/env bash
# Checks that every file includes only what stands below it, and that Qt is seen by the window alone.
set -euo pipefail
cd "$(dirname "$0")/.."

# Each folder with the folders whose headers it may include besides its own.
declare -A below=(
  [math]=""
  [t3d]="math"
  [resources]="math"
  [scene]="math t3d resources"
  [terrain]="math t3d resources scene"
  [actors]="math t3d resources scene"
  [core]="math t3d resources scene terrain actors"
  [app/cli]="math t3d resources scene terrain actors core"
  [app/desktop]="math t3d resources scene terrain actors core"
)
# Plain declarations of a run: no code stands behind them, so any folder may name them.
anywhere='^core/(conversion_settings|report|run_interface)\.h$'

# The folder of the table above that a path lies in.
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
  [ -n "${below[$layer]+known}" ] || continue
  while IFS=: read -r line header; do
    [ -n "$header" ] || continue
    [[ $header =~ $anywhere ]] && continue
    from=$(layer_of "$header")
    [ "$from" = "$layer" ] && continue
    case " ${below[$layer]} " in *" $from "*) continue ;; esac
    fault "$file:$line: \"$header\" does not stand below $layer/"
  done < <(sed -nE '/^[[:space:]]*#[[:space:]]*include[[:space:]]*"/{=;s/.*"([^"]*)".*/\1/p}' "$file" | paste -d: - -)
done <<<"$files"

while IFS= read -r hit; do
  fault "$hit: Qt is for the window alone"
done < <(git grep -nE '#[[:space:]]*include[[:space:]]*<Q[A-Za-z/]+(\.h)?>' -- '*.cpp' '*.h' ':!*desktop/*' || true)

if [ "$faults" -gt 0 ]; then echo "Layers: $faults fault(s)"; exit 1; fi
echo "Layers: every include stands below its file."
