#!/usr/bin/env python3
"""Holds prepared drawings against what readers that others wrote see in the originals: the contours
and the texts of labels against ezdxf (package python3-ezdxf) and against ogr2ogr (gdal-bin). Each of
them leaves out or misreads a few, so that a small share may be missing of what it sees.

    PREPARE_DRAWINGS=FOLDER otherreaders.py COMMAND

Passes over (status 77) where the folder or one of the readers is missing, and says so.
"""

import collections
import csv
import io
import json
import math
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

SKIPPED = 77
TOLERANCE = 0.05
MOST_DEPTH = 16
LEAST_SHARE = 0.98
CURVES = {"LINE", "LWPOLYLINE", "POLYLINE", "ARC", "CIRCLE", "ELLIPSE", "SPLINE"}


def skip(why):
    print(f"skipped: {why}")
    sys.exit(SKIPPED)


def prepare(command, path, copy):
    options = ["--blocks", "explode", "--circles", "contours", "--tolerance", str(TOLERANCE)]
    answer = subprocess.run(
        [command, "prepare", path, "-o", copy, "--json", *options],
        capture_output=True, timeout=120, check=False,
    )
    if answer.returncode not in (0, 1, 3):
        sys.exit(f"{path}: prepare ended with {answer.returncode}")
    return json.loads(answer.stdout)[0]


def written_drawing(copy, encoding):
    """The contours and texts of a prepared drawing, which has nothing but plain pairs."""
    lines = pathlib.Path(copy).read_bytes().split(b"\n")
    start = lines.index(b"ENTITIES") + 1
    contours, texts, kind, closed, x = [], [], None, False, 0.0
    for code, value in zip(lines[start::2], lines[start + 1 :: 2]):
        if code == b"0":
            if kind == b"POLYLINE" and value == b"SEQEND" and closed:
                contours[-1].append(contours[-1][0])
            if value in (b"LINE", b"POLYLINE"):
                contours.append([])
            if value != b"VERTEX":
                kind, closed = value, False
        elif kind == b"TEXT" and code == b"1":
            texts.append(words_of(value.decode(encoding, "replace")))
        elif kind not in (b"LINE", b"POLYLINE"):
            continue
        elif code == b"70":
            closed = value == b"1"
        elif code in (b"10", b"11"):
            x = float(value)
        elif code in (b"20", b"21"):
            contours[-1].append((x, float(value)))
    return contours, texts


# What ezdxf sees


def seen_entities(entities, depth=0):
    for entity in entities:
        if entity.dxf.get("paperspace", 0):
            continue
        if entity.dxftype() != "INSERT":
            yield entity
        elif depth < MOST_DEPTH:
            yield from entity.attribs
            inserts = entity.multi_insert() if entity.mcount > 1 else [entity]
            for insert in inserts:
                yield from seen_entities(insert.virtual_entities(), depth + 1)


CODES = {"%%d": "\u00b0", "%%p": "\u00b1", "%%c": "\u2300", "\u00d8": "\u2300", "\u2205": "\u2300"}


def words_of(text):
    """A text without what layout adds to it, and without the codes that the import decodes."""
    text = re.sub(r"\\U\+([0-9A-Fa-f]{4})", lambda code: chr(int(code.group(1), 16)), text)
    for code, character in CODES.items():
        text = text.replace(code, character).replace(code.upper(), character)
    return " ".join(text.replace("\\~", " ").split())


def seen_drawing(path):
    """The contours and the texts of a drawing."""
    import ezdxf.path
    import ezdxf.recover

    document, _ = ezdxf.recover.readfile(path)
    contours, texts = [], []
    for entity in seen_entities(document.modelspace()):
        if entity.dxftype() in ("TEXT", "ATTRIB", "MTEXT"):
            texts.append(words_of(entity.plain_text()))
        is_mesh = entity.dxftype() == "POLYLINE" and (
            entity.is_polygon_mesh or entity.is_poly_face_mesh
        )
        if entity.dxftype() not in CURVES or is_mesh:
            continue
        curve = ezdxf.path.make_path(entity)
        places = [(v.x, v.y) for v in curve.flattening(TOLERANCE / 10, segments=16)]
        if len(places) > 1:
            contours.append(places)
    return contours, [text for text in texts if text]


def seen_by_ogr2ogr(path):
    """The contours and the texts that ogr2ogr sees; curves in steps of a degree. None where it does
    not open the drawing."""
    answer = subprocess.run(
        ["ogr2ogr", "-f", "CSV", "/vsistdout/", path, "-lco", "GEOMETRY=AS_WKT",
         "--config", "OGR_ARC_STEPSIZE", "1", "--config", "DXF_INLINE_BLOCKS", "TRUE"],
        capture_output=True, timeout=120, check=False,
    )
    if answer.returncode != 0:
        return None
    csv.field_size_limit(1 << 30)
    contours, texts = [], []
    for row in csv.DictReader(io.StringIO(answer.stdout.decode("utf-8", "replace"))):
        if row.get("PaperSpace") == "1":
            continue
        text = words_of(row.get("Text") or "")
        if text:
            texts.append(text)
        else:
            contours += lines_of(row["WKT"])
    return contours, texts


