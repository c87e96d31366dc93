#!/usr/bin/env bash
# Fuzzes the targets of the fuzz preset's build and goes on from what earlier runs have found.
#
#   scripts/fuzz.sh SECONDS            each target
#   scripts/fuzz.sh SECONDS TARGET...  these targets; arguments that begin with "-" go to libFuzzer
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
if ! [[ ${1-} =~ ^[0-9]+$ ]]; then
    echo "usage: scripts/fuzz.sh SECONDS [TARGET...] [-option=value...]" >&2
    exit 2
fi
seconds=$1
shift

build=build/fuzz
targets=()
options=(-max_total_time="$seconds" -max_len=4096 -timeout=120 -rss_limit_mb=4096
    -artifact_prefix="$build/findings/" -print_final_stats=1 -verbosity=0)
for argument in "$@"; do
    case $argument in
    -*) options+=("$argument") ;;
    *) targets+=("$argument") ;;
    esac
done
if [ "${#targets[@]}" -eq 0 ]; then
    for folder in fuzz/corpus/*/; do
        targets+=("$(basename "$folder")")
    done
fi

mkdir -p "$build/findings"
for target in "${targets[@]}"; do
    echo "=== $target ==="
    mkdir -p "$build/corpus/$target"
    "$build/bin/fuzz_$target" "${options[@]}" "$build/corpus/$target" "fuzz/corpus/$target"
done
