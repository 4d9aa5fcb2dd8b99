# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: CC0-1.0
#
# The player is hit: a blow on the hull, the crunch of plates, and a short falling buzz of the ship's
# own alarm. Two notes a half-tone and an octave apart rub against each other: it must alarm.

import numpy as np

from synth import (band, crackle, curve, decay, from_db, glide, hit, low_pass, modes, noise, saturate,
                   saw, seconds, shape, sine, swell)

LENGTH = 0.38           # s
PEAK_DB = -6
LOUDEST_DB = -12
FADE = 0.05             # s

HULL = ((283, 0.8, 0.09), (467, 0.7, 0.07), (811, 0.6, 0.05), (1367, 0.5, 0.035),
        (2190, 0.4, 0.022))


def buzz(t):
    """The alarm: it starts as the blow fades and falls by about an octave."""
    pitch = glide(t - 0.05, 640, 330, 0.12)
    rub = saw(pitch, t) + saw(pitch * 1.06, t, 0.3) + 0.7 * saw(pitch * 0.5, t, 0.1)
    gate = 0.55 + 0.45 * np.tanh(4 * sine(38, t))
    dulled = shape(rub * gate, lambda time, hz: low_pass(
        hz, 900 + 5200 * np.exp(-time / 0.10), 2, 1.4), 1024)
    return dulled * hit(t, 0.035, 0.03, 0.10)


def crunch(t):
    """Noise torn into uneven lumps, as when metal folds."""
    torn = noise(len(t) / 88200.0, 401, lambda time, hz: band(
        hz, 700 + 2600 * np.exp(-time / 0.04), 1.1), 512)
    return saturate(torn * crackle(t, 402, 130, 0.8), 1.5)


def sound():
    t = seconds(LENGTH + 0.02)
    crack = noise(LENGTH + 0.02, 403, lambda _, hz: band(hz, 5000, 1.2), 512)
    total = 1.1 * sine(glide(t, 230, 70, 0.045), t) * hit(t, 0, 0.0015, 0.075)
    total += 0.55 * crunch(t) * hit(t, 0, 0.0012, 0.055)
    total += 0.5 * crack * hit(t, 0, 0.001, 0.005)
    total += 0.28 * modes(t, HULL) + 0.42 * buzz(t)
    return total
