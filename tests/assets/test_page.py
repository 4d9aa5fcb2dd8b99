#!/usr/bin/python3
# SPDX-License-Identifier: MIT

# Tells whether docs/assets.md is up to date, and whether its questions can be answered with no.
#
# usage: test_page.py [DATA_DIR]

import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.join(HERE, "..", "..")
sys.dont_write_bytecode = True
sys.path[:0] = [os.path.join(ROOT, *part) for part in
                (("art",), ("art", "doc"), ("art", "sounds"), ("tools",))]

import numpy as np

import criteria
import desktop
import figures
import files
import hearing
import kit
import looks
import pieces
import scenario

DATA = os.path.join(ROOT, "data")
SECONDS_FOR_THE_PAGE = 200


def run_page(*arguments):
    """Exit status and everything that art/page says."""
    done = subprocess.run([os.path.join(ROOT, "art", "page"), *arguments], capture_output=True,
                          text=True, timeout=SECONDS_FOR_THE_PAGE)
    return done.returncode, done.stdout + done.stderr


class Page(unittest.TestCase):
    def test_is_up_to_date(self):
        status, said = run_page("--check", "-d", DATA)
        self.assertEqual(status, 0, said)

    def test_notices_one_changed_pixel_everywhere(self):
        with tempfile.TemporaryDirectory(prefix="page-test-") as folder:
            data = os.path.join(folder, "data")
            shutil.copytree(DATA, data)
            path = os.path.join(data, "ships", "ship01.png")
            picture = kit.load(path)
            picture[20, 19, :3] ^= 64
            kit.save(path, picture)
            status, said = run_page("--check", "-d", data)
        self.assertEqual(status, 1, said)
        for outdated in ("assets.md:", "assets/ships-black-1x.png", "assets/screens/play.png"):
            self.assertIn(outdated, said)
        self.assertNotIn("hud-black", said)

    def test_tells_when_a_folder_is_missing(self):
        self.assertEqual(run_page("-d", "/nowhere"), (2, "page: there is no folder /nowhere\n"))


