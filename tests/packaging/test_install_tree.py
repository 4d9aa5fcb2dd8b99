#!/usr/bin/python3
# SPDX-License-Identifier: MIT

# Lays out an installed game by `cmake --install`, moves it, and looks whether all is there and runs.
#
# usage: test_install_tree.py BUILD_DIR

import configparser
import os
import re
import shutil
import stat
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
DIST = os.path.join(ROOT, "dist", "linux")
BUILD = "build/test"

LANGUAGES = ("de", "es", "fr", "ja", "pl")
SIZES = (16, 22, 24, 32, 48, 64, 128, 256, 512)
XML_LANGUAGE = "{http://www.w3.org/XML/1998/namespace}lang"
MIME = "{http://www.freedesktop.org/standards/shared-mime-info}"

# Stands in for the game: tells its folder and its arguments, and ends with a status of its own.
STAND_IN = """#!/bin/sh
printf '%s\\n' "$PWD" "$#" "$@"
exit 42
"""

SHORT_GAME = """what The title is typed, and Escape ends the game.
expect 1 text "Thank you for testing!"
expect status 0
frame 1 time 20
frame 200 down escape
"""


def files_below(folder):
    return {os.path.relpath(os.path.join(place, name), folder)
            for place, _, names in os.walk(folder) for name in names}


def expected_files():
    data = os.path.join(ROOT, "data")
    files = {"games/kravoltix", "games/kravoltix-replay", "lib/games/kravoltix/kravoltix",
             "lib/games/kravoltix/libkravoltix_preload.so",
             "share/applications/org.example.kravoltix.desktop",
             "share/applications/org.example.kravoltix.replay.desktop",
             "share/metainfo/org.example.kravoltix.metainfo.xml",
             "share/mime/packages/kravoltix.xml"}
    files |= {f"share/games/kravoltix/{path}" for path in files_below(data)}
    icons = ("apps/kravoltix", "mimetypes/application-x-kravoltix-replay")
    for icon in icons:
        files |= {f"share/icons/hicolor/{size}x{size}/{icon}.png" for size in SIZES}
        files.add(f"share/icons/hicolor/scalable/{icon}.svg")
    for name in ("kravoltix", "kravoltix-replay"):
        files |= {f"share/man/{folder}man6/{name}.6"
                  for folder in ("", *(language + "/" for language in LANGUAGES))}
        files |= {f"share/bash-completion/completions/{name}", f"share/zsh/vendor-completions/_{name}",
                  f"share/fish/vendor_completions.d/{name}.fish"}
    return files


class Installed(unittest.TestCase):
    """An installed tree that has been moved since."""

    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.mkdtemp(prefix="kravoltix-install-")
        prefix = os.path.join(cls.scratch, "first")
        # A test's build may be half a gigabyte of debugging; symbols are no part of what is looked at.
        subprocess.run(["cmake", "--install", BUILD, "--prefix", prefix, "--strip"], check=True,
                       stdout=subprocess.DEVNULL)
        cls.tree = os.path.join(cls.scratch, "another place", "game's")
        os.makedirs(os.path.dirname(cls.tree))
        os.rename(prefix, cls.tree)

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.scratch)

    def path(self, *parts):
        return os.path.join(self.tree, *parts)

    def test_every_file_is_there_and_no_other(self):
        self.assertEqual(files_below(self.tree), expected_files())

    def test_only_programs_can_be_executed(self):
        programs = {path for path in files_below(self.tree)
                    if os.stat(self.path(path)).st_mode & stat.S_IXUSR}
        programs.discard("lib/games/kravoltix/libkravoltix_preload.so")
        self.assertEqual(programs, {"games/kravoltix", "games/kravoltix-replay",
                                    "lib/games/kravoltix/kravoltix"})

    def test_the_launcher_changes_neither_arguments_nor_status(self):
        shutil.copytree(self.tree, os.path.join(self.scratch, "copy"))
        program = os.path.join(self.scratch, "copy", "lib/games/kravoltix/kravoltix")
        with open(program, "w", encoding="utf-8") as file:
            file.write(STAND_IN)
        link = os.path.join(self.scratch, "link")
        os.symlink(os.path.join("copy", "games", "kravoltix"), link)
        words = ["--fullscreen", "two words", "", "*", "$HOME", "-ns", "'"]
        for launcher in (link, os.path.join(self.scratch, "copy", "games", "kravoltix")):
            run = subprocess.run([launcher, *words], stdout=subprocess.PIPE, text=True, cwd="/",
                                 check=False)
            self.assertEqual(run.returncode, 42)
            data = os.path.realpath(os.path.join(self.scratch, "copy", "share/games/kravoltix"))
            self.assertEqual(run.stdout.split("\n")[:-1], [data, str(len(words)), *words])

    def test_the_moved_game_plays_and_proves_a_scenario(self):
        scenario = os.path.join(self.scratch, "short.scenario")
        with open(scenario, "w", encoding="utf-8") as file:
            file.write(SHORT_GAME)
        for words in (["kravoltix", "--help"], ["kravoltix-replay", "verify", scenario]):
            run = subprocess.run([self.path("games", words[0]), *words[1:]], cwd="/",
                                 stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                                 check=False)
            self.assertEqual(run.returncode, 0, run.stdout)


