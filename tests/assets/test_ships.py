#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: MIT
#
# Measures the pictures of the ships, the rocket and the weapon icons.
# usage: test_ships.py DATA_DIR

import colorsys
import os
import sys
import unittest

import numpy as np
from PIL import Image

DATA = "data"

SHIP_SIZE = 39               # pixels
AXIS = 19                    # column of the ship's axis
LASER_COLUMNS = slice(18, 21)
WINGS = (slice(0, 15), slice(24, 39))
METAL = 128                  # alpha from which a pixel counts as part of the hull
SOLID = 230                  # alpha that hides what passes below
OPAQUE = 240                 # alpha of a pixel that shows nothing of what is below
SMALLEST_ALPHA = 4
FRINGE_GREYS = 16            # of 255; less is not seen at the rim
SPACE, FIRE = np.array([0, 0, 0]), np.array([255, 180, 40])

PLAYER = ("ship01", "ship01left", "ship01right")
ENEMY = ("enemy01", "enemy01left", "enemy01right")
ROCKET = "shots/shot01b.png"
LASER_ICON, ROCKET_ICON = "shots/item_shot01a.png", "shots/item_shot02a.png"
ALL = tuple(f"ships/{name}.png" for name in PLAYER + ENEMY) + (ROCKET, LASER_ICON, ROCKET_ICON)

LUMA = np.array([0.299, 0.587, 0.114])

# How the three common kinds of colour blindness see linear light (full loss, Machado 2009).
BLINDNESS = {
    "red-blind": [[0.152286, 1.052583, -0.204868], [0.114503, 0.786281, 0.099216],
                  [-0.003882, -0.048116, 1.051998]],
    "green-blind": [[0.367322, 0.860646, -0.227968], [0.280085, 0.672501, 0.047413],
                    [-0.011820, 0.042940, 0.968881]],
    "blue-blind": [[1.255528, -0.076749, -0.178779], [-0.078411, 0.930809, 0.147602],
                   [0.004733, 0.691367, 0.303900]],
    "full sight": [[1, 0, 0], [0, 1, 0], [0, 0, 1]],
}


def load(path):
    return np.array(Image.open(os.path.join(DATA, path)))


def ship(name):
    return load(f"ships/{name}.png").astype(int)


def metal(picture):
    return picture[..., 3] >= METAL


def colours(picture):
    """Display colours (0 to 1) of the pixels that belong to the thing."""
    return picture[metal(picture)][:, :3] / 255.0


def brightness(picture):
    return (colours(picture) @ LUMA).mean()


def hues(values):
    """Hue in degrees, saturation and value of each colour."""
    table = np.array([colorsys.rgb_to_hsv(*value) for value in values])
    table[:, 0] *= 360
    return table


def share_in_hue(values, low, high, saturation=0.35):
    """Share of the coloured pixels whose hue lies between two angles (low may exceed high)."""
    table = hues(values)
    table = table[(table[:, 1] >= saturation) & (table[:, 2] >= 0.25)]
    hue = table[:, 0]
    inside = (low <= hue) & (hue <= high) if low <= high else (hue >= low) | (hue <= high)
    return inside.mean() if len(hue) else 0.0


def first_row(mask, column):
    return int(np.argmax(mask[:, column]))


def last_row(mask, column):
    return int(len(mask) - 1 - np.argmax(mask[::-1, column]))


def lab(values, sight):
    """CIE L*a*b* of display colours as somebody with this sight sees them."""
    linear = np.where(values <= 0.04045, values / 12.92, ((values + 0.055) / 1.055) ** 2.4)
    seen = np.clip(linear @ np.array(BLINDNESS[sight]).T, 0, 1)
    xyz = seen @ np.array([[0.4124, 0.3576, 0.1805], [0.2126, 0.7152, 0.0722],
                           [0.0193, 0.1192, 0.9505]]).T / np.array([0.9505, 1.0, 1.089])
    f = np.where(xyz > 0.008856, np.cbrt(xyz), 7.787 * xyz + 16 / 116)
    return np.stack([116 * f[..., 1] - 16, 500 * (f[..., 0] - f[..., 1]),
                     200 * (f[..., 1] - f[..., 2])], axis=-1)


def typical(picture, sight):
    return lab(colours(picture), sight).mean(axis=0)


