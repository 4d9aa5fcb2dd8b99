# SPDX-License-Identifier: CC0-1.0
#
# What the tests of the pictures and sounds say: the names of the tests are sentences about what a
# player sees or hears.

import ast
import collections
import glob
import os
import re
import subprocess
import sys

import pieces

TESTS = os.path.join(pieces.ROOT, "tests", "assets")
OF_PROGRAMS = ("test_art_programs.py", "test_page.py")  # not about pictures or sounds
SECONDS_FOR_A_PROGRAM = 120

Sentence = collections.namedtuple("Sentence", "words answer")

YES, NO, NOT_TESTED = "yes", "no", "not tested"

FAULT = re.compile(r"^(?:FAIL|ERROR): (test_\w+) \(__main__\.(\w+)", re.MULTILINE)
SKIPPED = re.compile(r"^(test_\w+) \(__main__\.(\w+).*skipped ", re.MULTILINE)


def words_of(name):
    return name.removeprefix("test_").replace("_", " ")


def without_answer(line):
    """A line of the page as it is before the tests have run."""
    return re.sub(rf" \(\*\*(?:{NO}|{NOT_TESTED})\*\*\)$", "", line)


def programs():
    return [path for path in sorted(glob.glob(os.path.join(TESTS, "test_*.py")))
            if os.path.basename(path) not in OF_PROGRAMS]


def names(program):
    """(test, class) of all tests of a program, in its order."""
    with open(program, encoding="utf-8") as file:
        tree = ast.parse(file.read())
    return [(part.name, group.name) for group in tree.body if isinstance(group, ast.ClassDef)
            for part in group.body
            if isinstance(part, ast.FunctionDef) and part.name.startswith("test_")]


def run(program, data):
    """Tests of a program that found a fault, and those that were not run."""
    command = [sys.executable, "-B", program, os.path.abspath(data), "-v"]
    report = subprocess.run(command, capture_output=True, text=True,
                            timeout=SECONDS_FOR_A_PROGRAM).stderr
    if not re.search(r"^Ran \d+ test", report, re.MULTILINE):
        raise pieces.ArtError(f"{os.path.basename(program)}: {report.strip()[-200:]}")
    return set(FAULT.findall(report)), set(SKIPPED.findall(report))


def collect(data, with_answers):
    """Sentences by the name of their test program and class; the tests are run for answers."""
    found = collections.defaultdict(list)
    for program in programs():
        faults, skipped = run(program, data) if with_answers else ((), ())
        for test in names(program):
            answer = NO if test in faults else NOT_TESTED if test in skipped else YES
            found[os.path.basename(program), test[1]].append(Sentence(words_of(test[0]), answer))
    return found