class Descriptions(unittest.TestCase):
    """What the desktop reads, in all languages."""

    def desktop_entry(self, name):
        entry = configparser.RawConfigParser(interpolation=None, delimiters=("=",))
        entry.optionxform = str
        entry.read(os.path.join(DIST, "applications", name), encoding="utf-8")
        return entry

    def test_the_game_s_entry_has_its_two_actions(self):
        entry = self.desktop_entry("org.example.kravoltix.desktop")
        self.assertEqual(entry["Desktop Entry"]["Actions"], "fullscreen;nosound;")
        for action in ("fullscreen", "nosound"):
            self.assertEqual(entry[f"Desktop Action {action}"]["Exec"], f"kravoltix --{action}")

    def test_recordings_open_in_the_player(self):
        entry = self.desktop_entry("org.example.kravoltix.replay.desktop")["Desktop Entry"]
        self.assertEqual(entry["MimeType"], "application/x-kravoltix-replay;")
        self.assertEqual(entry["Exec"], "kravoltix-replay play %f")
        kind = xml.etree.ElementTree.parse(os.path.join(DIST, "mime", "kravoltix.xml")).getroot()[0]
        self.assertEqual(kind.get("type"), "application/x-kravoltix-replay")
        self.assertEqual(kind.find(MIME + "glob").get("pattern"), "*.kvx")
        self.assertEqual(kind.find(MIME + "icon").get("name"), "application-x-kravoltix-replay")

    def test_every_text_of_a_desktop_entry_is_in_every_language(self):
        for name in os.listdir(os.path.join(DIST, "applications")):
            entry = self.desktop_entry(name)
            for section in entry.sections():
                for key in ("Name", "GenericName", "Comment", "Keywords"):
                    if key not in entry[section] or entry[section][key] == "KRAVOLTIX":
                        continue
                    for language in LANGUAGES:
                        self.assertIn(f"{key}[{language}]", entry[section], f"{name}: {section}")

    def languages_of(self, elements):
        return sorted(each.get(XML_LANGUAGE, "en") for each in elements)

    def test_every_text_of_metainfo_and_mime_type_is_in_every_language(self):
        everyone = sorted(("en", *LANGUAGES))
        path = os.path.join(DIST, "metainfo", "org.example.kravoltix.metainfo.xml.in")
        metainfo = xml.etree.ElementTree.parse(path).getroot()
        self.assertEqual(self.languages_of(metainfo.findall("summary")), everyone)
        for parent, tag in (("description", "p"), ("releases/release/description", "p")):
            texts = metainfo.findall(f"{parent}/{tag}")
            self.assertEqual(self.languages_of(texts), sorted(everyone * (len(texts) // 6)))
        for screenshot in metainfo.findall("screenshots/screenshot"):
            self.assertEqual(self.languages_of(screenshot.findall("caption")), everyone)
        kind = xml.etree.ElementTree.parse(os.path.join(DIST, "mime", "kravoltix.xml")).getroot()[0]
        self.assertEqual(self.languages_of(kind.findall(MIME + "comment")), everyone)

    def test_metainfo_has_rating_controls_releases_and_screenshots(self):
        path = os.path.join(DIST, "metainfo", "org.example.kravoltix.metainfo.xml.in")
        metainfo = xml.etree.ElementTree.parse(path).getroot()
        self.assertEqual(metainfo.find("content_rating").get("type"), "oars-1.1")
        self.assertEqual(metainfo.find("supports/control").text, "keyboard")
        self.assertGreaterEqual(len(metainfo.findall("screenshots/screenshot")), 3)
        with open(os.path.join(ROOT, "CMakeLists.txt"), encoding="utf-8") as file:
            version = re.search(r"project\(kravoltix VERSION (\S+)", file.read())[1]
        self.assertEqual(metainfo.find("releases/release").get("version"), version)


class Completions(unittest.TestCase):
    def test_every_shell_knows_every_option_of_the_recorder(self):
        tool = os.path.join(BUILD, "kravoltix-replay")
        verbs = ("record", "play", "verify", "video", "moments", "info")
        options = set()
        for verb in verbs:
            told = subprocess.run([tool, verb, "--help"], stdout=subprocess.PIPE, text=True, check=True)
            options |= set(re.findall(r"--([a-z][a-z-]+)", told.stdout))
        self.assertGreater(len(options), 10)
        for name, form in (("kravoltix-replay.bash", "--{}"), ("_kravoltix-replay", "--{}"),
                           ("kravoltix-replay.fish", "-l {}")):
            with open(os.path.join(DIST, "completions", name), encoding="utf-8") as file:
                text = file.read()
            for verb in verbs:
                self.assertIn(verb, text, name)
            for option in options:
                self.assertIn(form.format(option), text, name)


if __name__ == "__main__":
    if len(sys.argv) > 1:
        BUILD = sys.argv.pop(1)
    unittest.main(argv=sys.argv[:1])
