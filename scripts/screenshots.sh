#!/usr/bin/env bash
# Takes the pictures of docs/images/ from the running program: the window, its diagnosis, its plan
# and the plug-in's dialog. With a folder, takes them there, at 100 and 200 percent, light and dark,
# to be looked at.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/setup.sh demo
scripts/build.sh importgeometry-pictures

take() {
    LC_ALL=ru_RU.UTF-8 QT_QPA_PLATFORM=offscreen QT_SCALE_FACTOR="$1" \
        QT_LOGGING_RULES="default.warning=false" \
        build/release/bin/importgeometry-pictures "$2" samples "${@:3}"
}

if [ $# -eq 0 ]; then
    take 1 docs/images
    exit
fi
for scale in 1 2; do
    take "$scale" "$1/light-${scale}00"
    take "$scale" "$1/dark-${scale}00" dark
done
