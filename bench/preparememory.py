#!/usr/bin/env python3
"""Holds the memory of prepare against its bound, 6 times the input and 32 MiB, over files that are
made to need much of it: each is one short thing written very often.

    bench/preparememory.py build/release/bin/importgeometry [MEGABYTES [SHAPE...]]

Prints the peak of each run, and what it is as a multiple of the input above that of an empty file.
The status is 1 when a run took more than the bound, longer than ten minutes, or ended in another way
than a preparation does.
"""

import itertools
import os
import pathlib
import string
import subprocess
import sys
import tempfile
import threading

MEGABYTES = 12
MEBI = 1 << 20
SECONDS = 600
WHOLE = ["--blocks", "explode", "--circles", "contours", "--hatch", "--tolerance", "1"]
OPTIONS = {
    "repair": ["--level", "repair"],
    "flatten": ["--labels", "text,mtext,attrib,dimension"],
    "explode": WHOLE + ["--labels", "text,mtext,attrib,dimension"],
    "join": WHOLE + ["--join", "0.1"],
    "moved": WHOLE + ["--join", "0", "--scale", "1.1"],
    "transcoded": WHOLE + ["--from-encoding", "windows-1251", "--encoding", "UTF-8"],
}


def pairs(text):
    """Pairs from a line such as "0 LINE, 10 1"."""
    return "".join(f"{code}\n{value}\n" for code, value in (p.split(" ", 1) for p in text.split(", ")))


def numbered(text):
    """The pairs over and over, with a number of their own for #."""
    once = pairs(text)
    return (once.replace("#", str(number)) for number in itertools.count())


def always(text):
    return itertools.repeat(pairs(text))


def names():
    """Different names, as short as so many can be."""
    letters = string.ascii_letters + string.digits
    return map("".join, itertools.product(letters, repeat=4))


ENTITIES = pairs("0 SECTION, 2 ENTITIES")
BLOCKS = pairs("0 SECTION, 2 BLOCKS")
TABLES = pairs("0 SECTION, 2 TABLES, 0 TABLE, 2 LAYER")
BLOCK = BLOCKS + pairs("0 BLOCK, 2 A")
INSERTED = pairs("0 ENDBLK, 0 ENDSEC") + ENTITIES + pairs("0 INSERT, 2 A, 10 0, 20 0, 0 ENDSEC, 0 EOF")
MIF = 'Version 300\nCharset "Neutral"\nDelimiter ","\nColumns 1\n  A Char(9)\nData\n\n'

