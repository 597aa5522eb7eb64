#!/usr/bin/env python3
"""run.py BUILD_DIR [--sizes N,N...]: makes forms, races the programs of BUILD_DIR/bench on them, prints Markdown tables.

Whole-process times include starting the program; in-process times are one open, list and close inside a running program.
Runs of the racers take turns, and the medians are shown. A ratio is a racer's number divided by formwork's; those of times
use CPU time (user and system), which other programs on the machine disturb less. Times are never judged; the exit status is
1 only when a racer fails or its result is wrong.
"""

import argparse
import json
import pathlib
import statistics
import subprocess
import sys

STORAGES = (("plain", []), ("object streams", ["--object-streams"]))
WALKERS = {
    "formwork": "walk_formwork",
    "libmupdf": "walk_mupdf",
    "libmupdf, from file": "walk_mupdf_file",
    "libqpdf": "walk_qpdf",
    "libqpdf, from file": "walk_qpdf_file",
}
VALUE = "Grace Hopper, Zürich"


class Bench:
    def __init__(self, folder):
        self.programs = folder
        self.work = folder / "work"
        self.work.mkdir(exist_ok=True)
        self.failed = False

    def has(self, program):
        return (self.programs / program).exists()

    def run(self, program, *arguments):
        return subprocess.run([self.programs / program, *arguments], check=True, stdout=subprocess.PIPE).stdout

    def measured(self, output, program, *arguments):
        """Wall and CPU milliseconds and the peak kilobytes of one run, whose standard output goes to the file `output`."""
        return json.loads(self.run("measure", output, self.programs / program, *arguments))

    def form(self, count, storage, options):
        path = self.work / f"{count}-{storage.replace(' ', '-')}.pdf"
        self.run("make_form", str(count), path, *options)
        return path

    def wrong(self, sentence):
        self.failed = True
        print(f"**{sentence}**\n")


def in_turns(races):
    """Runs the races in turns; a race is a number of runs and a function. Lists the results by race."""
    results = {name: [] for name in races}
    for turn in range(max(runs for runs, _ in races.values())):
        for name, (runs, once) in races.items():
            if turn < runs:
                results[name].append(once())
    return results


def median(rows, key):
    return statistics.median(row[key] for row in rows)


def clamp(value, low, high):
    return max(low, min(high, int(value)))


def ratio(row, base, key):
    return f"{row[key] / base[key]:.1f}" if base else "-"


def table(titles, rows):
    print("| " + " | ".join(titles) + " |")
    print("|" + "|".join("---" if title in ("storage", "tool") else "---:" for title in titles) + "|")
    for row in rows:
        print("| " + " | ".join(str(cell) for cell in row) + " |")
    print(flush=True)


def first_lists(bench, form):
    """One listing of each racer, which must be the same text. Returns each one's measures: they size the race."""
    measures = {}
    texts = {}
    for tool, program in WALKERS.items():
        if not bench.has(program):
            continue
        output = bench.work / (program + ".txt")
        measures[tool] = bench.measured(output, program, form)
        texts[tool] = output.read_bytes()
        output.unlink()
    first = next(iter(texts))
    for tool, text in texts.items():
        if text != texts[first] or not text:
            bench.wrong(f"{form.name}: the listing of {tool} is not that of {first}")
    return measures


def race_lists(bench, form):
    """The medians of each racer on one form: wall and CPU milliseconds, nanoseconds a field, peak kilobytes."""
    first = first_lists(bench, form)
    whole = {}
    inside = {}
    for tool, measures in first.items():
        program = WALKERS[tool]
        cost = measures["cpu_ms"] / 1e3
        repeat = str(clamp(0.7 / cost, 1, 50))
        whole[tool] = (clamp(4 / cost, 0, 15), lambda program=program: bench.measured("/dev/null", program, form))
        inside[tool] = (clamp(4 / cost, 1, 3),
                        lambda program=program, repeat=repeat: json.loads(bench.run(program, form, "--repeat", repeat)))
    whole = in_turns(whole)
    inside = in_turns(inside)
    results = {}
    for tool in first:
        runs = whole[tool] or [first[tool]]  # the slowest have run once already
        results[tool] = {key: median(runs, key) for key in ("wall_ms", "cpu_ms", "peak_kb")}
        results[tool] |= {key: median(inside[tool], key) for key in ("ns_per_field", "cpu_ns_per_field")}
    return results