class Questions(unittest.TestCase):
    """Each breaks the pictures in one way, and the question about it must be answered with no."""

    @classmethod
    def setUpClass(cls):
        cls.whole = {path: kit.load(os.path.join(DATA, path)) for path in files.paths(DATA)
                     if path.endswith(".png")}

    def setUp(self):
        self.pictures = {path: picture.copy() for path, picture in self.whole.items()}

    def refuse(self, ask, words):
        answers = {question: yes for question, yes, _ in ask(self.pictures)}
        found = [question for question in answers if words in question]
        self.assertEqual(len(found), 1, words)
        self.assertFalse(answers[found[0]], found[0])

    def shift(self, paths, rows, columns):
        for path in paths:
            self.pictures[path] = np.roll(self.pictures[path], (rows, columns), (0, 1))

    def test_an_enemy_in_the_players_colours(self):
        self.pictures[criteria.ENEMY[0]] = self.pictures[criteria.PLAYER[0]][::-1]
        for sight in figures.SIGHT:
            self.refuse(criteria.telling_apart, f"({sight})")
        self.refuse(criteria.telling_apart, "lighter than the enemy")

    def test_a_laser_as_wide_as_high(self):
        self.pictures[criteria.LASER] = self.pictures[criteria.ENEMY_SHOT]
        self.refuse(criteria.telling_apart, "by their shape")

    def test_a_grey_shot(self):
        self.pictures[criteria.ENEMY_SHOT][..., :3] = 200
        self.refuse(criteria.telling_apart, "for a star")

    def test_a_bank_that_slides_along_the_axis(self):
        self.shift(criteria.PLAYER[1:2], 2, 0)
        self.refuse(criteria.ships, "nose and tail of the player")

    def test_a_bank_as_wide_as_the_straight_pose(self):
        self.pictures[criteria.ENEMY[1]] = self.pictures[criteria.ENEMY[0]]
        self.refuse(criteria.ships, "Does the enemy fly full width")

    def test_a_mirrored_bank(self):
        self.pictures[criteria.PLAYER[2]] = self.pictures[criteria.PLAYER[1]][:, ::-1]
        self.refuse(criteria.ships, "bank of the player lit anew")

    def test_a_muzzle_beside_the_shot(self):
        self.shift(criteria.ENEMY[:1], 0, 2)
        self.refuse(criteria.ships, "grow out of a muzzle")

    def test_a_lopsided_rocket(self):
        self.pictures[criteria.ROCKET][5, 0] = 255
        self.refuse(criteria.ships, "rocket symmetric")

    def test_holes_where_shots_are_launched(self):
        self.pictures[criteria.PLAYER[0]][2:5, 18, 3] = 100
        self.pictures[criteria.PLAYER[0]][30, 19, 3] = 100
        self.refuse(criteria.ships, "foot of a new laser")
        self.refuse(criteria.ships, "hide a rocket")

    def test_a_blast_beside_the_ship(self):
        self.shift(criteria.BLAST, 0, 6)
        for words in ("die out before", "cut off", "stay on the ship"):
            self.refuse(criteria.blast, words)

    def test_a_blast_in_jumps_with_frozen_smoke(self):
        self.pictures[criteria.BLAST[8]][:] = 0
        self.pictures[criteria.BLAST[36]] = self.pictures[criteria.BLAST[35]]
        for words in ("change smoothly", "never freeze", "suddenly brighter"):
            self.refuse(criteria.blast, words)

    def test_a_blast_with_a_hole_that_ends_late(self):
        for number in range(18, 25):
            self.pictures[criteria.BLAST[number]][30:36, 30:50, 3] = 60
        self.pictures[criteria.BLAST[20]][:] = 0
        self.pictures[criteria.BLAST[45]][40, 40] = 255
        for words in ("every ship well", "every ship wholly", "not seen", "left on the screen"):
            self.refuse(criteria.blast, words)

    def test_a_flash_that_is_cut_and_blinks_twice(self):
        self.shift(criteria.FLASH[1:3], 3, 0)
        self.pictures[criteria.FLASH[0]] = self.pictures[criteria.FLASH[1]]
        for words in ("cut by", "middle of the hit", "once, not twice"):
            self.refuse(criteria.hit_flash, words)

    def test_text_without_light_or_shadow(self):
        self.pictures[criteria.LETTERS][..., :3] //= 2
        self.pictures[criteria.CURSOR][:, 16:24] = 255
        for words in ("over every picture", "under the second frame"):
            self.refuse(criteria.text, words)

    def test_a_tube_with_too_few_segments_and_a_scale_that_slips(self):
        self.pictures[criteria.TUBE][15] = self.pictures[criteria.TUBE][14]
        self.shift([criteria.SCALE], 1, 0)
        self.pictures[criteria.MARKS[1]][0, 0] = 255
        for words in ("exactly one segment", "tick of the scale", "one bracket"):
            self.refuse(criteria.gauge, words)

    def test_light_fringes(self):
        soft = self.pictures[criteria.ENEMY[0]][..., 3] < 240
        self.pictures[criteria.ENEMY[0]][soft, :3] = 255
        self.pictures[criteria.ENEMY[0]][~soft, :3] //= 3
        self.refuse(criteria.every_picture, "fringes over space")

    def test_veils_and_dark_fringes(self):
        self.pictures[criteria.LETTERS][0, 0] = (0, 0, 0, 2)
        for path in criteria.PLAYER:
            soft = self.pictures[path][..., 3] < 240
            self.pictures[path][soft, :3] = 0
        for words in ("wholly clear", "fringes over fire"):
            self.refuse(criteria.every_picture, words)


