#!/bin/sh
# Runs a program on a display under a window manager, which goes when the program ends.
set -eu
# A window that is there before the manager is may never be shown.
ready=$(mktemp -u)
openbox --sm-disable --startup "touch $ready" &
manager=$!
tries=0
until [ -e "$ready" ] || [ "$tries" -ge 300 ]; do
    sleep 0.1
    tries=$((tries + 1))
done
rm -f "$ready"
status=0
"$@" || status=$?
kill "$manager"
exit "$status"
