#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: MIT

# Runs art/render, art/check and art/sheets on a small art folder of its own, with two pieces.
#
# usage: test_art_programs.py [DATA_DIR]; the folder is not read

import os
import shutil
import subprocess
import sys
import tempfile
import unittest
import wave

import numpy as np
from PIL import Image

ART = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "art")
PROGRAMS = ("render", "check", "sheets", "pieces.py", "kit.py", "png.py")

SHIPS = """#!/usr/bin/python3
import os, sys, wave
from PIL import Image
out = sys.argv[1]
os.makedirs(out + "/ships", exist_ok=True)
os.makedirs(out + "/sounds", exist_ok=True)
Image.new("RGBA", (4, 3), (10, 20, 30, 255)).save(out + "/ships/a.png")
print("done ships/a.png", flush=True)
with wave.open(out + "/sounds/b.wav", "wb") as file:
    file.setparams((1, 2, 22050, 0, "NONE", ""))
    file.writeframes(bytes(20))
print("done sounds/b.wav", flush=True)
"""
SHIPS_ASSETS = "ships/a.png 0.5\nsounds/b.wav 1.5\n"
ICON = """#!/usr/bin/python3
import sys
open(sys.argv[1] + "/game.svg", "w").write("<svg/>")
print("done game.svg")
"""
ICON_ASSETS = "output icons\ngame.svg 1\n"


class Workshop(unittest.TestCase):
    def setUp(self):
        self.root = tempfile.mkdtemp(prefix="art-test-")
        self.addCleanup(shutil.rmtree, self.root)
        os.makedirs(self.path("art"))
        for name in PROGRAMS:
            shutil.copy(os.path.join(ART, name), self.path("art"))
        self.piece("ships", SHIPS, SHIPS_ASSETS)
        self.piece("icon", ICON, ICON_ASSETS)

    def path(self, *parts):
        return os.path.join(self.root, *parts)

    def piece(self, name, program, assets):
        os.makedirs(self.path("art", name), exist_ok=True)
        with open(self.path("art", name, "assets.txt"), "w", encoding="utf-8") as file:
            file.write(assets)
        with open(self.path("art", name, "render"), "w", encoding="utf-8") as file:
            file.write(program)
        os.chmod(self.path("art", name, "render"), 0o755)

    def run_art(self, program, *arguments):
        """Exit status, standard output and standard error."""
        done = subprocess.run([self.path("art", program), *arguments], cwd=self.root, text=True,
                              capture_output=True, timeout=60)
        return done.returncode, done.stdout, done.stderr


class Render(Workshop):
    def test_fills_data_and_the_folders_beside_it(self):
        self.assertEqual(self.run_art("render")[0], 0)
        for path in ("data/ships/a.png", "data/sounds/b.wav", "icons/game.svg"):
            with self.subTest(path):
                self.assertTrue(os.path.exists(self.path(path)))

    def test_writes_nothing_outside_the_folder_that_was_asked_for(self):
        self.assertEqual(self.run_art("render", "-o", self.path("elsewhere"))[0], 0)
        for path in ("elsewhere/ships/a.png", "elsewhere/icons/game.svg"):
            with self.subTest(path):
                self.assertTrue(os.path.exists(self.path(path)))
        self.assertEqual(sorted(os.listdir(self.root)), ["art", "elsewhere"])

    def test_tells_each_asset_and_the_time_left(self):
        lines = self.run_art("render", "ships")[1].splitlines()
        self.assertEqual(lines[0], "2 pictures and sounds, about 2 s")
        self.assertRegex(lines[1], r"^\[1/2\] ships/a\.png  \d+\.\d s, about \d+ s left$")
        self.assertRegex(lines[2], r"^\[2/2\] sounds/b\.wav  \d+\.\d s, about 0 s left$")

    def test_renders_only_the_pieces_that_were_named(self):
        self.run_art("render", "icon")
        self.assertEqual(sorted(os.listdir(self.root)), ["art", "icons"])

    def test_an_unknown_piece_is_answered_with_the_known_ones(self):
        status, _, error = self.run_art("render", "shipss")
        self.assertEqual(status, 2)
        self.assertEqual(error, "render: no piece is called shipss; there are: icon, ships\n")

    def test_a_piece_that_fails_is_named_with_its_last_words_and_the_others_go_on(self):
        self.piece("ships", "#!/bin/sh\necho 'needs the package povray' >&2\nexit 3\n",
                   SHIPS_ASSETS)
        status, _, error = self.run_art("render")
        self.assertEqual(status, 2)
        self.assertIn("ships: its render program ended with status 3", error)
        self.assertIn("needs the package povray", error)
        self.assertTrue(os.path.exists(self.path("icons/game.svg")))

    def test_an_asset_that_was_not_made_is_a_failure(self):
        self.piece("ships", SHIPS, SHIPS_ASSETS + "ships/c.png 1\n")
        status, _, error = self.run_art("render")
        self.assertEqual((status, error), (2, "render: ships: did not render ships/c.png\n"))

    def test_an_asset_that_was_not_announced_is_a_failure(self):
        self.piece("ships", SHIPS, "ships/a.png 1\n")
        status, _, error = self.run_art("render")
        self.assertEqual(status, 2)
        self.assertIn("unexpected from its render program: done sounds/b.wav", error)

    def test_a_broken_list_is_told_with_its_line(self):
        self.piece("ships", SHIPS, "ships/a.png soon\n")
        status, _, error = self.run_art("render")
        self.assertEqual(status, 2)
        self.assertIn("not `PATH SECONDS`: ships/a.png soon", error)


