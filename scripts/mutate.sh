#!/usr/bin/env bash
# Changes one token of a changed line at a time, runs the nearest tests, and lists the changes that no test saw.
#   mutate.sh [REVISION [MOST]]     lines that differ from REVISION (HEAD~1), at most MOST of them (30), spread evenly
# Works on what is committed, in a copy of its own below build/. Each change is a build, so this is for now and then.
set -euo pipefail
cd "$(dirname "$0")/.."

revision=${1:-HEAD~1}
most=${2:-30}
copy=build/mutate

# The first that changes a line is taken.
mutations=('s/ == / != /' 's/ != / == /' 's/ <= / > /' 's/ >= / < /' 's/ < / >= /' 's/ > / <= /' 's/ && / || /'
           's/ || / \&\& /' 's/\btrue\b/false/' 's/\bfalse\b/true/' 's/\([[:alnum:])]\) + /\1 - /'
           's/\([[:alnum:])]\) - /\1 + /' 's/\.X\b/.Y/' 's/\.U\b/.V/' 's/if (!/if (/' 's/\([ (]\)0\([,);]\)/\11\2/'
           's/\b\([1-9][0-9.]*\)\b/(\1 * 2)/' 's/"\( *[[:alpha:]]\)/"x\1/')

# Every line of the code (not of tests) that the commits since the revision wrote: FILE:NUMBER.
changed_lines() {
  git diff -U0 "$revision" HEAD -- '*.cpp' ':!tests/*' ':!bench/*' ':!fuzz/*' |
    awk '/^\+\+\+ b\// { file = substr($2, 3) }
         /^@@/ { split($3, at, ","); number = substr(at[1], 2) + 0; next }
         /^\+[^+]/ { print file ":" number++ }'
}

mutate_line() { # FILE NUMBER: prints the changed line, or fails when nothing in it can be changed
  local line mutated
  line=$(sed -n "$2p" "$1")
  case $line in *'//'* | '#'* | *static_assert*) return 1 ;; esac
  for mutation in "${mutations[@]}"; do
    mutated=$(sed "$mutation" <<<"$line")
    if [ "$mutated" != "$line" ]; then printf '%s\n' "$mutated"; return 0; fi
  done
  return 1
}

# The suites of the folder's own tests, and those of whole runs.
nearest_tests() {
  local folder=${1%%/*}
  { git ls-files "tests/$folder/*_test.cpp" 'tests/core/*_test.cpp' | xargs -r grep -hoE '^TEST(_[FP])?\([A-Za-z0-9]+' ||
    true; } | sed 's/.*(//' | sort -u | sed 's/.*/*&.*/' | paste -sd:
}

git worktree remove --force "$copy" 2>/dev/null || true
git worktree add --quiet --detach "$copy" HEAD
trap 'git worktree remove --force "$copy"' EXIT
build() { (cd "$copy" && ./scripts/build.sh dev --target quarvel_tests) >build/mutate.log 2>&1; }
build || { echo "mutate.sh: the tests do not build, see build/mutate.log" >&2; exit 2; }

mapfile -t lines < <(changed_lines | while IFS=: read -r file number; do
  mutate_line "$file" "$number" >/dev/null && echo "$file:$number"
done)
count=${#lines[@]}
step=$(((count + most - 1) / most))
[ "$step" -gt 0 ] || { echo "No changed line since $revision can be mutated."; exit 0; }

tried=0 survivors=0
for ((i = 0; i < count; i += step)); do
  IFS=: read -r file number <<<"${lines[i]}"
  mutated=$(mutate_line "$file" "$number")
  MUTATED=$mutated awk -v number="$number" 'NR == number { print ENVIRON["MUTATED"]; next } { print }' "$file" >"$copy/$file"
  if build; then
    tried=$((tried + 1))
    if timeout 300 "$copy/build/dev/tests/quarvel_tests" --gtest_brief=1 --gtest_filter="$(nearest_tests "$file")" \
      >build/mutate.log 2>&1; then
      survivors=$((survivors + 1))
      echo "$file:$number survived: ${mutated#"${mutated%%[![:space:]]*}"}"
    fi
  fi
  git -C "$copy" checkout --quiet -- "$file"
done
echo "$((tried - survivors)) of $tried changes were seen."
