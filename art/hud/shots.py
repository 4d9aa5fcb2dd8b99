# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: CC0-1.0

# The laser bolt and the enemy's plasma: small glows, computed and then reduced.

import numpy as np

import kit
from palette import LASER_BODY, LASER_CORE, LASER_EDGE, PLASMA

FINE = 8  # samples per pixel and direction

LASER_HEIGHT_PX, LASER_WIDTH_PX = 11, 3
# Alpha along the bolt, from the head down: solid for the upper half, then fading out.
LASER_CORE_ALPHA = np.array([0.94, 1.0, 1.0, 1.0, 1.0, 0.97, 0.88, 0.74, 0.55, 0.35, 0.16])
LASER_SIDE_ALPHA = np.array([0.36, 0.84, 0.95, 0.92, 0.86, 0.76, 0.60, 0.43, 0.28, 0.15, 0.06])
# How far the core has cooled from white to cyan, and from there to blue.
LASER_COOLING = np.array([0.10, 0.00, 0.00, 0.05, 0.15, 0.35, 0.60, 0.90, 1.20, 1.50, 1.80])

PLASMA_HEIGHT_PX, PLASMA_WIDTH_PX = 8, 11
PLASMA_RADIUS_X_PX, PLASMA_RADIUS_Y_PX = 5.5, 4.0
# Colour and alpha by distance from the centre, 1 at the rim. The last tenth is a dark of the shot's
# own colour: it is not seen over space, and parts the shot from a hull and from fire.
PLASMA_STOPS = np.array([0.00, 0.30, 0.40, 0.64, 0.80, 0.90, 1.00])
PLASMA_MIX = np.array([0.00, 0.05, 1.05, 1.45, 2.10, 3.00, 3.00])
PLASMA_ALPHA = np.array([1.00, 1.00, 1.00, 1.00, 0.97, 0.85, 0.00])


def mix(ramp, position):
    """Colours between the entries of a ramp."""
    steps = np.arange(len(ramp))
    return np.stack([np.interp(position, steps, ramp[:, i]) for i in range(3)], axis=-1)


def laser():
    ramp = np.array([LASER_CORE, LASER_BODY, LASER_EDGE])
    picture = np.zeros((LASER_HEIGHT_PX, LASER_WIDTH_PX, 4))
    for column in (0, 2):
        picture[:, column, :3] = mix(ramp, 0.9 + 0.6 * LASER_COOLING)
        picture[:, column, 3] = LASER_SIDE_ALPHA
    picture[:, 1, :3] = mix(ramp, LASER_COOLING)
    picture[:, 1, 3] = LASER_CORE_ALPHA
    return kit.to_bytes(picture)


def plasma():
    y, x = np.mgrid[:PLASMA_HEIGHT_PX * FINE, :PLASMA_WIDTH_PX * FINE] / FINE + 0.5 / FINE
    distance = np.hypot((x - PLASMA_WIDTH_PX / 2) / PLASMA_RADIUS_X_PX,
                        (y - PLASMA_HEIGHT_PX / 2) / PLASMA_RADIUS_Y_PX)
    alpha = np.interp(distance, PLASMA_STOPS, PLASMA_ALPHA)
    colour = mix(PLASMA, np.interp(distance, PLASMA_STOPS, PLASMA_MIX))
    return kit.to_bytes(reduce(colour, alpha))


def reduce(colour, alpha):
    """Straight RGBA at the game's size from fine samples, averaged premultiplied."""
    sums = np.dstack([colour * alpha[..., None], alpha])
    height, width = alpha.shape
    sums = sums.reshape(height // FINE, FINE, width // FINE, FINE, 4).mean(axis=(1, 3))
    sums[..., :3] /= np.maximum(sums[..., 3:], 1e-6)
    return sums
