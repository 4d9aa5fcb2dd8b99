#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Looks whether the frames that tools/bench measures show what its table says of them:
test_scenes.py kravoltix-scene DATA_DIR"""

import importlib.machinery
import importlib.util
import json
import os
import re
import subprocess
import sys
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
BENCH = Path(__file__).resolve().parents[2] / "tools" / "bench"
SCENE, DATA = (os.path.abspath(word) for word in sys.argv[1:3])
del sys.argv[1:3]

TITLE_LETTERS = len("Test of formation 7BIRD")
LAST_DIGIT = 9
NUMBERS = {"none": 0, "no": 0, "one": 1, "two": 2, "three": 3, "four": 4}
NUMBER = r"(\d+|" + "|".join(NUMBERS) + ")"

# What the table may say, and what it says of a frame. All of its words must be told by these.
CLAIMS = (
    (NUMBER + " ships", lambda seen, n: seen["ships"] == n),
    (NUMBER + "(?: of them)? exploding", lambda seen, n: seen["exploding"] == n),
    (NUMBER + " enemy shots", lambda seen, n: seen["enemyShots"] == n),
    (NUMBER + " lasers", lambda seen, n: seen["lasers"] == n),
    (NUMBER + " in flight", lambda seen, n: seen["lasers"] == n),
    ("after " + NUMBER + " lasers", lambda seen, n: seen["lasersFired"] == n),
    (NUMBER + " laser fired", lambda seen, n: seen["lasersFired"] == n),
    ("the title is typed", lambda seen: 0 < seen["titleLetters"] <= TITLE_LETTERS),
    ("a digit of the countdown", lambda seen: 0 <= seen["countDown"] <= LAST_DIGIT),
)
SAME_FRAMES = "the same frames"  # as the row above


def scene_table():
    """The table of tools/bench itself."""
    loader = importlib.machinery.SourceFileLoader("bench", str(BENCH))
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader("bench", loader))
    loader.exec_module(module)
    return module.SCENE_TABLE


def frames(game, first, last):
    """What is seen in each frame."""
    environment = dict(os.environ, SDL_VIDEODRIVER="dummy", SDL_AUDIODRIVER="dummy")
    command = [SCENE, os.path.relpath(game, DATA), str(first), str(last)]
    output = subprocess.run(command, cwd=DATA, env=environment, stdout=subprocess.PIPE, check=True)
    return [json.loads(line) for line in output.stdout.splitlines()]


def holds(claim, seen):
    """Whether a claim is true of a frame; None if nothing is known of such a claim."""
    for pattern, rule in CLAIMS:
        match = re.fullmatch(pattern, claim)
        if match:
            return rule(seen, *(NUMBERS.get(word) if word in NUMBERS else int(word)
                                for word in match.groups()))
    return None


class Scenes(unittest.TestCase):
    def test_every_frame_shows_what_the_table_says(self):
        for name, shows, game, first, last in scene_table():
            seen = frames(game, first, last)
            self.assertEqual([each["frame"] for each in seen], list(range(first, last + 1)), name)
            for claim in shows.split(", "):
                for each in seen if claim != SAME_FRAMES else ():
                    with self.subTest(scene=name, claim=claim, seen=each):
                        self.assertTrue(holds(claim, each))

    def test_scenes_that_show_the_same_frames_name_the_same_frames(self):
        table = scene_table()
        for above, row in zip(table, table[1:]):
            if SAME_FRAMES in row[1].split(", "):
                with self.subTest(scene=row[0]):
                    self.assertEqual(above[3:], row[3:])

    def test_a_wrong_claim_does_not_hold(self):
        seen = {"ships": 8, "exploding": 1, "enemyShots": 20, "lasers": 5, "lasersFired": 50,
                "titleLetters": 0, "countDown": -1}
        for claim in ("7 ships", "none of them exploding", "19 enemy shots", "four lasers",
                      "none in flight", "after 49 lasers", "no laser fired", "the title is typed",
                      "a digit of the countdown", "a boss"):
            with self.subTest(claim=claim):
                self.assertFalse(holds(claim, seen))
        for claim in ("8 ships", "one of them exploding", "20 enemy shots", "5 lasers",
                      "after 50 lasers"):
            with self.subTest(claim=claim):
                self.assertTrue(holds(claim, seen))


if __name__ == "__main__":
    unittest.main()
