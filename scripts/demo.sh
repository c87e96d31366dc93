#!/usr/bin/env bash
# Installs what is missing, builds, and imports the samples in the stand-in host: with a display
# for you to use the dialog, without one by itself, with screenshots in build/demo. Arguments go to
# the host; "--auto" does without the display. With IMPORTGEOMETRY_PROGRAMS, the folder of installed
# programs, nothing is installed or built.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
programs=${IMPORTGEOMETRY_PROGRAMS-build/release/bin}
if [ -z "${IMPORTGEOMETRY_PROGRAMS-}" ]; then
    scripts/setup.sh demo
    # With it the plug-in, and no test: in the folder of the tests' build, which goes on from there.
    scripts/build.sh importgeometry-host importgeometry-cli
fi

demo=build/demo
host=$programs/importgeometry-host
cli=$programs/importgeometry
rm -rf "$demo"
mkdir -p "$demo/runtime"
chmod 700 "$demo/runtime"

export LC_ALL=ru_RU.UTF-8
export XDG_RUNTIME_DIR="${XDG_RUNTIME_DIR:-$PWD/$demo/runtime}"
# The offscreen platform warns of the window hints that it ignores.
export QT_LOGGING_RULES="default.warning=false"

import() {
    local name=$1
    shift
    echo
    echo "=== $name ==="
    # 2: cancelled in the dialog, which is no failure of the demo.
    "$host" --settings "$demo/$name" --encoding Windows-1251 \
        --screenshots "$demo/$name" "$@" || [ $? -eq 2 ]
}

import parcels --operation "Объекты из MIF" --file samples/parcels.mif \
    --point-file samples/parcels-points.mif --set pointStartNumSpin=301 \
    --set fieldEdit_0="межевой знак" --set updateCheck=true "$@"
import quarter --operation "Объекты из DXF" --file samples/quarter.dxf "$@"
import lots --operation "Объекты из DXF" --file samples/lots.dxf \
    --point-file samples/lots-points.dxf "$@"

echo
echo "=== survey ==="
# A drawing as people have it: refused, explained, prepared, imported.
"$cli" convert samples/survey.dxf -o "$demo/survey.xml" || true
"$cli" check samples/survey.dxf --encoding Windows-1251 || [ $? -eq 3 ]
"$cli" prepare samples/survey.dxf -o "$demo/survey.dxf"
import survey --operation "Объекты из DXF" --file "$demo/survey.dxf" "$@"
