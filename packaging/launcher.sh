#!/bin/sh
# Starts the program of this name from the folder that this file stands in.
here=$(cd "$(dirname "$(readlink -f "$0")")" && pwd)
# A machine with a display may still have no fonts of its own, nor the names of its keys.
[ -e /etc/fonts/fonts.conf ] || export FONTCONFIG_FILE="$here/share/fonts/fonts.conf"
[ -d /usr/share/X11/xkb ] || export XKB_CONFIG_ROOT="$here/share/X11/xkb"
exec "$here/bin/$(basename "$0")" "$@"
