#!/usr/bin/env bash
# Runs clang-tidy and cppcheck over src/, libs/ and apps/, or over the C++ files given; the packages
# clang-tidy and cppcheck have to be there. Configures the dev preset and has it generate what the
# sources include.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
build=build/dev
jobs=$(nproc)
files=("$@")
if [ $# -eq 0 ]; then
    mapfile -t files < <(find src libs apps -name '*.cpp' | sort)
fi

cmake --preset dev >/dev/null
mapfile -t generators < <(cmake --build "$build" --target help |
    grep --only-matching '[^ :/]*_autogen\b' | grep --invert-match '^tst_' | sort --unique)
cmake --build "$build" --parallel "$jobs" --target "${generators[@]}" >/dev/null

status=0
echo "clang-tidy: ${#files[@]} files"
printf '%s\0' "${files[@]}" |
    xargs -0 --max-procs="$jobs" --max-args=1 clang-tidy -p "$build" --quiet \
        2> >(grep --invert-match 'warnings generated' >&2) || status=1

echo "cppcheck: ${#files[@]} files"
cppcheck --quiet --error-exitcode=1 --suppressions-list=.cppcheck-suppressions -j "$jobs" \
    --std=c++17 --library=qt --enable=warning,style,performance,portability -I src -I libs \
    "${files[@]}" || status=1
exit "$status"
