#!/usr/bin/env bash
# Runs all plays of this folder and the first example of docs/plays.md, each on a fresh copy of an empty store, and those of older-store on
# one that the first version made:
# run.sh MERCHANTRYCTL
set -euo pipefail
cd "$(dirname "$0")"
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
export XDG_DOCUMENTS_DIR=$folder
"$1" store create --empty "$folder/empty.store"
awk '/^A first one:/ { on = 1; next } /^## / { on = 0 } on { sub(/^    /, ""); print }' ../../docs/plays.md >"$folder/first-example.play"
grep -q '^expect ' "$folder/first-example.play" # an example that was not found would pass
"$1" play --store "$folder/empty.store" --fresh ./*.play "$folder/first-example.play"
echo "DELETE FROM SchemaVersion INSERT INTO SchemaVersion (Version) VALUES (1) DROP PROCEDURE bsp_SubsGrid" | "$1" sql "$folder/empty.store"
"$1" play --store "$folder/empty.store" --fresh older-store/*.play