def box(mask):
    rows, columns = np.nonzero(mask)
    return rows.min(), rows.max(), columns.min(), columns.max()


class EveryPicture(unittest.TestCase):
    def test_has_its_size_and_its_own_transparency(self):
        sizes = dict.fromkeys(ALL, (SHIP_SIZE, SHIP_SIZE))
        sizes.update({ROCKET: (15, 9), LASER_ICON: (29, 29), ROCKET_ICON: (29, 29)})
        for path, size in sizes.items():
            with self.subTest(path):
                with Image.open(os.path.join(DATA, path)) as file:
                    self.assertEqual(file.mode, "RGBA")
                self.assertEqual(load(path).shape, size + (4,))

    def test_leaves_space_untouched_where_it_shows_nothing(self):
        for path in ALL:
            with self.subTest(path):
                picture = load(path)
                faint = picture[..., 3] < SMALLEST_ALPHA
                self.assertFalse(picture[faint].any())

    def test_is_free_of_burnt_out_white(self):
        for name in PLAYER + ENEMY:
            with self.subTest(name):
                values = colours(ship(name)) * 255
                self.assertLessEqual((values.min(axis=1) > 250).sum(), 3)

    def test_is_free_of_dark_or_light_specks_at_its_rim_over_space_and_over_fire(self):
        for name in PLAYER + ENEMY:
            for ground in (SPACE, FIRE):
                with self.subTest(name, ground=ground):
                    self.assertLess(self.fringe_share(ship(name), ground), 0.02)

    @staticmethod
    def fringe_share(picture, ground):
        """Share of the soft rim that is seen darker or lighter than ground and solid hull both."""
        alpha = picture[..., 3:]
        shown = (ground + ((picture[..., :3] - ground) * alpha + 255 >> 8)) @ LUMA
        rim = strange = 0
        for y, x in np.argwhere((alpha[..., 0] >= SMALLEST_ALPHA) & (alpha[..., 0] < OPAQUE)):
            part = slice(max(y - 1, 0), y + 2), slice(max(x - 1, 0), x + 2)
            hull = shown[part][alpha[part][..., 0] >= OPAQUE]
            if len(hull):
                around = np.append(hull, ground @ LUMA)
                rim += 1
                strange += not (around.min() - FRINGE_GREYS <= shown[y, x]
                                <= around.max() + FRINGE_GREYS)
        return strange / max(rim, 1)

    def test_shows_a_light_outline_and_no_black_one(self):
        # Space is black: a hull part darker than this would look like a bite out of the ship.
        for name in PLAYER + ENEMY:
            with self.subTest(name):
                picture = ship(name)
                inside = metal(picture)
                shell = np.pad(inside, 1)
                deep = (shell[:-2, 1:-1] & shell[2:, 1:-1] & shell[1:-1, :-2] & shell[1:-1, 2:])
                outline = picture[inside & ~deep][:, :3].max(axis=1) / 255
                self.assertLess((outline < 0.12).mean(), 0.02)


