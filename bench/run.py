#!/usr/bin/env python3
"""run.py BUILD_DIR [--sizes N,N...]: makes forms, races the programs of BUILD_DIR/bench on them, prints Markdown tables.

Whole-process times include starting the program; in-process times are one open, list and close inside a running program.
Runs of the racers take turns, and the medians are shown. A ratio is a racer's number divided by formwork's; those of times
use CPU time (user and system), which other programs on the machine disturb less. Times are never judged; the exit status is
1 only when a racer fails or its result is wrong.

A real tax form is raced, too, and filled in a batch, when the folder of real files is there: FORMWORK_CORPUS, else the
FORMWORK_CORPUS_DIR of the build.
"""

import argparse
import collections
import json
import os
import pathlib
import re
import statistics
import subprocess
import sys
import tempfile

import scripted_form

STORAGES = (("plain", []), ("object streams", ["--object-streams"]))
WALKERS = {
    "formwork": "walk_formwork",
    "libmupdf": "walk_mupdf",
    "libmupdf, from file": "walk_mupdf_file",
    "libqpdf": "walk_qpdf",
    "libqpdf, from file": "walk_qpdf_file",
}
SLOW_WALKERS = {"libqpdf, from file"}  # no faster than the other way, and seconds a run on large forms
SLOW_WALKERS_TAKE = 10_000  # fields
VALUE = "Grace Hopper, Zürich"
SHORT_VALUE = "Grace"
MOST_DRAWN = 10_000  # libmupdf takes minutes for more
TAX_FORM = "prefilled_f1040.pdf"
TAX_FIELD = "topmostSubform[0].Page1[0].p1-t4[0]"
BATCH_ROWS = 1000
BATCH_NAMES = ("Ada", "Grace", "Mary", "Emmy", "Lise")


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


def tax_form(build):
    """The real form, or None with a line that says so."""
    folder = os.environ.get("FORMWORK_CORPUS")
    if not folder:
        cache = (build / "CMakeCache.txt").read_text()
        found = re.search(r"^FORMWORK_CORPUS_DIR:\w+=(.*)$", cache, re.M)
        folder = found[1] if found else ""
    form = pathlib.Path(folder) / TAX_FORM
    if form.is_file():
        return form
    print(f"The real tax form {TAX_FORM} is not there and is left out.\n")
    return None


def clamp(value, low, high):
    return max(low, min(high, int(value)))


def ratio(row, base, key):
    return f"{row[key] / base[key]:.1f}" if base else "-"


def table(titles, rows):
    print("| " + " | ".join(titles) + " |")
    print("|" + "|".join("---" if title in ("storage", "tool", "form", "output in") else "---:" for title in titles) + "|")
    for row in rows:
        print("| " + " | ".join(str(cell) for cell in row) + " |")
    print(flush=True)


def first_lists(bench, form, count):
    """One listing of each racer, which must be the same text. Returns each one's measures: they size the race."""
    measures = {}
    texts = {}
    for tool, program in WALKERS.items():
        if not bench.has(program) or (tool in SLOW_WALKERS and count > SLOW_WALKERS_TAKE):
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


def race_lists(bench, form, count):
    """The medians of each racer on one form: wall and CPU milliseconds, nanoseconds a field, peak kilobytes."""
    first = first_lists(bench, form, count)
    whole = {}
    inside = {}
    for tool, measures in first.items():
        program = WALKERS[tool]
        cost = measures["cpu_ms"] / 1e3
        repeat = str(clamp(0.4 / cost, 1, 50))
        whole[tool] = (clamp(2.5 / cost, 0, 11), lambda program=program: bench.measured("/dev/null", program, form))
        inside[tool] = (clamp(2.5 / cost, 1, 3),
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
            results = race_lists(bench, bench.form(count, storage, options), count)
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
          [(tool, storage, *(f"{ns:.0f}" for ns in times), *["-"] * (len(sizes) - len(times)), f"{times[-1] / times[0]:.2f}")
           for (tool, storage), times in per_field.items()])

    print("### CPU milliseconds of a process on a form of one field: what starting it costs\n")
    tiny = bench.form(1, "plain", [])
    starts = in_turns({tool: (15, lambda program=program: bench.measured("/dev/null", program, tiny))
                       for tool, program in WALKERS.items() if bench.has(program)})
    table(("tool", "CPU ms"), [(tool, f"{median(runs, 'cpu_ms'):.1f}") for tool, runs in starts.items()])


