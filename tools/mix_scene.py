#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: MIT
#
# Renders a scene of sounds to a WAV file as the game's mixer would play it, and reports clipping,
# loudness, and clicks where one sound cuts another.
#
#   mix_scene.py SCENE SOUNDS OUT.wav [--buffer FRAMES]
#
# A scene is a text file with one sound a line, "milliseconds channel file", in the order of time;
# "#" starts a remark. A new sound on a channel cuts the old one off at once; channels are added up
# and held within 16 bits. With --buffer, sounds start only at the start of a mixer buffer, as they
# do in the game.

import argparse
import collections
import os
import struct
import sys

sys.dont_write_bytecode = True
sys.path.append(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "art", "sounds"))

import numpy as np

import filters

RATE = 22050                # Hz
FULL_SCALE = 32768.0

# A hard cut is a soft one, which fades within 2 ms and never clicks, and the difference of the two.
# That difference goes unheard where the rest covers it: if in every third of an octave from 2 kHz
# up (about the ear's own bands) it holds 6 dB less energy than the 10 ms before and after the cut,
# which the ear takes for one moment: the end of the old sound and the start of the new one. It then
# raises no band by more than 1 dB, a step that goes unnoticed in sounds as short as this. Below
# 2 kHz a jump is no click but a knock, drowned in the bodies of the sounds. This is strict: the
# treble that a fade would take away counts as a part of the click, and what other channels cover
# does not count.
CLICK_BANDS_HZ = 2000.0 * 2.0 ** (np.arange(8) / 3.0)       # edges; sounds reach up to 10 kHz
SOFT_CUT_S = 0.002
MOMENT_S = 0.01             # before and after the cut
MASKING_MARGIN_DB = 6.0
SPECTRUM_SIZE = 4096

WINDOW_S = 0.4              # momentary loudness
GATE_LUFS = -70.0           # silence does not count towards the loudness of a scene
RELATIVE_GATE_LU = 10.0

Event = collections.namedtuple("Event", "start channel name")
Cut = collections.namedtuple("Cut", "seconds channel old new step_db uncovered_db")
Report = collections.namedtuple("Report", "mix exact cuts")


class SceneError(Exception):
    """A scene or sound file that cannot be played; the text is for the user."""


def db(amplitude):
    return 20.0 * float(np.log10(max(abs(amplitude), 1e-6)))


