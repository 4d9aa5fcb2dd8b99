# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: CC0-1.0
#
# The building blocks of every sound: noise, oscillators, moving filters, a room, saturation, and
# the last step that brings a sound to its length and levels.
#
# Sounds are made at four times the game's rate and cut off below half the game's rate at the end,
# so that saturation and fast sweeps leave no whistling mirror tones.

import sys

import numpy as np
from numpy.fft import irfft, rfft, rfftfreq

import filters
import measure

RATE = 22050                # Hz, the rate the game opens the mixer with: nothing is converted there
OVERSAMPLING = 4
HIGH_RATE = RATE * OVERSAMPLING
CUTOFF_HZ = 9800            # low-pass before every fourth sample is kept
CUTOFF_TAPS = 511
CUTOFF_BETA = 8.0           # Kaiser window: what the rate cannot carry falls by 80 dB
HIGH_PASS_HZ = 45           # small speakers only lose headroom to what lies below
ATTACK_S = 0.0012           # a harder start clicks
GRAIN_WIDTH = 1.35          # edges of a grain of debris above and below its pitch
DRIVE_RANGE = (0.05, 4.0)   # gentlest and roughest saturation; more than 4 is a buzz of its own
DRIVE_STEPS = 24
LEVEL_CLOSE_DB = 0.05       # near enough: the gentlest saturation that gets here is taken
LEVEL_SLACK_DB = 0.3        # a sound that misses its density by more is refused


def seconds(duration):
    """Time axis in seconds, from 0, at the high rate."""
    return np.arange(int(round(duration * HIGH_RATE))) / HIGH_RATE


def add(total, piece, start):
    """Mixes a piece into a longer sound, from `start` seconds on; what does not fit is left out."""
    at = int(round(start * HIGH_RATE))
    piece = piece[:max(0, len(total) - at)]
    total[at:at + len(piece)] += piece


def from_db(level):
    return 10.0 ** (level / 20.0)


def white(count, seed):
    """White noise from -1 to 1: a mixed counter, the same on every machine and library version."""
    with np.errstate(over="ignore"):
        mixed = np.arange(1, count + 1, dtype=np.uint64)
        mixed = mixed * np.uint64(0x9E3779B97F4A7C15)
        mixed = mixed + np.uint64(seed) * np.uint64(0xD1B54A32D192ED03)
        mixed = (mixed ^ (mixed >> np.uint64(30))) * np.uint64(0xBF58476D1CE4E5B9)
        mixed = (mixed ^ (mixed >> np.uint64(27))) * np.uint64(0x94D049BB133111EB)
        mixed ^= mixed >> np.uint64(31)
    return (mixed >> np.uint64(11)).astype(float) * 2.0 ** -52 - 1.0


def random_values(count, seed, low, high):
    """A handful of even random numbers between two limits."""
    return low + (high - low) * (white(count, seed) + 1.0) / 2.0


# Envelopes: all take the time axis and give 0 before their start.

def decay(t, time_constant, start=0.0):
    """1 at the start, then falling to 1/e in each time constant."""
    return np.where(t >= start, np.exp(-np.maximum(t - start, 0.0) / time_constant), 0.0)


def swell(t, start, rise):
    """Smooth step from 0 to 1 that begins at `start` and takes `rise` seconds."""
    return 0.5 - 0.5 * np.cos(np.pi * np.clip((t - start) / rise, 0.0, 1.0))


def hit(t, start, rise, time_constant):
    """Smooth rise followed by a decay."""
    return swell(t, start, rise) * decay(t, time_constant, start)


def curve(t, *points):
    """Straight lines through (seconds, value) points."""
    return np.interp(t, [point[0] for point in points], [point[1] for point in points])


def glide(t, first, last, time_constant):
    """A frequency that falls or rises fast at first and settles at `last`."""
    return last + (first - last) * np.exp(-np.maximum(t, 0.0) / time_constant)


# Oscillators. A frequency is a number or an array along the time axis.

def turns(frequency, t):
    """Phase in whole turns of a changing frequency."""
    return np.cumsum(np.broadcast_to(frequency, t.shape)) / HIGH_RATE


def sine(frequency, t, phase=0.0):
    return np.sin(2 * np.pi * (turns(frequency, t) + phase))


def saw(frequency, t, phase=0.0):
    """Sawtooth with its jump rounded over two samples, which keeps mirror tones away."""
    step = np.broadcast_to(frequency, t.shape) / HIGH_RATE
    position = np.mod(turns(frequency, t) + phase, 1.0)
    rounded = np.where(position < step, -(1.0 - position / step) ** 2, 0.0)
    rounded += np.where(position > 1.0 - step, (1.0 - (1.0 - position) / step) ** 2, 0.0)
    return 2.0 * position - 1.0 - rounded


def modes(t, table, start=0.0):
    """Struck metal: a sum of (Hz, level, time constant) tones that ring from `start` on."""
    local = np.maximum(t - start, 0.0)
    total = np.zeros_like(t)
    for number, (hz, level, time_constant) in enumerate(table):
        angle = 2 * np.pi * (hz * local + 0.17 * number)
        total += level * np.sin(angle) * decay(t, time_constant, start)
    return total * swell(t, start, ATTACK_S)


# Filters whose shape may change along the sound.

def low_pass(hz, cutoff, order=2, resonance=0.7):
    """Gain of a two-pole low-pass; `order` 4 is two of them in a row."""
    x = hz / cutoff
    return (1.0 / np.sqrt((1.0 - x ** 2) ** 2 + (x / resonance) ** 2)) ** (order / 2)


