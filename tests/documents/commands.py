# SPDX-License-Identifier: MIT
# The commands that the documents give their readers: those in blocks of code, and the examples of the
# English manual pages.

import os
import re

ROOT = os.path.realpath(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", ".."))

FIRST_WORD = re.compile(r"(\./|\.\./|tools/|art/|tests/|build/)\S+$"
                        r"|(cmake|ctest|apt-get|gcovr|cd|kravoltix|kravoltix-replay|setxkbmap|xrandr"
                        r"|git|flatpak-builder|SDL_\w+=\S*|KRAVOLTIX_\w+=\S*|LD_PRELOAD=\S*)$")


def documents():
    """Every document for readers, relative to the tree."""
    found = []
    for place, folders, names in os.walk(ROOT):
        folders[:] = sorted(set(folders) - {"build", ".git"})
        found += [os.path.relpath(os.path.join(place, name), ROOT)
                  for name in sorted(names) if name.endswith(".md")]
    return found + ["dist/linux/man/kravoltix.6", "dist/linux/man/kravoltix-replay.6"]


def code_lines(text):
    """The lines of indented and of fenced blocks of shell commands."""
    fence = None
    for line in text.splitlines():
        if line.startswith("```"):
            fence = line[3:].strip() if fence is None else None
        elif fence == "sh" or (fence is None and line.startswith("    ")):
            yield line.strip()


def example_lines(text):
    for line in text.splitlines():
        if line.startswith(".Dl "):
            yield line[4:].replace("\\-", "-")


def command_of(line):
    """What a reader types of a line: without the remark beside it; None if it is no command."""
    typed = re.split(r"\s{2,}|\s#", line, maxsplit=1)[0].strip()
    if not typed or not FIRST_WORD.match(typed.split()[0]):
        return None
    # A diagram names folders.
    place = typed.split()[0].rstrip(",")
    return None if "/" in place and os.path.isdir(os.path.join(ROOT, place)) else typed


def joined(lines):
    """Lines that end in a backslash go on in the next one."""
    held = ""
    for line in lines:
        held += line.rstrip("\\").rstrip() + " " if line.endswith("\\") else line
        if not line.endswith("\\"):
            yield held
            held = ""


def commands_in(document):
    with open(os.path.join(ROOT, document), encoding="utf-8") as file:
        text = file.read()
    lines = code_lines(text) if document.endswith(".md") else example_lines(text)
    return [command for command in map(command_of, joined(lines)) if command]
