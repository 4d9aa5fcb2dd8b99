# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: CC0-1.0
#
# The player's laser: a falling chirp with a metallic snap in front and a short thump below. Fast
# fire cuts it after some 140 ms, so by then it has all but gone.

import numpy as np

from synth import band, curve, decay, from_db, glide, hit, noise, seconds, sine, swell, turns

LENGTH = 0.22           # s
PEAK_DB = -10.4
LOUDEST_DB = -16.4
FADE = 0.03             # s

CHIRP_HZ = (2300, 240)
CHIRP_FALL = 0.032      # s
MODULATOR_RATIO = 1.51  # not a whole number: glassy, not like an organ pipe
SHIMMER = 1.013         # a second chirp this much higher beats against the first


def chirp(t):
    """A tone bent by another: bright and metallic at first, pure and round as it falls."""
    phase = 2 * np.pi * turns(glide(t, *CHIRP_HZ, CHIRP_FALL), t)
    index = 0.35 + 2.4 * decay(t, 0.030)
    bend = index * np.sin(MODULATOR_RATIO * phase)
    return np.sin(phase + bend) + 0.30 * np.sin(SHIMMER * 2 * phase + bend + 1.0)


def sound():
    t = seconds(LENGTH + 0.02)
    fall = curve(t, (0, 0), (0.040, -1), (0.060, -6), (0.085, -14), (0.12, -24), (0.14, -30),
                 (0.20, -43), (0.24, -54))
    total = chirp(t) * from_db(fall) * swell(t, 0, 0.0012)
    tick = noise(t, 101, lambda _, hz: band(hz, 5200, 0.9) + 0.7 * band(hz, 2900, 0.35), 512)
    total += 0.5 * tick * hit(t, 0, 0.0008, 0.0032)
    return total + 0.55 * sine(glide(t, 330, 140, 0.015), t) * hit(t, 0, 0.002, 0.016)
