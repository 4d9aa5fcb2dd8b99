# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: CC0-1.0
"""What shines around the burning gas: bloom, the white flash with its rays, and the sparks.

Everything is light in linear values, as arrays of 84 x 84 x 3, with the middle of the blast in the
middle of pixel 41.
"""

import numpy as np

SIZE = 84
MIDDLE = 41.5  # px, both ways

# bloom: width in px, strength, colour; orange, since white bloom turns fire salmon
BLOOM = ((1.4, 0.10, (1.0, 0.50, 0.08)), (4.5, 0.16, (1.0, 0.34, 0.03)))

# flash: strength of core and rays by picture
FLASH = {0: (0.35, 0.0), 1: (1.0, 1.3), 2: (0.70, 0.55), 3: (0.45, 0.18), 4: (0.27, 0.06),
         5: (0.15, 0.0), 6: (0.07, 0.0),
         16: (0.9, 0.0), 17: (0.45, 0.0), 18: (0.18, 0.0)}
CORE_PX = 12.0
RAYS = 17
RAY_LONGEST_PX = 37.0
# weak light is orange, strong light white: powers of the light for red, green and blue
WARMTH = np.array((1.0, 1.35, 2.0))
STRENGTH = np.array((1.2, 0.95, 0.6))

# This much light (linear) is taken off everywhere: on black it is not seen, but every pixel with
# it costs a blend.
FAINT = 0.003

# nothing is left outside the last of these radii, px
WINDOW_PX = (35.0, 40.2)

# sparks: (picture of the burst, how many, how far the farthest flies in px, tint); those of the
# second burst are orange, for in front of dark smoke yellow ones look like dust
SHOWERS = ((-0.1, 46, 38.5, (1.0, 1.0, 1.0)), (15.3, 18, 37.5, (0.8, 0.42, 0.12)))
SPARK_SEED = 36
SPARK_WIDTH_PX = 0.62
SPARK_LONGEST_PX = 6.0
SPARK_FLIGHT = 10.0                   # pictures that a spark drifts for
SPARK_HIDDEN = (0.6, 2.4)             # pictures after which the flash hides it less, and no more
BLEACHED = np.array((0.5, 0.8, 0.1))  # how much red, green and blue light take from a spark
SPARK_HEAT = ((0.0, (1.0, 0.86, 0.36)), (0.35, (1.0, 0.66, 0.16)), (0.7, (1.0, 0.30, 0.03)),
              (1.0, (0.45, 0.05, 0.0)))


def grid(fine):
    """x and y of the sub-pixels, px from the middle of the blast."""
    at = (np.arange(SIZE * fine) + 0.5) / fine - MIDDLE
    return np.meshgrid(at, at)


def coarse(picture, fine):
    """Mean of each pixel's sub-pixels."""
    return picture.reshape(SIZE, fine, SIZE, fine, -1).mean(axis=(1, 3))


def blur(picture, width):
    """Gaussian blur; beyond the edge there is black."""
    reach = int(3 * width) + 1
    at = np.arange(-reach, reach + 1)
    weights = np.exp(-0.5 * (at / width) ** 2)
    weights /= weights.sum()
    for axis in (0, 1):
        picture = np.apply_along_axis(np.convolve, axis, picture, weights, mode="same")
    return picture


def bloom(picture):
    """Light that the bright parts spill over their surroundings."""
    bright = picture.max(axis=2, keepdims=True) * np.minimum(picture, 1.0)
    return sum(blur(bright, width) * strength * np.array(colour)
               for width, strength, colour in BLOOM)


def flash(number):
    """The white light of the burst: a soft core and uneven rays that die out inside the window."""
    core, rays = FLASH.get(number, (0.0, 0.0))
    if core == 0.0:
        return np.zeros((SIZE, SIZE, 3))
    x, y = grid(3)
    radius = np.hypot(x, y)
    light = core * 1.3 * np.exp(-((radius / CORE_PX) ** 2))
    if rays > 0.0:
        light = light + rays * ray_star(x, y, radius)
    return coarse(light[..., None] ** WARMTH * STRENGTH, 3)


