#!/usr/bin/env bash
# Runs a program on a display of its own with a window manager: under-window-manager.sh WIDTHxHEIGHT PROGRAM [ARGUMENT…]
set -euo pipefail
for tool in Xvfb openbox; do
  command -v $tool >/dev/null || { echo "$tool is missing (./test installs it)" >&2; exit 1; }
done
folder=$(mktemp -d)
trap 'kill $(jobs -p) 2>/dev/null || true; rm -rf "$folder"' EXIT
Xvfb -displayfd 3 -screen 0 "${1}x24" -nolisten tcp 3>"$folder/display" 2>/dev/null &
server=$!
until [ -s "$folder/display" ]; do kill -0 $server; sleep 0.1; done
DISPLAY=:$(cat "$folder/display")
export DISPLAY XDG_CONFIG_HOME=$folder XDG_CACHE_HOME=$folder QT_QPA_PLATFORM=xcb
openbox 2>/dev/null &
manager=$!
until xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 'window id'; do kill -0 $manager; sleep 0.1; done
# What the message bus keeps for the life of a process is not ours to free.
echo leak:libdbus-1 >"$folder/leaks"
export LSAN_OPTIONS="suppressions=$folder/leaks:print_suppressions=0${LSAN_OPTIONS:+:$LSAN_OPTIONS}"
"${@:2}"
