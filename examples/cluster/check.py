#!/usr/bin/env python3
"""Runs the recipes of this folder on one machine, kills a worker in the middle, and checks that every output is there once and
holds what its row says. Then runs them undisturbed and prints how they compare with as many processes without an engine.

    check.py COMMAND FORM [ROWS]
"""
import contextlib
import csv
import hashlib
import json
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import time

HERE = pathlib.Path(__file__).resolve().parent
WORKERS = 2
# What a worker has in its command line, and what makes it one of two.
RECIPES = {
    "parallel_fill.sh": ("{} fill", ["--jobs", str(WORKERS)]),
    "dask_fill.py": ("spawn_main", ["--workers", str(WORKERS)]),
}
COLUMNS = ("id", "name", "postcode", "agree")


def row(number):
    return {"id": f"p{number}", "name": f"Name {number}, \"of\" {number % 7}", "postcode": str(10000 + number % 90000),
            "agree": "Yes" if number % 2 else "Off"}


def children(pid):
    """All processes below this one, with their command lines."""
    found = []
    for line in subprocess.run(["ps", "-A", "-o", "pid=,ppid=,args="], check=True, text=True,
                               stdout=subprocess.PIPE).stdout.splitlines():
        child, parent, words = line.split(None, 2)
        if int(parent) == pid:
            found += [(int(child), words), *children(int(child))]
    return found


def kill_worker(recipe, mark):
    """Kills the first process of the recipe that has `mark` in its command line."""
    for pid, words in children(recipe.pid):
        if mark in words and "resource_tracker" not in words:
            try:
                os.kill(pid, signal.SIGKILL)
                return True
            except ProcessLookupError:  # it ended meanwhile
                pass
    return False


def run_recipe(words, mark, outputs, count):
    """Runs a recipe and kills a worker when a quarter of the outputs is there."""
    recipe = subprocess.Popen(words)
    killed = False
    while recipe.poll() is None:
        if not killed and len(list(outputs.glob("*.pdf"))) >= count // 4:
            killed = kill_worker(recipe, mark)
        time.sleep(0.01)
    assert killed, "no worker was killed: give more rows"
    assert recipe.returncode == 0, f"the recipe ends with {recipe.returncode}"


def check_outputs(outputs, count):
    lines = {}
    again = 0
    for manifest in sorted((outputs / "manifests").glob("*.jsonl")):
        for line in map(json.loads, manifest.read_text().splitlines()):
            again += line["row"] in lines
            lines[line["row"]] = line
    names = {path.name for path in outputs.iterdir()} - {"manifests"}
    assert names == {f"p{number}.pdf" for number in range(1, count + 1)}, "outputs are missing, or too many are there"
    assert sorted(lines) == list(range(1, count + 1)), "the manifests lack rows"
    for line in lines.values():
        digest = hashlib.sha256(pathlib.Path(line["output"]).read_bytes()).hexdigest()
        assert (line["result"], line["sha256"]) == ("written", digest), line
    return again


def check_values(command, outputs, table, count):
    """All forms made into one table are the rows that they came from."""
    subprocess.run([command, "extract", outputs, "--recursive", "--as", "csv", "-o", table], check=True)
    with table.open(newline="") as file:
        found = {pathlib.Path(line["file"]).stem: line for line in csv.DictReader(file)}
    for number in range(1, count + 1):
        wanted = row(number)
        line = found.pop(wanted.pop("id"))
        assert {name: line[name] for name in wanted} == wanted, line
    assert not found, "the table has more rows"


def write_table(path, count):
    with path.open("w", newline="") as file:
        writer = csv.DictWriter(file, COLUMNS)
        writer.writeheader()
        writer.writerows(map(row, range(1, count + 1)))


def plain_processes(command, form, table, outputs, count):
    """The same work without an engine: as many processes as workers, each with its share of the rows."""
    (outputs / "manifests").mkdir()
    share = -(-count // WORKERS)
    runs = [subprocess.Popen([command, "fill", form, "--batch", table, "-o", f"{outputs}/{{id}}.pdf", "--rows",
                              f"{first}-{first + share - 1}", "--manifest", outputs / "manifests" / f"{first}.jsonl"],
                             stderr=subprocess.DEVNULL)
            for first in range(1, count + 1, share)]
    return max(run.wait() for run in runs)


def recipe_words(name, command, form, table, outputs, count):
    interpreter = [sys.executable] if name.endswith(".py") else []
    return [*interpreter, HERE / name, *RECIPES[name][1], "--chunk", str(max(1, count // 16)), "--formwork", command, form,
            table, f"{outputs}/{{id}}.pdf"]


@contextlib.contextmanager
def workplace(count):
    """A table with rows and a folder for their outputs, which go afterwards."""
    with tempfile.TemporaryDirectory() as folder:
        table = pathlib.Path(folder) / "rows.csv"
        outputs = pathlib.Path(folder) / "out"
        outputs.mkdir()
        write_table(table, count)
        yield table, outputs


def kill_and_check(name, command, form, count):
    with workplace(count) as (table, outputs):
        start = time.monotonic()
        run_recipe(recipe_words(name, command, form, table, outputs, count), RECIPES[name][0].format(command), outputs, count)
        seconds = time.monotonic() - start
        again = check_outputs(outputs, count)
        check_values(command, outputs, table.with_name("table.csv"), count)
        print(f"{name}: {count} rows in {seconds:.1f} s, a worker killed; every output is there and right, {again} done twice")


def race(command, form, count):
    """Seconds of each way, the best of three runs in turns."""
    runners = {"processes without an engine": lambda table, outputs: plain_processes(command, form, table, outputs, count)}
    for name in RECIPES:
        runners[name] = lambda table, outputs, name=name: subprocess.run(
            recipe_words(name, command, form, table, outputs, count), check=False).returncode
    best = {}
    for _ in range(3):
        for name, run in runners.items():
            with workplace(count) as (table, outputs):
                start = time.monotonic()
                end = run(table, outputs)
                seconds = time.monotonic() - start
                assert end == 0, f"{name} ends with {end}"
                check_outputs(outputs, count)
                best[name] = min(seconds, best.get(name, seconds))
    return best


def main():
    command, form = (os.path.abspath(path) for path in sys.argv[1:3])
    count = int(sys.argv[3]) if len(sys.argv) > 3 else 20000
    for name in RECIPES:
        kill_and_check(name, command, form, count)
    best = race(command, form, count)
    plain = best["processes without an engine"]
    print(f"\n| {count:,} rows, {WORKERS} workers | s | forms a second | of the first |\n|---|---:|---:|---:|")
    for name, seconds in best.items():
        print(f"| {name} | {seconds:.1f} | {count / seconds:,.0f} | {100 * plain / seconds:.0f} % |")


if __name__ == "__main__":
    main()