def ray_star(x, y, radius):
    """Rays in evenly spread directions, uneven in length, width and strength."""
    chance = np.random.RandomState(7)
    angle = np.arctan2(y, x)
    star = np.zeros_like(x)
    for i in range(RAYS):
        towards = (i + chance.uniform(-0.32, 0.32)) / RAYS * 2 * np.pi
        width_px = chance.uniform(1.2, 3.0)
        length = chance.uniform(0.68, 1.0) * RAY_LONGEST_PX
        off = np.abs((angle - towards + np.pi) % (2 * np.pi) - np.pi)
        beside = np.where(off < np.pi / 2, radius * np.sin(np.minimum(off, np.pi / 2)), 99.0)
        left = np.clip(1.0 - radius / length, 0.0, 1.0)
        point = beside / (width_px * (0.25 + 0.75 * left))
        star += chance.uniform(0.7, 2.2) * left ** 1.2 * np.exp(-(point ** 2))
    return star


def sparks(number, clear):
    """Glowing splinters with short trails; those behind the gas shine through where it is clear."""
    light = np.zeros((SIZE * 2, SIZE * 2, 3))
    x, y = grid(2)
    hidden = clear.repeat(2, axis=0).repeat(2, axis=1)
    for shower, (start, count, farthest, tint) in enumerate(SHOWERS):
        chance = np.random.RandomState(SPARK_SEED + shower)
        for i in range(count):
            spark = splinter(chance, i, count, farthest)
            time = number - start - spark["late"]
            age = time / spark["life"]
            if 0.0 < age < 1.0:
                seen = 1.0 if spark["front"] else hidden
                light += trail(x, y, time, age, spark) * np.array(tint) * seen
    return coarse(light, 2)


def splinter(chance, i, count, farthest):
    """One spark: evenly spread directions with jitter, uneven reach and life."""
    towards = (i + chance.uniform(-0.6, 0.6)) / count * 2 * np.pi
    return {
        "towards": towards,
        "reach": farthest * chance.uniform(0.84, 1.0),
        "thrown": chance.uniform(0.62, 0.90),
        "slowness": chance.uniform(0.25, 0.40),
        "life": chance.uniform(9.0, 15.0),
        "late": chance.uniform(0.0, 0.15),
        "bend": chance.uniform(-0.5, 0.5),
        "front": chance.uniform() < 0.6,
        "power": chance.uniform(0.6, 1.6),
        "shortest": chance.uniform(1.6, 4.5),
    }


def place(spark, time):
    """Where a spark is some pictures after its burst: thrown out in the flash, it then drifts."""
    time = max(time, 0.0)
    thrown = spark["thrown"] * (1.0 - np.exp(-time / spark["slowness"]))
    share = thrown + (1.0 - spark["thrown"]) * time / SPARK_FLIGHT
    out = spark["reach"] * share
    towards = spark["towards"] + spark["bend"] * share
    return out * np.cos(towards), out * np.sin(towards)


def trail(x, y, time, age, spark):
    """Light of one spark: bright head, tail along its way in the last pictures."""
    head_x, head_y = place(spark, time)
    tail_x, tail_y = place(spark, time - 1.5)
    way_x, way_y = head_x - tail_x, head_y - tail_y
    moved = max(np.hypot(way_x, way_y), 1e-6)
    way_x, way_y = way_x / moved, way_y / moved
    length = np.clip(moved, spark["shortest"], SPARK_LONGEST_PX)
    along = (head_x - x) * way_x + (head_y - y) * way_y
    beside = (head_x - x) * way_y - (head_y - y) * way_x
    ahead = np.maximum(-along, 0.0)
    behind = np.clip(along / length, 0.0, 1.0)
    beyond = np.maximum(along - length, 0.0)
    shape = np.exp(-(beside ** 2 + ahead ** 2 + beyond ** 2) / SPARK_WIDTH_PX ** 2)
    shape *= (1.0 - behind) ** 1.2
    stages = [stage for stage, _ in SPARK_HEAT]
    colour = [np.interp(age, stages, [c[i] for _, c in SPARK_HEAT]) for i in range(3)]
    dazzled, free = SPARK_HIDDEN
    fading = min(1.0, 3.0 * (1.0 - age)) * np.clip((time - dazzled) / (free - dazzled), 0.0, 1.0)
    # Inside the white core a spark would only be a scratch.
    fading *= np.clip((np.hypot(head_x, head_y) - 9.0) / 12.0, 0.0, 1.0)
    return shape[..., None] * np.array(colour) * (spark["power"] * fading)


def window():
    """1 in the middle, 0 outside: the blast never ends in a straight edge."""
    x, y = grid(1)
    inner, outer = WINDOW_PX
    share = np.clip((outer - np.hypot(x, y)) / (outer - inner), 0.0, 1.0)
    return share * share * (3.0 - 2.0 * share)
