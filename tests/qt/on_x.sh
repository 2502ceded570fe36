#!/bin/sh
# Runs a program on an X server and a window manager of its own. 77 when the machine has none.
for tool in Xvfb jwm xdotool setxkbmap; do
  command -v $tool >/dev/null || { echo "$tool manque"; exit 77; }
done
folder=$(mktemp -d) || exit 1
trap 'kill $manager $server 2>/dev/null; rm -rf "$folder"' EXIT
mkfifo "$folder/display" "$folder/ready"
Xvfb -displayfd 3 -screen 0 "${ON_X_SCREEN:-1280x720}x24" -nolisten tcp 3>"$folder/display" 2>/dev/null &
server=$!
read -r number <"$folder/display"
export DISPLAY=":$number" HOME="$folder" XDG_RUNTIME_DIR="$folder" QT_QPA_PLATFORM=xcb
# The manager tells by its start-up command that it is at work.
printf '<?xml version="1.0"?><JWM><StartupCommand>echo ready &gt; %s</StartupCommand></JWM>\n' "$folder/ready" >"$folder/.jwmrc"
jwm -f "$folder/.jwmrc" >/dev/null 2>&1 &
manager=$!
read -r _ <"$folder/ready"
# French keys; on others a capital with an accent would arrive as a small letter.
setxkbmap fr -variant oss
timeout "${ON_X_SECONDS:-170}" "$@"
