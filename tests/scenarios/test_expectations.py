#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""An expectation that is not met is told with its line and the figure that came: a scenario whose
every line is one too high or too low, played by the program and on the data of the command line.
"""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

GAME = """start 3001
fail Mix_OpenAudio 2 never
frame 1 quit
"""

# What is expected, and what the report says; None for one that is met.
EXPECTATIONS = (
    ('2 text "READY"', '2 times the text "READY", got 1'),
    ('no text "READY"', '0 times the text "READY", got 1'),
    ('1 text "READY"', None),
    ('1 text "READY" in frames 1 9', '1 times the text "READY" in frames 1 to 9, got 0'),
    ('1 text "READY" in frames 0 0', None),
    ('no call "SDL_Init("', '0 calls "SDL_Init(", got 2'),
    ('2 call "SDL_Init("', None),
    ('2 call "SDL_Init" in frames 1 1', '2 calls "SDL_Init" in frames 1 to 1, got 0'),
    ('2+ call "Mix_OpenAudio"', '2 or more calls "Mix_OpenAudio", got 1'),
    ('3..5 drawn "fonts/impact/letters.png"',
     '3 to 5 drawings of "fonts/impact/letters.png", got 2'),
    ('2 drawn "fonts/impact/letters.png" in frames 1 1', None),
    ('1 drawn "fonts/impact/letters.png" in frames 2 2',
     '1 drawings of "fonts/impact/letters.png" in frames 2 to 2, got 0'),
    ('1 drawn "fonts/impact/letters.png" part 152 0 at 228 180', None),
    ('1 drawn "fonts/impact/letters.png" part 151 0',
     '1 drawings of "fonts/impact/letters.png" from 151,0, got 0'),
    ('1 drawn "fonts/impact/letters.png" part 152 0 at 229 180',
     '1 drawings of "fonts/impact/letters.png" from 152,0 at 229,180, got 0'),
    ('2 pixels ffffff in 0 0 640 480 at 1', '2 pixels ffffff in frame 1, got 1'),
    ('1 pixels ffffff in 270 156 1 1 at 1', None),
    ('1 pixels ffffff in 270 156 1 1 at 2', "the game has no frame 2: it has 1"),
    ("frames 2", "2 frames, got 1"),
    ("frames 1", None),
    ("status 1", "1 as the exit status, got 0"),
    ("status 0", None),
)


class Expectations(unittest.TestCase):
    def verify(self, text):
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder) / "a.scenario"
            path.write_text(text, encoding="ascii")
            result = subprocess.run([TOOL, "verify", "--data", DATA, path], text=True,
                                    stdout=subprocess.PIPE, check=False)
            return result.returncode, result.stdout.replace(str(path), "a.scenario")

    def test_each_line_that_is_not_met_is_told(self):
        lines = GAME.splitlines() + ["expect " + wanted for wanted, _ in EXPECTATIONS]
        status, report = self.verify("\n".join(lines) + "\n")
        first = len(GAME.splitlines()) + 1
        reports = [f"a.scenario:{line}: {'' if 'no frame' in told else 'expected '}{told}"
                   for line, (_, told) in enumerate(EXPECTATIONS, start=first) if told]
        self.assertEqual(report.splitlines(), reports)
        self.assertEqual(status, 1)

    def test_one_that_is_met_is_told_by_itself(self):
        met = [wanted for wanted, told in EXPECTATIONS if not told]
        status, report = self.verify(GAME + "".join(f"expect {wanted}\n" for wanted in met))
        self.assertIn(f"as expected: {len(met)} expectations, 1 frames", report)
        self.assertEqual(status, 0)

    def test_without_an_expectation_nothing_is_proven(self):
        status, report = self.verify(GAME)
        self.assertIn("expects nothing, so nothing is proven", report)
        self.assertEqual(status, 2)


if __name__ == "__main__":
    DATA = sys.argv.pop()
    TOOL = sys.argv.pop()
    unittest.main()
