#!/usr/bin/env python3
"""Holds what the import makes of files that it reads whole against what it makes of their prepared
copies, at both levels: it must be the same XML. A file is read whole when convert has nothing to
tell of it. The names that texts without order give are no good, and those of the copy are others.

    PREPARE_DRAWINGS=FOLDER wholefiles.py COMMAND

Passes over (status 77) where the folder is missing or holds no such file, and says so.
"""

import json
import os
import pathlib
import subprocess
import sys
import tempfile

SKIPPED = 77


def skip(why):
    print(f"skipped: {why}")
    sys.exit(SKIPPED)


def run(*arguments):
    return subprocess.run(arguments, capture_output=True, timeout=120, check=False)


def told(answer):
    """What convert says beside the encoding that it chose."""
    return [line for line in answer.stderr.decode().splitlines() if ": кодировка: " not in line]


def gets_order(prepared):
    notes = json.loads(prepared.stdout)[0]["notes"]
    return any(note["id"] == "point-added" for note in notes)


def main():
    command = sys.argv[1]
    folder = os.environ.get("PREPARE_DRAWINGS", "")
    if not folder or not pathlib.Path(folder).is_dir():
        skip("PREPARE_DRAWINGS names no folder of drawings")
    whole = 0
    changed = 0
    with tempfile.TemporaryDirectory() as scratch:
        for path in sorted(pathlib.Path(folder).rglob("*")):
            if path.suffix.lower() not in (".dxf", ".mif"):
                continue
            convert = [command, "convert", "--encoding", "auto"]
            before = run(*convert, str(path))
            if before.returncode != 0 or told(before) or b"<Cell>" not in before.stdout:
                continue
            whole += 1
            for level in ("repair", "flatten"):
                copy = os.path.join(scratch, "copy" + path.suffix)
                prepared = run(command, "prepare", str(path), "-o", copy, "--json", "--level", level)
                after = run(*convert, copy)
                if prepared.returncode == 0 and gets_order(prepared):
                    print(f"{path}: {level}: the texts get an order")
                elif prepared.returncode != 0 or after.stdout != before.stdout:
                    changed += 1
                    print(f"{path}: {level}: the import differs")
    print(f"read whole: {whole}, changed: {changed}")
    if whole == 0:
        skip("no file is read whole")
    sys.exit(1 if changed else 0)


if __name__ == "__main__":
    main()
