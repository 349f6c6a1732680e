#!/usr/bin/env bash
# Runs plays on a server, each in a database of its own, and compares what they show with the same play on a store file:
# MERCHANTRY_TEST_SERVER="Data Source=…; …" plays.sh MERCHANTRYCTL [PLAY…]
# Without plays it takes all of tests/plays but those that set the clock of the store, which a server has itself, and those about a store file.
set -uo pipefail
if [ -z "${MERCHANTRY_TEST_SERVER:-}" ]; then
  echo "skipped, no server"
  exit 0
fi
control=$1
shift
if [ $# -eq 0 ]; then
  cd "$(dirname "$0")/../plays"
  mapfile -t all < <(grep -LE '^clock |@store|^config ' -- *.play)
  set -- "${all[@]}"
fi
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
export XDG_DOCUMENTS_DIR=$folder
"$control" store create --empty "$folder/empty.store" >"$folder/made"

# The test server with another database.
on() { echo "$(sed -E 's/;? *(Initial Catalog|Database) *=[^;]*//' <<<"$MERCHANTRY_TEST_SERVER"); Initial Catalog=$1"; }

good=0
differing=0
for play in "$@"; do
  name=$(basename "$play" .play)
  database="merchantry_play_$$"
  if ! "$control" store create --server "$(on "$database")" >"$folder/made" 2>&1; then
    cat "$folder/made"
    exit 1
  fi
  "$control" play --store "$folder/empty.store" --fresh "$play" >"$folder/file.out" 2>&1
  onFile=$?
  "$control" play --store "$(on "$database")" "$play" >"$folder/server.out" 2>&1
  onServer=$?
  echo "DROP DATABASE $database" | "$control" sql --server "$(on master)" >"$folder/made" 2>&1 || cat "$folder/made"
  # Whether a window of progress comes up is a matter of time, and so is the time of day that something was done at.
  sed -i -E '/^(opened|closed) frmProgress$/d; s/[0-9]{1,2}:[0-9]{2}:[0-9]{2} [AP]M/(time)/g' "$folder/file.out" "$folder/server.out"
  diff "$folder/file.out" "$folder/server.out" >"$folder/diff"
  if [ $? -eq 0 ] && [ $onFile -eq $onServer ]; then
    good=$((good + 1))
    echo "equal    $name"
  else
    differing=$((differing + 1))
    echo "differs  $name"
    sed -n '1,6p' "$folder/diff" | cut -c1-240
  fi
done
echo "$good plays are equal on both, $differing differ"
[ "$differing" -eq 0 ]
