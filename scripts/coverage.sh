#!/usr/bin/env bash
# Builds the coverage preset, runs the tests and prints what share of the lines of src/, libs/ and
# apps/ they run; with --lines also the lines that no test runs. Other arguments go to ctest.
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
find "$build" -name '*.gcda' -delete
status=0
ctest --preset coverage "${arguments[@]}" || status=$?

find "$build/src" "$build/libs" "$build/apps" "$build/tests" "$build/fuzz" -name '*.gcda' -print0 |
    SHOW_LINES=$show_lines python3 <(cat <<'PYTHON'
import collections, json, os, subprocess, sys

root = os.getcwd()
runs = collections.defaultdict(lambda: collections.defaultdict(int))
for name in filter(None, sys.stdin.read().split("\0")):
    command = ["gcov", "--json-format", "--stdout", os.path.basename(name)]
    found = subprocess.run(command, cwd=os.path.dirname(name), capture_output=True, text=True)
    for document in filter(None, found.stdout.splitlines()):
        report = json.loads(document)
        for file in report["files"]:
            place = os.path.join(report["current_working_directory"], file["file"])
            path = os.path.relpath(os.path.normpath(place), root)
            for line in file["lines"]:
                runs[path][line["line_number"]] += line["count"]

for folder in ("src", "libs", "apps/cli", "apps/host"):
    files = {path: lines for path, lines in runs.items()
             if path.startswith(folder + "/") and "_autogen" not in path}
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
