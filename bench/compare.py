#!/usr/bin/env python3
"""Times whole processes side by side, in turn, and holds the ratios against their bars."""

import argparse
import itertools
import json
import os
import platform
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from collections.abc import Iterator
from datetime import date
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
BUILD = ROOT / "build" / "bench"
BIN = BUILD / "bin"
DATA = ROOT / "build" / "bench-data"
PLUGIN = BUILD / "lib" / "libimportgeometry.so"
LAYOUTS = ["city", "grid", "column", "random"]
FORMATS = ["mif", "dxf"]
MIB = 1 << 20


class Run:
    """What one command cost: the sum over its processes, the peak of the largest."""

    def __init__(self, wall, cpu, peak):
        self.wall, self.cpu, self.peak = wall, cpu, peak


def run_process(argv, output):
    # A generator stands for a name that is a new one in each run.
    argv = [next(arg) if isinstance(arg, Iterator) else arg for arg in argv]
    started = time.perf_counter()
    process = subprocess.Popen([str(arg) for arg in argv], stdout=output, stderr=output)
    _, status, usage = os.wait4(process.pid, 0)
    wall = time.perf_counter() - started
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        sys.exit(f"failed with {process.returncode}: {' '.join(map(str, argv))}")
    return Run(wall, usage.ru_utime + usage.ru_stime, usage.ru_maxrss * 1024)


def run_command(processes):
    with open(os.devnull, "wb") as output:
        runs = [run_process(argv, output) for argv in processes]
    return Run(sum(r.wall for r in runs), sum(r.cpu for r in runs), max(r.peak for r in runs))


class Measured:
    def __init__(self, runs):
        self.wall = statistics.median(run.wall for run in runs)
        self.cpu = statistics.median(run.cpu for run in runs)
        self.peak = statistics.median(run.peak for run in runs)

    def as_json(self):
        return {"wall_s": self.wall, "cpu_s": self.cpu, "peak_bytes": self.peak}


def elapsed(measured):
    """The time that counts where processors share a work: shared, it does not become less."""
    return measured.wall


class Report:
    """Collects the figures and the bars, and prints them as they come."""

    def __init__(self):
        self.figures = {}
        self.bars = []

    def figure(self, group, name, measured):
        self.figures[f"{group}: {name}"] = measured.as_json()
        print(f"  {name:<28} {measured.wall:9.3f} s {measured.cpu:9.3f} s cpu"
              f" {measured.peak / MIB:8.1f} MiB", flush=True)

    def ratio(self, text, value):
        print(f"        {text}: {value:.3g}", flush=True)

    def bar(self, group, text, value, limit, unit=""):
        passed = value <= limit
        self.bars.append({"group": group, "bar": text, "value": value, "limit": limit,
                          "unit": unit, "passed": passed})
        print(f"  {'pass' if passed else 'FAIL'}  {text}: {value:.4g}{unit}"
              f" (at most {limit:.4g}{unit})", flush=True)

    def print_table(self):
        print("\n| Measured | Bar | Value | Limit | |\n|---|---|---:|---:|---|")
        for bar in self.bars:
            print(f"| {bar['group']} | {bar['bar']} | {bar['value']:.4g}{bar['unit']} |"
                  f" {bar['limit']:.4g}{bar['unit']} | {'pass' if bar['passed'] else 'FAIL'} |")


class Files:
    """The generated files of one layout, format, size and encoding."""

    def __init__(self, layout, fmt, vertices, encoding="Windows-1251"):
        self.encoding = encoding
        self.format = fmt
        prefix = DATA / f"{layout}-{vertices}-{encoding.lower()}"
        self.main = prefix.with_name(f"{prefix.name}.{fmt}")
        self.points = prefix.with_name(f"{prefix.name}-points.{fmt}")
        if not self.points.exists():
            DATA.mkdir(parents=True, exist_ok=True)
            subprocess.run([BIN / "importgeometry-generate", "--layout", layout, "--format", fmt,
                            "--vertices", str(vertices), "--encoding", encoding, prefix],
                           check=True)

    def with_companion(self, path):
        return [path, path.with_suffix(".mid")] if self.format == "mif" else [path]

    def all(self):
        return self.with_companion(self.main) + self.with_companion(self.points)

    def options(self, with_points):
        points = ["--points", self.points] if with_points else []
        return [self.main, "--encoding", self.encoding] + points


def total_size(paths):
    return sum(path.stat().st_size for path in paths)


def import_command(files, with_points):
    argv = [BIN / "importgeometry-import-bench"] + files.options(with_points)
    # A MIF of objects holds no points to search.
    if files.format == "mif" and not with_points:
        argv.append("--no-point-defs")
    return [argv]