def listing(bench, reader, pdf):
    return bench.run(reader, pdf).decode()


def check_one(bench, tool, form, output, name):
    """Another reader than the writer sees the value."""
    text = listing(bench, "walk_mupdf" if tool == "formwork" else "walk_qpdf", output)
    if f"{name}\t{VALUE}\n" not in text:
        bench.wrong(f"{form.name}: the value that {tool} wrote is not there")


def check_all(bench, tool, form, output, outputs):
    """Another reader than the writer sees the same values as in the output of the racer before, and the same states were set."""
    text = listing(bench, "walk_mupdf" if tool == "formwork" else "walk_qpdf", output)
    added = output.read_bytes()[form.stat().st_size:]
    states = collections.Counter(re.findall(rb"/AS ?/([^/<>\[\]() \r\n]+)", added))
    outputs[tool] = (text, states)
    if outputs[tool] != next(iter(outputs.values())):
        bench.wrong(f"{form.name}: {tool} filled other values in than the other racer")
    changed = sum(a != b for a, b in zip(text.splitlines(), listing(bench, "walk_mupdf", form).splitlines()))
    if f"\t{SHORT_VALUE}\n" not in text or changed < text.count("\n") / 4:
        bench.wrong(f"{form.name}: {tool} filled too few values in")


def race_fills(bench, form, race, arguments, check):
    """The runs of each filler on one form, and the bytes that each adds to it."""
    output = bench.work / "filled.pdf"

    def fill(program, *options):
        output.unlink(missing_ok=True)
        return bench.measured("/dev/null", program, form, output, *arguments, *options)

    def added_by(tool):
        before = form.read_bytes()
        after = output.read_bytes()
        if not after.startswith(before):
            bench.wrong(f"{form.name}: the output of {tool} does not start with the input")
        check(bench, tool, form, output)
        return after[len(before):]

    added = {}
    if bench.has(f"{race}_formwork"):
        fill(f"{race}_formwork")
        added["formwork"] = added_by("formwork")
    # libmupdf sets the flag when formwork does, so that both write the same objects.
    flag = ["--need-appearances"] if b"/NeedAppearances true" in added.get("formwork", b"") else []
    cost = fill(f"{race}_mupdf", *flag)["wall_ms"] / 1e3
    added["libmupdf"] = added["libmupdf, flushed and renamed"] = added_by("libmupdf")
    commands = {"formwork": (f"{race}_formwork",), "libmupdf": (f"{race}_mupdf", *flag),
                "libmupdf, flushed and renamed": (f"{race}_mupdf", *flag, "--durable")}
    runs = clamp(2 / cost, 3, 11)
    results = in_turns({tool: (runs, lambda tool=tool: fill(*commands[tool])) for tool in added})
    output.unlink()
    return results, added


def bench_fills(bench, title, race, sizes, tax, arguments, check):
    """Races the fillers named `race`; arguments(fields) are theirs for a form, check(fields) checks an output."""
    print(f"## {title}, whole process\n")
    forms = [("tax form", "real", tax)] if tax else []
    forms += [(count, storage, bench.form(count, storage, options)) for count in sizes for storage, options in STORAGES]
    rows = []
    for count, storage, form in forms:
        results, added = race_fills(bench, form, race, arguments(count), check(count))
        medians = {tool: {key: median(runs, key) for key in runs[0]} for tool, runs in results.items()}
        base = medians.get("formwork")
        for tool, r in medians.items():
            rows.append((f"{count:,}" if isinstance(count, int) else count, storage, tool, f"{r['wall_ms']:.1f}",
                         f"{r['cpu_ms']:.1f}", f"{r['peak_kb'] / 1024:.1f}", f"{len(added[tool]):,}",
                         *(ratio(r, base, key) for key in ("wall_ms", "cpu_ms", "peak_kb"))))
    table(("fields", "storage", "tool", "process ms", "CPU ms", "peak MB", "bytes added", "ratio, elapsed", "ratio, CPU",
           "ratio, peak"), rows)


