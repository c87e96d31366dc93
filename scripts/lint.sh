#!/usr/bin/env bash
# Runs clang-tidy and cppcheck over src/, libs/ and apps/, or over the C++ files given; the packages
# clang, clang-tidy and cppcheck have to be there. All of a library is read as one unit: nearly all
# of the time goes into the headers of Qt. So no two files of a library give one name to different
# things, not even where the linker would not mind.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
build=build/lint
jobs=$(nproc)
files=("$@")
unity=OFF
if [ $# -eq 0 ]; then
    unity=ON
    mapfile -t files < <(find src libs apps -name '*.cpp' | sort)
fi

cmake --preset lint -DCMAKE_UNITY_BUILD="$unity" >/dev/null
mapfile -t generators < <(cmake --build "$build" --target help |
    grep --only-matching '[^ :/]*_autogen\b' | sort --unique)
cmake --build "$build" --parallel "$jobs" --target "${generators[@]}" >/dev/null
units=("${files[@]}")
if [ "$unity" = ON ]; then
    # The units, and sources with definitions of their own, which are in none.
    mapfile -t units < <(sed -n 's/^ *"file": "\(.*\)".*/\1/p' "$build/compile_commands.json" |
        grep --invert-match '_autogen/')
fi

# Units include sources, which hide what others of them have at their top; within a source the
# compiler's warning tells.
status=0
echo "clang-tidy: ${#files[@]} files"
printf '%s\0' "${units[@]}" |
    xargs -0 --max-procs="$jobs" --max-args=1 clang-tidy -p "$build" --quiet \
        --checks=-bugprone-suspicious-include --extra-arg=-Wno-shadow \
        2> >(grep --invert-match 'warnings generated' >&2) || status=1

echo "cppcheck: ${#files[@]} files"
cppcheck --quiet --error-exitcode=1 --suppressions-list=.cppcheck-suppressions -j "$jobs" \
    --std=c++17 --library=qt --enable=warning,style,performance,portability -I src -I libs \
    "${files[@]}" || status=1
exit "$status"
