#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: MIT

# Measures the pictures on the glass: text, gauges, target marks, and the two small shots.
#
# usage: test_hud.py DATA_DIR

import colorsys
import os
import sys
import unittest

import numpy as np
from PIL import Image

DATA = "data"

SIZES = {  # width and height
    "fonts/impact/letters.png": (208, 9), "fonts/impact/letter_cursor.png": (80, 9),
    "fonts/impact/numbers_a.png": (60, 9), "fonts/impact/numbers_mini.png": (40, 5),
    "fonts/impact/fps_a.png": (19, 9), "fonts/impact/cross.png": (5, 5),
    "display/enemyrect_topleft.png": (13, 13), "display/enemyrect_topright.png": (13, 13),
    "display/enemyrect_bottomleft.png": (13, 13), "display/enemyrect_bottomright.png": (13, 13),
    "display/energy01.png": (10, 65), "display/energyscale.png": (9, 67),
    "shots/shot01a.png": (3, 11), "shots/e_shot01c.png": (11, 8),
}

BLACK = (0, 0, 0)
FIRE = (255, 236, 140)  # the hottest colour that a blast keeps over a large area
ORANGE = (255, 180, 40)  # what a fireball shows most of
EMBER = (255, 106, 8)
HULL = (230, 236, 244)
WHITE = (255, 255, 255)  # a blast's flash, the worst ground of all

GLYPH_ROWS = 8  # the ninth row is for the shadow
SOLID = 0.75  # part of a glyph's pixel that the glyph, not its shadow, must cover to be seen as it
LIT = 0.1  # luminance over black from which a pixel belongs to a glyph and not to a shadow
SEGMENT = 8  # energy that a hit costs, and rows of a segment
SEEN = 1.3  # contrast from which a small thing parts from its ground
CLEARLY_APART = 15  # CIE L*a*b*, between the mean colours of two things

# How linear light is seen with full sight and with the three common kinds of colour blindness.
SIGHT = {
    "full sight": [[1, 0, 0], [0, 1, 0], [0, 0, 1]],
    "red-blind": [[0.152286, 1.052583, -0.204868], [0.114503, 0.786281, 0.099216],
                  [-0.003882, -0.048116, 1.051998]],
    "green-blind": [[0.367322, 0.860646, -0.227968], [0.280085, 0.672501, 0.047413],
                    [-0.011820, 0.042940, 0.968881]],
    "blue-blind": [[1.255528, -0.076749, -0.178779], [-0.078411, 0.930809, 0.147602],
                   [0.004733, 0.691367, 0.303900]],
}
TO_XYZ = np.array([[0.4124, 0.3576, 0.1805], [0.2126, 0.7152, 0.0722], [0.0193, 0.1192, 0.9505]])
WHITE_XYZ = np.array([0.9505, 1.0, 1.089])


def load(path):
    return np.array(Image.open(os.path.join(DATA, path)).convert("RGBA")).astype(np.int64)


def blend(screen, picture, x=0, y=0):
    """The game's blend."""
    height, width = picture.shape[:2]
    part = screen[y:y + height, x:x + width]
    part += ((picture[..., :3] - part) * picture[..., 3:] + 255) >> 8


def ground(colour, width, height):
    return np.tile(np.array(colour, np.int64), (height, width, 1))


def over(picture, colour):
    screen = ground(colour, picture.shape[1], picture.shape[0])
    blend(screen, picture)
    return screen


def linear(pixels):
    """Light (0 to 1) of 8-bit colours."""
    value = np.asarray(pixels) / 255.0
    return np.where(value <= 0.04045, value / 12.92, ((value + 0.055) / 1.055) ** 2.4)


def luminance(pixels):
    """Relative luminance (0 to 1), as the eye weighs the light of a display."""
    return linear(pixels) @ np.array([0.2126, 0.7152, 0.0722])


def typical(picture, sight):
    """CIE L*a*b* of what belongs to a thing, as somebody with this sight sees it."""
    colours = linear(picture[picture[..., 3] >= 128][:, :3])
    xyz = np.clip(colours @ np.array(SIGHT[sight]).T, 0, 1) @ TO_XYZ.T / WHITE_XYZ
    f = np.where(xyz > 0.008856, np.cbrt(xyz), 7.787 * xyz + 16 / 116)
    return np.stack([116 * f[:, 1] - 16, 500 * (f[:, 0] - f[:, 1]),
                     200 * (f[:, 1] - f[:, 2])], axis=1).mean(axis=0)


