#!/bin/sh
# Runs a Python script on an X server, a window manager, a session bus and an accessibility bus of its
# own. 77 when the machine has none.
here=$(dirname "$0")
command -v dbus-run-session >/dev/null && /usr/bin/python3 -c 'import pyatspi' 2>/dev/null ||
  { echo "dbus-run-session ou pyatspi manque"; exit 77; }
exec "$here/on_x.sh" dbus-run-session -- env QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 PYTHONDONTWRITEBYTECODE=1 \
  /usr/bin/python3 "$@"