class Check(Workshop):
    def setUp(self):
        super().setUp()
        self.run_art("render")

    def test_is_content_with_what_was_rendered(self):
        status, output, _ = self.run_art("check")
        self.assertEqual((status, output.splitlines()[-1]), (0, "all 3 files are as rendered"))

    def test_does_not_mind_another_packing_of_the_same_pixels(self):
        path = self.path("data/ships/a.png")
        with Image.open(path) as image:
            image.load()
        image.save(path, compress_level=0)
        self.assertEqual(self.run_art("check")[0], 0)

    def fault(self, *arguments):
        status, output, _ = self.run_art("check", *arguments)
        self.assertEqual(status, 1)
        return output.splitlines()[-1]

    def test_counts_the_pixels_that_differ(self):
        path = self.path("data/ships/a.png")
        pixels = np.array(Image.open(path))
        pixels[0, :2, 1] += 7
        pixels[2, 3, 0] += 9
        Image.fromarray(pixels).save(path)
        self.assertEqual(self.fault(), "differs: data/ships/a.png: 3 of 12 pixels differ, "
                                       "largest difference 9")

    def test_counts_the_samples_that_differ(self):
        with wave.open(self.path("data/sounds/b.wav"), "wb") as file:
            file.setparams((1, 2, 22050, 0, "NONE", ""))
            file.writeframes(np.array([0, 0, -300] + 7 * [0], "<i2").tobytes())
        self.assertEqual(self.fault(), "differs: data/sounds/b.wav: 1 of 10 samples differ, "
                                       "largest difference 300")

    def test_notices_another_size(self):
        Image.new("RGBA", (4, 4)).save(self.path("data/ships/a.png"))
        self.assertEqual(self.fault(), "differs: data/ships/a.png: is RGBA 4x4, rendered RGBA 4x3")

    def test_notices_a_lost_alpha_channel(self):
        Image.new("RGB", (4, 3), (10, 20, 30)).save(self.path("data/ships/a.png"))
        self.assertIn("is RGB 4x3, rendered RGBA 4x3", self.fault())

    def test_notices_a_broken_file(self):
        with open(self.path("data/sounds/b.wav"), "wb") as file:
            file.write(b"noise")
        self.assertIn("differs: data/sounds/b.wav: cannot be read", self.fault())

    def test_notices_a_missing_file(self):
        os.remove(self.path("data/sounds/b.wav"))
        self.assertEqual(self.fault(), "missing: data/sounds/b.wav")

    def test_notices_a_file_that_no_piece_makes(self):
        open(self.path("data/ships/old.png"), "w", encoding="utf-8").close()
        self.assertEqual(self.fault(), "made by no piece: data/ships/old.png")
        self.assertEqual(self.run_art("check", "ships")[0], 0, "only the named piece is looked at")

    def test_notices_a_change_beside_data(self):
        with open(self.path("icons/game.svg"), "a", encoding="utf-8") as file:
            file.write(" ")
        self.assertEqual(self.fault(), "differs: icons/game.svg: is 7 bytes, rendered 6 bytes")

    def test_compares_another_tree_with_one_that_is_rendered_already(self):
        self.run_art("render", "-o", self.path("one"))
        self.run_art("render", "-o", self.path("two"))
        self.assertEqual(self.run_art("check", "-d", "one", "-r", "two")[0], 0)
        os.remove(self.path("one/ships/a.png"))
        self.assertEqual(self.fault("-d", "one", "-r", "two"), "missing: data/ships/a.png")

    def test_cannot_tell_when_rendering_fails(self):
        self.piece("ships", "#!/bin/sh\nexit 1\n", SHIPS_ASSETS)
        self.assertEqual(self.run_art("check")[0], 2)


class Sheets(Workshop):
    def test_makes_sheets_and_names_the_pictures_that_are_missing(self):
        self.run_art("render")
        status, output, error = self.run_art("sheets", "-o", "sheets")
        self.assertEqual(status, 1)
        self.assertIn("no ships/ship01.png, its place stays empty", error)
        self.assertIn("sheets/mock-play-1x.png", output)
        with Image.open(self.path("sheets/mock-play-1x.png")) as image:
            self.assertEqual((image.mode, image.size), ("RGB", (640, 480)))

    def test_shows_an_earlier_version_on_the_left(self):
        self.run_art("render")
        self.run_art("sheets", "-o", "sheets", "-b", "data")
        with Image.open(self.path("sheets/mock-play-1x.png")) as image:
            pixels = np.array(image)
        self.assertEqual(pixels.shape[1], 640 + 12 + 640)
        self.assertTrue((pixels[:, :640] == pixels[:, -640:]).all())

    def test_a_wrong_folder_is_told(self):
        status, _, error = self.run_art("sheets", "-o", "sheets", "-d", "nowhere")
        self.assertEqual((status, error), (2, "sheets: there is no folder nowhere\n"))


if __name__ == "__main__":
    if len(sys.argv) > 1 and os.path.isdir(sys.argv[1]):
        del sys.argv[1]
    unittest.main()