def contrast(one, other):
    """Contrast ratio of two luminances, 1 to 21."""
    return (max(one, other) + 0.05) / (min(one, other) + 0.05)


def hue(pixel):
    """Hue in degrees."""
    return 360 * colorsys.rgb_to_hsv(*(np.asarray(pixel)[:3] / 255.0))[0]


def cells(path, width):
    sheet = load(path)
    return [sheet[:, x:x + width] for x in range(0, sheet.shape[1], width)]


def lit(cell):
    """Which pixels of a cell belong to the glyph: those that shine over black."""
    return luminance(over(cell, BLACK)) > LIT


def box(mask):
    """First and last column, first and last row of a mask."""
    columns, rows = np.flatnonzero(mask.any(axis=0)), np.flatnonzero(mask.any(axis=1))
    return columns[0], columns[-1], rows[0], rows[-1]


def letters():
    return dict(zip("ABCDEFGHIJKLMNOPQRSTUVWXYZ", cells("fonts/impact/letters.png", 8)))


def digits():
    return dict(zip("0123456789", cells("fonts/impact/numbers_a.png", 6)))


def line_of_text(text, colour, tail_frame=None):
    """A line on one colour, every cell under one frame of the cursor's tail.

    Also its strokes, and the dark beside and between them; softened pixels are neither.
    """
    signs = {**letters(), **digits()}
    screen = ground(colour, 8 * len(text) + 2, 11)
    glyph, soft = np.zeros((2,) + screen.shape[:2], bool)
    for i, sign in enumerate(text):
        if sign == " ":
            continue
        x, cell = 1 + 8 * i, signs[sign]
        blend(screen, cell, x, 1)
        solid = lit(cell) & (luminance(over(cell, BLACK)) > SOLID * luminance(row_colours(cell)))
        glyph[1:10, x:x + cell.shape[1]] |= solid
        soft[1:10, x:x + cell.shape[1]] |= lit(cell) & ~solid
    if tail_frame is not None:
        frame = cells("fonts/impact/letter_cursor.png", 8)[tail_frame]
        for i in range(len(text)):
            blend(screen, frame, 1 + 8 * i, 1)
    return screen, glyph, beside(glyph) & ~soft


def row_colours(cell):
    """The brightest colour of each row, for all its pixels."""
    screen = over(cell, BLACK)
    best = screen[np.arange(len(screen)), luminance(screen).argmax(axis=1)]
    return np.repeat(best[:, None], cell.shape[1], axis=1)


def beside(glyph):
    """The pixels left and right of a stroke, and below it."""
    near = np.zeros_like(glyph)
    near[:, 1:] |= glyph[:, :-1]
    near[:, :-1] |= glyph[:, 1:]
    near[1:] |= glyph[:-1]
    return near & ~glyph


def text_contrast(screen, glyph, dark):
    light = luminance(screen)
    return contrast(light[glyph].mean(), light[dark].mean())


TEXT = "ATTETION XXX YOUR ENERGY IS VERY LOW 0123456789 QUICK BFDHJMPZ"


class EveryPicture(unittest.TestCase):
    def test_has_the_size_that_the_game_cuts_and_an_alpha_channel(self):
        for path, size in SIZES.items():
            with self.subTest(path), Image.open(os.path.join(DATA, path)) as image:
                self.assertEqual((image.mode, image.size), ("RGBA", size))

    def test_has_no_veil_that_only_costs_time(self):
        for path in SIZES:
            with self.subTest(path):
                picture = load(path)
                alpha = picture[..., 3]
                self.assertFalse(((alpha > 0) & (alpha < 4)).any(), "alpha of 1 to 3")
                self.assertFalse(picture[alpha == 0].any(), "colour in clear pixels")