def lines_of(wkt):
    """The lines of a geometry; a line of one place is none."""
    lines = []
    for places in re.findall(r"\(([^()]+)\)", wkt):
        line = [tuple(map(float, place.split()[:2])) for place in places.split(",")]
        if len(line) > 1:
            lines.append(line)
    return lines


def bounds(places):
    xs, ys = zip(*places)
    return min(xs), min(ys), max(xs), max(ys)


def distance(place, start, end):
    dx, dy = end[0] - start[0], end[1] - start[1]
    square = dx * dx + dy * dy
    along = ((place[0] - start[0]) * dx + (place[1] - start[1]) * dy) / square if square else 0
    part = min(max(along, 0), 1)
    return math.hypot(place[0] - start[0] - dx * part, place[1] - start[1] - dy * part)


def covers(contour, places, reach):
    segments = list(zip(contour, contour[1:]))
    return all(any(distance(p, a, b) <= reach for a, b in segments) for p in places)


def missing_contours(seen, written):
    """The contours seen that none of those written runs along, each of which counts once."""
    left = [(bounds(contour), contour) for contour in written]
    missing = []
    for places in seen:
        box = bounds(places)
        # ezdxf draws arcs as Bezier curves, which are off by 0.03 % of the radius; in steps of a
        # degree it is less than 0.01 %.
        size = max(box[2] - box[0], box[3] - box[1])
        reach = TOLERANCE * 1.2 + 3e-4 * size + 1e-9 * max(map(abs, box))
        for i, (other, contour) in enumerate(left):
            if max(abs(a - b) for a, b in zip(box, other)) <= reach and covers(
                contour, places, reach
            ):
                del left[i]
                break
        else:
            missing.append(places)
    return missing, [contour for _, contour in left]


class Tally:
    """What was seen by others, and how much of it is missing."""

    def __init__(self, what):
        self.what = what
        self.seen = 0
        self.missing = 0

    def add(self, path, seen, missing):
        self.seen += len(seen)
        self.missing += len(missing)
        for item in missing:
            shown = item if isinstance(item, str) else f"{len(item)} vertices from {item[0]}"
            print(f"{path}: {self.what}: missing: {shown[:80]}")

    def is_good(self):
        print(f"{self.what}: {self.seen} seen, {self.missing} missing")
        return self.seen - self.missing >= LEAST_SHARE * self.seen


def missing_texts(seen, written):
    return list((collections.Counter(seen) - collections.Counter(written)).elements())


def compare(path, copy, report, tallies):
    contours, texts = written_drawing(copy, report["encoding"])
    seen = seen_by_ogr2ogr(path)
    if seen is None:
        print(f"{path}: ogr2ogr does not read it")
    else:
        # It sees the lines and the texts of dimensions and leaders, too.
        written = [text for text in texts if text]
        tallies["ogr2ogr's contours"].add(path, contours, missing_contours(contours, seen[0])[0])
        tallies["ogr2ogr's texts"].add(path, written, missing_texts(written, seen[1]))
    try:
        seen, seen_texts = seen_drawing(path)
    except Exception as error:  # a reader of others may fail in any way
        print(f"{path}: ezdxf does not read it: {type(error).__name__}")
        return
    missing, more = missing_contours(seen, contours)
    if more:
        print(f"{path}: contours that ezdxf does not see: {len(more)}")
    tallies["contours"].add(path, seen, missing)
    tallies["texts"].add(path, seen_texts, missing_texts(seen_texts, texts))


def main():
    command = sys.argv[1]
    folder = os.environ.get("PREPARE_DRAWINGS", "")
    if not folder or not pathlib.Path(folder).is_dir():
        skip("PREPARE_DRAWINGS names no folder of drawings")
    if not shutil.which("ogr2ogr"):
        skip("ogr2ogr is not installed (package gdal-bin)")
    try:
        import ezdxf  # noqa: F401
    except ImportError:
        skip("ezdxf is not installed (package python3-ezdxf)")
    tallies = {
        "contours": Tally("contours of ezdxf"),
        "texts": Tally("texts of ezdxf"),
        "ogr2ogr's contours": Tally("contours written, as ogr2ogr has them"),
        "ogr2ogr's texts": Tally("texts written, as ogr2ogr has them"),
    }
    with tempfile.TemporaryDirectory() as scratch:
        copy = os.path.join(scratch, "copy.dxf")
        for path in sorted(pathlib.Path(folder).rglob("*.dxf")):
            report = prepare(command, str(path), copy)
            if "failure" in report:
                print(f"{path}: {report['failure']}")
            else:
                compare(str(path), copy, report, tallies)
    good = [tally.is_good() for tally in tallies.values()]
    sys.exit(0 if all(good) else 1)


if __name__ == "__main__":
    main()