def ogrinfo_command(*paths):
    return [["ogrinfo", "-al", "-so", path] for path in paths]


def readline_command(files, paths):
    return [[BIN / "floor-readline", "--encoding", files.encoding] + list(paths)]


def fromchars_command(paths):
    return [[BIN / "floor-fromchars"] + list(paths)]


class Comparison:
    def __init__(self, options, report):
        self.options, self.report = options, report
        self.tool = options.tool if options.tool.exists() else None

    def wanted(self, group):
        return not self.options.only or any(part in group for part in self.options.only)

    def time_of(self, measured):
        return measured.cpu if self.options.cpu else measured.wall

    def measure(self, group, commands, runs=None):
        """Runs the commands in turn, so that a change of the machine's mood meets them all."""
        rounds = [{name: run_command(processes) for name, processes in commands.items()}
                  for _ in range(runs or self.options.runs)]
        measured = {name: Measured([r[name] for r in rounds]) for name in commands}
        for name, result in measured.items():
            self.report.figure(group, name, result)
        return measured

    def ratio_bar(self, group, measured, name, peer, limit, time_of=None):
        """Holds a ratio against its bar, or only tells it where there is none."""
        time_of = time_of or self.time_of
        ratio = time_of(measured[name]) / time_of(measured[peer])
        if limit is None:
            self.report.ratio(f"{name} / {peer}", ratio)
            return
        self.report.bar(group, f"{name} / {peer}", ratio, limit)

    def imports(self):
        size = self.options.vertices
        mif, dxf = Files("city", "mif", size), Files("city", "dxf", size)
        two = mif.with_companion(mif.main)
        self.import_against(
            f"MIF with points, {size}", import_command(mif, True),
            ogrinfo_command(mif.main, mif.points), mif, mif.all(), mif.all(), (0.35, 3, 3.5))
        self.import_against(
            f"MIF objects alone, {size}", import_command(mif, False),
            ogrinfo_command(mif.main), mif, two, two, (0.35, 3, 3.5))
        self.import_against(
            f"DXF, {size}", import_command(dxf, False), ogrinfo_command(dxf.main), dxf,
            [dxf.main, dxf.main], [dxf.main], (0.25, 2, 3))

    def import_against(self, group, command, ogrinfo, files, read, parsed, limits):
        if not self.wanted(group):
            return
        print(f"\n{group} ({total_size(parsed) / 1e6:.1f} MB)")
        measured = self.measure(group, {
            "import": command, "import and free": [command[0] + ["--free"]], "ogrinfo": ogrinfo,
            "floor-readline": readline_command(files, read),
            "floor-fromchars": fromchars_command(parsed)})
        self.ratio_bar(group, measured, "import", "ogrinfo", limits[0])
        self.ratio_bar(group, measured, "import", "floor-readline", limits[1])
        self.ratio_bar(group, measured, "import", "floor-fromchars", limits[2])

    def other_layouts(self):
        """Against the conversion of their numbers alone; the city beside them is held above."""
        for layout in LAYOUTS[1:]:
            self.layout_import(layout, "MIF with points", "mif", True)
            self.layout_import(layout, "MIF objects alone", "mif", False)
            self.layout_import(layout, "DXF", "dxf", False)
        self.degrees("MIF with points", True)
        self.degrees("MIF objects alone", False)

    def layout_import(self, layout, kind, fmt, with_points):
        group = f"layout {layout}, {kind}, {self.options.vertices}"
        if not self.wanted(group):
            return
        print(f"\n{group}")
        files = Files(layout, fmt, self.options.vertices)
        parsed = files.all() if with_points else files.with_companion(files.main)
        measured = self.measure(group, {"import": import_command(files, with_points),
                                        "floor-fromchars": fromchars_command(parsed)})
        self.ratio_bar(group, measured, "import", "floor-fromchars", 5)

    def degrees(self, kind, with_points):
        """Where many vertices stand within the tolerance, an import takes no longer."""
        group = f"degrees, {kind}, {self.options.vertices}"
        if not self.wanted(group):
            return
        print(f"\n{group}")
        measured = self.measure(group, {
            layout: import_command(Files(layout, "mif", self.options.vertices), with_points)
            for layout in ["degrees", "city"]}, max(self.options.runs, 9))
        self.ratio_bar(group, measured, "degrees", "city", 1)

    def encodings(self):
        group = f"UTF-8 against Windows-1251, {self.options.vertices}"
        if not self.wanted(group):
            return
        print(f"\n{group}")
        self.measure(group, {
            f"{fmt} {encoding}": import_command(
                Files("city", fmt, self.options.vertices, encoding), fmt == "mif")
            for fmt in FORMATS for encoding in ["Windows-1251", "UTF-8"]})

    def converts(self):
        size = self.options.vertices
        mif, dxf = Files("city", "mif", size), Files("city", "dxf", size)
        no_points = ["--search-points", "off"]
        self.convert(f"convert MIF with points, {size}", mif.options(True),
                     [mif.main, mif.points], 0.08, mif.all(), import_command(mif, True))
        self.convert(f"convert MIF objects alone, {size}", mif.options(False) + no_points,
                     [mif.main], None, mif.with_companion(mif.main))
        self.convert(f"convert DXF, {size}", dxf.options(False), [dxf.main], 0.08, [dxf.main],
                     import_command(dxf, False))
        for fmt in FORMATS:
            files = Files("city", fmt, 1000)
            self.convert(f"convert small {fmt.upper()}", files.options(False), [files.main], 0.5)

    def convert(self, group, options, inputs, limit, memory_inputs=None, bare=None):
        if not self.wanted(group) or not self.tool:
            return
        print(f"\n{group}")
        with tempfile.TemporaryDirectory(dir=DATA) as folder:
            xml = Path(folder) / "out.xml"
            # An output that exists already is refused or extended: each run has its own.
            names = (Path(folder) / f"{number}.gml" for number in itertools.count())
            runs = self.options.runs if memory_inputs else max(self.options.runs, 15)
            commands = {
                "convert": [[self.tool, "convert"] + options + ["-o", xml]],
                "ogr2ogr": [["ogr2ogr", "-f", "GML", names, path] for path in inputs]}
            if bare:
                commands["import"] = bare
                commands["floor-write"] = [[BIN / "floor-write", xml, Path(folder) / "floor"]]
            measured = self.measure(group, commands, runs)
        self.ratio_bar(group, measured, "convert", "ogr2ogr", limit)
        if bare:
            self.report.bar(group, "convert", elapsed(measured["convert"]),
                            elapsed(measured["import"])
                            + 2 * elapsed(measured["floor-write"]) + 0.1, " s")
        if memory_inputs:
            self.report.bar(group, "peak memory", measured["convert"].peak / MIB,
                            10 * total_size(memory_inputs) / MIB + 32, " MiB")

    def commands(self):
        if not self.tool:
            return
        size = self.options.vertices
        self.check(f"check MIF with points, {size}", "mif", True)
        self.check(f"check DXF, {size}", "dxf", False)
        self.start()
        self.plan()
        self.jobs()

    def check(self, group, fmt, with_points):
        if not self.wanted(group):
            return
        print(f"\n{group}")
        files = Files("city", fmt, self.options.vertices)
        measured = self.measure(group, {"check": self.check_command(files, with_points),
                                        "import": import_command(files, with_points)},
                                max(self.options.runs, 9))
        self.ratio_bar(group, measured, "check", "import", 1.3, elapsed)

    def start(self):
        group = "start, 1000 vertices"
        if not self.wanted(group):
            return
        print(f"\n{group}")
        # To standard output: a file is waited for until the disk has it.
        commands = {"floor-start": [[BIN / "floor-start"]]}
        for fmt in FORMATS:
            commands[f"convert {fmt.upper()}"] = [
                [self.tool, "convert"] + Files("city", fmt, 1000).options(False)]
        measured = self.measure(group, commands, max(self.options.runs, 101))
        for fmt in FORMATS:
            self.ratio_bar(group, measured, f"convert {fmt.upper()}", "floor-start", 2)

    def plan(self):
        group = f"plan, {self.options.vertices}"
        if not self.wanted(group):
            return
        print(f"\n{group}")
        with tempfile.TemporaryDirectory(dir=DATA) as folder:
            measured = self.measure(group, {
                "plan": [[self.tool, "plan"]
                         + Files("city", "mif", self.options.vertices).options(False)
                         + ["-o", Path(folder) / "plan.svg"]]})
        self.report.bar(group, "plan", self.time_of(measured["plan"]), 3, " s")

    def jobs(self):
        group = "60 files, --jobs 2 against 1"
        if not self.wanted(group):
            return
        print(f"\n{group}")
        files = Files("city", "mif", self.options.vertices // 10)
        with tempfile.TemporaryDirectory(dir=DATA) as folder:
            drawings = Path(folder) / "drawings"
            drawings.mkdir()
            for number in range(60):
                for path in files.with_companion(files.main):
                    shutil.copy(path, drawings / f"{number}{path.suffix}")
            measured = self.measure(group, {
                f"--jobs {jobs}": [[self.tool, "convert", "--encoding", files.encoding, "--jobs",
                                    str(jobs), drawings, "--out-dir", Path(folder) / str(jobs)]]
                for jobs in (1, 2)})
        self.ratio_bar(group, measured, "--jobs 2", "--jobs 1", 1 / 1.8, elapsed)

    def growth(self):
        for layout in LAYOUTS:
            for fmt in FORMATS:
                self.growth_of(f"growth {layout} {fmt} with point file", layout, fmt,
                               lambda files: import_command(files, True))
                self.growth_of(f"growth {layout} {fmt} without point file", layout, fmt,
                               lambda files: import_command(files, False))
                if self.tool:
                    self.growth_of(f"growth {layout} {fmt} check", layout, fmt,
                                   lambda files: self.check_command(files, False))

    def check_command(self, files, with_points):
        """Duplicates and conflicts are found on purpose: status 3 is no failure."""
        return [["sh", "-c", '"$@" || [ $? = 3 ]', "sh", self.tool, "check"]
                + files.options(with_points)]

    def growth_of(self, group, layout, fmt, command_for):
        if not self.wanted(group):
            return
        print(f"\n{group}")
        large = self.options.vertices
        small = large // 10
        measured = self.measure(group, {
            str(size): command_for(Files(layout, fmt, size)) for size in (small, large)})
        self.ratio_bar(group, measured, str(large), str(small), 12)

    def dialog(self):
        group = f"dialog, {self.options.vertices}"
        if not self.wanted(group):
            return
        print(f"\n{group}")
        size = self.options.vertices
        city, single = Files("city", "mif", size), Files("single", "mif", size)
        bare, rows = [], []
        for _ in range(self.options.runs):
            bare.append(run_command(import_command(city, True)))
            output = subprocess.run(
                [BIN / "importgeometry-dialog-bench", city.main, city.points, single.main, PLUGIN]
                + (["--cpu"] if self.options.cpu else []), check=True, stdout=subprocess.PIPE,
                stderr=subprocess.DEVNULL, env={**os.environ, "QT_QPA_PLATFORM": "offscreen"})
            rows.append(json.loads(output.stdout))
        bare = Measured(bare)
        self.report.figure(group, "bare import", bare)
        ms = {name: statistics.median(row[name] for row in rows) for name in rows[0]}
        self.report.figures[group] = ms
        for name, value in ms.items():
            print(f"  {name:<36} {value:9.1f} ms")
        self.report.bar(group, "start to painted", ms["import"], 2000 * self.time_of(bare) + 1000, " ms")
        limits = {"select": 100, "scroll": 100, "rename": 100, "select_single": 1000, "sort": 1000,
                  "plugin_load": 50, "dialog_open": 50}
        for name, limit in limits.items():
            self.report.bar(group, name, ms[name], limit, " ms")
        self.report.bar(group, "stringResult / QXmlStreamWriter alone",
                        ms["string_result"] / ms["bare_writer"], 1.5)


def cpu_name():
    for line in Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            return line.split(":", 1)[1].strip()
    return platform.processor()


def machine():
    version = subprocess.run(["ogrinfo", "--version"], check=True, stdout=subprocess.PIPE, text=True)
    return {"cpu": cpu_name(), "cores": os.cpu_count(), "system": platform.platform(),
            "gdal": version.stdout.strip(), "date": date.today().isoformat()}


def parse_options():
    parser = argparse.ArgumentParser(prog="compare.sh", description=__doc__)
    parser.add_argument("--vertices", type=int, default=1_000_000, help="size of the large files")
    parser.add_argument("--runs", type=int, default=5, help="runs of each command, in turn")
    parser.add_argument("--only", action="append", metavar="TEXT",
                        help="only groups with this text in their name; repeatable")
    parser.add_argument("--cpu", action="store_true",
                        help="hold processor time against the bars, but those of commands that use"
                             " two processors: for a machine that others use at the same time")
    parser.add_argument("--tool", type=Path, default=BIN / "importgeometry",
                        help="the command line tool; left out when it does not exist")
    parser.add_argument("--output", type=Path, default=ROOT / "bench" / "results.json")
    return parser.parse_args()


def main():
    options = parse_options()
    if not shutil.which("ogr2ogr"):
        sys.exit("ogr2ogr is missing: install gdal-bin")
    report = Report()
    comparison = Comparison(options, report)
    print(machine())
    comparison.imports()
    comparison.other_layouts()
    comparison.encodings()
    comparison.converts()
    comparison.commands()
    comparison.growth()
    comparison.dialog()
    report.print_table()
    options.output.write_text(json.dumps(
        {"machine": machine(), "vertices": options.vertices, "runs": options.runs,
         "time": "processor" if options.cpu else "elapsed",
         "bars": report.bars, "figures": report.figures}, indent=1, ensure_ascii=False) + "\n")


main()