class Letters(unittest.TestCase):
    def test_are_six_wide_M_and_W_seven_and_stand_flush_left(self):
        for sign, cell in letters().items():
            left, right, top, bottom = box(lit(cell))
            with self.subTest(sign):
                self.assertEqual((left, right), (0, 6 if sign in "MW" else 5))
                self.assertEqual((top, bottom), (0, GLYPH_ROWS - 1))

    def test_have_stems_of_two_pixels(self):
        for sign in "ABCDEFGHKLNOPQRU":
            with self.subTest(sign):
                self.assertEqual(list(lit(letters()[sign])[5, :3])[:2], [True, True])
        for sign in "ABDHLOPUV":
            with self.subTest(sign):
                self.assertFalse(lit(letters()[sign])[2, 2:4].any())

    def test_keep_a_gap_to_the_next_letter(self):
        for sign, cell in letters().items():
            with self.subTest(sign):
                self.assertFalse(lit(cell)[:, 7].any())

    def test_are_bright_above_darker_in_the_middle_and_light_at_the_base(self):
        for sheet in ("letters", "numbers_a"):
            light = luminance(over(load(f"fonts/impact/{sheet}.png"), BLACK)).max(axis=1)
            with self.subTest(sheet):
                self.assertGreater(light[0], light[2])
                self.assertGreater(light[2], light[4])
                self.assertGreater(light[6], light[4] + 0.1)
                self.assertLess(light[8], 0.01, "the ninth row is shadow only")

    def test_are_all_told_apart(self):
        glyphs = {**letters(), **{sign: np.pad(cell, ((0, 0), (0, 2), (0, 0)))
                                  for sign, cell in digits().items()}}
        for one in glyphs:
            for other in glyphs:
                apart = np.count_nonzero(lit(glyphs[one]) != lit(glyphs[other]))
                if one < other:
                    with self.subTest(one + other):
                        self.assertGreaterEqual(apart, 3)


class Digits(unittest.TestCase):
    def test_are_five_wide_and_leave_the_sixth_column_to_the_shadow(self):
        for sign, cell in digits().items():
            left, right, _, _ = box(lit(cell))
            with self.subTest(sign):
                self.assertEqual(right, 4)
                self.assertLessEqual(left, 1 if sign == "1" else 0)
                self.assertGreater(cell[:, 5, 3].max(), 128, "the shadow")

    def test_stand_on_the_letters_lines(self):
        for sign, cell in digits().items():
            with self.subTest(sign):
                self.assertEqual(box(lit(cell))[2:], (0, GLYPH_ROWS - 1))

    def test_have_the_letters_stems(self):
        for sign in "0689":
            with self.subTest(sign):
                self.assertEqual(list(lit(digits()[sign])[2 if sign != "6" else 5]),
                                 [True, True, False, True, True, False])

    def test_have_the_letters_colours(self):
        letter, digit = letters()["H"][:GLYPH_ROWS, 0], digits()["0"][1:GLYPH_ROWS - 1, 0]
        self.assertTrue((letter[1:-1] == digit).all())


class SmallDigits(unittest.TestCase):
    def cells(self):
        return cells("fonts/impact/numbers_mini.png", 4)

    def test_are_three_by_five_with_a_clear_column_so_that_a_counter_is_centred(self):
        for i, cell in enumerate(self.cells()):
            with self.subTest(i):
                self.assertFalse(cell[:, 3, 3].any())
                self.assertEqual(box(lit(cell)), (0, 2, 0, 4))
        icon_middle, counter_middle = 10 + 29 / 2, 19 + (3 * 4 - 1) / 2
        self.assertEqual(icon_middle, counter_middle)

    def test_are_gold_and_bright(self):
        for i, cell in enumerate(self.cells()):
            shining = over(cell, BLACK)[lit(cell)]
            with self.subTest(i):
                self.assertGreater(contrast(luminance(shining).mean(), 0.0), 10)
                self.assertTrue(all(35 <= hue(pixel) <= 50 for pixel in shining))

    def test_are_read_by_their_hollows_over_a_hull_and_over_fire(self):
        for ground_colour in (HULL, FIRE):
            strokes, hollows = [], []
            for cell in self.cells():
                light, glyph = luminance(over(cell, ground_colour)), lit(cell)
                strokes += list(light[glyph])
                hollows += list(light[~glyph & (cell[..., 3] > 0)])
            with self.subTest(ground_colour):
                self.assertGreaterEqual(contrast(np.mean(strokes), np.mean(hollows)), 7.0)

    def test_have_strokes_that_stand_out_of_a_fireball(self):
        ground_light = luminance(ORANGE)
        for i, cell in enumerate(self.cells()):
            strokes = luminance(over(cell, ORANGE))[lit(cell)]
            seen = [contrast(light, ground_light) >= SEEN for light in strokes]
            with self.subTest(i):
                self.assertTrue(all(seen), f"{seen.count(False)} of {len(seen)} pixels melt in")

    def test_are_all_told_apart(self):
        masks = [lit(cell) for cell in self.cells()]
        for i, one in enumerate(masks):
            for j, other in enumerate(masks[:i]):
                with self.subTest(f"{i} {j}"):
                    self.assertTrue((one != other).any())


