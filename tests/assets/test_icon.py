#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: MIT
#
# Measures the icons of the game and of its recordings in all their sizes; they lie beside the data
# folder.
# usage: test_icon.py DATA_DIR

import os
import re
import sys
import unittest
import xml.etree.ElementTree

import numpy as np
from PIL import Image

DATA = "data"
FOLDER = "../dist/linux/share/icons/hicolor"
SIZES = (16, 22, 24, 32, 48, 64, 128, 256, 512)
LUMA = np.array([0.299, 0.587, 0.114])


FILE_ICON = "application-x-kravoltix-replay"
SVG = "{http://www.w3.org/2000/svg}"


def path(folder, name, kind="apps"):
    return os.path.join(DATA, FOLDER, folder, kind, name)


def load(size, name="kravoltix", kind="apps"):
    return np.array(Image.open(path(f"{size}x{size}", name + ".png", kind)))


class DesktopIcon(unittest.TestCase):
    def test_exists_in_every_size_with_clear_corners(self):
        for size in SIZES:
            with self.subTest(size):
                picture = load(size)
                self.assertEqual(picture.shape, (size, size, 4))
                self.assertTrue((picture[[0, 0, -1, -1], [0, -1, 0, -1], 3] < 64).all())
                self.assertEqual(picture[size // 2, size // 2, 3], 255)

    def test_light_ship_stands_out_from_its_dark_tile(self):
        for size in SIZES:
            with self.subTest(size):
                picture = load(size)
                light = picture[..., :3] @ LUMA / 255
                inside = picture[..., 3] == 255
                self.assertGreater((light[inside] > 0.55).mean(), 0.05)
                self.assertGreater((light[inside] < 0.20).mean(), 0.25)

    def test_shows_hull_wing_and_accent_in_every_size(self):
        for size in SIZES:
            with self.subTest(size):
                red, green, blue, _ = np.moveaxis(load(size).astype(int), -1, 0)
                self.assertGreater(((blue - red > 90) & (blue > 150)).mean(), 0.03)
                self.assertGreater(((red - blue > 70) & (red > 170)).mean(), 0.008)
                self.assertGreater(((red > 160) & (np.abs(red - blue) < 50)).mean(), 0.03)

    def test_ship_sits_in_the_middle_of_its_tile(self):
        for size in SIZES:
            with self.subTest(size):
                picture = load(size).astype(int)
                margin = max(2, size // 12)
                spread = picture[..., :3].max(axis=2) > 130
                rows, columns = np.nonzero(spread[margin:-margin, margin:-margin])
                centre_row, centre_column = ((places.mean() + 0.5 + margin) / size
                                             for places in (rows, columns))
                # The wings of an upright ship lie in its rear half.
                self.assertAlmostEqual(centre_row, 0.55, delta=0.07)
                self.assertAlmostEqual(centre_column, 0.5, delta=0.05)

    def test_drawing_is_well_formed_and_square(self):
        root = xml.etree.ElementTree.parse(path("scalable", "kravoltix.svg")).getroot()
        self.assertEqual(root.get("viewBox"), "0 0 512 512")


class RecordingIcon(unittest.TestCase):
    def load(self, size):
        return load(size, FILE_ICON, "mimetypes")

    def test_is_an_upright_page_in_every_size(self):
        for size in SIZES:
            with self.subTest(size):
                picture = self.load(size)
                self.assertEqual(picture.shape, (size, size, 4))
                rows, columns = np.nonzero(picture[..., 3] > 200)
                height, width = np.ptp(rows) + 1, np.ptp(columns) + 1
                self.assertGreater(height / width, 1.1)
                # Left of the page and right of it nothing is drawn; its upper right corner is cut.
                self.assertTrue((picture[:, [0, -1], 3] == 0).all())
                self.assertEqual(picture[round(size * 0.05), round(size * 0.84), 3], 0)

    def test_shows_the_ship_and_a_bright_sign_for_playing(self):
        for size in SIZES:
            with self.subTest(size):
                red, green, blue, alpha = np.moveaxis(self.load(size).astype(int), -1, 0)
                sign = (red > 180) & (blue < 120) & (green > 90) & (alpha == 255)
                rows, columns = np.nonzero(sign[size // 2:, size // 2:])
                self.assertGreater(len(rows) / size ** 2, 0.012)
                self.assertAlmostEqual(rows.mean() / size, 0.28, delta=0.06)
                self.assertAlmostEqual(columns.mean() / size, 0.10, delta=0.06)
                wings = (blue - red > 90) & (blue > 150)
                self.assertGreater(wings.mean(), 0.008)

    def test_is_another_picture_than_the_game_s(self):
        for size in SIZES:
            with self.subTest(size):
                game, recording = load(size)[..., 3], self.load(size)[..., 3]
                self.assertGreater((game != recording).mean(), 0.10)

    def test_drawing_has_the_ship_and_every_paint_that_it_uses(self):
        with open(path("scalable", FILE_ICON + ".svg", "mimetypes"), encoding="utf-8") as file:
            text = file.read()
        root = xml.etree.ElementTree.fromstring(text)
        self.assertEqual(root.get("viewBox"), "0 0 512 512")
        given = {each.get("id") for each in root.iter() if each.get("id")}
        used = set(re.findall(r"url\(#([^)]*)\)", text)) | set(re.findall(r'href="#([^"]*)"', text))
        self.assertLessEqual(used, given)
        self.assertGreater(len(list(root.iter(SVG + "path"))), 20)


if __name__ == "__main__":
    if len(sys.argv) > 1:
        DATA = sys.argv.pop(1)
    unittest.main()