class PlayerShip(unittest.TestCase):
    def test_fills_its_box_when_flying_straight(self):
        self.assertEqual(box(ship("ship01")[..., 3] >= SMALLEST_ALPHA), (0, 38, 0, 38))

    def test_nose_hides_the_lower_rows_of_a_new_laser_in_every_pose(self):
        for name in PLAYER:
            with self.subTest(name):
                alpha = ship(name)[..., 3]
                self.assertGreaterEqual(alpha[1:5, LASER_COLUMNS].min(), SOLID)
                self.assertGreaterEqual(alpha[0, LASER_COLUMNS].min(), 200)

    def test_nose_is_three_pixels_wide(self):
        for name in PLAYER:
            with self.subTest(name):
                self.assertLess(ship(name)[0:4, [16, 22], 3].max(), METAL)

    def test_leading_edge_meets_a_shot_where_its_flash_appears(self):
        inside = metal(ship("ship01"))
        self.assertEqual(first_row(inside, AXIS), 0)
        for off in range(4, 8):
            for column in (AXIS - off, AXIS + off):
                self.assertIn(first_row(inside, column), range(9, 15), f"column {column}")
        for off in range(9, 19):
            for column in (AXIS - off, AXIS + off):
                self.assertIn(first_row(inside, column), range(17, 23), f"column {column}")

    def test_a_hit_flash_is_always_centred_on_metal(self):
        inside = metal(ship("ship01"))
        self.assertTrue(inside[6:9, 18:21].all())
        self.assertTrue(inside[12:15, [15, 16, 17, 21, 22, 23]].all())
        self.assertTrue(inside[26:29, 1:38].all())

    def test_wing_tips_reach_the_sides_of_the_hit_box(self):
        inside = metal(ship("ship01"))
        self.assertTrue(inside[18:33, 0:2].any())
        self.assertTrue(inside[18:33, 37:39].any())

    def test_tail_hides_a_rocket_until_it_drops(self):
        for name in PLAYER:
            with self.subTest(name):
                self.assertGreaterEqual(ship(name)[26:36, 15:24, 3].min(), SOLID)

    def test_flame_peeps_out_two_to_four_rows_behind_the_tail(self):
        for name in PLAYER:
            with self.subTest(name):
                picture = ship(name)
                glow = ((picture[..., 3] > 60) & (picture[..., 1] > 150)
                        & (picture[..., 2] - picture[..., 0] > 90))
                rows = np.nonzero(glow[34:].any(axis=1))[0]
                self.assertIn(len(rows), (2, 3, 4))
                self.assertGreaterEqual(34 + rows.min(), 35)

    def test_is_cold_and_light(self):
        for name in PLAYER:
            with self.subTest(name):
                values = colours(ship(name))
                self.assertGreaterEqual(values.dot(LUMA).mean(), 0.50)
                self.assertLessEqual(values.dot(LUMA).mean(), 0.62)
                self.assertGreaterEqual(share_in_hue(values, 185, 235), 0.65)
                self.assertTrue(205 <= self.main_hue(name) <= 225, self.main_hue(name))

    @staticmethod
    def main_hue(name):
        table = hues(colours(ship(name)))
        return np.median(table[table[:, 1] >= 0.15][:, 0])

    def test_carries_no_magenta(self):
        for name in PLAYER:
            with self.subTest(name):
                self.assertLess(share_in_hue(colours(ship(name)), 280, 345), 0.01)


class EnemyShip(unittest.TestCase):
    def test_fills_its_box_when_flying_straight(self):
        top, bottom, left, right = box(ship("enemy01")[..., 3] >= SMALLEST_ALPHA)
        self.assertEqual((left, right), (0, 38))
        self.assertLessEqual(top, 4)
        self.assertGreaterEqual(bottom, 37)

    def test_a_laser_meets_metal_in_every_column_that_counts_as_a_hit(self):
        inside = metal(ship("enemy01"))
        for column in range(1, 38):
            self.assertTrue(inside[15:20, column].all(), f"column {column}")

    def test_body_and_wings_fill_the_upper_rows_at_full_width(self):
        inside = metal(ship("enemy01"))
        self.assertTrue(inside[4:29, 0:3].any() and inside[4:29, 36:39].any())
        self.assertGreaterEqual(inside[4:29].mean(), 0.70)

    def test_only_the_jaw_reaches_below_the_wings(self):
        # A laser that flies up beside the jaw would seem to cross empty space.
        columns = np.nonzero(metal(ship("enemy01"))[30:].any(axis=0))[0]
        self.assertGreaterEqual(columns.min(), 13)
        self.assertLessEqual(columns.max(), 25)

    def test_muzzle_glows_in_the_colour_of_the_shot_where_the_shot_is_born(self):
        for name in ENEMY:
            with self.subTest(name):
                picture = ship(name)
                part = picture[28:39, 12:27]
                red, green, blue, alpha = np.moveaxis(part, -1, 0)
                glow = (alpha >= METAL) & (red > 170) & (blue > 140) & (blue - green > -30)
                rows, columns = np.nonzero(glow)
                self.assertGreaterEqual(len(rows), 12)
                self.assertAlmostEqual(rows.mean() + 28.5, 34.0, delta=0.6)
                self.assertAlmostEqual(columns.mean() + 12.5, 19.5, delta=0.6)
                ring = part[glow & (part[..., 1] < 150)][:, :3] / 255
                self.assertGreater(share_in_hue(ring, 290, 330), 0.8)

    def test_has_two_yellow_eyes(self):
        for name in ENEMY:
            with self.subTest(name):
                picture = ship(name)
                red, green, blue = np.moveaxis(picture[..., :3], -1, 0)
                eyes = metal(picture) & (red > 190) & (green > 160) & (blue < 90)
                self.assertGreaterEqual(eyes[24:31, 14:19].sum(), 2)
                self.assertGreaterEqual(eyes[24:31, 20:25].sum(), 2)

    def test_is_warm_and_darker_than_the_player(self):
        for name, other in zip(ENEMY, PLAYER):
            with self.subTest(name):
                values = colours(ship(name))
                self.assertGreaterEqual(values.dot(LUMA).mean(), 0.40)
                self.assertLessEqual(values.dot(LUMA).mean(), 0.47)
                self.assertGreaterEqual(share_in_hue(values, 340, 50), 0.50)
                self.assertGreater(brightness(ship(other)), brightness(ship(name)) + 0.08)

    def test_carries_no_cyan(self):
        for name in ENEMY:
            with self.subTest(name):
                self.assertLess(share_in_hue(colours(ship(name)), 160, 205), 0.01)


