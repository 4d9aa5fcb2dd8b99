# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: CC0-1.0
"""The small flash where a shot hits: spark, star flash, burst, breaking ring, embers, nothing."""

import numpy as np

SIZE = 16
FINE = 8                # sub-pixels per pixel, both ways
CENTRE = (9.0, 8.0)     # px; half a pixel off a laser's axis and half a pixel off an enemy shot's
LARGEST_PX = 7.0        # the right edge of the picture is that near

BITS = 11
BITS_SEED = 4
BIT_LIGHT = 3.0         # power of its size by which the light of a bit grows

# display colours by heat
HEATS = (0.0, 0.2, 0.42, 0.62, 0.82, 1.0)
COLOURS = ((0.16, 0.02, 0.0), (0.60, 0.13, 0.0), (1.0, 0.40, 0.03), (1.0, 0.70, 0.16),
           (1.0, 0.92, 0.55), (1.0, 1.0, 0.94))


def field():
    """Radius (px) and angle of the sub-pixels around the flash's centre."""
    at = (np.arange(SIZE * FINE) + 0.5) / FINE
    x, y = np.meshgrid(at - CENTRE[0], at - CENTRE[1])
    return np.hypot(x, y), np.arctan2(y, x), x, y


def ripple(angle, seed, waves):
    """Uneven value around the circle, from about -1 to 1."""
    chance = np.random.RandomState(seed)
    return sum(np.sin(angle * n + chance.uniform(0, 6.28)) * chance.uniform(0.5, 1.0)
               for n in waves) / (0.8 * len(waves) ** 0.5 + 0.4)


def spark(radius, angle, x, y):
    """About three pixels: it also closes the flash, so it must not blink."""
    return 0.95 * np.exp(-((radius / 1.35) ** 2)) * 1.1


def star(radius, angle, x, y):
    """White core with four long and four short points."""
    core = 1.25 * np.exp(-((radius / 3.0) ** 2))
    points = np.zeros_like(radius)
    for turn, length, width in ((0.0, 7.0, 0.75), (np.pi / 4, 5.2, 0.7)):
        along = x * np.cos(turn) + y * np.sin(turn)
        beside = -x * np.sin(turn) + y * np.cos(turn)
        for a, b in ((along, beside), (beside, along)):
            points = np.maximum(points, np.clip(1 - np.abs(a) / length, 0, 1) ** 0.8
                                * np.exp(-((b / width) ** 2)))
    return np.maximum(core, 0.95 * points)


def burst(radius, angle, x, y):
    """Ragged fireball, hot inside."""
    edge = 5.6 * (1.0 + 0.16 * ripple(angle, 3, (3, 5, 7)))
    return 1.15 * np.clip(1.0 - (radius / edge) ** 2.2, 0.0, 1.0) ** 0.75


def ring(radius, angle, x, y):
    """The ball opens into a ring that breaks."""
    middle = 4.7 * (1.0 + 0.10 * ripple(angle, 5, (2, 3, 5)))
    strength = np.clip(0.52 + 0.62 * ripple(angle, 8, (3, 4, 7)), 0.0, 1.0)
    haze = 0.19 * np.exp(-((radius / 4.2) ** 4)) * (1.0 + 0.5 * ripple(angle, 9, (2, 3)))
    return 0.86 * strength * np.exp(-(((radius - middle) / 1.15) ** 2)) + haze


def bits(x, y, heat, out, size):
    """Glowing bits where the ring was, the large ones hot and the small ones cold."""
    glow = np.zeros_like(x)
    for right, down, large in places_of_bits():
        away = np.hypot(x - out * right, y - out * down)
        glow = np.maximum(glow, large * np.exp(-((away / (size * large)) ** 2)))
    return heat * glow


def places_of_bits():
    """Place (share of the way out) and size of each bit."""
    chance = np.random.RandomState(BITS_SEED)
    places = []
    for i in range(BITS):
        towards = (i + chance.uniform(-0.4, 0.4)) / BITS * 2 * np.pi
        far = chance.uniform(0.5, 1.0)
        large = chance.uniform(0.6, 1.15)
        places.append((far * np.cos(towards), far * np.sin(towards), large))
    places = np.array(places)
    # Large bits are brighter, too: their light as a whole stays in the middle of the hit.
    places[:, :2] -= np.average(places[:, :2], axis=0, weights=places[:, 2] ** BIT_LIGHT)
    return places


def embers(radius, angle, x, y):
    """The ring has fallen to bits."""
    return bits(x, y, heat=0.58, out=5.4, size=1.1)


def last_embers(radius, angle, x, y):
    """The same bits, further out, smaller and nearly cold."""
    return bits(x, y, heat=0.36, out=6.1, size=0.85)


def nothing(radius, angle, x, y):
    """Never shown."""
    return np.zeros_like(radius)


STAGES = (spark, star, burst, ring, embers, last_embers, nothing)


def picture(kit, number):
    """RGBA of one of the seven pictures."""
    radius, angle, x, y = field()
    heat = STAGES[number](radius, angle, x, y) * np.clip((LARGEST_PX - radius) / 0.8, 0.0, 1.0)
    shown = np.clip(heat / 0.22, 0.0, 1.0)
    colour = np.dstack([np.interp(heat, HEATS, [c[i] for c in COLOURS]) for i in range(3)])
    light = kit.to_linear(colour) * shown[..., None]
    blocks = (SIZE, FINE, SIZE, FINE)
    light = light.reshape(*blocks, 3).mean(axis=(1, 3))
    # Only the hot parts hide what is behind them; the rest is light, which must not leave a dark
    # rim on a bright hull.
    solid = np.clip((heat - 0.35) / 0.4, 0.0, 1.0)
    cover = solid.reshape(blocks).mean(axis=(1, 3))
    return kit.glow(kit.to_srgb(light), cover)
