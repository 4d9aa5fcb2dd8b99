# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: CC0-1.0
#
# The rocket: it drops from its clamp with a clunk, falls almost silently, lights its motor when the
# drop turns into a climb, and roars away.

import numpy as np

from synth import (band, crackle, curve, decay, from_db, glide, hit, low_pass, modes, noise, room,
                   saturate, saw, seconds, sine, swell)

LENGTH = 1.35           # s
PEAK_DB = -8
LOUDEST_DB = -14
FADE = 0.12             # s

IGNITION = 0.19         # s, the moment the drop turns into a climb
SWELL = 0.15            # s
FLUTTER_HZ = 27

CLAMP = ((196, 0.8, 0.030), (431, 0.9, 0.026), (873, 0.8, 0.020), (1490, 0.7, 0.014),
         (2630, 0.5, 0.009), (4150, 0.3, 0.006))
LATCH = ((620, 0.4, 0.016), (1210, 0.5, 0.012), (2250, 0.5, 0.009), (3900, 0.4, 0.005))


def release(t):
    """The clamp opens, and the latch snaps a moment later."""
    snap = noise(len(t) / 88200.0, 201, lambda _, hz: band(hz, 4500, 0.9), 512)
    total = modes(t, CLAMP) + 0.8 * modes(t, LATCH, 0.043)
    total += 0.5 * snap * (hit(t, 0, 0.001, 0.004) + 0.6 * hit(t, 0.043, 0.001, 0.003))
    return total


def roar(t):
    """Band noise that falls from 4 kHz as the rocket leaves, fluttering like a torn flame."""
    def gain(time, hz):
        centre = 420 + 3600 * np.exp(-np.maximum(time - IGNITION, 0.0) / 0.30)
        return band(hz, centre, 0.8) + 0.55 * band(hz, 330, 0.9) + 0.10 * band(hz, 7000, 0.7) * (
            np.exp(-np.maximum(time - IGNITION, 0.0) / 0.35))
    flame = noise(len(t) / 88200.0, 202, gain)
    flutter = 1.0 + 0.42 * np.tanh(1.6 * sine(FLUTTER_HZ, t))
    return flame * flutter * crackle(t, 203, 60, 0.25)


def sound():
    t = seconds(LENGTH + 0.02)
    thrust = swell(t, IGNITION, SWELL) * from_db(curve(
        t, (0, 0), (0.42, 0), (0.7, -5), (1.0, -13), (1.25, -26), (1.4, -40)))
    tone = saw(glide(t - IGNITION, 190, 92, 0.5), t) + saw(glide(t - IGNITION, 287, 139, 0.5), t)
    pop = noise(LENGTH + 0.02, 204, lambda _, hz: band(hz, 1500, 1.3), 512)
    total = 0.62 * saturate(0.7 * roar(t), 1.6) * thrust + 0.10 * tone * thrust
    total += 0.55 * pop * hit(t, IGNITION, 0.0015, 0.014)
    total += 0.55 * sine(glide(t - IGNITION, 240, 120, 0.05), t) * hit(t, IGNITION, 0.003, 0.06)
    return total + 0.42 * release(t)
