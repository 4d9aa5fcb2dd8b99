# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: CC0-1.0
#
# An enemy bursts: a full-band crack, a body of burning noise that closes, raining debris, and a
# softer second swell when the picture's second burst tears the ship apart.

import numpy as np

from synth import (band, crackle, glide, grains, hit, level, low_pass, noise, room, saturate,
                   seconds, sine, swell)

LENGTH = 2.0            # s
PEAK_DB = -4.4
LOUDEST_DB = -12.45
FADE = 0.30             # s

SECOND = 0.85           # s, soft: the picture may come a little late
DENSITY = 1.7           # saturation of all but the crack, which stands out in front of it
CRACK = 1.15


def crack(t, start, seed):
    """A snap from 1.5 kHz up that stutters, which makes it large; it covers the cut it makes."""
    def gain(_, hz):
        return (1.0 + hz / 3000.0) ** -0.2 / (
            (1.0 + (1500.0 / (hz + 1.0)) ** 4) * (1.0 + (hz / 9000.0) ** 8))
    rattle = (hit(t, start, 0.0008, 0.008) + 0.25 * hit(t, start + 0.019, 0.001, 0.006)
              + 0.2 * hit(t, start + 0.041, 0.001, 0.009))
    return saturate(noise(t, seed, gain, 512), 3.0) * rattle


def body(t, start, edge_hz, closing, seed, warmth_hz=300):
    """Fire noise whose upper edge falls from the first to the second of two frequencies."""
    def gain(time, hz):
        edge = glide(time - start, *edge_hz, closing)
        return low_pass(hz, edge, 4) * (0.2 + band(hz, warmth_hz, 0.9)) / (
            1.0 + (120 / (hz + 1)) ** 4)
    return saturate(0.8 * noise(t, seed, gain) * crackle(t, seed + 1, 45, 0.4), 2.2)


def tearing(t, start, length, seed):
    """Hull plates coming apart, 300 to 2400 Hz."""
    torn = noise(t, seed, lambda _, hz: band(hz, 900, 0.8), 1024)
    return torn * crackle(t, seed + 1, 90, 0.9) * hit(t, start, 0.004, length)


def thump(t, start, hz, length):
    """The blow in the stomach: a tone that drops from far above into the bass."""
    since = t - start
    drop = glide(since, *hz, 0.06) + 5 * hz[0] * np.exp(-np.maximum(since, 0.0) / 0.006)
    return sine(drop, t) * hit(t, start, 0.0015, length)


def sound():
    t = seconds(LENGTH + 0.02)
    second = hit(t, SECOND, 0.09, 0.20)
    total = 0.95 * body(t, 0, (7000, 400), 0.07, 7766) * hit(t, 0, 0.012, 0.044)
    total += 0.24 * body(t, 0, (2000, 300), 0.10, 5138, 230) * hit(t, 0, 0.02, 0.24)
    total += 0.45 * tearing(t, 0.004, 0.075, 520) + 0.9 * thump(t, 0.001, (230, 92), 0.10)
    total += 0.34 * body(t, SECOND, (3000, 480), 0.16, 530) * second
    total += 0.20 * tearing(t, SECOND, 0.14, 540) * swell(t, SECOND, 0.09)
    total += 0.20 * sine(glide(t - SECOND, 190, 95, 0.1), t) * hit(t, SECOND, 0.03, 0.16)
    total += 0.08 * grains(t, 550, 70, (0.05, 1.6), (1200, 7500), (0.002, 0.010))
    total += 0.30 * room(total, 0.9, 561, 1700)
    return saturate(level(total, 0), DENSITY) + CRACK * crack(t, 0, 3555)