class BankPictures(unittest.TestCase):
    def test_nose_and_tail_stay_on_their_pixels(self):
        for straight, left, right in (PLAYER, ENEMY):
            base = metal(ship(straight))
            for name in (left, right):
                with self.subTest(name):
                    other = metal(ship(name))
                    for column in range(AXIS - 1, AXIS + 2):
                        for end in (first_row, last_row):
                            moved = abs(end(base, column) - end(other, column))
                            self.assertLessEqual(moved, 1)

    def test_span_shrinks_to_about_thirty_five_pixels(self):
        for name in PLAYER[1:] + ENEMY[1:]:
            with self.subTest(name):
                _, _, left, right = box(metal(ship(name)))
                self.assertIn(right - left + 1, (34, 35, 36))

    def test_wing_that_is_down_looks_shorter_than_the_raised_one(self):
        for _, left, right in (PLAYER, ENEMY):
            for name, low in ((left, 0), (right, 1)):
                with self.subTest(name):
                    _, _, first, last = box(metal(ship(name)))
                    reach = (AXIS - first, last - AXIS)
                    self.assertGreaterEqual(reach[1 - low] - reach[low], 3)
                    self.assertGreaterEqual(reach[low], 15)

    def test_wing_that_is_down_is_darker_than_the_raised_one(self):
        # A still picture shows the bank by its light; the straight pose is lit nearly alike.
        for straight, left, right in (PLAYER, ENEMY):
            even = self.wing_light(straight)
            self.assertLess(abs(even[0] - even[1]), 0.08)
            for name, low in ((left, 0), (right, 1)):
                with self.subTest(name):
                    light = self.wing_light(name)
                    self.assertGreater(light[1 - low], light[low] + 0.07)
                    self.assertLess(light[low], even[low] - 0.05)
                    self.assertGreater(light[1 - low], even[1 - low] - 0.03)

    @staticmethod
    def wing_light(name):
        """Mean brightness of what lies left and right of the body."""
        picture = ship(name)
        return [brightness(picture[:, WINGS[side]]) for side in (0, 1)]

    def test_no_pose_is_the_mirror_of_the_other(self):
        for _, left, right in (PLAYER, ENEMY):
            mirrored = ship(left)[:, ::-1]
            both = metal(mirrored) & metal(ship(right))
            change = np.abs(mirrored - ship(right))[both][:, :3].mean()
            self.assertGreater(change, 12)

    def test_canopy_leans_to_the_wing_that_is_down(self):
        shifts = [self.canopy_column(name) - self.canopy_column("ship01") for name in PLAYER[1:]]
        self.assertTrue(-1.8 <= shifts[0] <= -0.6, shifts)
        self.assertTrue(0.6 <= shifts[1] <= 1.8, shifts)

    @staticmethod
    def canopy_column(name):
        picture = ship(name)[9:18, 15:24]
        red, _, blue = np.moveaxis(picture[..., :3], -1, 0)
        weight = np.where(blue - red > 90, blue - red, 0)
        return (weight.sum(axis=0) * np.arange(9)).sum() / weight.sum()