class FrameRateLabel(unittest.TestCase):
    def test_has_three_glyphs_seven_pixels_apart(self):
        shining = lit(load("fonts/impact/fps_a.png"))
        for left in (0, 7, 14):
            with self.subTest(left):
                self.assertEqual(box(shining[:, left:left + 7]), (0, 4, 0, GLYPH_ROWS - 1))

    def test_is_dimmer_than_its_digits_but_readable(self):
        label, figures = load("fonts/impact/fps_a.png"), load("fonts/impact/numbers_a.png")
        light = luminance(over(label, BLACK))[lit(label)].mean()
        digit_light = luminance(over(figures, BLACK))[lit(figures)].mean()
        self.assertLess(light, 0.7 * digit_light)
        self.assertGreater(contrast(light, 0.0), 4.5)


class Cross(unittest.TestCase):
    def test_is_a_small_x(self):
        shining = lit(load("fonts/impact/cross.png"))
        self.assertTrue((shining == (np.eye(5) + np.eye(5)[::-1] > 0)).all())


class Readability(unittest.TestCase):
    def check(self, at_least, colour, tail_frame=None):
        self.assertGreaterEqual(text_contrast(*line_of_text(TEXT, colour, tail_frame)), at_least)

    def test_text_is_read_over_space(self):
        self.check(10.0, BLACK)

    def test_text_is_read_over_a_blast_and_a_hull(self):
        for name, colour, at_least in (("ember", EMBER, 6.0), ("fire", FIRE, 3.5),
                                       ("hull", HULL, 3.5), ("flash", WHITE, 3.0)):
            with self.subTest(name):
                self.check(at_least, colour)

    def test_text_is_read_over_each_picture_of_the_explosion(self):
        for i in range(46):
            path = f"explosions/ex{i:04}.png"
            if not os.path.exists(os.path.join(DATA, path)):
                self.skipTest(f"no {path}")
            screen, glyph, dark = line_of_text("DESTROYED", BLACK)
            below = ground(BLACK, 84, 84)
            blend(below, load(path)[:84, :84])
            screen = below[36:36 + screen.shape[0], 5:5 + screen.shape[1]].copy()
            for k, sign in enumerate("DESTROYED"):
                blend(screen, letters()[sign], 1 + 8 * k, 1)
            with self.subTest(i):
                self.assertGreaterEqual(text_contrast(screen, glyph, dark), 3.0)

    def test_text_is_read_under_the_cursors_tail_from_its_second_frame_on(self):
        for frame, at_least in ((2, 2.2), (3, 3.8), (4, 5.5), (5, 7.0), (6, 8.5), (7, 9.5),
                                (8, 10.5), (9, 11.5)):
            with self.subTest(frame):
                self.check(at_least, BLACK, frame)

    def test_the_newest_letter_still_shows_under_the_first_frame(self):
        self.check(1.3, BLACK, 1)

    def test_text_over_fire_is_read_under_the_tail_too(self):
        for frame, at_least in ((2, 1.6), (3, 2.3), (5, 3.0), (9, 3.5)):
            with self.subTest(frame):
                self.check(at_least, FIRE, frame)


