# SPDX-License-Identifier: CC0-1.0
# What every picture of the game goes through: the encoding of its pixels, the game's own blend for
# previews, the game's sky, and contact sheets.
#
# Arrays are numpy, rows first: (height, width, channels). Pictures are straight (not
# premultiplied) 8-bit RGBA.

import os

import numpy as np
from PIL import Image

import png

# A pixel that is not clear costs three and a half times as much as a clear one, seen or not. Not
# seen is what lifts the black of space by two steps of 255 at most and takes no more than a
# sixteenth from a hull or a star behind it; nor, whatever it lies over, an alpha below 4.
SMALLEST_ALPHA = 4
UNSEEN_STEPS = 2
UNSEEN_ALPHA = 16


def to_srgb(linear):
    """Display value (0 to 1) of a linear light value (0 to 1)."""
    linear = np.clip(linear, 0.0, 1.0)
    return np.where(linear <= 0.0031308, linear * 12.92, 1.055 * linear ** (1 / 2.4) - 0.055)


def to_linear(display):
    """Linear light value (0 to 1) of a display value (0 to 1)."""
    display = np.clip(display, 0.0, 1.0)
    return np.where(display <= 0.04045, display / 12.92, ((display + 0.055) / 1.055) ** 2.4)


def glow(colour, coverage):
    """RGBA of light and smoke, from its display colour over black and its linear coverage.

    The game blends in display space and cannot add light, so a glow needs as much alpha as its
    brightest channel.
    """
    alpha = np.maximum(to_srgb(coverage), colour.max(axis=2))
    safe = np.where(alpha > 0, alpha, 1.0)
    straight = np.clip(colour / safe[..., None], 0.0, 1.0)
    return to_bytes(np.dstack([straight, alpha]))


def to_bytes(picture):
    """8-bit picture of one with values from 0 to 1, rounded once, at the very end."""
    return np.floor(np.clip(picture, 0.0, 1.0) * 255.0 + 0.5).astype(np.uint8)


def unseen(picture):
    """Which pixels of a picture nobody sees in the game, as a mask (height, width)."""
    alpha = picture[..., 3]
    space = np.zeros(picture.shape[:2] + (3,), np.uint8)
    blend(space, picture, 0, 0)
    faint = (space.max(axis=2) <= UNSEEN_STEPS) & (alpha <= UNSEEN_ALPHA)
    return faint | (alpha < SMALLEST_ALPHA)


def save(path, picture):
    """Writes an 8-bit RGBA PNG without a time stamp; what is not seen is wholly clear."""
    picture = np.ascontiguousarray(picture, dtype=np.uint8).copy()
    picture[unseen(picture)] = 0
    os.makedirs(os.path.dirname(path) or ".", exist_ok=True)
    with open(path, "wb") as file:
        file.write(png.packed(picture))


def load(path):
    """8-bit RGBA array of a picture file."""
    return np.array(Image.open(path).convert("RGBA"))


def blend(screen, picture, x, y):
    """Draws a picture onto an 8-bit RGB screen as the game does, cut at the screen's edges."""
    height, width = picture.shape[:2]
    left, top = max(x, 0), max(y, 0)
    right, bottom = min(x + width, screen.shape[1]), min(y + height, screen.shape[0])
    if left >= right or top >= bottom:
        return
    part = picture[top - y:bottom - y, left - x:right - x].astype(np.int32)
    below = screen[top:bottom, left:right].astype(np.int32)
    mixed = below + (((part[..., :3] - below) * part[..., 3:] + 255) >> 8)
    screen[top:bottom, left:right] = mixed.astype(np.uint8)


def sky(width=640, height=480, colour=(0, 0, 0), stars=60):
    """A screen as it is before anything is drawn: one colour and the game's sixty stars."""
    screen = np.empty((height, width, 3), np.uint8)
    screen[:] = colour
    state = 42
    for i in range(stars):
        across = i * (state + 1) & 0xFFFFFFFF
        state = i * (across + 1) & 0xFFFFFFFF
        x, y = across % 640, state % 480
        brightness = (x + y % 105 + 150) % 256
        if 1 <= i <= 25:
            brightness = 10 * (i - 1)
        elif i == 26:
            brightness = 255
        if x < width and y < height:
            screen[y, x] = brightness
    return screen


def enlarge(picture, factor):
    """Every pixel as a square of `factor` pixels."""
    return picture.repeat(factor, axis=0).repeat(factor, axis=1)


def sheet(pictures, columns, factor=1, gap=4, colour=(0, 0, 0)):
    """Contact sheet: equal RGBA pictures over one colour, row by row, enlarged by `factor`."""
    height, width = pictures[0].shape[:2]
    rows = -(-len(pictures) // columns)
    screen = np.empty((rows * (height + gap) + gap, columns * (width + gap) + gap, 3), np.uint8)
    screen[:] = colour
    for i, picture in enumerate(pictures):
        blend(screen, picture, gap + i % columns * (width + gap), gap + i // columns * (height + gap))
    return enlarge(screen, factor)


def save_sheet(path, screen):
    """Writes an RGB screen or sheet."""
    Image.fromarray(screen, "RGB").save(path)