class Rocket(unittest.TestCase):
    def test_outline_is_symmetric_about_the_column_that_runs_on_the_target(self):
        alpha = load(ROCKET)[..., 3].astype(int)
        self.assertLessEqual(np.abs(alpha - alpha[:, ::-1]).max(), 6)

    def test_nose_is_on_top_and_fins_are_at_the_tail(self):
        inside = metal(load(ROCKET))
        width = inside.sum(axis=1)
        self.assertTrue(inside[0, 4])
        self.assertLessEqual(width[0], 3)
        self.assertGreaterEqual(width[9:12].max(), 8)
        self.assertLess(width[:7].max(), 7)

    def test_flame_takes_the_last_three_or_four_rows(self):
        picture = load(ROCKET).astype(int)
        glow = (picture[..., 3] > 40) & (picture[..., 1] > 150) & (picture[..., 2] > 200)
        rows = [row for row in range(10, 15) if glow[row, 4]]
        self.assertIn(len(rows), (3, 4))
        self.assertEqual(rows[-1], 14)

    def test_wears_the_cold_colours_of_the_players_fire(self):
        values = colours(load(ROCKET))
        self.assertGreaterEqual(share_in_hue(values, 180, 225), 0.85)
        self.assertLess(share_in_hue(values, 0, 60), 0.01)


class WeaponIcons(unittest.TestCase):
    def test_panels_are_alike_and_let_a_fifth_of_the_ships_shine_through(self):
        laser, rocket = load(LASER_ICON), load(ROCKET_ICON)
        frame = np.ones((29, 29), bool)
        frame[2:-2, 2:-2] = False
        self.assertTrue((laser[frame] == rocket[frame]).all())
        for picture in (laser, rocket):
            panel = picture[frame & (picture[..., 3] > 0)]
            self.assertTrue((np.abs(panel[:, 3].astype(int) - 204) <= 2).all())

    def test_panel_is_dark(self):
        laser = load(LASER_ICON)
        for y, x in ((3, 3), (3, 25), (25, 25), (25, 3)):
            self.assertLess(laser[y, x, :3].max(), 64)

    def test_bevel_is_light_at_the_upper_left_and_darker_at_the_lower_right(self):
        laser = load(LASER_ICON)[..., :3] @ LUMA
        self.assertGreater(laser[0, 14], laser[28, 14] + 50)
        self.assertGreater(laser[14, 0], laser[14, 28] + 50)

    def test_motif_is_large_and_stays_inside_the_frame(self):
        for path in (LASER_ICON, ROCKET_ICON):
            with self.subTest(path):
                bright = load(path)[..., :3].max(axis=2) > 110
                top, bottom, left, right = box(bright[2:-2, 2:-2])
                self.assertGreaterEqual(bottom - top + 1, 18)
                self.assertGreaterEqual(right - left + 1, 15)


class TellingApart(unittest.TestCase):
    def setUp(self):
        self.things = {"player": load("ships/ship01.png"), "enemy": load("ships/enemy01.png")}
        for name, path in (("laser", "shots/shot01a.png"), ("enemy shot", "shots/e_shot01c.png")):
            if os.path.exists(os.path.join(DATA, path)):
                self.things[name] = load(path)

    def difference(self, one, other, sight):
        return np.linalg.norm(typical(self.things[one], sight)
                              - typical(self.things[other], sight))

    def test_player_and_enemy_differ_for_every_kind_of_sight(self):
        for sight in BLINDNESS:
            with self.subTest(sight):
                self.assertGreater(self.difference("player", "enemy", sight), 15)

    def test_the_players_fire_differs_from_the_enemys_for_every_kind_of_sight(self):
        if not {"laser", "enemy shot"} <= set(self.things):
            self.skipTest("no shots in this data folder")
        for sight in BLINDNESS:
            with self.subTest(sight):
                self.assertGreater(self.difference("laser", "enemy shot", sight), 15)

    def test_an_enemy_shot_stands_out_from_the_ship_it_leaves(self):
        if "enemy shot" not in self.things:
            self.skipTest("no shots in this data folder")
        for sight in BLINDNESS:
            with self.subTest(sight):
                self.assertGreater(self.difference("enemy", "enemy shot", sight), 12)

    def test_player_and_enemy_differ_in_grey(self):
        light = {name: brightness(picture) for name, picture in self.things.items()}
        self.assertGreater(light["player"], light["enemy"] + 0.08)


if __name__ == "__main__":
    if len(sys.argv) > 1:
        DATA = sys.argv.pop(1)
    unittest.main()