def band(hz, centre, octaves):
    """Gain of a bell-shaped band of the given half width."""
    return np.exp(-0.5 * (np.log2(np.maximum(hz, 1.0) / centre) / octaves) ** 2)


def shape(samples, gain, frame=2048):
    """Filters with gain(t, hz), which may change along the time t; it adds no phase."""
    hop = frame // 4
    window = np.sqrt(filters.hann(frame))
    padded = np.pad(samples, (frame, 2 * frame))
    starts = np.arange(0, len(padded) - frame + 1, hop)
    t = (starts - frame / 2)[:, None] / HIGH_RATE
    hz = rfftfreq(frame, 1.0 / HIGH_RATE)[None, :]
    pieces = np.stack([padded[start:start + frame] for start in starts]) * window
    pieces = irfft(rfft(pieces) * gain(np.maximum(t, 0.0), hz), frame) * window / 2.0
    total = np.zeros(len(padded))
    for start, piece in zip(starts, pieces):
        total[start:start + frame] += piece
    return total[frame:frame + len(samples)]


def noise(t, seed, gain, frame=2048):
    """Shaped noise of about unit loudness, whatever its band."""
    shaped = shape(white(len(t), seed), gain, frame)
    return shaped / np.sqrt(np.mean(shaped ** 2) + 1e-30)


def crackle(t, seed, rate_hz, depth):
    """Uneven flicker between 1 - depth and about 1 + depth: fire tears, it does not hiss evenly."""
    flicker = noise(t, seed, lambda _, hz: low_pass(hz, rate_hz, 4), 8192)
    return np.maximum(1.0 + depth * flicker, 0.0)


def grains(t, seed, count, span, bands, lengths):
    """Debris: short bursts at random moments in `span`, denser and louder early on."""
    total = np.zeros_like(t)
    when = span[0] + (span[1] - span[0]) * random_values(count, seed, 0.0, 1.0) ** 1.7
    pitch = bands[0] * (bands[1] / bands[0]) ** random_values(count, seed + 1, 0.0, 1.0)
    length = random_values(count, seed + 2, *lengths)
    loud = random_values(count, seed + 3, 0.25, 1.0) ** 1.5
    for number in range(count):
        local = seconds(8 * length[number])
        source = white(len(local), seed + 10 + number)
        narrow = filters.butter_band(pitch[number] / GRAIN_WIDTH, pitch[number] * GRAIN_WIDTH,
                                     HIGH_RATE)
        fading = 1.0 - 0.75 * (when[number] - span[0]) / (span[1] - span[0])
        burst = filters.recursive(source, narrow) * hit(local, 0.0, 0.001, length[number])
        add(total, fading * loud[number] * burst / (np.std(burst) + 1e-9), when[number])
    return total


def room(samples, length, seed, bright_hz, gap=0.012):
    """The answer of a large space: a diffuse tail that gets darker as it fades."""
    t = seconds(length)
    answer = shape(white(len(t), seed), lambda time, hz: low_pass(
        hz, bright_hz * np.exp(-2.5 * time / length) + 200.0))
    answer *= swell(t, gap, 0.01) * np.exp(-5.5 * t / length)
    answer /= np.sqrt(np.sum(answer ** 2))
    return filters.convolve(samples, answer)[:len(samples)]


def saturate(samples, drive):
    """Rounds peaks off: denser and louder at the same peak, with the grit of overdriven tape."""
    return np.tanh(drive * samples) / np.tanh(drive)


def level(samples, decibels):
    """The samples with their highest peak at the given level."""
    return samples * from_db(decibels) / (np.max(np.abs(samples)) + 1e-30)


# The last step.

def decimate(samples):
    """The sound at the game's rate, free of rumble and of anything the rate cannot carry."""
    free = filters.recursive(samples, filters.butter_high(HIGH_PASS_HZ, HIGH_RATE))
    taps = filters.sharp_low_pass(CUTOFF_TAPS, CUTOFF_HZ, HIGH_RATE, CUTOFF_BETA)
    smooth = filters.convolve(free, taps)
    return smooth[CUTOFF_TAPS // 2:][:len(samples)][::OVERSAMPLING]


def trim(samples, length, fade):
    """Exact length, starting and ending at exactly 0."""
    count = int(round(length * RATE))
    samples = np.pad(samples, (0, max(0, count - len(samples))))[:count]
    ramp = np.arange(count) / RATE
    samples = samples * swell(ramp, 0.0, ATTACK_S)
    return samples * swell(ramp[::-1], 0.0, fade)


def finish(samples, length, peak_db, loudest_db, fade):
    """16-bit samples with the given peak and density, found by the amount of saturation."""
    samples = samples / np.max(np.abs(samples))
    low, high = np.log(DRIVE_RANGE)
    for _ in range(DRIVE_STEPS):
        middle = (low + high) / 2.0
        result = level(trim(decimate(saturate(samples, np.exp(middle))), length, fade), peak_db)
        if measure.loudest_db(result) < loudest_db - LEVEL_CLOSE_DB:
            low = middle
        else:
            high = middle
    missed = measure.loudest_db(result) - loudest_db
    print(f"  drive {np.exp(middle):.2f}", file=sys.stderr)
    if abs(missed) > LEVEL_SLACK_DB:
        raise ValueError(f"density missed by {missed:+.1f} dB: change the sound's envelope")
    return np.round(result * 32767.0).astype("<i2")
