#!/usr/bin/env bash
# Takes the pictures of docs/images/ from the running programs: the window, its diagnosis, its plan
# and the plug-in's dialog, and what the command draws and says. With a folder, takes those of the
# window there, at 100 and 200 percent, light and dark, to be looked at.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/setup.sh demo
scripts/build.sh importgeometry-pictures importgeometry-cli

take() {
    LC_ALL=ru_RU.UTF-8 QT_QPA_PLATFORM=offscreen QT_SCALE_FACTOR="$1" \
        QT_LOGGING_RULES="default.warning=false" \
        build/release/bin/importgeometry-pictures "$2" samples "${@:3}"
}

cli=$PWD/build/release/bin/importgeometry

# What a command says, as in a terminal of 100 columns; of what it counts, only what was read.
say() {
    echo "\$ importgeometry $*"
    (cd samples && LC_ALL=ru_RU.UTF-8 "$cli" "$@" || true) | grep -v ' пропущено: ' |
        LC_ALL=C.UTF-8 sed -E 's/^(.{100}).+/\1…/'
}

if [ $# -eq 0 ]; then
    take 1 docs/images
    "$cli" plan samples/parcels.mif --encoding windows-1251 --quiet -o docs/images/plan.png
    say check survey.dxf --encoding auto |
        QT_QPA_PLATFORM=offscreen \
            build/release/bin/importgeometry-pictures --terminal docs/images/command.png
    exit
fi
for scale in 1 2; do
    take "$scale" "$1/light-${scale}00" light
    take "$scale" "$1/dark-${scale}00" dark
done
