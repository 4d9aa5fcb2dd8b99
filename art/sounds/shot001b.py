# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: CC0-1.0
#
# The player's laser: a falling chirp with a metallic snap in front and a short thump below. Fast
# fire cuts it after some 140 ms, so by then it has all but gone.

import numpy as np

from synth import (band, curve, decay, from_db, glide, hit, modes, noise, room, saturate, saw,
                   seconds, sine, swell)

LENGTH = 0.22           # s
PEAK_DB = -10
LOUDEST_DB = -16
FADE = 0.03             # s

CHIRP_HZ = (2300, 240)
CHIRP_FALL = 0.030      # s
MODULATOR_RATIO = 1.51  # not a whole number: glassy, not like an organ pipe


def chirp(t):
    """Two chirps a little apart beat against each other, which makes the bolt shimmer."""
    pitch = glide(t, *CHIRP_HZ, CHIRP_FALL)
    index = 0.5 + 2.6 * decay(t, 0.022)
    phase = np.cumsum(pitch) / 88200.0
    bend = index * np.sin(2 * np.pi * MODULATOR_RATIO * phase)
    body = np.sin(2 * np.pi * phase + bend)
    double = np.sin(2 * np.pi * 1.012 * phase + 0.8 * bend + 1.0)
    edge = 0.35 * saw(pitch * 0.5, t) * decay(t, 0.05)
    return body + 0.6 * double + edge


def sound():
    t = seconds(LENGTH + 0.02)
    fall = curve(t, (0, 0), (0.002, 0), (0.045, -3), (0.085, -11), (0.125, -25), (0.14, -31),
                 (0.20, -42), (0.24, -54))
    total = 0.75 * chirp(t) * from_db(fall) * swell(t, 0, 0.0012)
    tick = noise(LENGTH + 0.02, 101, lambda _, hz: band(hz, 6500, 0.6), 512)
    total += 0.55 * tick * hit(t, 0, 0.0008, 0.004)
    total += 0.9 * sine(glide(t, 260, 130, 0.02), t) * hit(t, 0, 0.002, 0.018)
    return total
