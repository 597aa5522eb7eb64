#!/usr/bin/env python3
"""Holds the texts against the tree and the command: relative links lead to files, and what is written as a call of formwork has
verbs and options that its help knows.

Usage: check_docs.py SOURCE_DIR COMMAND. Prints one line per fault and exits 1 when there is any.
"""
import re
import subprocess
import sys
from pathlib import Path

LINK = re.compile(r"\]\(([^)#:\s]+)(?:#[^)]*)?\)")
# A call is in backquotes, in an indented line or behind another one, up to what ends it or to two spaces, behind which words follow.
CALL = re.compile(r"(?:`|^ {4}|[|;&(] )(?:build/)?formwork ([a-z]+)\b((?:[^`|;&>#\n\\ ]| (?! )|\\\n *)*)", re.M)
OPTION = re.compile(r"(?<![\w-])--[a-z][a-z-]*")
OPTION_OF_HELP = re.compile(r"^  (?:-\w,)?(--[a-z][a-z-]*)", re.M)


def options_of_verbs(command):
    def help_of(*verb):
        return subprocess.run([command, *verb, "--help"], capture_output=True, text=True, check=True).stdout

    verbs = re.findall(r"^  ([a-z]+) ", help_of().split("Verbs:")[1], re.M)
    return {verb: set(OPTION_OF_HELP.findall(help_of(verb))) for verb in verbs}


def broken_links(folder, text):
    for link in LINK.finditer(text):
        if not (folder / link[1]).exists():
            yield link.start(), f"the link {link[1]} leads nowhere"


def wrong_calls(known, text):
    for call in CALL.finditer(text):
        if call[1] not in known:
            yield call.start(), f"formwork has no verb {call[1]}"
            continue
        for option in sorted(set(OPTION.findall(call[2])) - known[call[1]]):
            yield call.start(), f"formwork {call[1]} has no option {option}"


def main(root, command):
    known = options_of_verbs(command)
    faults = 0
    pages = [root / "README.md", *sorted(root.glob("*/*.md"))]
    for path in pages:
        text = path.read_text()
        for position, fault in [*broken_links(path.parent, text), *wrong_calls(known, text)]:
            print(f"{path.relative_to(root)}:{text.count(chr(10), 0, position) + 1}: {fault}")
            faults += 1
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(Path(sys.argv[1]), sys.argv[2]))