# What stands at the start, what is repeated, what stands at the end; for MIF another such row for
# the MID file.
DXF_SHAPES = {
    "empty": (ENTITIES, iter(()), ""),
    "lines": (ENTITIES, always("0 LINE, 10 1, 20 1, 11 2, 21 2"), ""),
    "lines-apart": (ENTITIES, numbered("0 LINE, 10 #, 20 1, 11 #.5, 21 2"), ""),
    "lines-layers": (ENTITIES, numbered("0 LINE, 8 L#, 10 #, 20 0, 11 0, 21 #"), ""),
    "lines-names": (ENTITIES, (pairs(f"0 LINE, 8 {name}, 10 1, 20 1, 11 2, 21 2") for name in names()), ""),
    "points": (ENTITIES, always("0 POINT, 10 1, 20 1"), pairs("0 TEXT, 10 1, 20 1, 1 x")),
    "texts": (ENTITIES, always("0 TEXT, 10 1, 20 1, 1 x"), ""),
    "texts-codes": (ENTITIES, always("0 TEXT, 10 1, 20 1, 1 %%65"), ""),
    "mtexts": (ENTITIES, always("0 MTEXT, 10 1, 20 1, 1 x"), ""),
    "text-huge": (ENTITIES + pairs("0 TEXT, 10 1, 20 1") + "1\n", itertools.repeat("%%65"), "\n"),
    "mtext-huge": (ENTITIES + pairs("0 MTEXT, 10 1, 20 1"), always("3 \\Px\\U+0041"), pairs("1 x")),
    "circles": (ENTITIES, always("0 CIRCLE, 10 1, 20 1, 40 9"), ""),
    "arcs": (ENTITIES, always("0 ARC, 10 1, 20 1, 40 1, 50 0, 51 9"), ""),
    "ellipses": (ENTITIES, always("0 ELLIPSE, 10 1, 20 1, 11 1, 21 0, 40 1"), ""),
    "splines": (ENTITIES, always("0 SPLINE, 71 1, 40 0, 40 0, 40 1, 40 1, 10 0, 20 0, 10 1, 20 1"), ""),
    "spline-fits": (ENTITIES + pairs("0 SPLINE"), always("11 1, 21 2"), ""),
    "spline-controls": (ENTITIES + pairs("0 SPLINE, 71 1"), numbered("40 #, 10 1, 20 2"), pairs("40 9999999, 40 9999999")),
    "spline-knots": (ENTITIES + pairs("0 SPLINE, 71 3"), always("40 1"), ""),
    "lwpolyline": (ENTITIES + pairs("0 LWPOLYLINE, 90 9, 70 0"), always("10 1, 20 1"), ""),
    "lwpolyline-closed": (ENTITIES + pairs("0 LWPOLYLINE, 90 9, 70 1"), always("10 12.5, 20 13.5, 42 0"), ""),
    "lwpolyline-bulges": (ENTITIES + pairs("0 LWPOLYLINE, 90 9, 70 1"), numbered("10 #, 20 1, 42 .1"), ""),
    "lwpolylines": (ENTITIES, always("0 LWPOLYLINE, 90 2, 10 1, 20 1, 10 2, 20 2"), ""),
    "lwpolylines-cut": (ENTITIES, always("0 LWPOLYLINE"), ""),
    "polyline": (ENTITIES + pairs("0 POLYLINE"), always("0 VERTEX, 10 1, 20 1"), pairs("0 SEQEND")),
    "polylines-cut": (ENTITIES, always("0 POLYLINE, 70 1"), ""),
    "mesh": (ENTITIES + pairs("0 POLYLINE, 70 64"), always("0 VERTEX, 10 1, 20 1"), pairs("0 SEQEND")),
    "hatches": (ENTITIES, always("0 HATCH, 91 1, 92 2, 72 0, 73 1, 93 3, 10 0, 20 0, 10 1, 20 0, 10 1, 20 1"), ""),
    "hatch-boundaries": (ENTITIES + pairs("0 HATCH, 91 99999999"), always("92 2, 10 0, 20 0, 10 1, 20 0, 10 1, 20 1"), ""),
    "hatch-empty": (ENTITIES + pairs("0 HATCH, 91 99999999"), always("92 2"), ""),
    "hatch-lines": (ENTITIES + pairs("0 HATCH, 91 1, 92 1"), always("72 1, 10 1, 20 1, 11 2, 21 2"), ""),
    "hatch-arcs": (ENTITIES + pairs("0 HATCH, 91 1, 92 1"), always("72 2, 10 1, 20 1, 40 1"), ""),
    "hatch-splines": (ENTITIES + pairs("0 HATCH, 91 1, 92 1"), always("72 4, 94 1, 40 0, 40 0, 40 1, 40 1, 10 0, 20 0, 10 1, 20 1"), ""),
    "hatch-vertices": (ENTITIES + pairs("0 HATCH, 91 1, 92 2"), always("10 1, 20 2"), ""),
    "attributes": (ENTITIES + pairs("0 INSERT, 2 A, 66 1, 10 0, 20 0"), always("0 ATTRIB, 10 1, 20 1, 1 x"), pairs("0 SEQEND")),
    "inserts": (BLOCKS + pairs("0 BLOCK, 2 A, 0 LINE, 10 0, 20 0, 11 9, 21 9, 0 TEXT, 10 1, 20 1, 1 x, 0 ENDBLK, 0 ENDSEC") + ENTITIES, always("0 INSERT, 2 A, 10 0, 20 0"), ""),
    "inserts-missing": (ENTITIES, numbered("0 INSERT, 2 A#, 10 0, 20 0"), ""),
    "dimensions": (BLOCKS + pairs("0 BLOCK, 2 A, 0 TEXT, 10 1, 20 1, 1 x, 0 ENDBLK, 0 ENDSEC") + ENTITIES, always("0 DIMENSION, 2 A"), ""),
    "block-lines": (BLOCK, always("0 LINE, 10 1, 20 1, 11 2, 21 2"), INSERTED),
    "block-points": (BLOCK, always("0 POINT, 10 1, 20 1"), INSERTED),
    "block-texts": (BLOCK, always("0 TEXT, 10 1, 20 1, 1 x"), INSERTED),
    "block-kinds": (BLOCK, numbered("0 K#"), INSERTED),
    "blocks-empty": (BLOCKS, always("0 BLOCK, 2 A"), ""),
    "blocks": (BLOCKS, numbered("0 BLOCK, 2 A#"), ""),
    "blocks-used": (BLOCKS + pairs("0 BLOCK, 2 MANY"), numbered("0 INSERT, 2 A#, 10 0, 20 0, 0 ENDBLK, 0 BLOCK, 2 A#, 0 LINE, 10 0, 20 0, 11 9, 21 9, 0 ENDBLK, 0 BLOCK, 2 M#"), pairs("0 ENDBLK, 0 ENDSEC") + ENTITIES),
    "nested": (BLOCKS, (pairs(f"0 BLOCK, 2 A{i}, 0 INSERT, 2 A{i + 1}, 10 0, 20 0, 0 ENDBLK") for i in itertools.count()), pairs("0 ENDSEC") + ENTITIES + pairs("0 INSERT, 2 A0, 10 0, 20 0")),
    "layers": (TABLES, numbered("0 LAYER, 2 A#"), pairs("0 ENDTAB, 0 ENDSEC") + ENTITIES),
    "kinds": (ENTITIES, numbered("0 K#"), ""),
    "sections": ("", always("0 SECTION, 2 ENTITIES, 0 LINE, 10 1, 20 1, 11 2, 21 2, 0 ENDSEC"), ""),
    "sections-empty": ("", always("0 SECTION"), ""),
    "comments": (ENTITIES, always("999 x"), ""),
    "stray": (ENTITIES, itertools.repeat("x\n"), ""),
    "blank": (ENTITIES, itertools.repeat("\n"), ""),
    "nul": (ENTITIES, itertools.repeat("\0"), ""),
    "other-pairs": (ENTITIES + pairs("0 LINE"), always("6 A"), ""),
}
MIF_SHAPES = {
    "mif-points": (MIF, itertools.repeat("Point 1 1\n"), "", ("", iter(()), "")),
    "mif-none": (MIF, itertools.repeat("None\n"), "", ("", iter(()), "")),
    "mif-rows": (MIF, iter(()), "Point 1 1\n", ("", itertools.repeat("\n"), "")),
    "mif-rows-short": (MIF, iter(()), "Point 1 1\n", ("", itertools.repeat("1\n"), "")),
    "mif-quotes": (MIF, iter(()), "Point 1 1\n", ("", itertools.repeat('"\n'), "")),
    "mif-fields": (MIF.replace('","', '"\t"'), iter(()), "Point 1 1\n", ("", itertools.repeat("\t"), "\n")),
    "mif-row-huge": (MIF.replace('","', '"\t"'), iter(()), "Point 1 1\n", ("", itertools.repeat("ab"), "\n")),
    "mif-objects-rows": (MIF, itertools.repeat("None\n"), "", ("", itertools.repeat("1\n"), "")),
    "mif-region": (MIF + "Region 1\n#\n", itertools.repeat("1 1\n"), "", ("", iter(()), "")),
    "mif-rings": (MIF + "Region #\n", itertools.repeat("3\n1 1\n2 1\n2 2\n"), "", ("", iter(()), "")),
    "mif-pline": (MIF + "Pline #\n", itertools.repeat("1 1\n"), "", ("", iter(()), "")),
    "mif-multipoint": (MIF + "MultiPoint #\n", itertools.repeat("1 1\n"), "", ("", iter(()), "")),
    "mif-clauses": (MIF + "Point 1 1\n", itertools.repeat("Pen\n"), "", ("", iter(()), "")),
    "mif-header": ("Version 300\n", itertools.repeat("a\n"), MIF, ("", iter(()), "")),
    "mif-columns": ("Version 300\nColumns 99999999\n", itertools.repeat("a\n"), "Data\n", ("", iter(()), "")),
    "mif-collection": (MIF + "Collection 99999999\n", itertools.repeat("Point 1 1\n"), "", ("", iter(()), "")),
    "mif-collections": (MIF, itertools.repeat("Collection 1\n"), "", ("", iter(()), "")),
    "mif-ellipses": (MIF, itertools.repeat("Ellipse 0 0 9 9\n"), "", ("", iter(()), "")),
    "mif-text": (MIF, itertools.repeat('Text "x" 1 1 2 2\n'), "", ("", iter(()), "")),
    "mif-text-huge": (MIF + 'Text "', itertools.repeat("xy"), '" 1 1 2 2\n', ("", iter(()), "")),
}


