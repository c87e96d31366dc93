#!/usr/bin/env bash
# Builds the coverage preset, runs the tests and prints what share of the lines of src/, libs/ and
# apps/ they run; with --lines also the lines that no test runs. Other arguments go to ctest. The
# packages clang, libclang-rt-dev and llvm have to be there.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
show_lines=
arguments=()
for argument in "$@"; do
    case $argument in
    --lines) show_lines=1 ;;
    *) arguments+=("$argument") ;;
    esac
done

build=build/coverage
cmake --preset coverage
cmake --build --preset coverage --parallel "$(nproc)"
rm -rf "$build/profiles"
status=0
ctest --preset coverage "${arguments[@]}" || status=$?

llvm-profdata merge --sparse "$build"/profiles/*.profraw --output "$build/all.profdata"
objects=()
while IFS= read -r -d '' object; do
    objects+=(--object "$object")
done < <(find "$build" -type f \( -perm -u=x -o -name '*.so' \) -not -path '*/CMakeFiles/*' \
    -not -name '*.sh' -print0)
llvm-cov export --format=lcov --instr-profile "$build/all.profdata" "${objects[@]}" |
    SHOW_LINES=$show_lines python3 <(cat <<'PYTHON'
import collections, os, sys

root = os.getcwd()
runs = collections.defaultdict(lambda: collections.defaultdict(int))
path = ""
for record in sys.stdin:
    word, _, value = record.rstrip("\n").partition(":")
    if word == "SF":
        path = os.path.relpath(os.path.normpath(value), root)
    elif word == "DA":
        line, count = value.split(",")[:2]
        runs[path][int(line)] += int(count)

for folder in ("src", "libs", "apps/cli", "apps/host"):
    files = {path: lines for path, lines in runs.items() if path.startswith(folder + "/")}
    total = sum(len(lines) for lines in files.values())
    run = sum(count > 0 for lines in files.values() for count in lines.values())
    print(f"{folder}: {run} of {total} lines, {100 * run / max(total, 1):.2f} %")
    if os.environ["SHOW_LINES"]:
        for path, lines in sorted(files.items()):
            missed = sorted(line for line, count in lines.items() if count == 0)
            if missed:
                print(f"  {path}: {' '.join(map(str, missed))}")
PYTHON
)
exit "$status"
