#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: MIT
"""Measures the explosion and the hit flash: test_blast.py DATA_DIR"""

import os
import sys
import unittest

import numpy as np
from PIL import Image

DATA = sys.argv.pop(1) if len(sys.argv) > 1 and not sys.argv[1].startswith("-") else "data"

PICTURES = 46
FLASHES = 7
BOX = 128                   # px, both ways
CENTRE = 41.5               # px, both ways; the ship's middle
RADIUS = 40                 # px; the screen's corner is not much further from a ship in one
BURSTS = (1, 16)            # pictures that may light up at once
SECTORS = 48                # directions in which the fireball's edge is measured, 4 px apart
SHIP_AT = 22                # px, both ways, from the blast's picture to the ship's
SHIPS = [f"ships/{name}{pose}.png"
         for name in ("ship01", "enemy01") for pose in ("", "left", "right")]
FLASH_CENTRE = (9.0, 8.0)   # px
FLASH_RADIUS = 7            # px


def load(name):
    with Image.open(os.path.join(DATA, name)) as picture:
        return picture.mode, np.array(picture.convert("RGBA"))


def blend(below, picture):
    """The game's own blend."""
    below = below.astype(np.int32)
    picture = picture.astype(np.int32)
    return below + (((picture[..., :3] - below) * picture[..., 3:] + 255) >> 8)


def radii(size, centre):
    """Distance of each pixel's middle from a place, px."""
    at = np.arange(size) + 0.5
    return np.hypot(*np.meshgrid(at - centre[0], at - centre[1]))


def brightest_neighbour(light):
    """The largest of the eight values around each pixel; the border has no neighbours outside."""
    moves = [(y, x) for y in (-1, 0, 1) for x in (-1, 0, 1) if x or y]
    return np.max([np.roll(light, move, (0, 1)) for move in moves], axis=0)


