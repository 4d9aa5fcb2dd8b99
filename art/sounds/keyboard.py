# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: CC0-1.0
#
# One key of the ship's terminal: the key goes down, and lets go 58 ms later, higher and softer.

from synth import band, hit, modes, noise, seconds

LENGTH = 0.1            # s
PEAK_DB = -8
LOUDEST_DB = -26
FADE = 0.012            # s

RELEASE = 0.058         # s
DOWN = ((410, 0.6, 0.0060), (1480, 0.7, 0.0032), (2730, 0.8, 0.0022), (4310, 0.6, 0.0014))
UP = ((930, 0.4, 0.0032), (2210, 0.7, 0.0022), (3890, 0.8, 0.0016), (6020, 0.6, 0.0010))


def sound():
    t = seconds(LENGTH + 0.01)
    snap = noise(t, 701, lambda _, hz: band(hz, 5200, 0.9), 256)
    total = modes(t, DOWN) + 0.55 * modes(t, UP, RELEASE)
    return total + 0.8 * snap * (hit(t, 0, 0.0008, 0.0012) + 0.45 * hit(t, RELEASE, 0.0008, 0.0010))
