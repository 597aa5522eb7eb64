#!/usr/bin/env python3
"""Tells whether what is filled is seen: fills forms, shows them with two viewers and judges every widget of a filled field.

seen.py [--command FORMWORK] [--filler formwork|pdftk] [--corpus FOLDER] [--only TEXT] [--verbose] [--keep FOLDER]

Real forms (FORMWORK_CORPUS or --corpus) get a new value in every field that takes one; hand-made cases declare what they
expect. docs/appearance.md tells what is measured. Exits 1 only when nothing could be measured.
"""

import argparse
import collections
import concurrent.futures
import os
import pathlib
import re
import shutil
import sys
import tempfile

sys.dont_write_bytecode = True
ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.append(str(ROOT / "samples"))

import fillers
from cases import all_cases
from facts import FACTS
from looks import CRITERIA, Look, Page
from pdf_reader import Pdf, Unreadable
from viewers import VIEWERS, Picture


class Judged:
    """A filled file: a look at every widget of its filled fields, or why there is none."""

    def __init__(self, name):
        self.name, self.why, self.widgets, self.left_out = name, None, [], collections.Counter()

    def is_whole(self):
        return all(all(held.values()) for _, held in self.widgets)


def fill_and_look(options, path, before, fills, folder):
    """Fills the file and looks at its widgets: Looks by page; the pictures are read page by page."""
    out = folder / "filled.pdf"
    tool = options.command if options.filler == "formwork" else options.filler
    status, _, errors = fillers.FILLERS[options.filler](tool, path, fills, out)
    if status or not out.exists():
        raise fillers.Refused(errors.strip() or f"{options.filler} wrote nothing")
    after = Pdf(out)
    places = collections.defaultdict(list)
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


def judge_file(options, path):
    judged = Judged(path.name)
    folder = pathlib.Path(tempfile.mkdtemp(prefix=path.stem + "-", dir=options.keep))
    try:
        before = Pdf(path)
        judged.left_out.update(widget.why_unseen() for widget in before.widgets if widget.why_unseen())
        fills = fillers.plan(options.command, path, before, folder, judged.left_out)
    except (Unreadable, fillers.Refused) as error:
        judged.why = "qpdf can't read it" if isinstance(error, Unreadable) else str(error)
        fills = []
    try:
        for look in fill_and_look(options, path, before, fills, folder) if fills else ():
            judged.widgets.append((look.name(), look.criteria()))
    except (Unreadable, fillers.Refused) as error:
        # What was not written is not seen.
        judged.why = "the output can't be read" if isinstance(error, Unreadable) else str(error)
        judged.widgets = [(fill.name, dict.fromkeys(CRITERIA, False)) for fill in fills for _ in fill.widgets]
    if not options.keeps:
        shutil.rmtree(folder)
    return judged


def judge_case(options, case):
    """The facts of a hand-made case: the criteria of its filled widgets and what it declares."""
    judged = Judged(f"{case.group}: {case.name}")
    folder = pathlib.Path(tempfile.mkdtemp(prefix=re.sub(r"\W+", "-", judged.name) + "-", dir=options.keep))
    path = folder / "case.pdf"
    path.write_bytes(case.pdf())
    before, fills = Pdf(path), []
    for field in fillers.fields_of(options.command, path):
        if field["name"] in case.fills or field["name"] in case.facts:
            fill = fillers.fill_of(field, before, case.fills.get(field["name"]))
            fill.shown = case.facts.get(fill.name, {}).get("shown", fill.shown)
            fills.append(fill)
    try:
        for look in fill_and_look(options, path, before, fills, folder):
            held = {} if look.fill.value is None else look.criteria()
            held.update((name, FACTS[name](look, wanted)) for name, wanted in case.facts_of(look.fill).items())
            judged.widgets.append((look.name(), held))
    except (Unreadable, fillers.Refused) as error:
        judged.why = str(error)
        for fill in fills:
            held = dict.fromkeys([*(CRITERIA if fill.value is not None else ()), *case.facts_of(fill)], False)
            judged.widgets += [(fill.name, held)] * len(fill.widgets)
    if not options.keeps:
        shutil.rmtree(folder)
    return judged