def bench_lists(bench, sizes):
    print("## Open, list all full names and values, close\n")
    rows = []
    per_field = {}
    for count in sizes:
        for storage, options in STORAGES:
            results = race_lists(bench, bench.form(count, storage, options))
            base = results.get("formwork")
            for tool, r in results.items():
                rows.append((f"{count:,}", storage, tool, f"{r['wall_ms']:.1f}", f"{r['cpu_ms']:.1f}",
                             f"{r['ns_per_field'] / 1e3:.2f}", f"{r['peak_kb'] / 1024:.1f}",
                             *(ratio(r, base, key) for key in ("cpu_ms", "cpu_ns_per_field", "peak_kb"))))
                per_field.setdefault((tool, storage), []).append(r["cpu_ns_per_field"])
    table(("fields", "storage", "tool", "process ms", "CPU ms", "µs a field inside", "peak MB", "ratio, process",
           "ratio, inside", "ratio, peak"), rows)

    print("### Nanoseconds of CPU a field, in process\n")
    table(("tool", "storage", *(f"{count:,}" for count in sizes), "last / first"),
          [(tool, storage, *(f"{ns:.0f}" for ns in times), f"{times[-1] / times[0]:.2f}")
           for (tool, storage), times in per_field.items()])

    print("### CPU milliseconds of a process on a form of one field: what starting it costs\n")
    tiny = bench.form(1, "plain", [])
    starts = in_turns({tool: (15, lambda program=program: bench.measured("/dev/null", program, tiny))
                       for tool, program in WALKERS.items() if bench.has(program)})
    table(("tool", "CPU ms"), [(tool, f"{median(runs, 'cpu_ms'):.1f}") for tool, runs in starts.items()])


def check_filled(bench, tool, form, output, name):
    """The output starts with the input, and another reader than the writer sees the value. Returns the bytes added."""
    before = form.read_bytes()
    after = output.read_bytes()
    if not after.startswith(before):
        bench.wrong(f"{form.name}: the output of {tool} does not start with the input")
    reader = "walk_mupdf" if tool == "formwork" else "walk_qpdf"
    if f"{name}\t{VALUE}\n".encode() not in bench.run(reader, output):
        bench.wrong(f"{form.name}: the value that {tool} wrote is not there")
    return after[len(before):]


def race_fills(bench, form, name):
    """The runs of each filler on one form, and the bytes that each adds to it."""
    output = bench.work / "filled.pdf"

    def fill(program, *options):
        output.unlink(missing_ok=True)
        return bench.measured("/dev/null", program, form, output, name, VALUE, *options)

    added = {}
    if bench.has("fill_formwork"):
        fill("fill_formwork")
        added["formwork"] = check_filled(bench, "formwork", form, output, name)
    # libmupdf sets the flag when formwork does, so that both write the same objects.
    flag = ["--need-appearances"] if b"/NeedAppearances true" in added.get("formwork", b"") else []
    cost = fill("fill_mupdf", *flag)["wall_ms"] / 1e3
    added["libmupdf"] = added["libmupdf, flushed and renamed"] = check_filled(bench, "libmupdf", form, output, name)
    commands = {"formwork": ("fill_formwork",), "libmupdf": ("fill_mupdf", *flag),
                "libmupdf, flushed and renamed": ("fill_mupdf", *flag, "--durable")}
    runs = clamp(4 / cost, 5, 15)
    results = in_turns({tool: (runs, lambda tool=tool: fill(*commands[tool])) for tool in added})
    output.unlink()
    return results, added


def bench_fills(bench, sizes):
    print("## Fill one text field and save, whole process\n")
    rows = []
    for count in sizes:
        if count % 50:
            continue
        for storage, options in STORAGES:
            results, added = race_fills(bench, bench.form(count, storage, options), f"group{count // 50 - 1}.field41")
            medians = {tool: {key: median(runs, key) for key in runs[0]} for tool, runs in results.items()}
            base = medians.get("formwork")
            for tool, r in medians.items():
                rows.append((f"{count:,}", storage, tool, f"{r['wall_ms']:.1f}", f"{r['cpu_ms']:.1f}",
                             f"{r['peak_kb'] / 1024:.1f}", f"{len(added[tool]):,}", ratio(r, base, "wall_ms"),
                             ratio(r, base, "cpu_ms"), ratio(r, base, "peak_kb")))
    table(("fields", "storage", "tool", "process ms", "CPU ms", "peak MB", "bytes added", "ratio, elapsed", "ratio, CPU",
           "ratio, peak"), rows)


def main():
    parser = argparse.ArgumentParser(description="Race the programs of BUILD_DIR/bench and print Markdown tables.")
    parser.add_argument("build", type=pathlib.Path, metavar="BUILD_DIR")
    parser.add_argument("--sizes", default="1000,10000,100000", help="numbers of fields, separated by commas")
    options = parser.parse_args()
    sizes = [int(size) for size in options.sizes.split(",")]
    bench = Bench(options.build.resolve() / "bench")
    bench_lists(bench, sizes)
    bench_fills(bench, sizes)
    return 1 if bench.failed else 0


if __name__ == "__main__":
    sys.exit(main())
