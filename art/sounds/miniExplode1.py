# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: CC0-1.0
#
# An enemy is hit but holds: a bright tick of struck plate, short enough to leave room for the next.

from synth import band, glide, hit, modes, noise, seconds, sine

LENGTH = 0.18           # s
PEAK_DB = -10.2
LOUDEST_DB = -17.4
FADE = 0.03             # s

PLATE = ((740, 0.50, 0.036), (1163, 0.60, 0.044), (1741, 0.85, 0.050), (2377, 0.9, 0.036),
         (3169, 0.9, 0.034), (4402, 0.7, 0.026), (6130, 0.5, 0.012))


def sound():
    t = seconds(LENGTH + 0.02)
    burst = noise(t, 326, lambda _, hz: band(hz, 5200, 0.9), 512)
    scrape = noise(t, 302, lambda _, hz: band(hz, 2900, 0.5), 512)
    total = 0.45 * modes(t, PLATE)
    total += 0.62 * burst * hit(t, 0, 0.0008, 0.007)
    total += 0.25 * scrape * hit(t, 0.001, 0.002, 0.014)
    total += 0.45 * sine(glide(t, 520, 300, 0.010), t) * hit(t, 0, 0.001, 0.006)
    # Turned over, so that its peaks do not add to those of a blast that starts with it.
    return -total
