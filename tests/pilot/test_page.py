#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""The page of the balance: written from the kept figures of a few games."""

import json
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

HERE = Path(__file__).resolve().parent
PAGE = HERE.parent.parent / "tools" / "pilot" / "page.py"
FIGURES = HERE / "balance.json"
PLOTS = ("energy", "hit-rate", "idler", "purist-energy", "purist-hit-rate", "time-to-win")
PNG_START = b"\x89PNG\r\n"


def run(*arguments):
    return subprocess.run(["/usr/bin/python3", "-B", PAGE, *arguments], capture_output=True, text=True)


class Page(unittest.TestCase):
    def test_has_the_figures_and_every_plot_that_it_shows(self):
        with tempfile.TemporaryDirectory() as folder:
            result = run(FIGURES, folder)
            self.assertEqual(result.returncode, 0, result.stderr)
            page = (Path(folder) / "balance.md").read_text()
            for name in PLOTS:
                self.assertIn(f"(balance/{name}.png)", page)
                self.assertTrue((Path(folder) / "balance" / f"{name}.png").read_bytes().startswith(PNG_START))
            self.assertEqual(len(list((Path(folder) / "balance").iterdir())), len(PLOTS))
            for games in json.loads(FIGURES.read_text())["runs"]:
                self.assertIn(f"| {games['fps']} | {len(games['lost'])} |", page)

    def test_tells_how_it_is_called(self):
        result = run()
        self.assertNotEqual(result.returncode, 0)
        self.assertIn("Usage: page.py", result.stderr)


if __name__ == "__main__":
    sys.exit(unittest.main())
