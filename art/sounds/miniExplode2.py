# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: CC0-1.0
#
# The player is hit: a blow on the hull, the crunch of plates, and a short falling buzz of the
# ship's own alarm. Its two voices lie a half-tone apart and rub against each other: it must alarm.

import numpy as np

from synth import (band, crackle, glide, hit, low_pass, modes, noise, saturate, saw, seconds, shape,
                   sine)

LENGTH = 0.38           # s
PEAK_DB = -6.3
LOUDEST_DB = -12.45
FADE = 0.05             # s

BUZZ_HZ = (760, 380)
BUZZ_START = 0.045      # s, when the blow has made its point
GATE_HZ = 32            # the alarm stutters

HULL = ((283, 0.8, 0.08), (467, 0.7, 0.07), (811, 0.6, 0.05), (1367, 0.5, 0.035),
        (2190, 0.4, 0.022))


def buzz(t):
    """The alarm falls by an octave and dulls on its way."""
    pitch = glide(t - BUZZ_START, *BUZZ_HZ, 0.13)
    rub = saw(pitch, t) + 0.9 * saw(pitch * 1.06, t, 0.3) + 0.5 * saw(pitch * 0.5, t, 0.1)
    gate = 0.6 + 0.4 * np.tanh(4 * sine(GATE_HZ, t, 0.25))
    dulled = shape(rub * gate, lambda time, hz: low_pass(
        hz, 1200 + 4400 * np.exp(-time / 0.12), 2, 1.4), 1024)
    return dulled * hit(t, BUZZ_START, 0.02, 0.13)


def crunch(t):
    """Noise torn into uneven lumps, as when metal folds."""
    torn = noise(t, 401, lambda time, hz: band(hz, 700 + 2600 * np.exp(-time / 0.03), 1.0), 512)
    return saturate(torn * crackle(t, 402, 130, 0.8), 1.5)


def sound():
    t = seconds(LENGTH + 0.02)
    crack = saturate(noise(t, 403, lambda _, hz: band(hz, 4500, 1.0), 512), 1.5)
    total = 1.05 * sine(glide(t, 230, 70, 0.050), t) * hit(t, 0, 0.006, 0.050)
    total += 0.62 * crunch(t) * hit(t, 0, 0.0012, 0.048)
    total += 0.95 * crack * hit(t, 0, 0.0008, 0.006)
    total += 0.28 * modes(t, HULL) + 0.40 * buzz(t)
    # Turned over, so that its peaks do not add to those of a blast that starts with it.
    return -total
