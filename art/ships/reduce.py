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


def reduce_picture(large, width, height, sharpening=SHARPENING):
    """8-bit RGBA picture of a large straight RGBA one.

    Coverage goes through the display curve, because the game blends display values: over black an
    edge then looks exactly as smooth as the renderer meant it.
    """
    values = large.astype(np.float64) / 255.0
    alpha = values[..., 3:]
    light = kit.to_linear(values[..., :3]) * alpha
    small = np.clip(shrink(np.dstack([light, alpha]), width, height), 0.0, 1.0)
    coverage = small[..., 3:]
    colour = kit.to_srgb(small[..., :3] / np.maximum(coverage, 1e-4))
    colour = steepen(sharpen(colour, coverage, sharpening))
    return kit.to_bytes(np.dstack([colour, kit.to_srgb(coverage)]))
