# SPDX-License-Identifier: CC0-1.0
#
# The game that docs/assets.md shows, from screens.txt: its screens, and the scenario that the layer
# in front of SDL plays.

import collections
import os
import zlib

import pieces

SOURCE = os.path.join(pieces.ART, "doc", "screens.txt")
SCREENS = os.path.join(pieces.ROOT, "docs", "assets", "screens")

FIRST_MS = 266     # the game's own first frame time
FRAME_MS = 16
END_MS = 60000     # the window is closed at the latest

Screen = collections.namedtuple("Screen", "name ms words")


def presses(words):
    """Moments at which the key of a line goes down, and how long it is held."""
    if words[0] == "key":
        return [int(words[2])], int(words[3])
    first, last, every, held = map(int, words[2:6])
    return range(first, last, every), held


def read(path=SOURCE):
    """Screens of the game, and its scenario as text."""
    screens, events = [], [(END_MS, "quit")]
    with open(path, encoding="utf-8") as file:
        lines = [line.split() for line in file if line.strip() and not line.startswith("#")]
    for words in lines:
        if words[0] == "screen":
            screens.append(Screen(words[1], int(words[2]), " ".join(words[3:])))
            events.append((screens[-1].ms, f"picture {words[1]}.bmp"))
            continue
        moments, held = presses(words)
        for moment in moments:
            events += [(moment, f"down {words[1]}"), (moment + held, f"up {words[1]}")]
    text = [f"start {FIRST_MS}", f"frame 1 time {FRAME_MS}"]
    text += [f"ms {moment} {event}" for moment, event in sorted(events)]
    return screens, "\n".join(text) + "\n"


def sum_of_sources(described, text):
    """What the screens were made from: the pictures of the game and its scenario."""
    pictures = "".join(file.sum for file in described if file.path.endswith(".png"))
    return f"{zlib.crc32((pictures + text).encode()):08x}"
