#!/usr/bin/env bash
# Runs clang-tidy over the tree with the settings of .clang-tidy; any finding fails.
#   tools/check-tidy.sh            all of it
#   tools/check-tidy.sh FILE...    these files
#   tools/check-tidy.sh --changed  what the last commit and the work since changed, as ./test does
# Wants a build of the release preset, for what is generated; it has compile commands of its own, since clang cannot read what GCC precompiled.
set -euo pipefail
cd "$(dirname "$0")/.."
product=(app base catalog customers demo exchange inventory programs purchasing reports setup tools ui)
case ${1:-} in
  "") mapfile -t files < <(git ls-files "${product[@]/%//*.cpp}") ;;
  --changed)
    since=$(git rev-parse --verify --quiet HEAD~1 || git rev-parse HEAD)
    mapfile -t files < <({ git diff --name-only --diff-filter=d "$since"; git ls-files --others --exclude-standard; } |
      sort -u | grep -E "^($(IFS='|'; echo "${product[*]}"))/.*\.cpp$" || true) ;;
  *) files=("$@") ;;
esac
[ ${#files[@]} -gt 0 ] || { echo "clang-tidy: no source file changed."; exit 0; }
cmake --preset release -B build/tidy -DMERCHANTRY_PCH=OFF >/dev/null
cmake --build build/tidy --target merchantry_write_listings >/dev/null
echo "clang-tidy over ${#files[@]} files."
printf '%s\0' "${files[@]}" | xargs -0 -n 4 -P 2 clang-tidy -p build/tidy --quiet --extra-arg=-Wno-unknown-warning-option
