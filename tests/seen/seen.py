#!/usr/bin/env python3
"""Tells whether what is filled is seen: fills forms, shows them with two viewers and judges every widget of a filled field.

Real forms (--corpus, else FORMWORK_CORPUS) get a new value in every field that takes one; hand-made cases declare the facts
they expect. docs/appearance.md tells what is measured. Exits 1 only when nothing was measured.
"""

import argparse
import collections
import concurrent.futures
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True
ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.append(str(ROOT / "samples"))

import fillers
from cases import all_cases
from looks import CRITERIA, Look, Page, criteria_of
from pdf_reader import Pdf, Unreadable
from viewers import VIEWERS, Picture

EXPECTED = (Unreadable, fillers.Refused, subprocess.TimeoutExpired)


class Judged:
    """A filled file: (name, {criterion or fact: whether it holds}) for every widget, or why there is none."""

    def __init__(self, name):
        self.name, self.why, self.widgets, self.left_out = name, None, [], collections.Counter()

    def is_whole(self):
        return all(all(held.values()) for _, held in self.widgets)


class RealForm:
    def __init__(self, path):
        self.name, self.path = path.name, path

    def file(self, _):
        return self.path

    def plan(self, command, path, pdf, left_out):
        left_out.update(widget.why_unseen() for widget in pdf.widgets if widget.why_unseen())
        return fillers.plan(command, path, pdf, left_out)

    def facts_of(self, _):
        return {}


def judge(options, subject):
    """Fills a form and judges its widgets. `subject`: a real form or a hand-made case."""
    judged, fills = Judged(subject.name), []
    folder = pathlib.Path(tempfile.mkdtemp(prefix=re.sub(r"\W+", "-", subject.name) + "-", dir=options.keep))
    try:
        path = subject.file(folder)
        before = Pdf(path)
        fills = subject.plan(options.command, path, before, judged.left_out)
        if fills:
            for look in fill_and_look(options, path, fills, folder):
                judged.widgets.append((look.name(), look.judged(subject.facts_of(look.fill))))
    except Exception as error:  # a form that this script can't read either must not end the run
        # What was not written, or cannot be read, is not seen.
        judged.why = "" if isinstance(error, EXPECTED) else type(error).__name__ + ": "
        judged.why += (str(error).splitlines() or [""])[0]
        asked = [(fill, [*criteria_of(fill), *subject.facts_of(fill)]) for fill in fills]
        seen = [(fill.name, names) for fill, names in asked for widget in fill.widgets if not widget.why_unseen()]
        judged.widgets = [(name, dict.fromkeys(names, False)) for name, names in seen]
    if not options.keeps:
        shutil.rmtree(folder)
    return judged


def fill_and_look(options, path, fills, folder):
    """Fills the file and yields a Look at each widget that can be seen; pictures are read page by page."""
    out = folder / "filled.pdf"
    fillers.fill(options.filler, options.command, path, fills, out)
    after, places = Pdf(out), collections.defaultdict(list)
    for fill in fills:
        for widget in fill.widgets:
            if not widget.why_unseen():
                places[widget.page].append((fill, widget))
    texts = {viewer: viewer.texts(out, places) for viewer in VIEWERS}
    drawn = {}
    for when, file in (("before", path), ("after", out)):
        (folder / when).mkdir()
        drawn[when] = {viewer: viewer.draw(file, places, folder / when) for viewer in VIEWERS}
    for number, widgets in sorted(places.items()):
        pictures = [{v: Picture(drawn[when][v].get(number)) for v in VIEWERS} for when in ("before", "after")]
        page = Page(out, number, {v: texts[v].get(number, []) for v in VIEWERS}, *pictures)
        for fill, widget in widgets:
            yield Look(page, fill, widget, after.by_place.get((widget.page, widget.index), widget))


def share(held):
    """The cells for how many of the truth values hold."""
    held = list(held)
    return f"{sum(held)} of {len(held)} | {100 * sum(held) / len(held):.1f} %" if held else "none | "


def table_of_files(results):
    measured = [judged for judged in results if judged.widgets]
    widgets = [held for judged in measured for _, held in judged.widgets]
    print("| real forms | held | share |\n|---|---:|---:|")
    for name in CRITERIA:
        print(f"| {name} | {share(held[name] for held in widgets if name in held)} |")
    print(f"| **all of them, widgets** | {share(all(held.values()) for held in widgets)} |")
    print(f"| **all of them, files** | {share(judged.is_whole() for judged in measured)} |")
    left_out = sum((judged.left_out for judged in results), collections.Counter())
    print("\nWidgets left out:", ", ".join(f"{count} {why}" for why, count in left_out.most_common() if count) or "none")
    print("Files without a field to fill:", sum(not judged.widgets and not judged.why for judged in results))
    print("Files not read:", sum(not judged.widgets and bool(judged.why) for judged in results))


def table_of_cases(results):
    print("| hand-made cases | cases whole | share | facts held | share |\n|---|---:|---:|---:|---:|")
    groups = collections.defaultdict(list)
    for judged in results:
        groups[judged.name.split(":")[0]].append(judged)
    for name, group in [*groups.items(), ("**all**", results)]:
        facts = (fact for judged in group for _, held in judged.widgets for fact in held.values())
        print(f"| {name} | {share(judged.is_whole() for judged in group)} | {share(facts)} |")


def tell_failures(results, verbose):
    """Files that were not measured or not filled; when verbose every widget that fails, too."""
    for judged in results:
        if judged.why:
            print(f"{judged.name}: {'failed' if judged.widgets else 'left out'}: {judged.why}")
        for name, held in judged.widgets if verbose and not judged.why else ():
            if not all(held.values()):
                print(f"{judged.name}: {name}: not {', not '.join(what for what, holds in held.items() if not holds)}")


def parsed():
    options = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    options.add_argument("--command", default=str(ROOT / "build/formwork"), help="formwork; lists the fields for every filler")
    options.add_argument("--filler", choices=fillers.FILLERS, default="formwork", help="the program that fills")
    options.add_argument("--corpus", default=os.environ.get("FORMWORK_CORPUS"), help="a folder of real forms")
    options.add_argument("--only", default="", help="only files and cases whose name has this text")
    options.add_argument("--keep", help="keep what was filled and drawn in this folder")
    options.add_argument("--jobs", type=int, default=os.cpu_count())
    options.add_argument("--verbose", action="store_true", help="name every widget that fails, and what it misses")
    return options.parse_args()


def main():
    options = parsed()
    options.keeps = options.keep is not None
    forms = [RealForm(path) for path in sorted(pathlib.Path(options.corpus).glob("*.pdf"))] if options.corpus else []
    kinds = [[subject for subject in kind if options.only in subject.name] for kind in (forms, all_cases())]
    with tempfile.TemporaryDirectory() as folder, concurrent.futures.ProcessPoolExecutor(options.jobs) as pool:
        options.keep = options.keep or folder
        pathlib.Path(options.keep).mkdir(parents=True, exist_ok=True)
        results = [list(pool.map(judge, [options] * len(kind), kind)) for kind in kinds]
    for table, judged in zip((table_of_files, table_of_cases), results):
        if judged:
            table(judged)
            tell_failures(judged, options.verbose)
            print()
    return 0 if any(results) else 1


if __name__ == "__main__":
    sys.exit(main())