class Cursor(unittest.TestCase):
    ALPHA = (1.0, 0.86, 0.70, 0.56, 0.44, 0.34, 0.25, 0.17, 0.10, 0.05)

    def frames(self):
        return cells("fonts/impact/letter_cursor.png", 8)

    def test_is_a_solid_white_block_behind_the_last_letter(self):
        block = self.frames()[0][:GLYPH_ROWS, :6]
        self.assertGreater(luminance(over(block, BLACK)).mean(), 0.9)

    def test_is_a_tail_without_gaps(self):
        alpha = np.concatenate(self.frames()[1:], axis=1)[1:GLYPH_ROWS - 1, :, 3]
        self.assertTrue((alpha > 0).all())

    def test_fades_frame_by_frame(self):
        for i, frame in enumerate(self.frames()):
            if i:
                with self.subTest(i):
                    self.assertAlmostEqual(frame[2:6, :, 3].mean() / 255, self.ALPHA[i], delta=0.03)

    def test_meets_the_next_frame_without_a_step(self):
        screen = over(load("fonts/impact/letter_cursor.png"), BLACK)
        light = screen[2:6].mean(axis=(0, 2)) / 255
        # Frame 9 is the leftmost: from there to the block it only gets lighter.
        frames = np.concatenate([light[8 * i:8 * i + 8] for i in range(9, 0, -1)])
        self.assertTrue((np.diff(frames) > -0.004).all())
        self.assertLess(np.diff(frames).max(), 0.06)

    def test_cools_from_white_over_cyan_to_deep_blue(self):
        middle = [frame[3, 4, :3] for frame in self.frames()]
        redness = [pixel[0] / pixel[2] for pixel in middle]
        greenness = [pixel[1] / pixel[2] for pixel in middle]
        self.assertGreater(redness[0], 0.98)
        self.assertLess(redness[3], 0.3)
        self.assertGreater(greenness[1], 0.85)
        self.assertLess(greenness[9], 0.45)
        self.assertEqual(sorted(greenness, reverse=True), greenness)


class EnergyTube(unittest.TestCase):
    def shown(self, energy):
        """The rows that the game shows, on the tube's whole area."""
        screen = ground(BLACK, 10, 65)
        if energy:
            blend(screen, load("display/energy01.png")[65 - energy:], 0, 65 - energy)
        return luminance(screen).max(axis=1) > 0.04

    def test_has_seven_lit_rows_and_a_dark_one_and_a_last_single_row(self):
        bright = self.shown(65)
        self.assertEqual([row for row in range(65) if not bright[row]], list(range(7, 64, 8)))

    def test_loses_exactly_one_segment_with_each_hit(self):
        for energy in range(65, 1, -SEGMENT):
            before, after = self.shown(energy), self.shown(energy - SEGMENT)
            with self.subTest(energy):
                lost = np.flatnonzero(before & ~after)
                self.assertEqual(list(lost), list(range(lost[0], lost[0] + 7)))
                self.assertTrue(after[lost[0] + SEGMENT], "the next segment stands whole")

    def test_turns_from_green_over_yellow_to_red_where_the_warning_comes(self):
        screen = over(load("display/energy01.png"), BLACK)
        middle = [hue(screen[row, 5]) for row in range(3, 64, 8)] + [hue(screen[64, 5])]
        self.assertTrue(all(before >= after for before, after in zip(middle, middle[1:])), middle)
        self.assertTrue(all(hue(screen[row, 5]) < 12 for row in range(48, 65)), "rows 48 to 64")
        self.assertGreater(middle[5], 25, "the last row that is not red")
        self.assertGreater(middle[0], 110)

    def test_is_a_tube_lit_from_the_upper_left(self):
        light = luminance(over(load("display/energy01.png"), BLACK))[0:7]
        self.assertIn(light.mean(axis=0).argmax(), (2, 3))
        self.assertGreater(light[0].mean(), light[6].mean())
        self.assertLess(light.mean(axis=0)[9], 0.5 * light.mean(axis=0).max())

    def test_is_seen_from_its_first_to_its_last_column(self):
        screen = over(load("display/energy01.png"), BLACK)
        lit_rows = [row for row in range(65) if row % 8 != 7]
        self.assertTrue((screen[lit_rows].max(axis=2) > 0.12 * 255).all())


