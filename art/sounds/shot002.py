# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: CC0-1.0
#
# The rocket: it drops from its clamp with a clunk, falls with a breath of air, lights its motor
# when the drop turns into a climb, and roars away.

import numpy as np

from synth import (band, crackle, curve, from_db, glide, hit, modes, noise, saturate, saw, seconds,
                   sine, swell)

LENGTH = 1.35           # s
PEAK_DB = -8.4
LOUDEST_DB = -14.45
FADE = 0.12             # s

IGNITION = 0.19         # s, the moment the drop turns into a climb
SWELL = 0.15            # s
FLUTTER_HZ = 27

CLAMP = ((196, 0.8, 0.030), (431, 0.9, 0.026), (873, 0.8, 0.020), (1490, 0.7, 0.014),
         (2630, 0.5, 0.009), (4150, 0.3, 0.006))
LATCH = ((620, 0.4, 0.016), (1210, 0.5, 0.012), (2250, 0.5, 0.009), (3900, 0.4, 0.005))


def release(t):
    """The clamp opens, the latch snaps a moment later, and air hisses past the falling rocket."""
    snap = noise(t, 201, lambda _, hz: band(hz, 4000, 1.1), 512)
    air = noise(t, 205, lambda time, hz: band(hz, 1300 + 6000 * time, 0.5))
    total = modes(t, CLAMP) + 0.8 * modes(t, LATCH, 0.043)
    total += 1.1 * snap * (hit(t, 0, 0.0008, 0.0055) + 0.35 * hit(t, 0.043, 0.001, 0.003))
    return total + 0.07 * air * swell(t, 0.02, 0.10) * (1 - swell(t, IGNITION, 0.05))


def roar(t):
    """Band noise that falls from 4 kHz as the rocket leaves, fluttering like a torn flame."""
    def gain(time, hz):
        since = np.maximum(time - IGNITION, 0.0)
        jet = band(hz, 420 + 3600 * np.exp(-since / 0.30), 0.75)
        return jet + 0.5 * band(hz, 330, 0.8) + 0.12 * band(hz, 7000, 0.7) * np.exp(-since / 0.35)
    flutter = 1.0 + 0.5 * np.tanh(1.6 * sine(FLUTTER_HZ, t))
    return noise(t, 202, gain) * flutter * crackle(t, 203, 60, 0.2)


def sound():
    t = seconds(LENGTH + 0.02)
    thrust = swell(t, IGNITION, SWELL) * from_db(curve(
        t, (0, 0), (0.38, 0), (0.48, -4), (0.7, -9), (1.0, -17), (1.25, -27), (1.35, -36)))
    since = t - IGNITION
    tone = saw(glide(since, 210, 96, 0.5), t) + saw(glide(since, 316, 145, 0.5), t)
    pop = noise(t, 204, lambda _, hz: band(hz, 1700, 1.2), 512)
    total = 0.62 * saturate(0.7 * roar(t), 1.6) * thrust + 0.13 * tone * thrust
    total += 0.36 * pop * hit(t, IGNITION, 0.0015, 0.016)
    total += 0.36 * sine(glide(since, 260, 125, 0.05), t) * hit(t, IGNITION, 0.003, 0.06)
    return total + 0.40 * release(t)
