# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: CC0-1.0
#
# From a large rendered picture to the pixels of the game.

import os
import sys

import numpy as np

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
import kit

SHARPENING = 0.55   # share of the 3x3 difference that is added back inside the outline
CONTRAST = 0.40     # share of the S-curve mixed into the display values
HARDNESS = 1.3      # slope of coverage: what the filter spreads over two pixels stands on one
SOLID = 0.94        # alpha of a pixel that shows nothing of what is below
RIM_STEP = 0.02     # a soft pixel is darker or lighter than its solid neighbours by this at most
LUMA = np.array([0.299, 0.587, 0.114])


def mitchell(distance):
    """The Mitchell-Netravali kernel (1/3, 1/3), two pixels to each side."""
    d = np.abs(distance)
    near = (7 * d ** 3 - 12 * d ** 2 + 16 / 3) / 6
    far = (-7 / 3 * d ** 3 + 12 * d ** 2 - 20 * d + 32 / 3) / 6
    return np.where(d < 1, near, np.where(d < 2, far, 0.0))


def filter_matrix(size, count):
    """Rows of weights that turn `count` samples into `size` pixels."""
    factor = count / size
    centres = (np.arange(size) + 0.5) * factor - 0.5
    weights = mitchell((np.arange(count)[None, :] - centres[:, None]) / factor)
    return weights / weights.sum(axis=1, keepdims=True)


def shrink(layers, width, height):
    """Filters (height, width, channels) down to the given size."""
    down = filter_matrix(height, layers.shape[0])
    across = filter_matrix(width, layers.shape[1])
    return np.einsum("ij,jkc,lk->ilc", down, layers, across, optimize=True)


def neighbours(layer):
    """3x3 mean of each pixel, the border repeated."""
    padded = np.pad(layer, ((1, 1), (1, 1), (0, 0)), mode="edge")
    height, width = layer.shape[:2]
    return sum(padded[y:y + height, x:x + width] for y in range(3) for x in range(3)) / 9


def sharpen(colour, alpha, share):
    """Unsharp mask whose surroundings count only as far as they belong to the thing."""
    weight = np.maximum(neighbours(alpha), 1e-4)
    around = neighbours(colour * alpha) / weight
    return np.clip(colour + share * alpha * (colour - around), 0.0, 1.0)


def steepen(colour):
    """Mild S-curve: deeper darks and clearer lights around a fixed middle."""
    return colour + CONTRAST * (colour * colour * (3 - 2 * colour) - colour)


def harden(coverage):
    return np.clip(0.5 + HARDNESS * (coverage - 0.5), 0.0, 1.0)


def solid_neighbours(colour, solid):
    """Of the solid pixels in each 3x3: their number, mean colour, least and greatest brightness."""
    height, width = solid.shape
    inside, padded = np.pad(solid, 1), np.pad(colour, ((1, 1), (1, 1), (0, 0)))
    count, total = np.zeros((height, width, 1)), np.zeros_like(colour)
    least, greatest = np.ones((height, width)), np.zeros((height, width))
    for dy, dx in np.ndindex(3, 3):
        part = slice(dy, dy + height), slice(dx, dx + width)
        light = padded[part] @ LUMA
        count += inside[part][..., None]
        total += padded[part] * inside[part][..., None]
        least = np.where(inside[part], np.minimum(least, light), least)
        greatest = np.where(inside[part], np.maximum(greatest, light), greatest)
    return count[..., 0], total / np.maximum(count, 1), least, greatest


def settle_rim(colour, alpha):
    """Draws the colours of the soft rim towards the solid parts that it belongs to.

    A shaded sliver at the edge of a light hull would be a dark line over fire, a lit one over a
    dark hull a row of specks over space.
    """
    solid = alpha[..., 0] >= SOLID
    count, hull, least, greatest = solid_neighbours(colour, solid)
    own, aim = colour @ LUMA, hull @ LUMA
    wanted = np.clip(own, least - RIM_STEP, greatest + RIM_STEP)
    strange = ~solid & (count > 0) & (wanted != own)
    share = np.where(strange, (wanted - own) / np.where(strange, aim - own, 1), 0)
    return colour + np.clip(share, 0, 1)[..., None] * (hull - colour)


def reduce_picture(large, width, height, sharpening=SHARPENING, crisp=True):
    """8-bit RGBA picture of a large straight RGBA one.

    Coverage goes through the display curve, because the game blends display values: over black an
    edge then looks exactly as smooth as the renderer meant it. What lies on a ground of its own,
    and so is never seen over fire, needs no crisp rim.
    """
    values = large.astype(np.float64) / 255.0
    alpha = values[..., 3:]
    light = kit.to_linear(values[..., :3]) * alpha
    small = np.clip(shrink(np.dstack([light, alpha]), width, height), 0.0, 1.0)
    coverage = small[..., 3:]
    colour = kit.to_srgb(small[..., :3] / np.maximum(coverage, 1e-4))
    colour = steepen(sharpen(colour, coverage, sharpening))
    alpha = kit.to_srgb(harden(coverage) if crisp else coverage)
    if crisp:
        colour = settle_rim(colour, alpha)
    return kit.to_bytes(np.dstack([colour, alpha]))