class EnergyScale(unittest.TestCase):
    TICKS = list(range(1, 66, 8))

    def test_has_nine_ticks_that_meet_the_segments_tops(self):
        shining = luminance(over(load("display/energyscale.png"), BLACK))[:, 3] > LIT
        self.assertEqual(list(np.flatnonzero(shining)), self.TICKS)
        tube_top, scale_top = 403, 402
        bright = EnergyTube().shown(65)
        tops = [row for row in range(65) if bright[row] and (row == 0 or not bright[row - 1])]
        self.assertEqual([tube_top + row for row in tops], [scale_top + row for row in self.TICKS])

    def test_has_its_axis_towards_the_tube(self):
        light = luminance(over(load("display/energyscale.png"), BLACK))
        self.assertTrue((light[:, 0] > LIT).all())
        between = [row for row in range(67) if row not in self.TICKS]
        self.assertFalse((light[between][:, 2:] > 0.02).any())

    def test_has_a_longer_tick_at_the_ends_and_the_middle(self):
        shining = luminance(over(load("display/energyscale.png"), BLACK)) > LIT
        lengths = [int(shining[row].sum()) for row in self.TICKS]
        self.assertEqual(lengths, lengths[::-1])
        self.assertEqual({lengths[0], lengths[4], lengths[8]}, {max(lengths)})

    def test_warns_in_red_beside_the_red_segments(self):
        screen = over(load("display/energyscale.png"), BLACK)
        for row in self.TICKS:
            red = screen[row, 3, 0] > 1.5 * screen[row, 3, 2]
            with self.subTest(row):
                self.assertEqual(red, row >= 49)


    def test_stands_out_of_fire_with_every_tick(self):
        light = luminance(over(load("display/energyscale.png"), ORANGE))
        for row in self.TICKS:
            for beside in (row - 1, row + 1):
                with self.subTest(row):
                    self.assertGreater(contrast(light[row, 3], light[beside, 3]), 4.0)


class TargetMarks(unittest.TestCase):
    def marks(self):
        names = ("topleft", "topright", "bottomleft", "bottomright")
        return [load(f"display/enemyrect_{name}.png") for name in names]

    def test_are_mirror_images_of_one(self):
        top_left, top_right, bottom_left, bottom_right = self.marks()
        self.assertTrue((top_left[:, ::-1] == top_right).all())
        self.assertTrue((top_left[::-1] == bottom_left).all())
        self.assertTrue((top_left[::-1, ::-1] == bottom_right).all())
        self.assertTrue((top_left == top_left.transpose(1, 0, 2)).all())

    def test_frame_the_target_three_pixels_outside_on_all_sides(self):
        screen = ground(BLACK, 60, 60)
        x = y = 10
        for mark, dx, dy in zip(self.marks(), (-3, 29, -3, 29), (-3, -3, 29, 29)):
            blend(screen, mark, x + dx, y + dy)
        left, right, top, bottom = box(luminance(screen) > 0.01)
        self.assertEqual((x - left, right - (x + 38), y - top, bottom - (y + 38)), (3, 3, 3, 3))
        frame = screen[top:bottom + 1, left:right + 1]
        self.assertTrue((frame == frame[:, ::-1]).all() and (frame == frame[::-1]).all())

    def test_have_arms_of_ten_or_eleven_pixels_two_thick(self):
        alpha = self.marks()[0][..., 3]
        self.assertIn(np.count_nonzero(alpha[0]), (10, 11))
        self.assertFalse(alpha[2:, 2:].any())
        self.assertEqual(list(alpha[0] > 0), list(alpha[1] > 0))

    def test_fade_to_their_ends(self):
        arm = self.marks()[0][0, :, 3]
        arm = arm[arm > 0]
        self.assertTrue((np.diff(arm) <= 0).all())
        self.assertGreater(arm[3], 250)
        self.assertLess(arm[-1], 90)

    def test_are_green_and_bright(self):
        mark = self.marks()[0]
        for pixel in mark[mark[..., 3] > 0]:
            self.assertTrue(90 <= hue(pixel) <= 130)
        self.assertGreater(luminance(over(mark, BLACK))[0, 0], 0.6)

    def test_keep_both_arms_to_their_inner_ends_over_space_and_fire(self):
        mark = self.marks()[0]
        for ground_colour in (BLACK, EMBER, ORANGE, FIRE):
            light = luminance(over(mark, ground_colour))[:2, 2:11]
            best = [max(contrast(each, luminance(ground_colour)) for each in across)
                    for across in light.T]
            with self.subTest(ground_colour):
                self.assertGreater(min(best[:7]), 1.6)
                self.assertGreater(min(best), 1.2)