def share(part, whole):
    return f"{part} of {whole} | {100 * part / whole:.1f} %" if whole else "none | "


def table_of_files(results):
    measured = [judged for judged in results if judged.widgets]
    widgets = [held for judged in measured for _, held in judged.widgets]
    print("| real forms | widgets | |\n|---|---:|---:|")
    for criterion in CRITERIA:
        asked = [held[criterion] for held in widgets if criterion in held]
        print(f"| {criterion} | {share(sum(asked), len(asked))} |")
    print(f"| **all of them** | {share(sum(all(held.values()) for held in widgets), len(widgets))} |")
    print(f"| **files whole** | {share(sum(judged.is_whole() for judged in measured), len(measured))} |")
    left_out = sum((judged.left_out for judged in results), collections.Counter())
    print("\nLeft out:", ", ".join(f"{count} widgets {why}" for why, count in left_out.most_common() if count) + ";",
          sum(not judged.widgets and not judged.why for judged in results), "files with nothing to fill.")
    for judged in results:
        if judged.why:
            print(f"{'Failed' if judged.widgets else 'Not measured'}: {judged.name}: {judged.why.splitlines()[0]}")
    print()


def table_of_cases(results):
    print("| hand-made cases | cases whole | | facts | |\n|---|---:|---:|---:|---:|")
    groups = collections.defaultdict(list)
    for judged in results:
        groups[judged.name.split(":")[0]].append(judged)
    for name, group in [*groups.items(), ("**all**", results)]:
        facts = [fact for judged in group for _, held in judged.widgets for fact in held.values()]
        print(f"| {name} | {share(sum(judged.is_whole() for judged in group), len(group))} | {share(sum(facts), len(facts))} |")
    print()


def tell_failures(results):
    for judged in results:
        if judged.why:
            print(f"{judged.name}: {judged.why.splitlines()[0]}")
        for name, held in () if judged.why else judged.widgets:
            missed = [criterion for criterion, holds in held.items() if not holds]
            if missed:
                print(f"{judged.name}: {name}: not {', not '.join(missed)}")


def parsed():
    options = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    options.add_argument("--command", default=str(ROOT / "build/formwork"), help="formwork; lists the fields, too")
    options.add_argument("--filler", choices=fillers.FILLERS, default="formwork", help="the program that fills")
    options.add_argument("--corpus", default=os.environ.get("FORMWORK_CORPUS"), help="a folder of real forms")
    options.add_argument("--only", default="", help="files and cases whose name has this text")
    options.add_argument("--keep", help="keep what was filled and drawn in this folder")
    options.add_argument("--jobs", type=int, default=os.cpu_count())
    options.add_argument("--verbose", action="store_true", help="name every widget that fails, and why")
    return options.parse_args()


def main():
    options = parsed()
    options.keeps = options.keep is not None
    cases = [case for case in all_cases() if options.only in f"{case.group}: {case.name}"]
    with tempfile.TemporaryDirectory() as folder:
        options.keep = options.keep or folder
        pathlib.Path(options.keep).mkdir(exist_ok=True)
        files = sorted(pathlib.Path(options.corpus).glob("*.pdf")) if options.corpus else []
        files = [path for path in files if options.only in path.name]
        with concurrent.futures.ProcessPoolExecutor(options.jobs) as pool:
            real = list(pool.map(judge_file, [options] * len(files), files))
            made = list(pool.map(judge_case, [options] * len(cases), cases))
    if real:
        table_of_files(real)
    if made:
        table_of_cases(made)
    if options.verbose:
        tell_failures(real + made)
    return 0 if real or made else 1


if __name__ == "__main__":
    sys.exit(main())
