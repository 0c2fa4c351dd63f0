#!/usr/bin/env bash
# Installs a build into a folder of its own, and finds there what its README names:   install_test.sh BUILD_FOLDER
set -euo pipefail
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "$1" --prefix "$prefix" >/dev/null
doc=$prefix/share/doc/quarvel

faults=0
fault() { echo "$1"; faults=$((faults + 1)); }

# What is in a clone only is not to be named; what is linked or called a file must be there.
if grep -nE '(^|[^A-Za-z/])(scripts|docs|samples|build|tests|\.ci)/' "$doc/README.md"; then fault "named, but not installed"; fi
while IFS= read -r link; do
  case $link in http*) ;; '#'*) grep -qi "^## ${link#'#'}" <(tr ' ' '-' <"$doc/README.md" | sed 's/^##-/## /') || fault "no section $link" ;;
    *) [ -e "$doc/$link" ] || fault "$link is linked, but not there" ;;
  esac
done < <(grep -oE '\]\([^)]+\)' "$doc/README.md" | sed 's/^](\(.*\))$/\1/')
for name in options.md conforming.md examples/harbour.t3d; do [ -e "$doc/$name" ] || fault "$name is not installed"; done

# The examples convert with what lies beside them.
cp -r "$doc/examples" "$prefix/mine"
"$prefix/bin/quarvel" --quiet --textures "$prefix/mine/textures" --sounds "$prefix/mine/sounds" \
  --meshes "$prefix/mine/meshes" "$prefix/mine/harbour.t3d" "$prefix/new/folder/harbour.wrl" || fault "the example fails"
[ -e "$prefix/new/folder/VisTeleport.png" ] || fault "the program's own files are not found"

# The window answers without a display.
if [ -x "$prefix/bin/quarvel-desktop" ]; then
  env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$prefix/bin/quarvel-desktop" --help | grep -q LEVEL || fault "no help"
fi
[ "$faults" -eq 0 ]
