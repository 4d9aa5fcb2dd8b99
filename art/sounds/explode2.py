# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: CC0-1.0
#
# The player's ship is lost: a bigger blast in two blows, hull metal that rings on, and the whine of
# a reactor running down.

import numpy as np

from explode import body, crack, tearing, thump
from synth import (curve, from_db, glide, grains, hit, level, low_pass, modes, room,
                   saturate, saw, seconds, shape,
                   sine, swell)

LENGTH = 3.0            # s
PEAK_DB = -2.4
LOUDEST_DB = -10.45
FADE = 0.50             # s

BOOM = 0.030            # s after the crack: the last hit on the ship still sounds before that
SECOND = 0.90           # s
DENSITY = 1.2           # saturation of all but the cracks, which stand out in front of it
CRACK = 0.55
WHINE_START = 0.25      # s
WHINE_HZ = (1650, 110)
WARMTH_HZ = 210         # the burning body lies half an octave below an enemy's

HULL = ((311, 0.7, 0.9), (523, 0.7, 0.75), (787, 0.9, 0.65), (1171, 0.8, 0.55), (1693, 0.7, 0.45),
        (2411, 0.5, 0.35), (3307, 0.4, 0.25), (4793, 0.3, 0.15))


def whine(t):
    """Turbine tones that fall for two seconds and flutter as the power fails."""
    pitch = glide(t - WHINE_START, *WHINE_HZ, 0.80)
    pitch = pitch * (1.0 + 0.015 * sine(9 - 2 * np.minimum(t, 3), t))
    tones = saw(pitch, t) + 0.7 * saw(pitch * 1.495, t, 0.2) + 0.5 * sine(pitch * 2.01, t)
    dulled = shape(tones, lambda time, hz: low_pass(hz, 900 + 2600 * np.exp(-time / 0.7)), 1024)
    return dulled * swell(t, WHINE_START, 0.12) * from_db(curve(
        t, (0, 0), (0.8, 0), (1.6, -5), (2.2, -13), (2.7, -26), (3.0, -40)))


def sound():
    t = seconds(LENGTH + 0.02)
    first = hit(t, 0.015, 0.035, 0.10) + 0.22 * hit(t, 0.015, 0.05, 0.45)
    second = hit(t, SECOND, 0.012, 0.11) + 0.24 * hit(t, SECOND, 0.03, 0.42)
    total = 1.05 * body(t, 0, (7000, 330), 0.11, 610, WARMTH_HZ) * first
    total += 0.40 * tearing(t, 0.012, 0.10, 620) + 1.15 * thump(t, BOOM, (190, 66), 0.16)
    total += 0.48 * body(t, SECOND, (5500, 300), 0.16, 640, WARMTH_HZ) * second
    total += 0.20 * tearing(t, SECOND, 0.12, 650) + 0.6 * thump(t, SECOND + 0.01, (170, 64), 0.18)
    metal = modes(t, HULL, 0.014) + 0.8 * modes(t, HULL[::-1], SECOND)
    total += 0.09 * metal + 0.16 * whine(t)
    total += 0.09 * grains(t, 660, 110, (0.08, 2.4), (700, 7000), (0.003, 0.016))
    total += 0.28 * room(total, 1.4, 680, 1800)
    cracks = crack(t, 0, 600) + 0.6 * crack(t, SECOND, 630)
    # Turned over, so that their peaks do not add to those of the last hit's own crack.
    return saturate(level(total, 0), DENSITY) - CRACK * cracks
