#!/usr/bin/env python3
"""Puts small faults into a copy of the tree, one at a time, and sees whether the tests notice.

Each fault of faults.py is patched in, what its tests need is built, the tests run, and the fault is
taken out again. The copy lies in build/mutation; the tree itself is never touched."""

import argparse
import os
import re
import shutil
import signal
import subprocess
import sys
import time
from pathlib import Path

from faults import FAULTS

ROOT = Path(__file__).resolve().parents[2]
LOCALE_SUFFIX = {"C": ".C", "ru_RU": ".ru_RU.UTF-8"}
TEST_SECONDS = 600
FAILED_ROW = re.compile(r"^\d+: (FAIL!|QFATAL)")


def copy_tree(target):
    """Copies what git knows; a file that is the same keeps its time, so that little is rebuilt."""
    listed = subprocess.run(["git", "ls-files", "-z"], cwd=ROOT, check=True, capture_output=True)
    names = [name for name in os.fsdecode(listed.stdout).split("\0") if (ROOT / name).is_file()]
    for name in names:
        copy = target / name
        if copy.is_file() and copy.read_bytes() == (ROOT / name).read_bytes():
            continue
        copy.parent.mkdir(parents=True, exist_ok=True)
        shutil.copyfile(ROOT / name, copy)
        shutil.copymode(ROOT / name, copy)


class Copy:
    """The copy of the tree and its build."""

    def __init__(self, folder, jobs, options):
        self.folder = folder
        self.build_folder = folder / "build" / "dev"
        self.jobs = str(jobs)
        self.options = options

    def configure(self):
        return self._run(["cmake", "--preset", "dev", *self.options])

    def build(self, targets):
        command = ["cmake", "--build", str(self.build_folder), "--parallel", self.jobs]
        return self._run([*command, "--target", *sorted(targets)])

    def test(self, tests):
        """The first of the tests that fails, or None."""
        for test in tests:
            name, _, locale = test.partition(".")
            pattern = f"^{re.escape(name + LOCALE_SUFFIX[locale or 'C'])}$"
            command = ["ctest", "--verbose", "--tests-regex", pattern, "--no-tests=error"]
            if not self._passes([*command, "--timeout", str(TEST_SECONDS)]):
                return test
        return None

    def _passes(self, command):
        """Whether a test passes; the first row that fails ends it."""
        running = subprocess.Popen(command, cwd=self.build_folder, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                   errors="replace", start_new_session=True)
        lines = []
        for line in running.stdout:
            lines.append(line)
            if FAILED_ROW.match(line):
                os.killpg(running.pid, signal.SIGKILL)
                break
        running.stdout.close()
        self.output = "".join(lines[-20:])
        return running.wait() == 0

    def _run(self, command, folder=None):
        done = subprocess.run(command, cwd=folder or self.folder, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        self.output = done.stdout
        return done.returncode == 0


def targets_of(tests):
    return {test.partition(".")[0] for test in tests}


def judge(copy, fault):
    """What becomes of a fault: a word, and what it was noticed by."""
    path = copy.folder / fault.file
    sound = path.read_text()
    if sound.count(fault.text) != 1:
        return "misplaced", "its text does not stand in the file once"
    try:
        path.write_text(sound.replace(fault.text, fault.replacement))
        if not copy.build(targets_of(fault.tests)):
            return "not built", copy.output[-600:]
        test = copy.test(fault.tests)
        return ("noticed", test) if test else ("unseen", " ".join(fault.tests))
    finally:
        path.write_text(sound)


def line_of(fault):
    text = (ROOT / fault.file).read_text()
    return text[:text.find(fault.text)].count("\n") + 1


def shown(text):
    return " ".join(text.split()) or "nothing"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("files", nargs="?", default="", help="only files that match this pattern")
    parser.add_argument("--from", dest="first", type=int, default=1, help="the first fault, by number")
    parser.add_argument("--folder", type=Path, default=ROOT / "build" / "mutation")
    parser.add_argument("--trust", action="store_true", help="the tests pass without any fault")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--least", type=float, default=95, help="per cent that must be noticed")
    parser.add_argument("--cmake", action="append", default=[], help="an argument of the configuration")
    arguments = parser.parse_args()

    chosen = [(number, fault) for number, fault in enumerate(FAULTS, 1)
              if number >= arguments.first and re.search(arguments.files, fault.file)]
    copy_tree(arguments.folder)
    copy = Copy(arguments.folder.resolve(), arguments.jobs, arguments.cmake)
    tests = sorted({test for _, fault in chosen for test in fault.tests})
    if not copy.configure() or not copy.build(targets_of(tests)):
        sys.exit(copy.output)
    failed = None if arguments.trust else copy.test(tests)
    if failed:
        sys.exit(f"{failed} fails without any fault:\n{copy.output}")

    counts = {}
    for number, fault in chosen:
        start = time.monotonic()
        word, by = judge(copy, fault)
        counts[word] = counts.get(word, 0) + 1
        print(f"{number:3} {word:9} {time.monotonic() - start:4.0f} s  {fault.file}:{line_of(fault)}  "
              f"{shown(fault.text)} -> {shown(fault.replacement)}  [{by}]", flush=True)
    share = 100 * counts.get("noticed", 0) / len(chosen)
    print(", ".join(f"{word}: {count}" for word, count in sorted(counts.items())))
    print(f"noticed: {counts.get('noticed', 0)} of {len(chosen)}, {share:.1f} %")
    sys.exit(0 if share >= arguments.least and set(counts) <= {"noticed", "unseen"} else 1)


if __name__ == "__main__":
    main()
