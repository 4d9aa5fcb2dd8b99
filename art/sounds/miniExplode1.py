# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: CC0-1.0
#
# An enemy is hit but holds: a bright tick of struck plate, short enough to leave room for the next.

from synth import band, decay, glide, hit, modes, noise, seconds, sine

LENGTH = 0.18           # s
PEAK_DB = -10
LOUDEST_DB = -17
FADE = 0.03             # s

PLATE = ((740, 0.9, 0.040), (1163, 0.7, 0.034), (1741, 0.9, 0.030), (2377, 0.8, 0.024),
         (3169, 0.8, 0.020), (4402, 0.7, 0.016), (6130, 0.4, 0.010))


def sound():
    t = seconds(LENGTH + 0.02)
    burst = noise(LENGTH + 0.02, 301, lambda _, hz: band(hz, 5200, 0.8), 512)
    scrape = noise(LENGTH + 0.02, 302, lambda _, hz: band(hz, 2600, 0.5), 512)
    total = 0.5 * modes(t, PLATE)
    total += 0.8 * burst * hit(t, 0, 0.001, 0.006)
    total += 0.35 * scrape * hit(t, 0.001, 0.002, 0.020)
    total += 0.5 * sine(glide(t, 420, 260, 0.012), t) * hit(t, 0, 0.001, 0.014)
    return total
