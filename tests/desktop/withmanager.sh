#!/bin/sh
# Runs a program on a display under a window manager, which goes when the program ends.
set -eu
openbox --sm-disable &
manager=$!
status=0
"$@" || status=$?
kill "$manager"
exit "$status"