class Blast(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        names = [f"explosions/ex{i:04d}.png" for i in range(PICTURES)]
        cls.modes, cls.pictures = zip(*(load(name) for name in names))
        space = np.zeros((BOX, BOX, 3), np.int32)
        cls.shown = [blend(space, picture).astype(float) for picture in cls.pictures]
        cls.brightness = [shown.mean() for shown in cls.shown]
        cls.change = [0.0] + [float(np.sqrt(((b - a) ** 2).mean()))
                              for a, b in zip(cls.shown, cls.shown[1:])]
        cls.radius = radii(BOX, (CENTRE, CENTRE))

    def edge_shares(self, number):
        """Radius of the solid blast in all directions over its mean."""
        solid = self.pictures[number][..., 3] > 128
        at = np.arange(BOX) + 0.5 - CENTRE
        angle = np.arctan2(at[:, None], at[None, :])
        sector = ((angle + np.pi) / (2 * np.pi) * SECTORS).astype(int) % SECTORS
        edges = np.array([np.percentile(self.radius[solid & (sector == i)], 95)
                          for i in range(SECTORS)])
        return edges / edges.mean()

    def lit_radius(self, number):
        """Radius of a disc as large as the solid part of a picture, px."""
        return np.sqrt((self.pictures[number][..., 3] > 128).sum() / np.pi)

    def mean_colour(self, number):
        """Mean colour of what is seen, weighted by how much it hides."""
        picture = self.pictures[number].astype(float)
        return (picture[..., :3] * picture[..., 3:]).sum((0, 1)) / picture[..., 3].sum()

    def test_all_pictures_have_their_size_and_an_alpha_channel(self):
        for number, (mode, picture) in enumerate(zip(self.modes, self.pictures)):
            with self.subTest(picture=number):
                self.assertEqual(mode, "RGBA")
                self.assertEqual(picture.shape, (BOX, BOX, 4))

    def test_clear_pixels_are_wholly_clear(self):
        for number, picture in enumerate(self.pictures):
            with self.subTest(picture=number):
                alpha = picture[..., 3]
                self.assertFalse(((alpha > 0) & (alpha < 4)).any())
                self.assertFalse(picture[alpha == 0].any())

    def test_nothing_is_cut_off_or_leaves_the_circle(self):
        for number, picture in enumerate(self.pictures):
            with self.subTest(picture=number):
                rows, columns = np.nonzero(picture[..., 3])
                if len(rows):
                    self.assertGreaterEqual(min(rows.min(), columns.min()), 1)
                    self.assertLessEqual(max(rows.max(), columns.max()), 81)
                self.assertFalse(picture[..., 3][self.radius > RADIUS].any())

    def test_the_rim_of_the_circle_is_not_seen_as_a_disc(self):
        rim = (self.radius > 38) & (self.radius <= RADIUS)
        for number, shown in enumerate(self.shown):
            with self.subTest(picture=number):
                self.assertLess(shown[rim].mean(), 8.0)
                edge = (self.radius > 39.2) & (self.radius <= RADIUS)
                self.assertLess(shown[edge].max(), 48.0)

    def test_the_blast_stays_on_the_ship_while_it_is_bright(self):
        at = np.arange(BOX) + 0.5
        for number in range(32):
            weight = self.shown[number].mean(axis=2)
            middle = ((weight.sum(0) * at).sum() / weight.sum(),
                      (weight.sum(1) * at).sum() / weight.sum())
            with self.subTest(picture=number):
                self.assertLess(abs(middle[0] - CENTRE), 2.5)
                self.assertLess(abs(middle[1] - CENTRE), 2.5)

    def test_it_starts_as_a_core_of_thirteen_pixels_in_a_glow(self):
        self.assertGreater(self.lit_radius(0), 10)
        self.assertLess(self.lit_radius(0), 17)
        bright = self.shown[0].min(axis=2) > 90
        self.assertGreater(np.sqrt(bright.sum() / np.pi), 8)
        glow = (self.radius > 19) & (self.radius < 24)
        self.assertGreater(self.shown[0][glow].mean(), 2.0)

    def test_picture_1_is_a_white_flash_with_uneven_rays(self):
        core = self.shown[1][self.radius < 12]
        self.assertGreater(np.median(core.min(axis=1)), 170)
        ring = (self.radius > 30) & (self.radius < 33)
        light = self.shown[1][ring].max(axis=1)
        self.assertGreater(light.max(), 4 * np.median(light) + 20)

    def test_the_fireball_grows_to_more_than_thirty_pixels(self):
        sizes = [self.lit_radius(number) for number in range(3, 10)]
        for small, large in zip(sizes, sizes[1:]):
            self.assertGreater(large, small - 0.1)
        self.assertGreater(sizes[-1], 30)
        self.assertLess(sizes[-1], 35)

    def test_the_fireball_bursts_out_in_the_flash_and_then_slows_down(self):
        sizes = [self.lit_radius(number) for number in (0, 1, 5, 9, 13)]
        steps = [large - small for small, large in zip(sizes, sizes[1:])]
        self.assertGreater(steps[0], 10)
        for before, after in zip(steps, steps[1:]):
            self.assertLess(after, before)

    def test_dark_gaps_part_the_lobes_of_the_fireball(self):
        for number in range(5, 16):
            inside = self.radius < 0.9 * self.lit_radius(number)
            light = self.shown[number].mean(axis=2)[inside]
            with self.subTest(picture=number):
                dark, bright = np.percentile(light, (5, 95))
                self.assertLess(dark, 0.5 * bright)

    def test_the_fireball_is_round_without_a_notch(self):
        for number in range(3, 16):
            with self.subTest(picture=number):
                shares = self.edge_shares(number)
                self.assertGreater(shares.min(), 0.80)
                self.assertLess(shares.max(), 1.25)

    def test_the_fire_cools_from_yellow_to_red(self):
        greens = [self.mean_colour(n)[1] / self.mean_colour(n)[0] for n in (2, 5, 9, 12)]
        for warm, cool in zip(greens, greens[1:]):
            self.assertLess(cool, warm)
        self.assertGreater(greens[0], 0.60)

    def test_sparks_fly_outside_the_fireball(self):
        for number in range(3, 10):
            light = self.shown[number].max(axis=2)
            out = self.radius > self.lit_radius(number) + 1
            found = (light > 110) & (light >= brightest_neighbour(light)) & out
            with self.subTest(picture=number):
                self.assertGreater(found.sum(), 16)

    def test_no_spark_looks_like_a_star(self):
        for number, shown in enumerate(self.shown):
            light = shown.max(axis=2)
            grey = (light > 60) & (light - shown.min(axis=2) < 0.35 * light)
            alone = light > 2.5 * brightest_neighbour(light)
            with self.subTest(picture=number):
                self.assertFalse((grey & alone).any())

    def test_the_second_burst_is_white_and_central(self):
        light = self.shown[17].max(axis=2) * (self.shown[17].min(axis=2) > 60)
        hot = light > 200
        self.assertGreater(hot.sum(), 250)
        at = np.arange(BOX) + 0.5
        self.assertLess(abs((hot.sum(0) * at).sum() / hot.sum() - CENTRE), 5)
        self.assertLess(abs((hot.sum(1) * at).sum() / hot.sum() - CENTRE), 5)

    def test_light_jumps_up_only_in_the_two_bursts(self):
        for number in range(1, 44):
            before, now = self.brightness[number - 1:number + 1]
            with self.subTest(picture=number):
                if number in BURSTS:
                    self.assertGreater(now, 1.2 * before)
                else:
                    self.assertLess(now, 1.08 * before)
                    self.assertGreater(now, before - 3.0)

    def test_neighbouring_pictures_change_smoothly(self):
        for number in range(1, PICTURES):
            if number not in BURSTS:
                with self.subTest(picture=number):
                    self.assertLess(self.change[number], 16.0)

    def test_the_smoke_never_freezes(self):
        for number in range(1, 38):
            with self.subTest(picture=number):
                self.assertGreater(self.change[number], 2.0)

    def test_the_smoke_tears_instead_of_only_fading(self):
        for number in (36, 38, 40, 42):
            alpha = self.pictures[number][..., 3].astype(float)
            inside = alpha[self.radius < 26]
            with self.subTest(picture=number):
                self.assertGreater(inside.std() / inside.mean(), 0.25)
                self.assertGreater(np.percentile(inside, 99), 40)

    def test_smoke_is_left_until_picture_43(self):
        for number in range(31, 44):
            with self.subTest(picture=number):
                self.assertGreater((self.pictures[number][..., 3] > 0).sum(), 60)
                self.assertLess(self.brightness[number], self.brightness[number - 1])

    def test_the_last_two_pictures_are_empty(self):
        for number in (44, 45):
            self.assertFalse(self.pictures[number].any())

    def test_every_ship_is_wholly_inside_the_first_flash(self):
        for name in SHIPS:
            with self.subTest(ship=name):
                self.assertLess(self.seen_through(1, self.ship(name)).max(), 24)

    def test_every_ship_is_hidden_before_it_disappears(self):
        for name in SHIPS:
            ship = self.ship(name)
            solid = ship[..., 3] > 127
            for number in range(18, 25):
                with self.subTest(ship=name, picture=number):
                    hiding = self.over_ship(number)[solid] / 255.0
                    self.assertGreaterEqual((hiding > 0.9).mean(), 0.98)
                    if number <= 22:
                        self.assertGreaterEqual((hiding >= 0.95).mean(), 0.99)

    def test_the_moment_the_ship_disappears_is_not_seen(self):
        for name in SHIPS:
            ship = self.ship(name)
            with self.subTest(ship=name):
                difference = self.seen_through(19, ship)
                at = slice(SHIP_AT, SHIP_AT + 39)
                self.assertLess(difference.max(), 40)
                self.assertLess(difference[at, at].mean(), 2.0)

    def seen_through(self, number, ship):
        """What a ship under a picture of the blast changes on the screen, by pixel and channel."""
        space = np.zeros((BOX, BOX, 3), np.int32)
        under = space.copy()
        at = slice(SHIP_AT, SHIP_AT + 39)
        under[at, at] = blend(under[at, at], ship)
        return np.abs(blend(under, self.pictures[number]) - blend(space, self.pictures[number]))

    def over_ship(self, number):
        return self.pictures[number][SHIP_AT:SHIP_AT + 39, SHIP_AT:SHIP_AT + 39, 3]

    def ship(self, name):
        if not os.path.exists(os.path.join(DATA, name)):
            self.skipTest(f"{name} is not there")
        return load(name)[1]


class HitFlash(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        names = [f"explosions/mini/ex{i:03d}.png" for i in range(FLASHES)]
        cls.modes, cls.pictures = zip(*(load(name) for name in names))
        cls.radius = radii(16, FLASH_CENTRE)
        cls.shown = [blend(np.zeros((16, 16, 3), np.int32), p).astype(float) for p in cls.pictures]

    def test_all_pictures_have_their_size_and_an_alpha_channel(self):
        for number, (mode, picture) in enumerate(zip(self.modes, self.pictures)):
            with self.subTest(picture=number):
                self.assertEqual(mode, "RGBA")
                self.assertEqual(picture.shape, (16, 16, 4))
                alpha = picture[..., 3]
                self.assertFalse(((alpha > 0) & (alpha < 4)).any())
                self.assertFalse(picture[alpha == 0].any())

    def test_the_flash_stays_inside_its_circle(self):
        for number, picture in enumerate(self.pictures):
            with self.subTest(picture=number):
                self.assertFalse(picture[..., 3][self.radius > FLASH_RADIUS + 0.5].any())

    def test_the_flash_is_centred_between_lasers_and_enemy_shots(self):
        at = np.arange(16) + 0.5
        for number, limit in enumerate((0.1, 0.1, 0.6, 0.6, 0.6, 0.6)):
            weight = self.shown[number].mean(axis=2)
            with self.subTest(picture=number):
                self.assertLess(abs((weight.sum(0) * at).sum() / weight.sum() - 9.0), limit)
                self.assertLess(abs((weight.sum(1) * at).sum() / weight.sum() - 8.0), limit)

    def test_the_first_picture_is_a_small_spark(self):
        bright = self.shown[0].max(axis=2) > 128
        self.assertGreaterEqual(bright.sum(), 4)
        self.assertLessEqual(bright.sum(), 13)
        self.assertLess(self.shown[0].sum(), 0.35 * self.shown[1].sum())

    def test_it_flashes_up_and_then_cools(self):
        light = [shown.mean() for shown in self.shown]
        peak = int(np.argmax(light))
        self.assertIn(peak, (1, 2))
        for before, now in zip(light[2:], light[3:]):
            self.assertLess(now, before)
        warmth = [shown[..., 1].sum() / shown[..., 0].sum() for shown in self.shown[2:6]]
        for before, now in zip(warmth, warmth[1:]):
            self.assertLess(now, before)

    def test_the_ring_is_open_in_the_middle_and_broken(self):
        light = self.shown[3].max(axis=2)
        around = light[abs(self.radius - 4.5) < 1]
        self.assertLess(light[self.radius < 1.5].mean(), 0.8 * around.mean())
        self.assertLess(around.min(), 0.6 * around.max())

    def test_the_last_picture_is_empty(self):
        self.assertFalse(self.pictures[6].any())


if __name__ == "__main__":
    unittest.main()