def bench_fill_one(bench, sizes, tax):
    def name(count):
        return f"group{count // 50 - 1}.field41" if isinstance(count, int) else TAX_FIELD

    def check(count):
        return lambda bench, tool, form, output: check_one(bench, tool, form, output, name(count))

    bench_fills(bench, "Fill one text field and save", "fill", [count for count in sizes if count % 50 == 0], tax,
                lambda count: (name(count), VALUE), check)


def bench_fill_all(bench, sizes, tax):
    def check(count):
        outputs = {}
        return lambda bench, tool, form, output: check_all(bench, tool, form, output, outputs)

    bench_fills(bench, "Fill every text field, check box and choice and save", "fill_all", sizes, tax,
                lambda count: (SHORT_VALUE,), check)
    bench_fills(bench, "The same, and draw the widgets", "fill_draw", [count for count in sizes if count <= MOST_DRAWN], tax,
                lambda count: (SHORT_VALUE,), check)


def check_batch(bench, reader, folder, form, names):
    """Every copy starts with the template, and another reader sees the row's values in a sample of them."""
    before = form.read_bytes()
    for row in range(BATCH_ROWS):
        if not (folder / f"{row}.pdf").read_bytes().startswith(before):
            return bench.wrong(f"{form.name}: copy {row} does not start with the template")
    for row in (0, 1, BATCH_ROWS // 2, BATCH_ROWS - 1):
        text = listing(bench, reader, folder / f"{row}.pdf")
        if any(f"{name}\t{BATCH_NAMES[row % len(BATCH_NAMES)]} {row}-{i}\n" not in text for i, name in enumerate(names)):
            return bench.wrong(f"{form.name}: copy {row} does not hold its row")


def bench_batch(bench, command, sizes, tax):
    """`formwork fill --batch` on one processor, with ten columns, to the disk and to memory."""
    print(f"## Fill {BATCH_ROWS:,} copies of one form, ten text fields each, on one processor\n")
    form = tax or bench.form(min(sizes), "plain", [])
    if not command.exists() or "--batch" not in subprocess.run([command, "fill", "--help"], check=True, text=True,
                                                               stdout=subprocess.PIPE).stdout:
        print("The command has no batch.\n")
        return
    if tax:
        # Columns are text fields without a maximum, whatever they are called.
        fields = json.loads(subprocess.run([command, "list", "--json", form], check=True, stdout=subprocess.PIPE).stdout)
        fields = fields["fields"] if isinstance(fields, dict) else fields
        names = [field["name"] for field in fields if field.get("type") == "text" and not field.get("maxLength")][:10]
    else:
        names = [f"group0.field{i}" for i in (0, 1, 2, 3, 4, 10, 11, 12, 13, 14)]
    rows = bench.work / "rows.csv"
    with open(rows, "w", encoding="utf-8") as file:
        file.write("id," + ",".join(names) + "\n")
        for row in range(BATCH_ROWS):
            file.write(f"{row}," + ",".join(f"{BATCH_NAMES[row % len(BATCH_NAMES)]} {row}-{i}" for i in range(len(names))) + "\n")
    table_rows = []
    memory = pathlib.Path("/dev/shm")
    for place, parent in (("disk", bench.work), ("memory", memory if memory.is_dir() else None)):
        for jobs in ("1", "8"):
            if not parent:
                continue
            runs = []
            for _ in range(3):
                with tempfile.TemporaryDirectory(dir=parent, prefix="formwork-bench-") as folder:
                    runs.append(bench.measured("/dev/null", "/usr/bin/taskset", "-c", "0", command, "fill", form, "--batch",
                                               rows, "--jobs", jobs, "-o", f"{folder}/{{id}}.pdf"))
                    check_batch(bench, "walk_qpdf", pathlib.Path(folder), form, names)
            wall = median(runs, "wall_ms") / 1e3
            cpu = median(runs, "cpu_ms") / 1e3
            table_rows.append((form.name, place, jobs, f"{wall:.2f}", f"{cpu:.2f}", f"{BATCH_ROWS / wall:,.0f}",
                               f"{BATCH_ROWS / cpu:,.0f}", f"{median(runs, 'peak_kb') / 1024:.1f}"))
    table(("form", "output in", "jobs", "elapsed s", "CPU s", "copies a second", "copies a CPU second", "peak MB"), table_rows)


def check_totals(bench, command, copy, row, scripts):
    """The grand total is that of the row, where scripts run."""
    shown = subprocess.run([command, "export", copy, "--as", "json", "total9"], check=True, text=True, stdout=subprocess.PIPE)
    wanted = None if scripts == "off" else str(sum(i + row for i in range((scripted_form.TOTALS - 1) * 6)))
    if json.loads(shown.stdout).get("total9") != wanted:
        bench.wrong(f"{copy.name}: the total with --scripts {scripts} is not {wanted}")


def bench_scripts(bench, command):
    """`formwork fill --batch` of a form with ten calculated fields, 60 amounts a row, into memory, on one processor."""
    print(f"## Fill {BATCH_ROWS:,} copies of a form that computes, {scripted_form.LINES} amounts each, on one processor\n")
    rows = bench.work / "amounts.csv"
    with open(rows, "w", encoding="utf-8") as file:
        file.write("id," + ",".join(scripted_form.line(i) for i in range(scripted_form.LINES)) + "\n")
        for row in range(BATCH_ROWS):
            file.write(f"{row}," + ",".join(str(i + row) for i in range(scripted_form.LINES)) + "\n")
    memory = pathlib.Path("/dev/shm")
    table_rows = []
    forms = (("well-known calls", scripted_form.known_sum, ("off", "known", "all")),
             ("scripts of its own", scripted_form.free_sum, ("off", "all")))
    for kind, sum_script, modes in forms:
        form = bench.work / "computing.pdf"
        form.write_bytes(scripted_form.scripted_form(sum_script))
        for scripts in modes:
            runs = []
            for _ in range(3):
                with tempfile.TemporaryDirectory(dir=memory if memory.is_dir() else bench.work, prefix="formwork-bench-") as folder:
                    runs.append(bench.measured("/dev/null", "/usr/bin/taskset", "-c", "0", command, "fill", form, "--batch",
                                               rows, "--scripts", scripts, "-o", f"{folder}/{{id}}.pdf"))
                    check_totals(bench, command, pathlib.Path(folder) / "7.pdf", 7, scripts)
            wall = median(runs, "wall_ms") / 1e3
            cpu = median(runs, "cpu_ms") / 1e3
            table_rows.append((kind, scripts, f"{wall:.2f}", f"{cpu:.2f}", f"{BATCH_ROWS / wall:,.0f}",
                               f"{BATCH_ROWS / cpu:,.0f}", f"{median(runs, 'peak_kb') / 1024:.1f}"))
    table(("the totals are", "--scripts", "elapsed s", "CPU s", "copies a second", "copies a CPU second", "peak MB"),
          table_rows)


def main():
    parser = argparse.ArgumentParser(description="Race the programs of BUILD_DIR/bench and print Markdown tables.")
    parser.add_argument("build", type=pathlib.Path, metavar="BUILD_DIR")
    parser.add_argument("--sizes", default="1000,10000,100000", help="numbers of fields, separated by commas")
    options = parser.parse_args()
    sizes = [int(size) for size in options.sizes.split(",")]
    build = options.build.resolve()
    bench = Bench(build / "bench")
    tax = tax_form(build)
    bench_lists(bench, sizes)
    bench_fill_one(bench, sizes, tax)
    bench_fill_all(bench, sizes, tax)
    bench_batch(bench, build / "formwork", sizes, tax)
    bench_scripts(bench, build / "formwork")
    return 1 if bench.failed else 0


if __name__ == "__main__":
    sys.exit(main())
