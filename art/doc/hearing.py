# SPDX-License-Identifier: CC0-1.0
#
# What the sounds have to be, each as a question with its answer and the figure that was measured.
# Samples are floats at the game's rate, full scale is 1.

import collections
import math
import os

import numpy as np

import measure
import mix_scene
from criteria import Answer
from measure import centroid_hz, db, envelope, part, peak_db, share

RATE = measure.RATE
HERE = os.path.dirname(os.path.abspath(__file__))
SCENE = os.path.join(HERE, "..", "sounds", "scene60.txt")

Level = collections.namedtuple("Level", "what shortest longest peak loudest")
LEVELS = {
    "shot001b": Level("laser", 0.20, 0.24, -10, -16),
    "shot002": Level("rocket", 1.2, 1.5, -8, -14),
    "miniExplode1": Level("an enemy is hit", 0.15, 0.20, -10, -17),
    "miniExplode2": Level("the player is hit", 0.35, 0.40, -6, -12),
    "explode": Level("an enemy bursts", 1.8, 2.2, -4, -12),
    "explode2": Level("the player is lost", 2.8, 3.2, -2, -10),
    "intro": Level("countdown", 6.4, 6.8, -5, -12),
    "keyboard": Level("a key of the terminal", 0.095, 0.105, -8, -26),
}
PEAK_SLACK_DB, LOUDEST_SLACK_DB = 0.5, 0.6
BASS_HZ, BASS_SHARE = 120, 0.35
BEAT_S, CHORD_S, DIGITS = 1.004, 6.02, 6
DIGIT_MS = 1001             # the game's own
FRAME_MS = (2, 8, 16, 20, 33)
DIGIT_SLACK_MS = 100        # later or earlier than its digit a beat is felt to be off

# What is heard of each sound: stretch in seconds, words, measure, and the limits of the measure.
Stretch = collections.namedtuple("Stretch", "name start end words measure low high")
STRETCHES = {
    "shot001b": (
        Stretch("attack", 0, 0.010, "tick of noise over the whole band", "pitch", 2000, 8000),
        Stretch("body", 0.010, 0.100, "chirp that falls", "fall", 1.5, 20),
        Stretch("tail", 0.140, 0.220, "gone before fast fire cuts it", "peak", -90, -30)),
    "shot002": (
        Stretch("attack", 0, 0.060, "clunk of the release", "peak", -14, -6),
        Stretch("body", 0.190, 0.600, "ignition and swelling whoosh", "level", -20, -12),
        Stretch("tail", 0.600, 1.300, "whoosh that leaves and darkens", "fall", 1.2, 20)),
    "miniExplode1": (
        Stretch("attack", 0, 0.010, "burst of noise", "peak", -11, -9),
        Stretch("body", 0.010, 0.100, "ring of bright metal", "pitch", 2000, 5000),
        Stretch("tail", 0.150, 0.180, "fades with the ring", "level", -90, -30)),
    "miniExplode2": (
        Stretch("attack", 0, 0.030, "heavy blow", "low", 0.5, 1),
        Stretch("body", 0.080, 0.300, "buzz that alarms", "rough", 0.25, 2),
        Stretch("tail", 0.340, 0.380, "buzz dies away", "level", -90, -30)),
    "explode": (
        Stretch("attack", 0, 0.020, "crack over the whole band", "pitch", 2000, 8000),
        Stretch("body", 0.020, 0.300, "noise that closes", "fall", 1.2, 20),
        Stretch("tail", 0.880, 1.800, "soft second burst, debris, silence", "level", -45, -18)),
    "explode2": (
        Stretch("attack", 0, 0.020, "crack, then a boom", "pitch", 1500, 8000),
        Stretch("body", 0.900, 1.300, "second blow", "level", -22, -10),
        Stretch("tail", 1.600, 2.700, "whine that runs down, ringing hull", "level", -50, -20)),
    "intro": (
        Stretch("attack", 0, 0.050, "first beat", "level", -24, -10),
        Stretch("body", 4.0, 5.98, "tension that rises", "rise", 1.1, 20),
        Stretch("tail", 6.02, 6.60, "chord, over when the first laser may cut it", "level",
                -24, -10)),
    "keyboard": (
        Stretch("attack", 0, 0.010, "key goes down", "peak", -9, -7),
        Stretch("body", 0.057, 0.077, "key comes up, softer", "peak", -20, -12),
        Stretch("tail", 0.085, 0.100, "silence", "level", -120, -50)),
}
MEASURES = {
    "pitch": ("brightness", "Hz"), "fall": ("brightness falls by", "times"),
    "rise": ("brightness rises by", "times"), "peak": ("peak", "dBFS"),
    "level": ("level", "dBFS"), "low": ("energy below 500 Hz", "of all"),
    "rough": ("flicker of loudness", "of its mean"),
}


def load(folder):
    return {name: mix_scene.read_wav(os.path.join(folder, name + ".wav")) for name in LEVELS}


def value(kind, samples):
    """One measure of a stretch."""
    half = len(samples) // 2
    return {
        "pitch": lambda: centroid_hz(samples),
        "fall": lambda: centroid_hz(samples[:half]) / centroid_hz(samples[half:]),
        "rise": lambda: centroid_hz(samples[half:]) / centroid_hz(samples[:half]),
        "peak": lambda: peak_db(samples),
        "level": lambda: float(db(measure.rms(samples))),
        "low": lambda: share(samples, 0, 500),
        "rough": lambda: measure.roughness(samples),
    }[kind]()


