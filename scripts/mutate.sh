#!/usr/bin/env bash
# Changes one token of a line at a time, runs the nearest tests, and lists the changes that no test saw.
#   mutate.sh [-n MOST] [REVISION]    lines that differ from REVISION (HEAD~1)
#   mutate.sh [-n MOST] FILE...       lines of these files
# At most MOST (30) lines are changed, spread evenly. Works on what is committed, in a copy of its own that stays in
# build/mutate. Each change is a build, so this is for now and then.
set -euo pipefail
cd "$(dirname "$0")/.."

most=30
if [ "${1:-}" = -n ]; then most=$2; shift 2; fi
copy=build/mutate
if [ $# -gt 1 ]; then for file in "$@"; do [ -f "$file" ] || { echo "mutate.sh: no file $file" >&2; exit 2; }; done; fi

# The first that changes a line is taken; every other line is tried from the end.
mutations=('s/ == / != /' 's/ != / == /' 's/ <= / > /' 's/ >= / < /' 's/ < / >= /' 's/ > / <= /' 's/ && / || /'
           's/ || / \&\& /' 's/\btrue\b/false/' 's/\bfalse\b/true/' 's/\([[:alnum:])]\) + /\1 - /'
           's/\([[:alnum:])]\) - /\1 + /' 's/ \* / \/ /' 's/\.X\b/.Y/' 's/\.Z\b/.X/' 's/\.U\b/.V/' 's/\bmin(/max(/'
           's/if (!/if (/' 's/\([ (]\)0\([,);]\)/\11\2/' 's/\b\([1-9][0-9.]*\)\b/(\1 * 2)/'
           's/"\( *[[:alpha:]]\)/"x\1/' 's/^\( *\)[a-z][A-Za-z.]*([^;{]*);$/\1;/')

# Every line of the code (not of tests) that was asked for: FILE:NUMBER.
asked_lines() {
  if [ -f "${1:-}" ]; then
    awk '{ print FILENAME ":" FNR }' "$@"
    return
  fi
  git diff -U0 "${1:-HEAD~1}" HEAD -- '*.cpp' ':!tests/*' ':!bench/*' ':!fuzz/*' |
    awk '/^\+\+\+ b\// { file = substr($2, 3) }
         /^@@/ { split($3, at, ","); number = substr(at[1], 2) + 0; next }
         /^\+[^+]/ { print file ":" number++ }'
}

mutate_line() { # FILE NUMBER: prints the changed line, or fails when nothing in it can be changed
  local line mutated i count=${#mutations[@]}
  line=$(sed -n "$2p" "$1")
  case $line in *'//'* | '#'* | *static_assert* | *'namespace '*) return 1 ;; esac
  for ((i = 0; i < count; i++)); do
    mutated=$(sed "${mutations[$2 % 2 == 0 ? i : count - 1 - i]}" <<<"$line")
    if [ "$mutated" != "$line" ]; then printf '%s\n' "$mutated"; return 0; fi
  done
  return 1
}

# The suites of the folder's own tests, and those of whole runs.
nearest_tests() {
  { git ls-files "tests/${1%%/*}/*_test.cpp" 'tests/core/*_test.cpp' | xargs -r grep -hoE '^TEST(_[FP])?\([A-Za-z0-9]+' ||
    true; } | sed 's/.*(//' | sort -u | sed 's/.*/*&.*/' | paste -sd:
}

if [ -d "$copy" ]; then git -C "$copy" checkout --quiet --force --detach "$(git rev-parse HEAD)"
else git worktree add --quiet --detach "$copy" HEAD; fi
(cd "$copy" && QUARVEL_CMAKE_OPTIONS="-DQUARVEL_BUILD_DESKTOP=OFF -DCMAKE_CXX_FLAGS_DEBUG=-O0" \
  ./scripts/build.sh dev --target quarvel_tests quarvel) >build/mutate.log 2>&1 ||
  { echo "mutate.sh: the tests do not build, see build/mutate.log" >&2; exit 2; }

# Goldens see most, so they come first.
is_seen() { # FILE
  local filter
  for filter in '*Golden*' "$(nearest_tests "$1")"; do
    timeout 300 "$copy/build/dev/tests/quarvel_tests" --gtest_fail_fast --gtest_brief=1 --gtest_filter="$filter" \
      >build/mutate.log 2>&1 || return 0
  done
  return 1
}

mapfile -t lines < <(asked_lines "$@" | while IFS=: read -r file number; do
  mutate_line "$file" "$number" >/dev/null && echo "$file:$number"
done)
count=${#lines[@]}
step=$(((count + most - 1) / most))
[ "$step" -gt 0 ] || { echo "No line of those can be mutated."; exit 0; }

tried=0 survivors=0
for ((i = 0; i < count; i += step)); do
  IFS=: read -r file number <<<"${lines[i]}"
  mutated=$(mutate_line "$copy/$file" "$number") || continue
  git -C "$copy" show "HEAD:$file" | MUTATED=$mutated awk -v number="$number" \
    'NR == number { print ENVIRON["MUTATED"]; next } { print }' >"$copy/$file"
  if cmake --build "$copy/build/dev" --target quarvel_tests quarvel >build/mutate.log 2>&1; then
    tried=$((tried + 1))
    if ! is_seen "$file"; then
      survivors=$((survivors + 1))
      echo "$file:$number survived: ${mutated#"${mutated%%[![:space:]]*}"}"
    fi
  fi
  git -C "$copy" checkout --quiet -- "$file"
done
echo "$((tried - survivors)) of $tried changes were seen."
