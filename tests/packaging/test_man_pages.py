#!/usr/bin/python3
# SPDX-License-Identifier: MIT

# Holds the translated manual pages to the English ones: a page that misses a section, an option, a
# number or a command that the English page has would tell its readers something else.
#
# usage: test_man_pages.py

import collections
import os
import re
import shutil
import subprocess
import sys
import unittest

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
MAN = os.path.join(ROOT, "dist", "linux", "man")
INSTALL = os.path.join(ROOT, "cmake", "Install.cmake")

PAGES = ("kravoltix.6", "kravoltix-replay.6")
LANGUAGES = ("de", "es", "fr", "ja", "pl")
ENGLISH_WORDS_AT_LEAST = 1500

# These stand in the same order in every language. Arguments that are words are translated.
STRUCTURE = {"Dd", "Dt", "Os", "Sh", "Ss", "Pp", "Bl", "It", "El", "Dl"}
# Between two of the above, the order of these follows the language's own order of words.
NAMES = {"Nm", "Fl", "Cm", "Pa", "Ev", "Xr", "Ar", "Op", "Sx", "Nd", "An"}
# Their arguments are the same in every language: what a reader types and what the program reads.
LITERAL = {"Nm", "Fl", "Cm", "Pa", "Ev", "Xr"}
# Quotation marks and glue are a matter of each language's typography.
TYPOGRAPHY = {"Dq", "Ns"}
# Japanese counts in ten thousands: 16 million are 1600 of them.
COUNTED_OTHERWISE = {"ja": {"16": "1600"}}
PUNCTUATION = {",", ".", ":", ";", "|", "(", ")"}

Block = collections.namedtuple("Block", "opening names text")


def read(*path):
    with open(os.path.join(*path), encoding="utf-8") as file:
        return file.read()


def page(name, language=""):
    return read(MAN, language, name)


def split(line):
    """The macros of a macro line, each with its own arguments."""
    macros = []
    for word in re.findall(r'"[^"]*"|\S+', line[1:]):
        if word in STRUCTURE | NAMES | TYPOGRAPHY:
            macros.append((word, []))
        elif word not in PUNCTUATION:
            macros[-1][1].append(word)
    return macros


def name_of(macro, arguments):
    return (macro, *arguments) if macro in LITERAL else (macro,)


def opening_of(macro, arguments):
    """A structural macro with what no translation changes."""
    if macro in ("Dd", "Dt", "Dl"):
        return (macro, *arguments)
    if macro == "Bl":
        return (macro, *(each for each in arguments if each in ("-tag", "-bullet", "-enum", "-diag",
                                                                "-compact")))
    return (macro,)


def blocks(text):
    """The page as its structural macros, each with the names and the text up to the next one."""
    found = [Block((), collections.Counter(), [])]
    for line in text.splitlines():
        if line.startswith('.\\"'):
            continue
        if not line.startswith("."):
            found[-1].text.append(line)
            continue
        macros = split(line)
        if macros[0][0] in STRUCTURE:
            found.append(Block(opening_of(*macros.pop(0)), collections.Counter(), []))
        found[-1].names.update(name_of(*each) for each in macros if each[0] in NAMES)
    return found


def numbers(block):
    return set(re.findall(r"\d+", " ".join(block.text)))


def expected_numbers(block, language):
    counted = COUNTED_OTHERWISE.get(language, {})
    return {counted.get(number, number) for number in numbers(block)}


def rendered_words(text):
    """What is left for a reader to read, macros and comments aside."""
    words = []
    for line in text.splitlines():
        if not line.startswith('.\\"'):
            words += re.sub(r"^\.[A-Z]\w ?", "", line).split()
    return words


class English(unittest.TestCase):
    def test_the_game_s_page_tells_enough(self):
        self.assertGreaterEqual(len(rendered_words(page("kravoltix.6"))), ENGLISH_WORDS_AT_LEAST)


class Translations(unittest.TestCase):
    def compare(self, check):
        """check(english, translated, language) for every translated page, as blocks."""
        for language in LANGUAGES:
            for name in PAGES:
                with self.subTest(language=language, page=name):
                    check(blocks(page(name)), blocks(page(name, language)), language)

    def test_every_page_has_the_sections_lists_and_examples_of_the_english_one(self):
        def check(english, translated, _language):
            self.assertEqual([block.opening for block in english],
                             [block.opening for block in translated])
        self.compare(check)

    def test_options_verbs_files_and_variables_stand_where_they_stand_in_english(self):
        def check(english, translated, _language):
            for ours, theirs in zip(english, translated):
                self.assertEqual(ours.names, theirs.names, theirs.text)
        self.compare(check)

    def test_no_number_of_the_english_page_is_lost(self):
        def check(english, translated, language):
            for ours, theirs in zip(english, translated):
                self.assertLessEqual(expected_numbers(ours, language), numbers(theirs))
        self.compare(check)


class EveryPage(unittest.TestCase):
    def inspect(self, check):
        """check(path) for every page, the English ones too."""
        for language in ("", *LANGUAGES):
            for name in PAGES:
                with self.subTest(language=language or "en", page=name):
                    check(os.path.join(MAN, language, name))

    def test_it_points_only_at_sections_that_it_has(self):
        def check(path):
            sections = re.findall(r"^\.Sh (.*)$", read(path), re.MULTILINE)
            pointed_at = re.findall(r"^\.Sx (.*?)(?: [.,])?$", read(path), re.MULTILINE)
            self.assertLessEqual(set(pointed_at), set(sections))
        self.inspect(check)

    @unittest.skipUnless(shutil.which("mandoc"), "mandoc is not installed")
    def test_mandoc_has_nothing_to_say(self):
        def check(path):
            said = subprocess.run(["mandoc", "-T", "lint", "-W", "all", path], text=True,
                                  stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=False)
            # Whether a page that is referred to is installed says nothing about ours.
            self.assertEqual([line for line in said.stdout.splitlines()
                              if "referenced manual not found" not in line], [])
        self.inspect(check)


class Installation(unittest.TestCase):
    def test_every_language_is_installed(self):
        listed = re.search(r"set\(man_languages ([^)]*)\)", read(INSTALL))
        self.assertIsNotNone(listed)
        self.assertEqual(sorted(listed[1].split()), sorted(LANGUAGES))
        folders = [each for each in os.listdir(MAN) if os.path.isdir(os.path.join(MAN, each))]
        self.assertEqual(sorted(folders), sorted(LANGUAGES))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
