# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: CC0-1.0
#
# The count-down: six beats, one with each digit, each a step higher, brighter and busier than the
# one before, over a drone that opens; a breath of silence; and the chord that says go. The first
# laser cuts it, so by then all has been said.

import numpy as np

from synth import (add, band, curve, from_db, glide, hit, level, low_pass, modes, noise, room,
                   saturate, saw, seconds, shape, sine, swell)

LENGTH = 6.6            # s
PEAK_DB = -5
LOUDEST_DB = -12.2
FADE = 0.15             # s

BEAT = 1.004            # s, how long one digit stands
BEATS = 6
CHORD = BEAT * BEATS
BREATH = 0.050          # s of near silence before the chord: it makes the chord strike harder
LAST_BEAT_DB = -2       # the last beat against the chord, and the first one against it
FIRST_BEAT_DB = -6
DRONE_DB = -11
TICKS_DB = -8
DENSITY = 2.2           # saturation of each beat and of the chord by itself

# The melody climbs to the leading note, so that the ear waits for the chord.
MELODY_HZ = (220.0, 246.94, 261.63, 293.66, 329.63, 415.30)
DRONE_HZ = (110.0, 165.0, 220.0)
CHORD_HZ = (110.0, 164.81, 220.0, 277.18, 329.63, 440.0, 554.37, 659.26, 880.0)
DETUNE = (-0.006, -0.002, 0.0025, 0.0065)

# A bell over a note: partial, level, time constant.
BELL = ((8.0, 0.8, 0.16), (11.3, 0.6, 0.11), (16.0, 0.7, 0.09), (21.7, 0.5, 0.06))


def no_bass(hz):
    """Leaves the bass of the synthesiser notes to the drum."""
    return 1.0 / (1.0 + (110.0 / (hz + 1.0)) ** 4)


def unison(t, hz):
    """One fat note: four saws a little apart."""
    return sum(saw(hz * (1 + off), t, 0.13 * n + hz / 977) for n, off in enumerate(DETUNE))


def bell(t, hz):
    return modes(t, [(hz * part, loud, fall) for part, loud, fall in BELL if hz * part < 9500])


def beat(number):
    """Drum, note, bell and snap of one digit."""
    t = seconds(0.9)
    far = number / (BEATS - 1)
    hz = MELODY_HZ[number]
    snap = noise(t, 710 + number, lambda _, f: band(f, 6800, 0.6), 512)
    slap = noise(t, 720 + number, lambda _, f: band(f, 1700, 0.8), 512)
    note = shape(unison(t, hz) + 0.6 * unison(t, 2 * hz), lambda time, f: no_bass(f) * low_pass(
        f, 700 + (5000 + 4000 * far) * np.exp(-time / 0.11), 2, 1.6), 512)
    total = 0.6 * sine(glide(t, 300, 115, 0.025), t) * hit(t, 0, 0.0015, 0.07)
    total += 0.20 * note * hit(t, 0, 0.002, 0.17) + 0.26 * bell(t, hz)
    total += (0.62 + 0.1 * far) * snap * hit(t, 0, 0.001, 0.018)
    total = level(total + 0.25 * slap * hit(t, 0, 0.001, 0.03), 0)
    return level(saturate(total, DENSITY), FIRST_BEAT_DB + (LAST_BEAT_DB - FIRST_BEAT_DB) * far)


def beats(t):
    """The six beats and their echoes, a quarter beat apart."""
    dry = np.zeros_like(t)
    for number in range(BEATS):
        add(dry, beat(number), number * BEAT)
    echo = shape(dry, lambda _, hz: band(hz, 3000, 1.3))
    total = dry.copy()
    for repeat in (1, 2, 3):
        add(total, 0.42 ** repeat * echo, repeat * BEAT / 4)
    return total


def ticks(t):
    """A hi-hat that divides the beat finer and finer: by 2, then 4, then 8."""
    total = np.zeros_like(t)
    local = seconds(0.12)
    for step in range(BEATS * 8):
        number, eighth = divmod(step, 8)
        every = (4, 4, 2, 2, 2, 1)[number]
        if eighth == 0 or eighth % every:
            continue
        hiss = noise(local, 740 + step, lambda _, hz: band(hz, 8000, 0.35), 512)
        accent = 1.0 if eighth == 4 else 0.65
        add(total, accent * hiss * hit(local, 0, 0.001, 0.022), (number + eighth / 8) * BEAT)
    return total * (0.7 + 0.3 * np.clip(t / CHORD, 0.0, 1.0))


def drone(t):
    """A low fifth whose filter opens with the count and which ducks under each beat."""
    notes = sum(unison(t, hz) for hz in DRONE_HZ)
    opened = shape(notes, lambda time, hz: no_bass(hz) * low_pass(
        hz, 600 * 14 ** np.clip(time / CHORD, 0.0, 1.0), 2, 1.5))
    pump = 0.3 + 0.7 * swell(np.mod(t, BEAT / 2), 0.0, BEAT / 3)
    return opened * pump * swell(t, 0, 0.4) * from_db(10 * np.clip(t / CHORD, 0.0, 1.0))


def riser(t):
    """Wind and a siren that climb through the last two beats."""
    def far(time):
        return np.clip((time - 4 * BEAT) / (2 * BEAT), 0.0, 1.0)
    climb = far(t)
    wind = noise(t, 790, lambda time, hz: band(hz, 1000 * 8 ** far(time), 0.5))
    siren = unison(t, 220 * 4 ** climb) + unison(t, 330 * 4 ** climb)
    return (0.28 * wind + 0.15 * siren) * climb ** 1.8


def chord():
    """The go: a wide major chord, a crash and bells above it and a drum below."""
    t = seconds(LENGTH - CHORD + 0.02)
    voices = sum(unison(t, hz) / (1 + 0.1 * number) for number, hz in enumerate(CHORD_HZ))
    bright = shape(voices, lambda time, hz: no_bass(hz) * low_pass(
        hz, 3500 + 7000 * np.exp(-time / 0.2), 2, 0.9), 512)
    crash = noise(t, 795, lambda _, hz: band(hz, 6500, 0.7), 512)
    fall = from_db(curve(t, (0, 0), (0.07, 0), (0.15, -9), (0.28, -26), (0.45, -48)))
    total = 0.085 * bright * fall * swell(t, 0, 0.002)
    total += 0.30 * crash * hit(t, 0, 0.001, 0.07) + 0.10 * (bell(t, 220) + bell(t, 277.18))
    total = level(total + 0.6 * sine(glide(t, 320, 110, 0.025), t) * hit(t, 0, 0.0015, 0.10), 0)
    return saturate(total, DENSITY)


def sound():
    t = seconds(LENGTH + 0.02)
    rising = beats(t) + 0.31 * riser(t)
    rising += level(drone(t), DRONE_DB) + level(ticks(t), TICKS_DB)
    rising += 0.22 * room(rising, 0.7, 799, 7000)
    rising *= 1.0 - swell(t, CHORD - BREATH, 0.02)
    add(rising, chord(), CHORD)
    return rising
