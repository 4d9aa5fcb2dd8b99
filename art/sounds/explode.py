# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: CC0-1.0
#
# An enemy bursts: a full-band crack, a body of burning noise that closes, raining debris, and a softer
# second swell when the picture's second burst tears the ship apart.

import numpy as np

from synth import (band, crackle, curve, decay, from_db, glide, grains, hit, low_pass, noise, room,
                   saturate, seconds, sine, swell)

LENGTH = 2.0            # s
PEAK_DB = -4
LOUDEST_DB = -12
FADE = 0.30             # s

SECOND = 0.85           # s, soft: the picture may come a little late
SEED = 500


def crack(t):
    """The first 25 ms over the full band, with a stutter that makes it large."""
    sharp = noise(len(t) / 88200.0, SEED, lambda _, hz: (hz / 3000.0) ** 0.5 / (
        1.0 + (hz / 9000.0) ** 2), 512)
    return sharp * (hit(t, 0, 0.0012, 0.006) + 0.7 * hit(t, 0.013, 0.001, 0.006)
                    + 0.4 * hit(t, 0.031, 0.001, 0.008))


def body(t, start, bright_hz, closing, seed):
    """Fire noise whose upper edge falls; low and middle bands stay longest."""
    def gain(time, hz):
        edge = 420 + bright_hz * np.exp(-np.maximum(time - start, 0.0) / closing)
        return low_pass(hz, edge, 4) * (0.35 + band(hz, 280, 0.9)) / (1.0 + (110 / (hz + 1)) ** 4)
    fire = noise(len(t) / 88200.0, seed, gain)
    return saturate(0.8 * fire * crackle(t, seed + 1, 45, 0.45), 2.2)


def tearing(t, start, seed):
    """Hull plates coming apart, 300 to 2400 Hz."""
    torn = noise(len(t) / 88200.0, seed, lambda _, hz: band(hz, 850, 0.85), 1024)
    return torn * crackle(t, seed + 1, 90, 0.9) * hit(t, start, 0.004, 0.13)


def sound():
    t = seconds(LENGTH + 0.02)
    first = hit(t, 0, 0.003, 0.16) + 0.32 * hit(t, 0, 0.02, 0.55)
    second = hit(t, SECOND, 0.05, 0.30)
    total = 1.0 * crack(t) + 0.9 * body(t, 0, 6000, 0.16, 510) * first
    total += 0.55 * tearing(t, 0.004, 520)
    total += 0.8 * sine(glide(t, 250, 88, 0.09), t) * hit(t, 0.002, 0.004, 0.16)
    total += 0.42 * body(t, SECOND, 2600, 0.18, 530) * second
    total += 0.20 * tearing(t, SECOND, 540)
    total += 0.22 * sine(glide(t - SECOND, 170, 90, 0.1), t) * hit(t, SECOND, 0.03, 0.2)
    total += 0.11 * grains(t, 550, 70, (0.06, 1.7), (900, 7000), (0.003, 0.014))
    return total + 0.35 * room(total, 0.9, 560, 3500)