def amount(kind, number):
    """A measure as it is written."""
    digits = {"pitch": 0, "peak": 1, "level": 1}.get(kind, 2)
    return f"{number:.{digits}f}"


def stretches(name, samples):
    """Attack, body and tail: stretch, its measured value, and whether that is within limits."""
    for stretch in STRETCHES[name]:
        found = value(stretch.measure, part(samples, stretch.start, stretch.end))
        yield stretch, found, stretch.low <= found <= stretch.high


def onset_s(samples, around, reach=0.25):
    """Moment of the steepest rise of loudness near a given one."""
    loudness = db(envelope(samples, 0.004) + 1e-4)
    step = int(0.004 * RATE)
    first, last = (int(max(around + side * reach, 0) * RATE) for side in (-1, 1))
    rise = loudness[first + step:last + step] - loudness[first:last]
    return (first + int(np.argmax(rise)) + step / 2) / RATE


def beats(intro):
    """Moments of the six beats; the first is the start of the sound."""
    return [0.0] + [onset_s(intro, number * BEAT_S) for number in range(1, DIGITS)]


def digit_ms(frame_ms):
    """How long a digit of the countdown is shown at frames of this length."""
    return math.ceil(DIGIT_MS / frame_ms) * frame_ms


def digit_span_ms(number):
    """Earliest and latest moment at which a digit (0 is the first) appears."""
    starts = [number * digit_ms(frame) for frame in FRAME_MS]
    return min(starts), max(starts)


def play_scene(folder):
    """The minute of play as the mixer sums it."""
    with open(SCENE, encoding="utf-8") as handle:
        events = mix_scene.parse_scene(handle.read())
    return events, mix_scene.mix(events, mix_scene.load_sounds(events, folder))


def of_levels(sounds):
    off = {name: abs(peak_db(samples) - LEVELS[name].peak) for name, samples in sounds.items()}
    worst = max(off, key=off.get)
    yield ("Does every sound have its peak?", off[worst] <= PEAK_SLACK_DB,
           f"at worst {off[worst]:.1f} dB off, `{worst}` (at most {PEAK_SLACK_DB})")
    off = {name: abs(measure.loudest_db(samples) - LEVELS[name].loudest)
           for name, samples in sounds.items()}
    worst = max(off, key=off.get)
    yield ("Is every sound as loud as it should be?", off[worst] <= LOUDEST_SLACK_DB,
           f"loudest 50 ms at worst {off[worst]:.1f} dB off, `{worst}` "
           f"(at most {LOUDEST_SLACK_DB})")
    good = [LEVELS[name].shortest <= len(samples) / RATE <= LEVELS[name].longest
            for name, samples in sounds.items()]
    yield ("Has every sound its length?", all(good), f"{sum(good)} of {len(good)}")
    silent = sum(samples[0] == 0 and samples[-1] == 0 for samples in sounds.values())
    yield ("Does every sound start and end in silence?", silent == len(sounds),
           f"first and last sample 0 in {silent} of {len(sounds)}")
    bass = {name: share(samples, 0, BASS_HZ) for name, samples in sounds.items()}
    worst = max(bass, key=bass.get)
    yield ("Is every sound heard on small speakers?", bass[worst] <= BASS_SHARE,
           f"at most {100 * bass[worst]:.0f} % of the energy below {BASS_HZ} Hz, `{worst}` "
           f"(at most {100 * BASS_SHARE:.0f} %)")
    good = [fine for name, samples in sounds.items() for _, _, fine in stretches(name, samples)]
    yield ("Has every sound its attack, body and tail?", all(good),
           f"{sum(good)} of {len(good)} stretches within limits")


def of_intro(sounds):
    moments = beats(sounds["intro"])
    gaps = [1000 * moment - limit for number, moment in enumerate(moments)
            for limit in digit_span_ms(number)]
    worst = max(gaps, key=abs)
    yield ("Do the beats of the countdown fall on its digits?", abs(worst) <= DIGIT_SLACK_MS,
           f"at worst {abs(worst):.0f} ms {'before' if worst < 0 else 'after'} the digit, "
           f"at frames of {FRAME_MS[0]} to {FRAME_MS[-1]} ms (at most {DIGIT_SLACK_MS} ms)")
    shares = [share(part(sounds["intro"], moment, moment + 0.25), 4000, RATE)
              for moment in moments]
    yield ("Is the countdown bright above 4 kHz?", min(shares) > 0.05,
           f"{100 * min(shares):.0f} % of the energy of its dullest beat (more than 5 %)")


def of_scene(folder):
    _, report = play_scene(folder)
    clipped = mix_scene.clipped_samples(report)
    yield ("Does a minute of play sum without clipping?", clipped == 0,
           f"{clipped} clipped samples, peak {np.max(np.abs(report.exact)):.3f} of full scale")
    clicks = sum(mix_scene.is_click(cut) for cut in report.cuts)
    worst = max(report.cuts, key=lambda cut: cut.uncovered_db)
    yield ("Is no click heard where one sound cuts another?", clicks == 0,
           f"{clicks} clicks at {len(report.cuts)} cuts; at worst {-worst.uncovered_db:.1f} dB "
           f"below the sounds around it, `{worst.old}` cut by `{worst.new}` (at least "
           f"{mix_scene.MASKING_MARGIN_DB:.0f} dB)")


def answers(sounds, folder):
    """All questions about the sounds with their answers."""
    return [Answer("Sounds", *answer) for answers_of in
            (of_levels(sounds), of_intro(sounds), of_scene(folder)) for answer in answers_of]