def read_wav(path):
    """Samples from -1 to 1 of a plain 16-bit mono file of the game's rate; refuses any other."""
    with open(path, "rb") as handle:
        data = handle.read()
    if len(data) < 44 or data[:4] != b"RIFF" or data[8:16] != b"WAVEfmt ":
        raise SceneError(f"{path}: not a plain WAV file")
    size, form, channels, rate, _, _, bits = struct.unpack("<IHHIIHH", data[16:36])
    if (size, form, channels, rate, bits) != (16, 1, 1, RATE, 16) or data[36:40] != b"data":
        raise SceneError(f"{path}: not plain PCM, 16 bit, mono, {RATE} Hz")
    count = struct.unpack("<I", data[40:44])[0]
    if count > len(data) - 44:
        raise SceneError(f"{path}: the file is cut short")
    return np.frombuffer(data[44:44 + count // 2 * 2], dtype="<i2") / FULL_SCALE


def write_wav(path, samples):
    """Writes samples from -1 to 1 as 16-bit mono."""
    whole = np.clip(np.round(samples * FULL_SCALE), -FULL_SCALE, FULL_SCALE - 1).astype("<i2")
    with open(path, "wb") as handle:
        handle.write(b"RIFF" + struct.pack("<I", 36 + 2 * len(whole)) + b"WAVEfmt ")
        handle.write(struct.pack("<IHHIIHH", 16, 1, 1, RATE, 2 * RATE, 2, 16))
        handle.write(b"data" + struct.pack("<I", 2 * len(whole)) + whole.tobytes())


def parse_scene(text):
    """Events of a scene's text, in the order of time."""
    events = []
    for number, line in enumerate(text.splitlines(), 1):
        words = line.split("#")[0].split()
        if not words:
            continue
        try:
            milliseconds, channel, name = float(words[0]), int(words[1]), words[2]
        except (ValueError, IndexError):
            raise SceneError(f"line {number}: expected 'milliseconds channel file'") from None
        if len(words) > 3 or milliseconds < 0 or (events and milliseconds < events[-1][0]):
            raise SceneError(f"line {number}: too many words, or not in the order of time")
        events.append((milliseconds, channel, name))
    return [Event(milliseconds / 1000.0, channel, name) for milliseconds, channel, name in events]


def load_sounds(events, folder):
    """The samples of every file that a scene names."""
    return {name: read_wav(os.path.join(folder, name)) for name in {e.name for e in events}}


def place(events, buffer_frames):
    """(first sample, event) pairs; with a buffer size, starts move to the next buffer."""
    for event in events:
        first = int(round(event.start * RATE))
        yield (-(-first // buffer_frames) * buffer_frames if buffer_frames else first), event


def play_channel(placed, sounds, total):
    """One channel's wave, and its cuts."""
    wave = np.zeros(total)
    cuts = []
    end, playing = 0, None
    for first, event in placed:
        if first < end:
            ended = wave[max(0, first - int(MOMENT_S * RATE)):first].copy()
            cuts.append((first, playing, event.name, ended))
        wave[first:] = 0.0
        samples = sounds[event.name]
        wave[first:first + len(samples)] = samples
        end, playing = first + len(samples), event.name
    return wave, cuts


def band_energies(samples):
    """Energy in each of the bands in which a click is heard."""
    hz = np.fft.rfftfreq(SPECTRUM_SIZE, 1.0 / RATE)
    energy = np.abs(np.fft.rfft(samples, SPECTRUM_SIZE)) ** 2
    return np.add.reduceat(energy, np.searchsorted(hz, CLICK_BANDS_HZ))[:-1]


def rise(seconds):
    """A smooth rise from 0 to 1."""
    count = int(seconds * RATE)
    return 0.5 - 0.5 * np.cos(np.pi * np.arange(1, count + 1) / count)


def uncovered_db(ended, new):
    """How far a cut stands above the sounds around it, in the band where most of it does; `ended`
    is the old sound up to the cut."""
    near = rise(MOMENT_S)
    soft = np.pad(1.0 - rise(SOFT_CUT_S), (len(near), 0), constant_values=1.0)[-len(near):]
    before = np.pad(ended, (len(near), 0))[-len(near):] * near
    after = np.pad(new, (0, len(near)))[:len(near)] * near[::-1]
    covering = band_energies(np.concatenate([before * soft, after]))
    ratio = (band_energies(before * (1.0 - soft)) + 1e-12) / (covering + 1e-12)
    return 10.0 * float(np.log10(np.max(ratio)))


def describe_cuts(channel, cuts, sounds):
    """Cuts with the height of the jump, and how well the sounds around it cover it."""
    for first, old, new, ended in cuts:
        height = (ended[-1] if len(ended) else 0.0) - sounds[new][0]
        yield Cut(first / RATE, channel, old, new, db(height), uncovered_db(ended, sounds[new]))


def mix(events, sounds, buffer_frames=0):
    """Plays a scene: the exact sum, the sum as it leaves the mixer, and every cut."""
    placed = list(place(events, buffer_frames))
    total = max((first + len(sounds[event.name]) for first, event in placed), default=0)
    exact = np.zeros(total)
    cuts = []
    for channel in sorted({event.channel for event in events}):
        own = [(first, event) for first, event in placed if event.channel == channel]
        wave, raw = play_channel(own, sounds, total)
        exact += wave
        cuts += describe_cuts(channel, raw, sounds)
    return Report(np.clip(exact, -1.0, 1.0 - 1.0 / FULL_SCALE), exact, sorted(cuts))


def is_click(cut):
    return cut.uncovered_db > -MASKING_MARGIN_DB


def clipped_samples(report):
    """How many samples the mixer had to hold within 16 bits."""
    return int(np.sum((report.exact >= 1.0) | (report.exact < -1.0)))


def ear_weighting(samples):
    """Weighs frequencies roughly as the ear does: less below 60 Hz, 4 dB more above 2 kHz."""
    shelf_hz, gain = 1500.0, 10.0 ** (4.0 / 20.0)
    return filters.recursive(samples, filters.high_shelf(shelf_hz, gain, RATE)
                             + filters.butter_high(38.0, RATE))


def loudness(samples):
    """(whole, highest momentary) loudness in LUFS; silent stretches do not count."""
    width = int(WINDOW_S * RATE)
    padded = np.pad(ear_weighting(samples), (0, max(0, width - len(samples))))
    sums = np.cumsum(np.concatenate([[0.0], padded ** 2]))
    power = (sums[width:] - sums[:-width])[::width // 4] / width
    blocks = -0.691 + 10.0 * np.log10(power + 1e-12)
    heard = power[blocks > GATE_LUFS]
    if not len(heard):
        return GATE_LUFS, GATE_LUFS
    gate = -0.691 + 10.0 * np.log10(np.mean(heard)) - RELATIVE_GATE_LU
    kept = power[blocks > max(gate, GATE_LUFS)]
    return -0.691 + 10.0 * float(np.log10(np.mean(kept))), float(np.max(blocks))


def print_report(events, report):
    """Figures of the scene, and the five cuts that are covered least."""
    whole, momentary = loudness(report.mix)
    clicks = [cut for cut in report.cuts if is_click(cut)]
    print(f"sounds     {len(events)} in {len(report.exact) / RATE:.2f} s")
    print(f"peak       {db(np.max(np.abs(report.exact), initial=0.0)):.2f} dBFS "
          f"({np.max(np.abs(report.exact), initial=0.0):.3f} of full scale)")
    print(f"clipped    {clipped_samples(report)} samples")
    print(f"loudness   {whole:.1f} LUFS, highest momentary {momentary:.1f} LUFS")
    print(f"cuts       {len(report.cuts)}, clicks {len(clicks)}")
    for cut in sorted(report.cuts, key=lambda cut: -cut.uncovered_db)[:5]:
        print(f"  {cut.seconds:7.3f} s  channel {cut.channel}  {cut.old} cut by {cut.new}: "
              f"jump {cut.step_db:.1f} dBFS, covered by {-cut.uncovered_db:.1f} dB"
              f"{'  CLICK' if is_click(cut) else ''}")


def main():
    parser = argparse.ArgumentParser(description="Mix a scene of sounds as the game would.")
    parser.add_argument("scene", help="text file: milliseconds channel file, one sound a line")
    parser.add_argument("sounds", help="folder of the WAV files")
    parser.add_argument("out", help="WAV file to write")
    parser.add_argument("--buffer", type=int, default=0, metavar="FRAMES",
                        help="size of the mixer's buffer; sounds start at its start")
    options = parser.parse_args()
    try:
        with open(options.scene, encoding="utf-8") as handle:
            events = parse_scene(handle.read())
        sounds = load_sounds(events, options.sounds)
        report = mix(events, sounds, options.buffer)
        write_wav(options.out, report.mix)
    except (SceneError, OSError) as error:
        sys.exit(f"mix_scene: {error}")
    print_report(events, report)


if __name__ == "__main__":
    main()
