#!/bin/sh
# Builds the benchmarks and compares whole processes; see compare.sh --help.
set -eu
cd "$(dirname "$0")/.."
case " $* " in
*" --help "* | *" -h "*) ;;
*)
    cmake --preset bench >/dev/null
    cmake --build --preset bench >/dev/null
    ;;
esac
exec python3 bench/compare.py "$@"
