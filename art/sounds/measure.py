# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: CC0-1.0
#
# What can be measured of a sound at the game's rate. Samples are floats, full scale is 1.

import numpy as np

import filters

RATE = 22050            # Hz
LOUDEST_WINDOW_S = 0.05
BANDS_HZ = (0, 120, 500, 2000, 4000, 11025)
QUIETEST_DB = -120.0
SLICES_S = (0.0, 0.01, 0.03, 0.07, 0.14, 0.25, 0.45, 0.75, 1.15, 1.7, 2.4)  # finer where it starts


def db(amplitude):
    """Level of an amplitude in dB below full scale."""
    return 20.0 * np.log10(np.maximum(np.abs(amplitude), 10.0 ** (QUIETEST_DB / 20.0)))


def peak_db(samples):
    return float(db(np.max(np.abs(samples))))


def rms(samples):
    return float(np.sqrt(np.mean(np.square(samples)))) if len(samples) else 0.0


def part(samples, start, end):
    """The samples between two moments in seconds."""
    return samples[int(round(start * RATE)):int(round(end * RATE))]


def part_db(samples, start, end):
    """RMS level between two moments in seconds."""
    return float(db(rms(part(samples, start, end))))


def envelope(samples, window_s):
    """RMS over a sliding window, one value per sample, centred."""
    width = max(1, int(round(window_s * RATE)))
    summed = np.convolve(np.square(samples), np.ones(width) / width, "same")
    return np.sqrt(np.maximum(summed, 0.0))


def loudest_db(samples):
    """RMS of the loudest 50 ms."""
    width = int(round(LOUDEST_WINDOW_S * RATE))
    sums = np.cumsum(np.concatenate([[0.0], np.square(samples)]))
    return float(db(np.sqrt(max(np.max(sums[width:] - sums[:-width]), 0.0) / width)))


def crest_db(samples):
    """Peak over RMS of the stretch that holds 95 % of the energy."""
    energy = np.cumsum(np.square(samples))
    length = int(np.searchsorted(energy, 0.95 * energy[-1])) + 1
    return float(db(np.max(np.abs(samples))) - db(rms(samples[:length])))


def spectrum(samples):
    """Frequencies and energies of a whole stretch."""
    size = 1 << max(10, int(np.ceil(np.log2(max(len(samples), 2)))))
    return np.fft.rfftfreq(size, 1.0 / RATE), np.abs(np.fft.rfft(samples, size)) ** 2


def share(samples, low_hz, high_hz):
    """Part (0 to 1) of the energy between two frequencies."""
    hz, energy = spectrum(samples)
    return float(np.sum(energy[(hz >= low_hz) & (hz < high_hz)]) / max(np.sum(energy), 1e-30))


def shares(samples):
    """Part of the energy in each of the bands of BANDS_HZ."""
    return [share(samples, low, high) for low, high in zip(BANDS_HZ, BANDS_HZ[1:])]


def centroid_hz(samples):
    """Centre of gravity of the spectrum: how bright it sounds."""
    hz, energy = spectrum(samples)
    return float(np.sum(hz * energy) / max(np.sum(energy), 1e-30))


def attack_ms(samples, window_s=0.001):
    """Time from 10 % to 70 % of the highest loudness within the first 50 ms."""
    padded = np.pad(part(samples, 0.0, 0.05), (RATE // 100, 0))
    loudness = envelope(padded, window_s)
    end = int(np.argmax(loudness >= 0.7 * np.max(loudness)))
    start = int(np.nonzero(loudness[:end] < 0.1 * np.max(loudness))[0][-1])
    return 1000.0 * (end - start) / RATE


def roughness(samples):
    """Depth of loudness flicker from 20 to 150 Hz: 0 is smooth, 0.3 and more is harsh."""
    loudness = envelope(samples, 0.003)
    flicker = filters.recursive(loudness, filters.butter_band(20.0, 150.0, RATE))
    trend = filters.recursive(loudness, filters.butter_low(20.0, RATE))
    loud = loudness > 0.1 * np.max(loudness)
    return rms(flicker[loud]) / max(rms(trend[loud]), 1e-30)


def fingerprint(samples):
    """Levels (dB) in half-octave bands by slices of time: what the ear keeps of a sound."""
    padded = np.pad(samples, (0, int(SLICES_S[-1] * RATE)))
    edges = 120.0 * 2.0 ** (0.5 * np.arange(13))
    rows = []
    for start, end in zip(SLICES_S, SLICES_S[1:]):
        hz, energy = spectrum(part(padded, start, end))
        rows.append([np.sum(energy[(hz >= low) & (hz < high)]) / (end - start) for low, high in
                     zip(edges, edges[1:])])
    levels = 10.0 * np.log10(np.array(rows) + 1e-12)
    return np.maximum(levels, np.max(levels) - 40.0)


def difference_db(first, second):
    """How far two sounds lie apart for the ear, loudness aside: mean gap over time and pitch."""
    gap = fingerprint(first) - fingerprint(second)
    return float(np.mean(np.abs(gap - np.median(gap))))