class Icon(unittest.TestCase):
    """Each breaks the icon in one way, and the question about it must be answered with no."""

    def setUp(self):
        self.icons = desktop.load(desktop.described())
        self.player, self.enemy = (kit.load(os.path.join(DATA, paths[0]))
                                   for paths in (criteria.PLAYER, criteria.ENEMY))

    def refused(self):
        return [question for question, yes, _ in
                desktop.asked(self.icons, self.player, self.enemy) if not yes]

    def refuse(self, words):
        self.assertRegex("\n".join(self.refused()), words)

    def test_the_icon_as_it_is(self):
        self.assertEqual(self.refused(), [])

    def test_a_size_that_lacks_or_is_another(self):
        self.icons[64] = self.icons[48]
        self.refuse("every size that desktops ask for")
        del self.icons[64]
        self.refuse("every size that desktops ask for")

    def test_another_ship_in_one_size(self):
        for size in (16, 256):
            with self.subTest(size):
                was = self.icons[size]
                self.icons[size] = was[::-1]
                self.refuse("player's ship of the game")
                self.icons[size] = was

    def test_an_icon_of_the_enemy(self):
        self.player, self.enemy = self.enemy, self.player
        self.refuse("player's ship of the game")

    def test_a_ship_as_dark_as_its_tile(self):
        self.icons[16][..., :3] //= 3
        self.refuse("stand out of its tile at 16 px")

    def test_a_corner_that_is_not_clear(self):
        self.icons[512][-1, 0] = 255
        self.refuse("corners clear")

    def test_its_table_names_every_file_with_size_and_licence(self):
        found = list(desktop.described())
        for kind in ("apps", "mimetypes"):
            edges = [desktop.edge(file.path) for file in found if f"/{kind}/" in file.path]
            self.assertEqual(edges, [*desktop.SIZES, None])
        self.assertEqual(len(found), 2 * (len(desktop.SIZES) + 1))
        for file in found:
            with self.subTest(file.path):
                self.assertRegex(file.size, r"\d+ x \d+$")
                self.assertEqual(file.licence, "CC0-1.0")
                for source in re.findall(r"\]\((.*?)\)", file.content):
                    self.assertTrue(os.path.exists(os.path.join(ROOT, "docs", source)), source)

    def test_its_picture_shows_every_size_on_both_desktops(self):
        pixels = desktop.sheet(self.icons)
        for ground in desktop.GROUNDS:
            with self.subTest(ground):
                self.assertGreater((pixels == ground).all(axis=2).mean(), 0.05)
        for size, icon in self.icons.items():
            part = icon[size // 4:-(size // 4), size // 4:-(size // 4), :3]
            with self.subTest(size):
                self.assertEqual(self.places(pixels, part), 2)

    def places(self, pixels, part):
        """How often a part is found in a picture, by its first row."""
        row = part[0]
        starts = np.argwhere((pixels[:, :-len(row)] == row[0]).all(axis=2))
        return sum(np.array_equal(pixels[y:y + len(part), x:x + len(row)], part)
                   for y, x in starts)


class Sounds(unittest.TestCase):
    def setUp(self):
        self.sounds = hearing.load(os.path.join(DATA, "sounds"))

    def refused(self, ask):
        return {question for question, yes, _ in ask(self.sounds) if not yes}

    def test_a_loud_sound_that_starts_hard_and_booms(self):
        hum = 0.9 * np.cos(2 * np.pi * 60 * np.arange(20000) / hearing.RATE)
        self.sounds["shot001b"] = hum
        self.assertEqual(len(self.refused(hearing.of_levels)), 6)

    def test_a_late_and_dull_countdown(self):
        dull = np.convolve(self.sounds["intro"], np.ones(40) / 40, "same")
        self.sounds["intro"] = np.roll(dull, hearing.RATE * 6 // 10)
        self.assertEqual(len(self.refused(hearing.of_intro)), 2)


class Sources(unittest.TestCase):
    def test_a_file_that_the_game_does_not_read_is_told(self):
        with self.assertRaisesRegex(pieces.ArtError, "no source of the game names it"):
            files.readers("ships/ship02.png", files.literals())

    def test_a_judgement_counts_only_for_what_was_looked_at(self):
        described = [files.File("a.png", "", "", "", "hud", "", "", "12345678")]
        with tempfile.NamedTemporaryFile("w", suffix=".txt") as file:
            file.write(f"hud | {looks.sum_of_piece(described, 'hud')} | yes | Good? | Good.\n"
                       "hud | 00000000 | yes | Good? | Good.\n")
            file.flush()
            answers = [look.answer for look in looks.read(described, file.name)]
        self.assertEqual(answers[0], "yes")
        self.assertRegex(answers[1], "look again")

    def test_the_keys_of_the_game_come_in_the_order_of_time(self):
        screens, text = scenario.read()
        moments = [int(line.split()[1]) for line in text.splitlines() if line.startswith("ms")]
        self.assertEqual(moments, sorted(moments))
        self.assertEqual(text.count("picture"), len(screens))
        self.assertEqual(text.count("down "), text.count("up "))


if __name__ == "__main__":
    if len(sys.argv) > 1 and os.path.isdir(sys.argv[1]):
        DATA = os.path.abspath(sys.argv.pop(1))
    unittest.main()
