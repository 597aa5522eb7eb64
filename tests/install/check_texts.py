#!/usr/bin/env python3
"""Tries the manual pages and the completions: every option of the help is in its page, man has no warning, and what is typed is
completed in real shells, where they are there.

Usage: check_texts.py MAKE_TEXTS COMMAND VERSION
"""
import os
import pty
import re
import select
import shutil
import subprocess
import sys
import tempfile
import time
from pathlib import Path

# What is typed, and what its last word becomes, in a folder with the files form.pdf and data.json.
CASES = [
    ("formwork exp", "export"),
    ("formwork --ver", "--version"),
    ("formwork fill form.pdf --dry", "--dry-run"),
    ("formwork export form.pdf --as js", "json"),
    ("formwork fill form.pdf --empty cl", "clear"),
    ("formwork set form.pdf name --border-style un", "underline"),
    ("formwork add --password x form.pdf sig", "signature"),
    ("formwork list fo", "form.pdf"),
    ("formwork fill form.pdf --data da", "data.json"),
]


def output_of(*command, **more):
    return subprocess.run(command, capture_output=True, text=True, check=True, **more).stdout


def check_pages(command, folder, faults):
    verbs = re.findall(r"^  (\S+) ", output_of(command, "--help").split("Verbs:\n")[1], re.M)
    pages = {page.name for page in folder.iterdir()}
    if pages != {"formwork.1"} | {f"formwork-{verb}.1" for verb in verbs}:
        faults.append(f"pages are {sorted(pages)}")
    for verb in verbs:
        page = (folder / f"formwork-{verb}.1").read_text().replace("\\-", "-")
        for option in re.findall(r"^  (?:-\w,)?(--[\w-]+)", output_of(command, verb, "--help"), re.M):
            if f"\\fB{option}\\fP" not in page:
                faults.append(f"{option} is not in the page of {verb}")


def check_roff(folder, faults):
    for page in sorted(folder.iterdir()):
        if shutil.which("man"):
            done = subprocess.run(["man", "--warnings", "-E", "UTF-8", "-l", "-Tutf8", "-Z", page], capture_output=True, text=True)
            faults += [f"{page.name}: {line}" for line in done.stderr.splitlines()]
        if shutil.which("mandoc"):
            done = subprocess.run(["mandoc", "-T", "lint", "-W", "warning", page], capture_output=True, text=True)
            faults += [line for line in done.stdout.splitlines() if "missing date" not in line]


# Each gives the words that the last word of the line may become.

def complete_in_bash(folder, line):
    words = line.split()
    script = (f". {folder}/formwork; COMP_WORDS=({' '.join(words)}); COMP_CWORD={len(words) - 1}; _formwork; "
              'printf "%s\\n" "${COMPREPLY[@]}"')
    return output_of("bash", "--norc", "-c", script).split()


def complete_in_fish(folder, line):
    lines = output_of("fish", "--no-config", "-c", f"source {folder}/formwork.fish; complete -C '{line}'").splitlines()
    return [line.split("\t")[0] for line in lines]


def complete_in_zsh(folder, line):
    """The line editor completes only on a terminal: it is typed there, and a key prints what the line has become."""
    setup = (f"PS1=; fpath=({folder} $fpath); autoload -U compinit; compinit -u -D; "
             "show() { print -r -- \"<$BUFFER>\" }; zle -N show; bindkey '^X' show; print ready\n")
    child, terminal = pty.fork()
    if child == 0:
        os.environ["TERM"] = "dumb"
        os.execlp("zsh", "zsh", "-f", "-i")
    try:
        read_until(terminal, setup, r"\nready")
        read = read_until(terminal, f"{line}\t\x18", r"<(formwork[^<>\n]*)>")
    finally:
        os.close(terminal)
        os.waitpid(child, 0)
    return read.group(1).split()[-1:] if read else []


def read_until(terminal, typed, pattern):
    os.write(terminal, typed.encode())
    read, end = b"", time.monotonic() + 20
    while time.monotonic() < end:
        if select.select([terminal], [], [], 0.1)[0]:
            read += os.read(terminal, 4096)
        found = re.search(pattern, read.decode(errors="replace"))
        if found:
            return found
    return None


def check_completions(folder, faults):
    for shell, complete in (("bash", complete_in_bash), ("zsh", complete_in_zsh), ("fish", complete_in_fish)):
        if not shutil.which(shell):
            print(f"skipped: there is no {shell}")
            continue
        for line, expected in CASES:
            if complete(folder, line) != [expected]:
                faults.append(f"{shell}: {line} gives {complete(folder, line)}, not {expected}")


def main():
    make_texts, command, version = sys.argv[1:]
    faults = []
    if output_of(command, "--version") != f"formwork {version}\n":
        faults.append(f"--version prints {output_of(command, '--version')}")
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        os.environ.update(HOME=name, LC_ALL="C.UTF-8")
        output_of(make_texts, name, version)
        check_pages(command, folder / "man", faults)
        check_roff(folder / "man", faults)
        for file in ("form.pdf", "data.json"):
            (folder / file).touch()
        os.chdir(name)
        check_completions(folder / "completions", faults)
    print("\n".join(faults) or "all is well")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
