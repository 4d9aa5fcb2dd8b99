# SPDX-License-Identifier: MIT
"""Pictures of the game, and how far two of them may differ."""

import os

import numpy as np
from PIL import Image

# Of 255, in each channel: by so much the two libraries mix colours differently.
TOLERANCE = 2

# Of a picture that was smoothly enlarged: each display rounds the mixture in its own way.
SMOOTH_TOLERANCE = 4

WIDTH, HEIGHT = 640, 480
REFERENCES = os.path.join(os.path.dirname(os.path.abspath(__file__)), "reference")


def load(path):
    with Image.open(path) as picture:
        return np.asarray(picture.convert("RGB"))


def reference(name):
    return load(os.path.join(REFERENCES, name + ".png"))


def save(pixels, path):
    Image.fromarray(pixels).save(path, optimize=True)


def distance(one, other, tolerance=TOLERANCE):
    """The greatest difference of a channel, and how many pixels differ beyond the tolerance."""
    if one.shape != other.shape:
        return 255, one.shape[0] * one.shape[1]
    each = np.abs(one.astype(np.int16) - other.astype(np.int16)).max(axis=2)
    return int(each.max()), int((each > tolerance).sum())


def enlarged(picture, factor):
    """Each pixel a square."""
    return picture.repeat(factor, axis=0).repeat(factor, axis=1)


def smoothly_enlarged(picture, factor):
    """Each pixel mixed from the four around its place, whose centres lie `factor` pixels apart."""
    mixed = picture.astype(np.float64)
    for axis in (0, 1):
        length = mixed.shape[axis]
        centres = (np.arange(round(length * factor)) + 0.5) / factor - 0.5
        before = np.floor(centres).astype(int)
        share = (centres - before).reshape([-1 if axis == 0 else 1, 1 if axis == 0 else -1, 1])
        first = np.take(mixed, np.clip(before, 0, length - 1), axis)
        second = np.take(mixed, np.clip(before + 1, 0, length - 1), axis)
        mixed = first * (1 - share) + second * share
    return np.rint(mixed).astype(np.uint8)


def at(screen, x, y, picture, tolerance=TOLERANCE):
    """How far the screen differs from the picture at this place."""
    height, width = picture.shape[:2]
    return distance(screen[y:y + height, x:x + width], picture, tolerance)


def find(screen, picture, tolerance=TOLERANCE):
    """Where the picture stands on the screen, as (x, y), or None.

    Its brightest spots, which few places have together, are looked for first; each place that has
    them is then compared as a whole.
    """
    height, width = picture.shape[:2]
    rows = screen.shape[0] - height + 1
    columns = screen.shape[1] - width + 1
    if rows < 1 or columns < 1:
        return None
    possible = np.ones((rows, columns), bool)
    brightness = picture.sum(axis=2, dtype=np.int32)
    for place in np.argsort(brightness, axis=None)[-1:-400:-20]:
        y, x = divmod(int(place), width)
        part = screen[y:y + rows, x:x + columns].astype(np.int16)
        possible &= (np.abs(part - picture[y, x].astype(np.int16)) <= tolerance).all(axis=2)
    for y, x in np.argwhere(possible):
        if at(screen, x, y, picture, tolerance)[1] == 0:
            return int(x), int(y)
    return None