class Laser(unittest.TestCase):
    def test_has_a_white_core_in_the_middle_column_and_a_bright_head(self):
        light = luminance(over(load("shots/shot01a.png"), BLACK))
        self.assertTrue((light.argmax(axis=1) == 1).all())
        self.assertLess(light[:, 1].argmax(), 4)
        self.assertGreater(light[:, 1].max(), 0.9)
        self.assertTrue((load("shots/shot01a.png")[:, 0] == load("shots/shot01a.png")[:, 2]).all())

    def test_fades_out_over_its_lower_half(self):
        light = luminance(over(load("shots/shot01a.png"), BLACK))[:, 1]
        self.assertTrue((np.diff(light[4:]) < 0).all())
        self.assertLess(light[10], 0.05)
        self.assertGreater(light[5], 0.5 * light.max())

    def test_is_cyan_not_white_so_that_it_is_no_star(self):
        picture = load("shots/shot01a.png")
        for pixel in picture[:, (0, 2)].reshape(-1, 4):
            if pixel[3]:
                self.assertTrue(180 <= hue(pixel) <= 220, pixel)
        self.assertGreaterEqual(np.count_nonzero(lit(picture)), 16)


class EnemyShot(unittest.TestCase):
    def test_is_centred_and_symmetric(self):
        picture = load("shots/e_shot01c.png")
        self.assertTrue((picture == picture[:, ::-1]).all())
        self.assertTrue((picture == picture[::-1]).all())

    def test_is_brightest_in_the_middle_and_falls_outwards(self):
        light = luminance(over(load("shots/e_shot01c.png"), BLACK))
        self.assertGreater(light[3, 5], 0.85)
        self.assertTrue((np.diff(light[3, 5:]) <= 0.0).all())
        self.assertTrue((np.diff(light[4:, 5]) <= 0.0).all())

    def test_is_magenta_and_never_the_orange_of_an_explosion(self):
        picture = load("shots/e_shot01c.png")
        screen = over(picture, BLACK)
        for pixel in screen[screen.max(axis=2) > 40]:
            self.assertTrue(290 <= hue(pixel) <= 325, pixel)

    def test_is_told_from_both_ships_and_the_players_fire_by_every_kind_of_sight(self):
        shot = load("shots/e_shot01c.png")
        for path in ("ships/ship01.png", "ships/enemy01.png", "shots/shot01a.png",
                     "shots/shot01b.png"):
            if not os.path.exists(os.path.join(DATA, path)):
                self.skipTest(f"no {path}")
            for sight in SIGHT:
                with self.subTest(path, sight=sight):
                    apart = np.linalg.norm(typical(shot, sight) - typical(load(path), sight))
                    self.assertGreaterEqual(apart, CLEARLY_APART)

    def test_wears_a_dark_rim_that_parts_it_from_the_hull_it_hits(self):
        picture = load("shots/e_shot01c.png")
        rim = luminance(over(picture, HULL))[[0, 3, 7], [5, 0, 5]]
        self.assertTrue(all(contrast(light, luminance(HULL)) > 2.5 for light in rim), rim)
        body = luminance(over(picture, BLACK))[3, 2]
        self.assertGreater(body, 0.15, "seen over space")

    def test_is_wider_than_high_as_no_laser_is(self):
        left, right, top, bottom = box(lit(load("shots/e_shot01c.png")))
        self.assertGreaterEqual(right - left + 1, 9)
        self.assertGreater(right - left, bottom - top)
        left, right, top, bottom = box(lit(load("shots/shot01a.png")))
        self.assertLess(right - left, bottom - top)


class Fringes(unittest.TestCase):
    def test_no_shot_or_mark_has_a_dark_rim_over_fire(self):
        """A rim is darker than the ground and than the picture's own dark colours allow."""
        for path in ("shots/shot01a.png", "display/enemyrect_topleft.png"):
            picture = load(path)
            straight = luminance(picture[picture[..., 3] > 0][:, :3])
            with self.subTest(path):
                self.assertGreater(straight.min(), 0.15)

    def test_no_glyph_has_a_light_rim(self):
        """Where shadow and glyph meet, the mixed colour lies between both."""
        for path in ("fonts/impact/letters.png", "fonts/impact/numbers_a.png"):
            picture = load(path)
            for row in picture:
                seen = row[row[:, 3] > 0][:, :3]
                brightest = row[row[:, 3] == 255][:, :3].max(axis=0, initial=0)
                with self.subTest(path):
                    self.assertTrue((seen <= np.maximum(brightest, 20)).all())


if __name__ == "__main__":
    if len(sys.argv) < 2 or sys.argv[1].startswith("-"):
        sys.exit(f"usage: {os.path.basename(sys.argv[0])} DATA_DIR [TEST ...]")
    DATA = sys.argv.pop(1)
    unittest.main()