def write(path, shape, size):
    """Writes a file of that many bytes, and gives its size; # is how often the middle stands."""
    start, middle, end = shape
    first = next(middle, "")
    count = max(size // len(first), 1) if first else 0
    with open(path, "w", encoding="latin-1", newline="") as file:
        file.write(start.replace("#", str(count)) if start.startswith("Version") else start)
        file.write(first)
        for _ in range(count - 1):
            # What is numbered grows; a little more than the size is no matter.
            file.write(next(middle))
        file.write(end)
    return os.path.getsize(path)


def peak(arguments):
    """The status and the peak of a run in bytes. This process stays small: a child inherits its
    peak from the one that starts it."""
    process = subprocess.Popen(arguments, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    timer = threading.Timer(SECONDS, process.kill)
    timer.start()
    _, status, usage = os.wait4(process.pid, 0)
    timer.cancel()
    process.returncode = os.waitstatus_to_exitcode(status)
    return process.returncode, usage.ru_maxrss * 1024


class Table:
    def __init__(self, command, size):
        self.command = command
        self.size = size
        self.base = 0
        self.good = True

    def measure(self, name, source, size, sets):
        target = source.with_name("copy" + source.suffix)
        for options in sets:
            arguments = [self.command, "prepare", str(source), "-o", str(target), *OPTIONS[options]]
            status, memory = peak(arguments)
            self.base = self.base or memory
            bound = 6 * size + 32 * MEBI
            written = target.stat().st_size if target.exists() else 0
            target.unlink(missing_ok=True)
            good = memory <= bound and status in (0, 1, 3)
            self.good = self.good and good
            times = (memory - self.base) / size
            print(
                f"{name:18} {options:10} {size / MEBI:6.1f} {written / MEBI:7.1f}"
                f" {memory / MEBI:7.1f} {bound / MEBI:7.1f} {times:5.1f} {status:3}"
                f"{'' if good else '  <<<'}",
                flush=True,
            )


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    command = sys.argv[1]
    size = int(float(sys.argv[2]) * MEBI) if len(sys.argv) > 2 else MEGABYTES * MEBI
    chosen = sys.argv[3:]
    table = Table(command, size)
    print("shape              options     input written    peak   bound times status  (MiB)")
    with tempfile.TemporaryDirectory() as folder:
        source = pathlib.Path(folder) / "source.dxf"
        for name, shape in DXF_SHAPES.items():
            if chosen and name not in chosen and name != "empty":
                continue
            sets = list(OPTIONS) if name != "empty" else ["repair"]
            table.measure(name, source, write(source, shape, size), sets)
        source = source.with_suffix(".mif")
        for name, (*shape, rows) in MIF_SHAPES.items():
            if chosen and name not in chosen:
                continue
            total = write(source, shape, size)
            total += write(source.with_suffix(".mid"), rows, size)
            table.measure(name, source, total, ["repair", "flatten", "transcoded"])
    sys.exit(0 if table.good else 1)


if __name__ == "__main__":
    main()
