# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: CC0-1.0

# Text: pixel maps in, sheets of chrome glyphs with their shadows out.
#
# A glyph is first its coverage, an array (height, width) from 0 to 1. A sheet is a row of cells of
# equal size; neither a glyph nor its shadow leaves its cell, since the game cuts cells apart.

import os

import numpy as np

import kit
from palette import DIM_ICE, GOLD, ICE, SHADOW, SHADOW_ALPHAS, SMALL_SHADOW_ALPHAS

HERE = os.path.dirname(os.path.abspath(__file__))

COVERAGE = {"#": 1.0, "+": 0.62, "-": 0.34, ".": 0.0}

LETTER_CELL = (9, 8)  # height and width in pixels, as for all cells
DIGIT_CELL = (9, 6)
SMALL_CELL = (5, 4)
LABEL_SIZE = (9, 19)
LABEL_PITCH_PX = 7


def read_maps(name):
    """The coverage of each glyph of a text file, by its sign."""
    maps = {}
    with open(os.path.join(HERE, name), encoding="ascii") as file:
        lines = [line.rstrip("\n") for line in file if not line.startswith(";")]
    for block in "\n".join(lines).strip().split("\n\n"):
        sign, *rows = block.strip().split("\n")
        if len({len(row) for row in rows}) != 1 or sign in maps:
            raise SystemExit(f"{name}: glyph {sign}: rows of unequal length, or drawn twice")
        maps[sign] = np.array([[COVERAGE[pixel] for pixel in row] for row in rows])
    return maps


def in_cell(coverage, size):
    """The glyph flush left and top in its cell."""
    height, width = coverage.shape
    return np.pad(coverage, ((0, size[0] - height), (0, size[1] - width)))


def shadow_of(coverage, alphas=SHADOW_ALPHAS, clear_columns=0):
    """Alpha of the shadow, by distance from the glyph; the last columns are kept clear."""
    height, width = coverage.shape
    reach = len(alphas)
    padded = np.pad(coverage, reach)
    alpha = np.zeros_like(coverage)
    for dy in range(-reach, reach + 1):
        for dx in range(-reach, reach + 1):
            distance = max(abs(dy), abs(dx), abs(dy) + abs(dx) - 1)
            if 1 <= distance <= reach:
                near = padded[reach + dy:reach + dy + height, reach + dx:reach + dx + width]
                alpha = np.maximum(alpha, alphas[distance - 1] * near)
    alpha[:, width - clear_columns:] = 0.0
    return alpha


def chrome(coverage, colours, shadow):
    """8-bit glyph, one colour of the ramp per row (or pair of rows), over its shadow."""
    rows = np.minimum(np.arange(len(coverage)) // row_height(colours), len(colours) - 1)
    front = np.broadcast_to(colours[rows][:, None, :], coverage.shape + (3,))
    alpha = coverage + (1.0 - coverage) * shadow
    behind = ((1.0 - coverage) * shadow)[..., None] * SHADOW
    straight = (coverage[..., None] * front + behind) / np.maximum(alpha, 1e-6)[..., None]
    return kit.to_bytes(np.dstack([straight, alpha]))


def row_height(colours):
    """Rows per step: the four steps of the tall glyphs take two rows each."""
    return 2 if len(colours) == 4 else 1


def strip(name, signs, cell, colours, **shadow):
    """A sheet of glyphs, cell by cell."""
    maps = read_maps(name)
    coverages = [in_cell(maps[sign], cell) for sign in signs]
    cells = [chrome(each, colours, shadow_of(each, **shadow)) for each in coverages]
    return np.concatenate(cells, axis=1)


def letters():
    return strip("letters.txt", "ABCDEFGHIJKLMNOPQRSTUVWXYZ", LETTER_CELL, ICE)


def digits():
    return strip("digits.txt", "0123456789", DIGIT_CELL, ICE)


def small_digits():
    # With the fourth column clear, a counter of three digits stands centred below its icon.
    return strip("small.txt", "0123456789", SMALL_CELL, GOLD, alphas=SMALL_SHADOW_ALPHAS,
                 clear_columns=1)


def cross():
    return strip("small.txt", "x", (5, 5), GOLD)


def frame_rate_label():
    maps = read_maps("label.txt")
    coverage = np.zeros(LABEL_SIZE)
    for i, sign in enumerate("FPS"):
        height, width = maps[sign].shape
        left = i * LABEL_PITCH_PX
        coverage[:height, left:left + width] = maps[sign]
    return chrome(coverage, DIM_ICE, shadow_of(coverage))
