#!/usr/bin/env bash
# Says which tests a change needs: those that carry the folder of a changed file as a label, or else the nearest folder above it.
#   tools/needed-tests.sh [BUILD]            of what the last commit and the work since changed
#   tools/needed-tests.sh BUILD FILE...      of these files, named from the root
# BUILD is a folder that is configured, build/release when none is named. Nothing is built or run.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/release}
[ -f "$build/CTestTestfile.cmake" ] || { echo "$build is not configured: ./run --build does that." >&2; exit 1; }
if [ $# -gt 1 ]; then
  files=("${@:2}")
else
  since=$(git rev-parse --verify --quiet HEAD~1 || git rev-parse HEAD)
  mapfile -t files < <({ git diff --name-only "$since"; git ls-files --others --exclude-standard; } | sort -u)
fi

declare -A known needed
while read -r label; do
  known[$label]=1
done < <(ctest --test-dir "$build" --print-labels | sed -n 's/^  //p')

all=
needed[tests/house]=1 # reads everything
for file in "${files[@]}"; do
  case $file in
    # How everything is built, and what tests of several folders include.
    CMakeLists.txt | CMakePresets.json | cmake/* | packages.txt | tests/*.h) all=1 ;;
  esac
  folder=$file
  while [[ $folder = */* ]]; do
    folder=${folder%/*}
    [ -z "${known[$folder]:-}" ] || { needed[$folder]=1; break; }
  done
done
if [ -n "$all" ]; then
  echo "All tests: what everything is built from changed."
  echo "  ctest --test-dir $build"
  exit
fi
labels=$(printf '%s\n' "${!needed[@]}" | sort | paste -sd'|')
echo "Tests of ${labels//|/, }:"
ctest --test-dir "$build" -N -L "^($labels)\$" | sed -n 's/^ *Test *#[0-9]*: /  /p'
echo "  ctest --test-dir $build -L '^($labels)\$'"
