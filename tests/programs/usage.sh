#!/usr/bin/env bash
# The desktop program refuses words that neither it nor the toolkit knows, names them, and opens no window: usage.sh MERCHANTRY
set -euo pipefail
export QT_QPA_PLATFORM=offscreen
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
export XDG_CONFIG_HOME=$folder
for word in --foo -x shop.store --untillogin; do
  # A program that took the word would leave as soon as its first window is painted.
  code=0
  "$1" --store "$folder/none.store" --until-login "$word" >"$folder/out" 2>"$folder/err" || code=$?
  [ "$code" = 2 ] || { echo "$word: exit code $code, expected 2" >&2; exit 1; }
  grep -q -e "$word" "$folder/err" || { echo "$word is not named: $(cat "$folder/err")" >&2; exit 1; }
  ! grep -q painted "$folder/out" || { echo "$word: a window was opened" >&2; exit 1; }
done
"$1" --version -style fusion >/dev/null || { echo "an option of the toolkit is refused" >&2; exit 1; }
