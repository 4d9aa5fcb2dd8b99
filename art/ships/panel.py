# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: CC0-1.0
#
# The two weapon icons: one dark bevelled panel, on it the rocket or the laser's bolts.

import os
import sys

import numpy as np

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
import kit

SIZE = 29                # pixels
FRAME = 2                # pixels at each side that the motif leaves alone
OPACITY = 0.80           # ships passing below stay faintly visible
TILT_DEGREES = 38        # clockwise, both motifs alike

# Display colours. The light comes from the upper left, so those edges are light.
FACE_TOP, FACE_BASE = (0.090, 0.125, 0.180), (0.035, 0.050, 0.085)
BEVEL_LIGHT, BEVEL_DARK = (0.46, 0.62, 0.78), (0.16, 0.23, 0.32)
GROOVE = (0.020, 0.030, 0.050)

# Bolts: middle along and across the firing direction, half length; all in pixels.
BOLTS = ((1.2, 0.0, 8.8), (-2.4, -5.8, 5.6), (-2.4, 5.8, 5.6))
BOLT_RADIUS = 1.35
GLOW_RADIUS = 4.5
SAMPLES = 8              # per pixel and direction
BOLT_CORE, BOLT_EDGE, BOLT_GLOW = (1.0, 1.0, 1.0), (0.36, 0.957, 1.0), (0.11, 0.486, 1.0)


def panel():
    """Straight display RGBA of the empty panel, corners cut by two pixels."""
    rows = np.linspace(0, 1, SIZE)[:, None, None]
    colour = np.array(FACE_TOP) * (1 - rows) + np.array(FACE_BASE) * rows
    picture = np.dstack([np.broadcast_to(colour, (SIZE, SIZE, 3)), np.full((SIZE, SIZE), OPACITY)])
    y, x = np.mgrid[0:SIZE, 0:SIZE]
    far = SIZE - 1
    edge = np.minimum(np.minimum(x, far - x), np.minimum(y, far - y))
    corner = np.minimum(np.minimum(x + y, far - x + y), np.minimum(x + far - y, 2 * far - x - y))
    ring = np.minimum(edge, corner - 2)
    lit = x + y < far
    picture[(ring == 0) & lit, :3] = BEVEL_LIGHT
    picture[(ring == 0) & ~lit, :3] = BEVEL_DARK
    picture[ring == 1, :3] = GROOVE
    # The bevel's two colours meet halfway where the light turns.
    picture[(ring == 0) & (np.abs(x + y - far) <= 2), :3] = np.add(BEVEL_LIGHT, BEVEL_DARK) / 2
    picture[ring < 0] = 0
    return picture


def bolts():
    """Straight display RGBA of three bolts in flight: hot head, fading tail, blue glow."""
    steps = (np.arange(SIZE * SAMPLES) + 0.5) / SAMPLES - SIZE / 2
    x, y = np.meshgrid(steps, steps)
    turn = np.radians(TILT_DEGREES)
    along, across = x * np.sin(turn) - y * np.cos(turn), x * np.cos(turn) + y * np.sin(turn)
    core = np.zeros_like(x)
    halo = np.zeros_like(x)
    for middle, side, half in BOLTS:
        place = np.clip(along - middle, -half, half)
        distance = np.hypot(along - middle - place, across - side)
        strength = 0.25 + 0.75 * np.clip((place + half) / (1.2 * half), 0, 1)
        core = np.maximum(core, strength * np.clip(1.5 - distance / BOLT_RADIUS, 0, 1))
        halo = np.maximum(halo, strength * np.clip(1 - distance / GLOW_RADIUS, 0, 1) ** 2)
    white = np.clip(core * 2 - 1, 0, 1)[..., None]
    rim = np.clip(core * 2, 0, 1)[..., None]
    light = np.array(BOLT_GLOW) * halo[..., None] * 0.75
    light = light * (1 - rim) + np.array(BOLT_EDGE) * rim
    light = light * (1 - white) + np.array(BOLT_CORE) * white
    light = light.reshape(SIZE, SAMPLES, SIZE, SAMPLES, 3).mean(axis=(1, 3))
    return kit.glow(light, np.zeros((SIZE, SIZE))) / 255.0


def icon(motif):
    """8-bit RGBA of the panel with a straight display RGBA motif over it."""
    below = panel()
    cover = np.zeros((SIZE, SIZE, 1))
    inside = slice(FRAME, SIZE - FRAME)
    cover[inside, inside] = motif[inside, inside, 3:]
    alpha = cover + below[..., 3:] * (1 - cover)
    colour = motif[..., :3] * cover + below[..., :3] * below[..., 3:] * (1 - cover)
    return kit.to_bytes(np.dstack([colour / np.maximum(alpha, 1e-6), alpha]))
