#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Looks whether the pictures cost what they show, and tries tools/pictures on made-up pictures:
test_pictures.py DATA_DIR"""

import os
import subprocess
import sys
import tempfile
import unittest
import zlib

import numpy as np
from PIL import Image
from PIL.PngImagePlugin import PngInfo

sys.dont_write_bytecode = True
TREE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
PROGRAM = os.path.join(TREE, "tools", "pictures")
sys.path.append(os.path.join(TREE, "art"))

import kit
import png

DATA = sys.argv.pop(1) if len(sys.argv) > 1 and not sys.argv[1].startswith("-") else "data"

HEIGHT, WIDTH = 7, 9
PAETH = 4  # the kind of row that is slowest to unpack


def run(*words):
    result = subprocess.run([PROGRAM, *words], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                            text=True, check=False)
    return result.returncode, result.stdout, result.stderr


def dot(pixel=(200, 100, 50, 255)):
    """A clear picture with one pixel that is not."""
    picture = np.zeros((HEIGHT, WIDTH, 4), np.uint8)
    picture[2, 3] = pixel
    return picture


class MadeUp(unittest.TestCase):
    """Each picture is written past art/kit.py, which would put it right."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.path = os.path.join(self.folder, "a.png")

    def write(self, picture):
        with open(self.path, "wb") as file:
            file.write(png.packed(picture))

    def assert_fault(self, fault):
        self.assertEqual(run("--check", self.folder)[:2], (1, f"a.png: {fault}\n"))

    def assert_no_fault(self):
        self.assertEqual(run("--check", self.folder),
                         (0, "1 pictures cost what they show\n", ""))

    def numbers(self):
        """The picture's line of the table."""
        status, output, _ = run(self.folder)
        self.assertEqual(status, 0)
        return output.splitlines()[1].split()

    def test_a_picture_that_costs_what_it_shows_has_no_fault(self):
        self.write(dot())
        self.assert_no_fault()

    def test_the_table_counts_pixels_and_what_they_cost(self):
        self.write(dot())
        size = os.path.getsize(self.path)
        self.assertEqual(self.numbers(), ["a.png", "9x7", "62", "1", "0", "0", "0", "1x1+3+2",
                                          "0.2", str(size)])

    def test_an_empty_picture_has_no_box(self):
        self.write(dot((0, 0, 0, 0)))
        self.assertEqual(self.numbers()[7], "-")
        self.assert_no_fault()

    def test_the_table_counts_what_changes_nothing_or_little_behind_it(self):
        # pixel, how often it changes nothing, how often by one step at most
        for pixel, nothing, one_step in (((0, 0, 0, 1), 1, 1), ((255, 255, 255, 1), 0, 1),
                                         ((128, 128, 128, 2), 0, 1), ((129, 129, 129, 2), 0, 0),
                                         ((0, 0, 0, 2), 0, 1), ((0, 0, 0, 3), 0, 0)):
            with self.subTest(pixel=pixel):
                self.write(dot(pixel))
                self.assertEqual(self.numbers()[4:6], [str(nothing), str(one_step)])

    def test_a_clear_pixel_with_a_colour_is_a_fault(self):
        self.write(dot((1, 0, 0, 0)))
        self.assert_fault("clear pixels with a colour: 1")

    def test_a_pixel_that_is_not_seen_is_a_fault(self):
        for pixel in ((255, 255, 255, 3), (0, 0, 0, 16), (32, 32, 32, 16)):
            with self.subTest(pixel=pixel):
                self.write(dot(pixel))
                self.assert_fault("pixels that are blended and not seen: 1")

    def test_a_pixel_that_is_just_seen_is_none(self):
        for pixel in ((255, 255, 255, 4), (0, 0, 0, 17), (33, 32, 32, 16)):
            with self.subTest(pixel=pixel):
                self.write(dot(pixel))
                self.assert_no_fault()

    def test_a_picture_without_alpha_is_a_fault(self):
        Image.new("RGB", (WIDTH, HEIGHT)).save(self.path)
        status, output, _ = run("--check", self.folder)
        self.assertEqual(status, 1)
        self.assertIn("a.png: is RGB, not RGBA: the game would draw its whole box\n", output)

    def test_rows_that_are_slow_to_unpack_are_a_fault(self):
        rows = b"".join(bytes([PAETH]) + bytes(WIDTH * 4) for _ in range(HEIGHT))
        content = png.packed(dot())
        header = content[:content.index(b"IDAT") - 4]
        with open(self.path, "wb") as file:
            file.write(header + png.chunk(b"IDAT", zlib.compress(rows)) + png.chunk(b"IEND", b""))
        self.assert_fault(f"rows that are slow to unpack: {HEIGHT}")

    def test_a_file_that_holds_more_than_pixels_is_a_fault(self):
        text = PngInfo()
        text.add_text("Comment", "seldom read")
        Image.fromarray(np.zeros((1, 1, 4), np.uint8), "RGBA").save(self.path, pnginfo=text)
        self.assertIn("a.png: holds more than pixels: tEXt\n", run("--check", self.folder)[1])

    def test_a_broken_file_is_a_fault(self):
        self.write(dot())
        os.truncate(self.path, os.path.getsize(self.path) // 2)
        status, output, _ = run("--check", self.folder)
        self.assertEqual(status, 1)
        self.assertIn("a.png: cannot be read: ", output)

    def test_a_folder_without_pictures_is_no_success(self):
        for folder in (self.folder, os.path.join(self.folder, "missing")):
            with self.subTest(folder=folder):
                self.assertEqual(run("--check", folder),
                                 (2, "", f"pictures: no picture in {folder}\n"))


class Packing(unittest.TestCase):
    def test_a_packed_picture_has_the_pixels_that_it_was_made_of(self):
        chance = np.random.RandomState(5)
        for height, width in ((1, 1), (1, 5), (5, 1), (8, 13)):
            picture = chance.randint(0, 256, (height, width, 4), np.uint8)
            with self.subTest(height=height, width=width), tempfile.NamedTemporaryFile() as file:
                file.write(png.packed(picture))
                file.flush()
                self.assertTrue((kit.load(file.name) == picture).all())

    def test_saving_leaves_out_what_is_not_seen_and_nothing_else(self):
        picture = dot((32, 32, 32, 16))
        picture[4, 5] = (33, 32, 32, 16)
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "a.png")
            kit.save(path, picture)
            saved = kit.load(path)
        self.assertEqual(saved[2, 3].tolist(), [0, 0, 0, 0])
        self.assertEqual(saved[4, 5].tolist(), [33, 32, 32, 16])


class OfTheGame(unittest.TestCase):
    def test_the_pictures_of_the_game_cost_what_they_show(self):
        self.assertEqual(run("--check", DATA)[:2], (0, "76 pictures cost what they show\n"))


if __name__ == "__main__":
    unittest.main()
