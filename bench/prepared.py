#!/usr/bin/env python3
"""Makes the table of docs/prepare.md: what the import takes of the drawings in a folder, as they are
and prepared.

    bench/prepared.py build/release/bin/importgeometry FOLDER [option of prepare...]

"Accepted" are the files that are imported without a message, "objects" what they give, "labels" the
texts that the import reads for designations: TEXT, and the rows of a MID file.
"""

import json
import pathlib
import subprocess
import sys
import tempfile

SECONDS = 120


def run(arguments):
    try:
        return subprocess.run(arguments, capture_output=True, timeout=SECONDS, check=False)
    except subprocess.TimeoutExpired:
        sys.exit(f"no end after {SECONDS} s: {' '.join(arguments)}")


def checked(command, path):
    """Whether a file is accepted, and how many objects and labels the import takes from it."""
    # Search of points is what reads the texts; no encoding makes a difference to the numbers.
    answer = run([command, "check", "--json", "--encoding", "Windows-1251", str(path)])
    if answer.returncode not in (0, 1, 3):
        sys.exit(f"{path}: check ended with {answer.returncode}")
    if not answer.stdout:
        return False, 0, 0
    report = json.loads(answer.stdout)[0]
    accepted = not report["messages"]
    read = {kind["kind"]: kind["read"] for kind in report["contents"][0]["kinds"]}
    labels = read.get("TEXT", 0)
    if path.suffix.lower() == ".mif":
        labels = report["objects"]
    return accepted, report["objects"], labels


def measured(command, files, options):
    rows = {}
    with tempfile.TemporaryDirectory() as folder:
        for number, path in enumerate(files):
            copy = pathlib.Path(folder) / f"{number}{path.suffix.lower()}"
            status = run([command, "prepare", str(path), "-o", str(copy), *options]).returncode
            if status not in (0, 1, 3):
                sys.exit(f"{path}: prepare ended with {status}")
            row = rows.setdefault(path.suffix.lower()[1:].upper(), [0] * 8)
            before = checked(command, path)
            after = checked(command, copy) if copy.exists() else (False, 0, 0)
            values = [1, *before, *after, status == 3]
            rows[path.suffix.lower()[1:].upper()] = [a + b for a, b in zip(row, values)]
    return rows


def main():
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    command, folder, *options = sys.argv[1:]
    files = sorted(
        path
        for path in pathlib.Path(folder).rglob("*")
        if path.suffix.lower() in (".dxf", ".mif") and path.is_file()
    )
    print("| | files | accepted | objects | labels | accepted after | objects | labels | with losses |")
    print("| --- |" + " ---: |" * 8)
    for name, row in sorted(measured(command, files, options).items()):
        print(f"| {name} | " + " | ".join(str(value) for value in row) + " |")


if __name__ == "__main__":
    main()
