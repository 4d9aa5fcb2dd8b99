# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: CC0-1.0
#
# Filters of sound: windows, convolution, the long low-pass in front of a lower rate, and recursive
# filters in sections of one or two poles.
#
# A section is a pair of coefficients (b, a): y[n] = sum(b[k] x[n - k]) - sum(a[k] y[n - k], k > 0).

import numpy as np
from numpy.fft import irfft, rfft

SILENT_NEPERS = 40.0        # ringing that has fallen by this (e^-40, 350 dB) is gone
BUTTERWORTH = np.exp(0.75j * np.pi)     # upper pole of two poles with the flattest pass band


def fast_size(count):
    """A length of at least `count` that is quick to transform: 2 to a power, or 3 times that."""
    size = 1 << max(count - 1, 1).bit_length()
    return size // 4 * 3 if size // 4 * 3 >= count else size


def hann(count):
    """A bell that, repeated every half or quarter of its length, adds up to a constant."""
    return 0.5 - 0.5 * np.cos(2.0 * np.pi * np.arange(count) / count)


def convolve(samples, answer):
    """Each sample answered by the whole of `answer`; as long as both together, less one."""
    count = len(samples) + len(answer) - 1
    size = fast_size(count)
    return irfft(rfft(samples, size) * rfft(answer, size), size)[:count]


def sharp_low_pass(taps, cutoff_hz, rate, beta):
    """A symmetric low-pass: the ideal one, cut to an odd number of taps by a Kaiser window."""
    distance = np.arange(taps) - (taps - 1) / 2.0
    answer = np.sinc(2.0 * cutoff_hz / rate * distance) * np.kaiser(taps, beta)
    return answer / np.sum(answer)


def warped(hz, rate):
    """The analogue frequency (rad/s) that lies at `hz` once the filter runs at a sample rate."""
    return 2.0 * rate * np.tan(np.pi * hz / rate)


def section(upper, lower, rate):
    """(b, a) of upper(s) / lower(s), both from the highest power of s down and equally long."""
    order = len(lower) - 1
    forms = [(2.0 * rate) ** power * np.poly([1.0] * power + [-1.0] * (order - power))
             for power in range(order, -1, -1)]
    b, a = (np.asarray(polynomial) @ np.array(forms) for polynomial in (upper, lower))
    return b / a[0], a / a[0]


def butter_low(cutoff_hz, rate):
    w = warped(cutoff_hz, rate)
    return [section((0.0, 0.0, w * w), (1.0, np.sqrt(2.0) * w, w * w), rate)]


def butter_high(cutoff_hz, rate):
    w = warped(cutoff_hz, rate)
    return [section((1.0, 0.0, 0.0), (1.0, np.sqrt(2.0) * w, w * w), rate)]


def butter_band(low_hz, high_hz, rate):
    """Two sections, one for each edge of the band."""
    low, high = warped(low_hz, rate), warped(high_hz, rate)
    half = BUTTERWORTH * (high - low) / 2.0
    apart = np.sqrt(half * half - low * high)
    return [section((0.0, high - low, 0.0), (1.0, -2.0 * pole.real, abs(pole) ** 2), rate)
            for pole in (half + apart, half - apart)]


def high_shelf(corner_hz, gain, rate):
    """1 far below the corner, `gain` far above it; one pole."""
    w = warped(corner_hz, rate)
    return [section((gain, w), (1.0, w), rate)]


def ringing(sections):
    """How many samples the sections go on sounding after their input."""
    slowest = max(np.max(np.abs(np.roots(a))) for _, a in sections)
    return int(np.ceil(SILENT_NEPERS / (1.0 - slowest)))


def recursive(samples, sections):
    """The samples through all sections. They are applied to the spectrum: that is exact as long as
    the ringing ends within the silence that is added, and needs no loop over the samples."""
    size = fast_size(len(samples) + ringing(sections))
    back = np.exp(-2j * np.pi * np.arange(size // 2 + 1) / size)    # one sample earlier
    spectrum = rfft(samples, size)
    for b, a in sections:
        spectrum *= np.polyval(b[::-1], back) / np.polyval(a[::-1], back)
    return irfft(spectrum, size)[:len(samples)]
