# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: CC0-1.0
#
# The count-down: six beats, one with each digit, each a step higher, brighter and busier than the one
# before, over a drone that opens; a breath of silence; and the chord that says go. The first laser
# cuts it, so by then all has been said.

import numpy as np

from synth import (band, curve, decay, from_db, glide, hit, level, low_pass, modes, noise, room,
                   saturate, saw, seconds, shape, sine, swell)

LENGTH = 6.6            # s
PEAK_DB = -5
LOUDEST_DB = -12
FADE = 0.15             # s

BEAT = 1.004            # s, how long one digit stands
BEATS = 6
CHORD = BEAT * BEATS
BREATH = 0.045          # s of near silence before the chord: it makes the chord strike harder
OVER = 6.30             # s, what comes later may be cut

# The melody climbs to the leading note, so that the ear waits for the chord.
MELODY_HZ = (220.0, 246.94, 261.63, 293.66, 329.63, 415.30)
DRONE_HZ = 110.0
CHORD_HZ = (110.0, 164.81, 220.0, 277.18, 329.63, 440.0, 554.37, 659.26, 880.0)
DETUNE = (-0.006, -0.002, 0.0025, 0.0065)


def pressure(t):
    """How far the count-down has come, 0 to 1."""
    return np.clip(t / CHORD, 0.0, 1.0)


def stab(t, hz, bright_hz):
    """One short synthesiser note, with its octave, whose filter snaps shut."""
    voices = sum(saw(hz * (1 + off), t, 0.13 * n) for n, off in enumerate(DETUNE))
    voices += 0.5 * sum(saw(2 * hz * (1 - off), t, 0.31 * n) for n, off in enumerate(DETUNE))
    shut = shape(voices, lambda time, f: low_pass(
        f, 500 + bright_hz * np.exp(-time / 0.09), 2, 1.8), 512)
    return shut * hit(t, 0, 0.002, 0.16)


def beat(number):
    """Drum, note and snap of one digit."""
    t = seconds(0.9)
    far = number / (BEATS - 1)
    snap = noise(0.9, 710 + number, lambda _, hz: band(hz, 6800, 0.6), 512)
    drum = sine(glide(t, 260, 92, 0.03), t) * hit(t, 0, 0.0015, 0.10)
    slap = noise(0.9, 720 + number, lambda _, hz: band(hz, 1400, 0.8), 512)
    total = 0.9 * drum + 0.16 * stab(t, MELODY_HZ[number], 3500 + 5000 * far)
    total += (0.30 + 0.15 * far) * snap * hit(t, 0, 0.001, 0.014)
    return total + 0.25 * slap * hit(t, 0, 0.001, 0.03)


def beats(t):
    """The six beats and their echoes, a quarter beat apart."""
    dry = np.zeros_like(t)
    for number in range(BEATS):
        at = int(round(number * BEAT * 88200))
        piece = beat(number) * from_db(-5 + 4 * number / (BEATS - 1))
        dry[at:at + len(piece)] += piece
    gap = int(BEAT / 4 * 88200)
    echo = shape(dry, lambda _, hz: band(hz, 2500, 1.4))
    for repeat in (1, 2, 3):
        dry[repeat * gap:] += 0.34 ** repeat * echo[:-repeat * gap]
    return dry


def ticks(t):
    """A hi-hat that divides the beat finer and finer: by 2, then 4, then 8."""
    total = np.zeros_like(t)
    local = seconds(0.08)
    for step in range(BEATS * 8):
        number, eighth = divmod(step, 8)
        every = (4, 4, 2, 2, 2, 1)[number]
        if eighth == 0 or eighth % every:
            continue
        hiss = noise(0.08, 740 + step, lambda _, hz: band(hz, 8200, 0.35), 512)
        at = int(round((number + eighth / 8) * BEAT * 88200))
        accent = 1.0 if eighth == 4 else 0.6
        total[at:at + len(local)] += accent * hiss * hit(local, 0, 0.001, 0.014)
    return total * (0.06 + 0.16 * pressure(t) ** 1.5)


def drone(t):
    """A low fifth whose filter opens with the count."""
    notes = sum(saw(hz * (1 + off), t, 0.2 * n) for n, off in enumerate(DETUNE)
                for hz in (DRONE_HZ, 1.5 * DRONE_HZ, 2 * DRONE_HZ))
    opened = shape(notes, lambda time, hz: low_pass(
        hz, 300 * 16 ** pressure(time), 2, 1.5) / (1 + (100 / (hz + 1)) ** 4))
    pump = 0.35 + 0.65 * swell(np.mod(t, BEAT / 2), 0.0, BEAT / 3)
    return 0.035 * opened * pump * swell(t, 0, 0.4) * from_db(8 * pressure(t) - 8)


def riser(t):
    """Wind and a siren that climb through the last two beats."""
    climb = np.clip((t - 4 * BEAT) / (2 * BEAT), 0, 1)
    wind = noise(len(t) / 88200.0, 790, lambda time, hz: band(
        hz, 900 * 8 ** np.clip((time - 4 * BEAT) / (2 * BEAT), 0, 1), 0.5))
    siren = saw(220 * 4 ** climb, t) + saw(221.5 * 4 ** climb, t, 0.5)
    return (0.55 * wind * np.sqrt(climb) + 0.06 * siren * swell(t, 4 * BEAT, BEAT)) * climb ** 1.5


def chord():
    """The go: a wide major chord, a crash above it and a drum below."""
    t = seconds(LENGTH - CHORD + 0.02)
    voices = sum(saw(hz * (1 + off), t, 0.37 * n + 0.11 * m) / (1 + 0.12 * m)
                 for n, off in enumerate(DETUNE) for m, hz in enumerate(CHORD_HZ))
    bright = shape(voices, lambda time, hz: low_pass(
        hz, 2500 + 7000 * np.exp(-time / 0.15), 2, 0.9) / (1 + (100 / (hz + 1)) ** 4), 512)
    crash = noise(len(t) / 88200.0, 795, lambda _, hz: band(hz, 7000, 0.7), 512)
    fall = from_db(curve(t, (0, 0), (0.12, -1), (0.28, -9), (0.45, -26), (0.6, -48)))
    total = 0.055 * bright * fall * swell(t, 0, 0.002)
    total += 0.40 * crash * hit(t, 0, 0.001, 0.09)
    return total + 0.8 * sine(glide(t, 300, 98, 0.03), t) * hit(t, 0, 0.0015, 0.12)


def sound():
    t = seconds(LENGTH + 0.02)
    rising = beats(t) + ticks(t) + drone(t) + 0.35 * riser(t)
    rising *= 1.0 - swell(t, CHORD - BREATH, 0.02)
    total = 0.55 * (rising + 0.25 * room(rising, 0.7, 799, 6000))
    final = chord()
    at = int(round(CHORD * 88200))
    total[at:] *= 0.0
    total[at:at + len(final)] += final[:len(total) - at]
    return total
