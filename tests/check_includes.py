#!/usr/bin/env python3
"""Reads every #include of the source tree and holds it against include_rules.txt.

Usage: check_includes.py SOURCE_DIR. Prints one line per fault and exits 1 when there is any.
"""
import graphlib
import re
import sys
from pathlib import Path

# Folders without a rule, which may include everything.
FREE = ["tools", "packaging", "tests", "bench", "fuzz", "examples"]
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
EXCEPTION_OR_FILE = re.compile(r"\b(try|throw|catch|FILE|fopen|printf|puts)\b")
COMMENT_OR_LITERAL = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\'', re.S)

# Engine folders stand on the standard library alone, except for what is named here.
ENGINE_FOLDERS = ("core", "engine", "forms", "forms/exchange", "render")
ENGINE_EXTRAS = {"forms/exchange": {"tinyxml.h"}}
CATCHES = {"forms/exchange/xfa_template.cpp"}  # what TinyXML throws
STREAM_HEADERS = {"iostream", "istream", "ostream", "fstream", "sstream", "iomanip", "filesystem"}


def read_rules(path):
    rules = {}
    for line in path.read_text().splitlines():
        if line and not line.startswith("#"):
            folder, allowed = line.split(":")
            rules[folder] = [folder] + allowed.split()
    return rules


def folder_of(name):
    return name.rpartition("/")[0]


def includes_of(text):
    """(line, is it quoted, name) of every include."""
    found = []
    for number, line in enumerate(text.splitlines(), 1):
        match = INCLUDE.match(line)
        if match:
            found.append((number, match.group(1) == '"', match.group(2)))
    return found


def check_quoted(root, name, line, target, rules, faults):
    where = f"{name}:{line}: {target}"
    if name.startswith("examples/") and (root / "capi" / target).is_file():
        return  # as programs outside find what is installed
    if not (root / target).is_file() or ".." in target.split("/"):
        faults.append(f"{where} is no header by its path from the source root")
        return
    allowed = rules.get(folder_of(name))
    if allowed is not None and folder_of(target) not in allowed and target not in allowed:
        faults.append(f"{where} goes against the arrows: {folder_of(name)} may include {' '.join(allowed)}")


def check_system(name, line, target, faults):
    folder = folder_of(name)
    if folder not in ENGINE_FOLDERS:
        return
    standard = "." not in target and "/" not in target
    if target in STREAM_HEADERS or not (standard or target in ENGINE_EXTRAS.get(folder, ())):
        faults.append(f"{name}:{line}: {target} has no place in {folder}")


def check_own_header_first(root, name, includes, faults):
    own = re.sub(r"\.cpp$", ".h", name)
    if own != name and (root / own).is_file() and (not includes or includes[0][2] != own):
        faults.append(f"{name}: its own header {own} is not the first include")


def find_circle(graph):
    """A list of headers that include each other in a circle, or None."""
    try:
        graphlib.TopologicalSorter(graph).prepare()
    except graphlib.CycleError as circle:
        return circle.args[1]
    return None


def check(root):
    rules = read_rules(root / "tests" / "include_rules.txt")
    faults, graph, total = [], {}, 0
    for room in sorted({folder.split("/")[0] for folder in rules}) + FREE:
        for path in sorted((root / room).rglob("*")):
            if path.suffix not in (".h", ".cpp"):
                continue
            name = path.relative_to(root).as_posix()
            text = path.read_text(encoding="utf-8")
            includes = includes_of(text)
            total += len(includes)
            if room not in FREE and folder_of(name) not in rules:
                faults.append(f"{name}: {folder_of(name)} has no line in include_rules.txt")
            if path.suffix == ".h":
                if "#pragma once" not in text and "#ifndef FORMWORK_H" not in text:  # the one that is for C
                    faults.append(f"{name}: no #pragma once")
                graph[name] = [target for _, quoted, target in includes if quoted]
            for line, quoted, target in includes:
                if quoted:
                    check_quoted(root, name, line, target, rules, faults)
                else:
                    check_system(name, line, target, faults)
            check_own_header_first(root, name, includes, faults)
            misplaced = EXCEPTION_OR_FILE.search(COMMENT_OR_LITERAL.sub("", text))
            if folder_of(name) in ENGINE_FOLDERS and name not in CATCHES and misplaced:
                faults.append(f"{name}: {misplaced.group()} has no place in {folder_of(name)}")
    arrows = {folder: [folder_of(entry) if entry.endswith(".h") else entry for entry in allowed[1:]]
              for folder, allowed in rules.items()}
    for circle in (find_circle(graph), find_circle(arrows)):
        if circle:
            faults.append("circle: " + " -> ".join(circle))
    if total == 0:
        faults.append(f"{root}: no sources found")
    return faults, total


def main():
    faults, total = check(Path(sys.argv[1]).resolve())
    for fault in faults:
        print(fault)
    print(f"{total} includes, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
