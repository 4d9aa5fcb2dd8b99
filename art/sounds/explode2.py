# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: CC0-1.0
#
# The player's ship is lost: a bigger blast in two blows, hull metal that rings on, and the whine of
# a reactor running down.

import numpy as np

from explode import body, tearing
from synth import (band, curve, decay, from_db, glide, grains, hit, low_pass, modes, noise, room,
                   saturate, saw, seconds, shape, sine, swell)

LENGTH = 3.0            # s
PEAK_DB = -2
LOUDEST_DB = -10
FADE = 0.50             # s

SECOND = 0.90           # s
WHINE_START = 0.28      # s

HULL = ((311, 0.7, 0.9), (523, 0.6, 0.75), (787, 0.8, 0.65), (1171, 0.6, 0.5), (1693, 0.5, 0.4),
        (2411, 0.4, 0.3), (3307, 0.3, 0.2), (4793, 0.2, 0.12))


def crack(t, start, seed):
    """A double snap over the full band."""
    sharp = noise(len(t) / 88200.0, seed, lambda _, hz: (hz / 3000.0) ** 0.4 / (
        1.0 + (hz / 9000.0) ** 2), 512)
    return sharp * (hit(t, start, 0.0012, 0.008) + 0.8 * hit(t, start + 0.021, 0.001, 0.009)
                    + 0.5 * hit(t, start + 0.055, 0.001, 0.012))


def whine(t):
    """Turbine tones that fall for two seconds and flutter as the power fails."""
    pitch = 90 + 1500 * np.exp(-np.maximum(t - WHINE_START, 0) / 0.75)
    pitch = pitch * (1.0 + 0.012 * sine(9 - 2 * np.minimum(t, 3), t))
    tones = saw(pitch, t) + 0.7 * saw(pitch * 1.495, t, 0.2) + 0.5 * sine(pitch * 2.01, t)
    dulled = shape(tones, lambda time, hz: low_pass(hz, 700 + 4500 * np.exp(-time / 0.9)), 1024)
    return dulled * swell(t, WHINE_START, 0.15) * from_db(curve(
        t, (0, 0), (0.9, 0), (2.0, -7), (2.6, -18), (3.0, -36)))


def sound():
    t = seconds(LENGTH + 0.02)
    first = hit(t, 0, 0.003, 0.24) + 0.4 * hit(t, 0, 0.02, 0.8)
    second = hit(t, SECOND, 0.004, 0.22) + 0.4 * hit(t, SECOND, 0.02, 0.7)
    total = crack(t, 0, 600) + 1.0 * body(t, 0, 6500, 0.22, 610) * first
    total += 0.6 * tearing(t, 0.004, 620)
    total += 1.0 * sine(glide(t, 220, 62, 0.14), t) * hit(t, 0.002, 0.004, 0.26)
    total += 0.6 * crack(t, SECOND, 630) + 0.75 * body(t, SECOND, 4500, 0.22, 640) * second
    total += 0.4 * tearing(t, SECOND + 0.004, 650)
    total += 0.7 * sine(glide(t - SECOND, 190, 60, 0.13), t) * hit(t, SECOND, 0.004, 0.24)
    total += 0.10 * modes(t, HULL, 0.01) + 0.07 * modes(t, HULL, SECOND)
    total += 0.09 * whine(t) + 0.12 * grains(t, 660, 110, (0.08, 2.6), (700, 7000), (0.004, 0.02))
    return total + 0.40 * room(total, 1.4, 680, 3500)
