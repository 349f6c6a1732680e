#!/usr/bin/env bash
# Runs all plays of this folder, each on a fresh copy of an empty store: run.sh MERCHANTRYCTL
set -euo pipefail
cd "$(dirname "$0")"
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
export XDG_DOCUMENTS_DIR=$folder
"$1" store create --empty "$folder/empty.store"
"$1" play --store "$folder/empty.store" --fresh ./*.play
