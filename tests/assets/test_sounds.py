#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
# SPDX-License-Identifier: MIT
#
# Measures the game's sounds: test_sounds.py DATA_DIR

import collections
import itertools
import os
import sys
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
sys.dont_write_bytecode = True
sys.path[:0] = [os.path.join(HERE, "..", "..", part) for part in ("tools", "art/sounds")]

import numpy as np

import filters
import measure
import mix_scene
from measure import centroid_hz, db, envelope, part, part_db, peak_db, rms, share

RATE = 22050                # Hz
DATA_DIR = "data"

Level = collections.namedtuple("Level", "shortest longest peak_db loudest_db fade")
LEVELS = {
    "shot001b": Level(0.20, 0.24, -10, -16, 0.010),
    "shot002": Level(1.2, 1.5, -8, -14, 0.010),
    "miniExplode1": Level(0.15, 0.20, -10, -17, 0.010),
    "miniExplode2": Level(0.35, 0.40, -6, -12, 0.010),
    "explode": Level(1.8, 2.2, -4, -12, 0.25),
    "explode2": Level(2.8, 3.2, -2, -10, 0.25),
    "intro": Level(6.4, 6.8, -5, -12, 0.010),
    "keyboard": Level(0.095, 0.105, -8, -26, 0.005),
}
PEAK_SLACK_DB = 0.5
LOUDEST_SLACK_DB = 0.6
BLASTS = ("explode", "explode2")
HITS = ("miniExplode1", "miniExplode2")

BASS_HZ = 120               # small speakers play little below
BASS_SHARE = 0.35
RUMBLE_HZ = 45
RUMBLE_SHARE = 0.01
CUTOFF_HZ = 10300
LEAST_DIFFERENCE_DB = 4.5   # mean gap between two sounds over time and pitch

LASER_GONE_S = 0.14
LASER_GONE_DB = -30
CUT_FROM_S = 0.03           # two starts closer together are heard as one
UNHEARD_CUTS = 0.98         # of all moments in which one sound may cut another
FIRE_GAPS_S = np.arange(0.140, 0.200, 0.001)
IGNITION_S = 0.19
FLUTTER_HZ = 27
BEAT_S = 1.004
CHORD_S = 6.02
MELODY_BELLS_HZ = (1760, 1976, 2093, 2349, 2637, 3322)
KEY_UP_S = 0.058

# Nine seconds of steady fire until the player is lost: milliseconds of every sound but the lasers.
BUSY_LASERS = 53
BUSY_GAP_MS = 169
BUSY = {
    (2, "shot002"): (400, 2300, 4500, 6700),
    (3, "explode"): (1750, 3780, 5900, 7600),
    (3, "explode2"): (8960,),
    (4, "miniExplode1"): (350, 690, 1030, 1410, 1750, 2440, 2790, 3130, 3450, 3780, 4700, 5040,
                          5390, 5900, 6500, 6850, 7200, 7600),
    (4, "miniExplode2"): (2100, 4150, 6200, 8960),
}
BUSY_SHIFTS_MS = (0, 23, 46, 69, 92, 115, 138)


def load(name):
    return mix_scene.read_wav(os.path.join(DATA_DIR, "sounds", name + ".wav"))


def band_level(samples, low_hz, high_hz, window_s=0.004):
    """Loudness over time of one band."""
    spectrum = np.fft.rfft(samples)
    hz = np.fft.rfftfreq(len(samples), 1 / RATE)
    spectrum[(hz < low_hz) | (hz >= high_hz)] = 0.0
    return envelope(np.fft.irfft(spectrum, len(samples)), window_s)


def strongest_hz(samples, low_hz, high_hz):
    """Frequency of the strongest tone in a band, and its height over the band's median in dB."""
    size = 1 << 15
    windowed = np.fft.rfft(samples * np.hanning(len(samples)), size)
    hz = np.fft.rfftfreq(size, 1 / RATE)
    inside = (hz >= low_hz) & (hz < high_hz)
    energy = np.abs(windowed[inside]) ** 2
    return hz[inside][np.argmax(energy)], 10 * np.log10(np.max(energy) / np.median(energy))


def onset_s(samples, around, reach=0.05):
    """Moment of the steepest rise of loudness near a given one."""
    loudness = db(envelope(samples, 0.004) + 1e-4)
    step = int(0.004 * RATE)
    first, last = (int(max(around + side * reach, 0) * RATE) for side in (-1, 1))
    rise = loudness[first + step:last + step] - loudness[first:last]
    return (first + int(np.argmax(rise)) + step / 2) / RATE


def busy_scene(shift_ms):
    """The busy nine seconds, with everything but the lasers moved a little."""
    events = [(BUSY_GAP_MS * number, 1, "shot001b") for number in range(BUSY_LASERS)]
    for (channel, name), times in BUSY.items():
        events += [(time + shift_ms, channel, name) for time in times]
    return [mix_scene.Event(time / 1000, channel, name) for time, channel, name in sorted(events)]


class SoundTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.sounds = {name: load(name) for name in LEVELS}


class EverySound(SoundTest):
    def test_the_folder_holds_the_eight_sounds_and_nothing_else(self):
        present = sorted(os.listdir(os.path.join(DATA_DIR, "sounds")))
        self.assertEqual(present, sorted(name + ".wav" for name in LEVELS))

    def test_the_file_is_plain_16_bit_mono_at_the_mixers_rate(self):
        for name, samples in self.sounds.items():
            with self.subTest(sound=name):
                size = os.path.getsize(os.path.join(DATA_DIR, "sounds", name + ".wav"))
                self.assertEqual(size, 44 + 2 * len(samples))
                with open(os.path.join(DATA_DIR, "sounds", name + ".wav"), "rb") as handle:
                    head = handle.read(44)
                self.assertEqual(int.from_bytes(head[4:8], "little"), size - 8)
                self.assertEqual(int.from_bytes(head[28:32], "little"), 2 * RATE)
                self.assertEqual(int.from_bytes(head[32:34], "little"), 2)

    def test_it_is_neither_too_short_nor_too_long(self):
        for name, samples in self.sounds.items():
            with self.subTest(sound=name):
                self.assertGreaterEqual(len(samples) / RATE, LEVELS[name].shortest)
                self.assertLessEqual(len(samples) / RATE, LEVELS[name].longest)

    def test_its_peak_leaves_room_for_the_others(self):
        for name, samples in self.sounds.items():
            with self.subTest(sound=name):
                self.assertAlmostEqual(peak_db(samples), LEVELS[name].peak_db, delta=PEAK_SLACK_DB)

    def test_its_loudest_moment_is_as_loud_as_it_should_be(self):
        for name, samples in self.sounds.items():
            with self.subTest(sound=name):
                self.assertAlmostEqual(measure.loudest_db(samples), LEVELS[name].loudest_db,
                                       delta=LOUDEST_SLACK_DB)

    def test_it_starts_and_ends_in_silence(self):
        for name, samples in self.sounds.items():
            with self.subTest(sound=name):
                self.assertEqual(samples[0], 0)
                self.assertEqual(samples[-1], 0)

    def test_it_starts_without_a_hard_step(self):
        for name, samples in self.sounds.items():
            with self.subTest(sound=name):
                first = np.max(np.abs(part(samples, 0, 0.0003)))
                self.assertLess(first, 0.4 * np.max(np.abs(samples)))

    def test_it_strikes_at_once(self):
        for name, samples in self.sounds.items():
            with self.subTest(sound=name):
                early = np.max(np.abs(part(samples, 0, 0.010)))
                self.assertGreater(early, 0.3 * np.max(np.abs(samples)))

    def test_its_end_fades_away(self):
        for name, samples in self.sounds.items():
            with self.subTest(sound=name):
                fade = int(LEVELS[name].fade * RATE)
                self.assertLess(peak_db(samples[-fade // 5:]), -60)
                self.assertLess(db(rms(samples[-fade:])), measure.loudest_db(samples) - 24)

    def test_little_of_it_is_lost_on_small_speakers(self):
        for name, samples in self.sounds.items():
            with self.subTest(sound=name):
                self.assertLess(share(samples, 0, BASS_HZ), BASS_SHARE)

    def test_no_rumble_below_the_speakers_wastes_headroom(self):
        for name, samples in self.sounds.items():
            with self.subTest(sound=name):
                self.assertLess(share(samples, 0, RUMBLE_HZ), RUMBLE_SHARE)

    def test_nothing_lies_at_the_edge_of_what_the_rate_carries(self):
        for name, samples in self.sounds.items():
            with self.subTest(sound=name):
                self.assertLess(share(samples, CUTOFF_HZ, RATE), 0.002)

    def test_the_wave_swings_about_its_middle(self):
        for name, samples in self.sounds.items():
            with self.subTest(sound=name):
                self.assertLess(abs(np.mean(samples)), 0.002)

    def test_it_is_told_apart_from_every_other_by_ear(self):
        for first, second in itertools.combinations(LEVELS, 2):
            with self.subTest(pair=f"{first} {second}"):
                gap = measure.difference_db(self.sounds[first], self.sounds[second])
                self.assertGreater(gap, LEAST_DIFFERENCE_DB)


class Laser(SoundTest):
    def setUp(self):
        self.laser = self.sounds["shot001b"]

    def test_it_falls_from_bright_to_low(self):
        pitch = [centroid_hz(part(self.laser, start, start + 0.02))
                 for start in (0, 0.03, 0.06, 0.1)]
        self.assertEqual(pitch, sorted(pitch, reverse=True))
        self.assertGreater(pitch[0], 2000)
        self.assertLess(pitch[-1], 600)

    def test_it_starts_with_a_snap(self):
        self.assertGreater(share(part(self.laser, 0, 0.01), 4000, RATE), 0.25)

    def test_it_is_all_but_gone_when_the_next_one_cuts_it(self):
        self.assertLess(peak_db(self.laser[int(LASER_GONE_S * RATE):]), LASER_GONE_DB)

    def test_fast_fire_does_not_click(self):
        for gap in FIRE_GAPS_S:
            events = [mix_scene.Event(number * gap, 1, "shot001b") for number in range(4)]
            cuts = mix_scene.mix(events, self.sounds).cuts
            self.assertEqual(len(cuts), 3)
            self.assertLess(max(cut.step_db for cut in cuts), LASER_GONE_DB)


class Rocket(SoundTest):
    def setUp(self):
        self.rocket = self.sounds["shot002"]

    def test_it_unlatches_with_a_clunk(self):
        self.assertGreater(peak_db(part(self.rocket, 0, 0.02)), -14)
        self.assertGreater(share(part(self.rocket, 0, 0.06), 150, 1000), 0.5)

    def test_it_drops_almost_silently(self):
        drop = part_db(self.rocket, 0.10, 0.18)
        self.assertLess(drop, part_db(self.rocket, 0.20, 0.25) - 12)
        self.assertGreater(drop, -50)

    def test_the_motor_lights_when_the_drop_turns_into_a_climb(self):
        self.assertAlmostEqual(onset_s(self.rocket, IGNITION_S), IGNITION_S, delta=0.01)

    def test_the_whoosh_swells(self):
        loud = part_db(self.rocket, 0.32, 0.42)
        self.assertGreater(loud, part_db(self.rocket, 0.22, 0.26) + 3)
        self.assertGreater(loud, part_db(self.rocket, 0.7, 0.8) + 6)
        self.assertGreater(loud, part_db(self.rocket, 1.1, 1.2) + 15)

    def test_the_whoosh_gets_darker_as_it_leaves(self):
        pitch = [centroid_hz(part(self.rocket, start, start + 0.1))
                 for start in (0.3, 0.5, 0.8, 1.1)]
        self.assertEqual(pitch, sorted(pitch, reverse=True))
        self.assertGreater(pitch[0], 2000)
        self.assertLess(pitch[-1], 1300)

    def test_the_flame_flutters(self):
        loudness = part(envelope(self.rocket, 0.005), 0.30, 1.1)
        trend = np.convolve(loudness, np.ones(RATE // 8) / (RATE // 8), "same")
        hz, _ = strongest_hz(loudness / np.maximum(trend, 1e-4) - 1, 10, 80)
        self.assertAlmostEqual(hz, FLUTTER_HZ, delta=2)


class Hits(SoundTest):
    def test_a_hit_enemy_rings_bright(self):
        tick = self.sounds["miniExplode1"]
        self.assertGreater(share(tick, 700, 4800), 0.75)
        self.assertGreater(centroid_hz(tick), 2000)

    def test_the_ring_is_metal_and_not_a_chord(self):
        ring = part(self.sounds["miniExplode1"], 0.02, 0.12)
        tones = [strongest_hz(ring, low, high)[0] for low, high in
                 ((600, 1000), (1400, 2000), (2050, 2800), (2850, 3700))]
        for low, high in itertools.combinations(tones, 2):
            self.assertGreater(abs(high / low - round(high / low)), 0.02)

    def test_a_hit_on_the_player_is_heavier(self):
        tick, blow = self.sounds["miniExplode1"], self.sounds["miniExplode2"]
        self.assertGreater(share(blow, 0, 500), share(tick, 0, 500) + 0.3)
        self.assertGreater(measure.loudest_db(blow), measure.loudest_db(tick) + 3)

    def test_the_blow_falls_in_pitch(self):
        blow = self.sounds["miniExplode2"]
        early = strongest_hz(part(blow, 0, 0.03), 50, 400)[0]
        late = strongest_hz(part(blow, 0.10, 0.16), 50, 250)[0]
        self.assertGreater(early, 1.5 * late)

    def test_the_blow_is_followed_by_a_buzz_that_alarms(self):
        alarm = part(self.sounds["miniExplode2"], 0.08, 0.30)
        self.assertGreater(measure.roughness(alarm), 0.25)
        self.assertGreater(share(alarm, 400, 4000), 0.5)

    def test_the_buzz_falls(self):
        blow = self.sounds["miniExplode2"]
        early = centroid_hz(part(blow, 0.08, 0.14))
        self.assertGreater(early, 1.2 * centroid_hz(part(blow, 0.24, 0.32)))


class Blasts(SoundTest):
    def test_they_open_with_a_crack_over_the_full_band(self):
        for name in BLASTS:
            with self.subTest(sound=name):
                crack = part(self.sounds[name], 0, 0.008)
                self.assertGreater(share(crack, 3000, RATE), 0.25)
                self.assertGreater(share(crack, 6000, RATE), 0.08)

    def test_they_have_a_body_and_tear(self):
        for name in BLASTS:
            with self.subTest(sound=name):
                self.assertGreater(share(self.sounds[name], 150, 500), 0.25)
                self.assertGreater(share(self.sounds[name], 300, 2400), 0.35)

    def test_the_fire_closes(self):
        for name in BLASTS:
            with self.subTest(sound=name):
                high = band_level(self.sounds[name], 3000, 9500)
                low = band_level(self.sounds[name], 150, 500)
                lost = [db(rms(part(band, 0, 0.1))) - db(np.median(part(band, 0.4, 0.6)))
                        for band in (high, low)]
                self.assertGreater(lost[0], lost[1] + 6)

    def test_most_of_their_energy_comes_early(self):
        for name, early in (("explode", 0.25), ("explode2", 0.6)):
            with self.subTest(sound=name):
                energy = np.cumsum(self.sounds[name] ** 2)
                self.assertGreater(energy[int(early * RATE)] / energy[-1], 0.6)

    def test_an_enemys_second_burst_swells_softly(self):
        blast = self.sounds["explode"]
        second = part_db(blast, 0.88, 1.0)
        self.assertGreater(second, part_db(blast, 0.72, 0.84) + 4)
        self.assertLess(second, part_db(blast, 0, 0.12) - 6)
        self.assertAlmostEqual(onset_s(blast, 0.86, 0.06), 0.86, delta=0.04)

    def test_debris_rains_on_an_enemys_blast(self):
        high = part(band_level(self.sounds["explode"], 3500, 9500, 0.003), 0.4, 1.3)
        self.assertGreater(np.max(high) / np.median(high), 4)

    def test_the_players_loss_has_a_second_blow(self):
        blast = self.sounds["explode2"]
        self.assertAlmostEqual(onset_s(blast, 0.9), 0.9, delta=0.012)
        second = part_db(blast, 0.9, 1.1)
        self.assertGreater(second, part_db(blast, 0.78, 0.88) + 6)
        self.assertLess(second, part_db(blast, 0, 0.2))

    def test_the_players_loss_is_the_biggest_sound(self):
        loss = self.sounds["explode2"]
        for name in LEVELS:
            if name != "explode2":
                self.assertGreater(mix_scene.loudness(loss)[1],
                                   mix_scene.loudness(self.sounds[name])[1] + 1)

    def test_the_ship_powers_down_with_a_falling_whine(self):
        loss = self.sounds["explode2"]
        tones = [strongest_hz(part(loss, start, start + 0.08), *limits) for start, limits in
                 ((0.60, (800, 1500)), (1.35, (350, 700)), (1.95, (200, 420)))]
        pitch = [hz for hz, _ in tones]
        self.assertEqual(pitch, sorted(pitch, reverse=True))
        for (hz, clear), expected in zip(tones, (1100, 500, 295)):
            self.assertAlmostEqual(hz / expected, 1.0, delta=0.08)
            self.assertGreater(clear, 10)

    def test_the_hulls_metal_rings_on(self):
        ring = part(self.sounds["explode2"], 1.6, 2.2)
        for hz in (523, 787):
            found, clear = strongest_hz(ring, 0.93 * hz, 1.07 * hz)
            self.assertAlmostEqual(found, hz, delta=6)
            self.assertGreater(clear, 12)


class Intro(SoundTest):
    def setUp(self):
        self.intro = self.sounds["intro"]
        self.beats = [part(self.intro, number * BEAT_S, number * BEAT_S + 0.25)
                      for number in range(6)]

    def test_each_digit_has_its_beat(self):
        self.assertGreater(part_db(self.intro, 0, 0.05), -24)
        for number in range(1, 6):
            moment = onset_s(self.intro, number * BEAT_S)
            self.assertAlmostEqual(moment, number * BEAT_S, delta=0.006)
            before = part_db(self.intro, moment - 0.06, moment - 0.01)
            self.assertGreater(part_db(self.intro, moment, moment + 0.05), before + 4)

    def test_the_tension_rises(self):
        thirds = [part(self.intro, start, start + 2) for start in (0, 2, 4)]
        levels = [db(rms(third)) for third in thirds]
        self.assertEqual(levels, sorted(levels))
        high = [rms(third) ** 2 * share(third, 4000, RATE) for third in thirds]
        self.assertGreater(high[2], 4 * high[0])
        self.assertGreater(centroid_hz(part(self.intro, 5.6, 5.9)),
                           1.5 * centroid_hz(part(self.intro, 4.6, 4.9)))

    def test_the_melody_climbs(self):
        for beat, hz in zip(self.beats, MELODY_BELLS_HZ):
            found, clear = strongest_hz(beat, 0.96 * hz, 1.04 * hz)
            self.assertAlmostEqual(found / hz, 1, delta=0.01)
            self.assertGreater(clear, 15)

    def test_no_beat_is_dull(self):
        for number, beat in enumerate(self.beats):
            with self.subTest(beat=number):
                self.assertGreater(share(beat, 4000, RATE), 0.05)
                self.assertGreater(share(part(beat, 0, 0.02), 6000, RATE), 0.03)

    def test_the_hi_hat_fills_the_beats(self):
        high = band_level(self.intro, 5000, 10000, 0.02)
        for number in range(6):
            tick = part(high, (number + 0.5) * BEAT_S, (number + 0.5) * BEAT_S + 0.03)
            self.assertGreater(db(np.max(tick)), -42)

    def test_the_chord_strikes_out_of_a_breath_of_silence(self):
        self.assertAlmostEqual(onset_s(self.intro, CHORD_S), CHORD_S, delta=0.01)
        self.assertGreater(part_db(self.intro, 6.03, 6.08), part_db(self.intro, 5.998, 6.018) + 25)

    def test_the_chord_is_the_loudest_moment(self):
        loudest = np.argmax(envelope(self.intro, 0.05)) / RATE
        self.assertTrue(CHORD_S < loudest < 6.15)

    def test_the_chord_is_in_tune_and_major(self):
        chord = part(self.intro, 6.05, 6.30)
        for hz in (220.0, 277.18, 329.63, 440.0):
            self.assertAlmostEqual(strongest_hz(chord, 0.95 * hz, 1.05 * hz)[0] / hz, 1, delta=0.02)

    def test_nothing_is_lost_when_the_first_laser_cuts_it(self):
        chord = part(self.intro, CHORD_S, 6.7)
        late = part(self.intro, 6.3, 6.7)
        self.assertLess(np.sum(late ** 2) / np.sum(chord ** 2), 0.1)


class Keyboard(SoundTest):
    def setUp(self):
        self.key = self.sounds["keyboard"]

    def test_the_key_goes_down_and_comes_up(self):
        self.assertAlmostEqual(onset_s(self.key, KEY_UP_S, 0.03), KEY_UP_S, delta=0.003)
        self.assertLess(part_db(self.key, 0.035, 0.055), part_db(self.key, 0, 0.01) - 30)

    def test_the_release_is_softer_and_higher(self):
        down, up = part(self.key, 0, 0.02), part(self.key, 0.057, 0.077)
        self.assertTrue(4 < peak_db(down) - peak_db(up) < 12)
        self.assertGreater(share(up, 2000, RATE), share(down, 2000, RATE) + 0.05)


class Filters(unittest.TestCase):
    """What sounds are made and measured with; a wrong filter would make and pass wrong sounds."""

    @staticmethod
    def gain_db(sections, hz):
        """Gain of a tone at one frequency, from the answer to a single sample."""
        answer = filters.recursive(np.eye(1, RATE)[0], sections)
        return db(np.sum(answer * np.exp(-2j * np.pi * hz / RATE * np.arange(RATE))))

    def test_a_recursive_filter_gives_what_stepping_through_the_samples_gives(self):
        samples = np.sin(np.arange(400) ** 1.5)
        for sections in (filters.butter_high(45, RATE), filters.high_shelf(1500, 1.6, RATE),
                         filters.butter_band(20, 150, RATE)):
            stepped = list(samples)
            for b, a in sections:
                source, stepped = [0, 0] + stepped, [0, 0]
                for n in range(2, len(source)):
                    stepped.append(sum(b[k] * source[n - k] for k in range(len(b)))
                                   - sum(a[k] * stepped[n - k] for k in range(1, len(a))))
                stepped = stepped[2:]
            gap = np.max(np.abs(filters.recursive(samples, sections) - stepped))
            self.assertLess(gap, 1e-10)

    def test_filters_turn_where_they_should(self):
        for sections, levels in (
                (filters.butter_low(500, RATE), ((50, 0), (500, -3.01), (2000, -24.6))),
                (filters.butter_high(500, RATE), ((100, -28), (500, -3.01), (5000, 0))),
                (filters.butter_band(200, 800, RATE), ((50, -28.8), (200, -3.01), (399.8, 0),
                                                       (800, -3.01))),
                (filters.high_shelf(1500, 2.0, RATE), ((20, 0), (1500, 3.98), (10000, 6.02)))):
            for hz, level in levels:
                self.assertAlmostEqual(self.gain_db(sections, hz), level, delta=0.4)

    def test_the_sharp_low_pass_keeps_what_the_rate_carries_and_nothing_above(self):
        taps = filters.sharp_low_pass(511, 2450, RATE, 8.0)
        hz = np.fft.rfftfreq(1 << 14, 1 / RATE)
        level = db(np.fft.rfft(taps, 1 << 14))
        self.assertLess(np.max(np.abs(level[hz < 2300])), 0.1)
        self.assertLess(np.max(level[hz > 2600]), -75)

    def test_convolution_gives_the_sum_of_all_answers(self):
        first, second = np.sin(np.arange(37)), np.cos(np.arange(11))
        gap = filters.convolve(first, second) - np.convolve(first, second)
        self.assertLess(np.max(np.abs(gap)), 1e-12)


class Mix(SoundTest):
    def test_a_new_sound_on_a_channel_cuts_the_old_one(self):
        sounds = {"long": np.full(RATE, 0.5), "short": np.full(RATE // 10, 0.25)}
        events = [mix_scene.Event(0, 1, "long"), mix_scene.Event(0.2, 2, "short"),
                  mix_scene.Event(0.5, 1, "short")]
        report = mix_scene.mix(events, sounds)
        for moment, level in ((0.1, 0.5), (0.25, 0.75), (0.4, 0.5), (0.55, 0.25), (0.65, 0.0)):
            self.assertEqual(report.exact[int(moment * RATE)], level)
        self.assertEqual([(cut.channel, cut.old, cut.new) for cut in report.cuts],
                         [(1, "long", "short")])

    def test_with_a_mixer_buffer_a_sound_waits_for_the_next_buffer(self):
        sounds = {"short": np.full(100, 0.25)}
        report = mix_scene.mix([mix_scene.Event(513 / RATE, 1, "short")], sounds, 512)
        self.assertEqual(list(report.exact[[1023, 1024, 1123]]), [0, 0.25, 0.25])

    def test_a_scene_with_a_mistake_is_refused_with_its_line(self):
        for line in ("x 1 a.wav", "10 1", "-1 1 a.wav", "1 1 a.wav b.wav", "0 1 a.wav"):
            with self.subTest(line=line):
                with self.assertRaisesRegex(mix_scene.SceneError, "line 3"):
                    mix_scene.parse_scene("# remark\n5 1 a.wav\n" + line)

    def test_a_sum_beyond_full_scale_is_held_and_counted(self):
        sounds = {"loud": np.full(10, 0.75)}
        events = [mix_scene.Event(0, channel, "loud") for channel in (1, 2)]
        report = mix_scene.mix(events, sounds)
        self.assertEqual(mix_scene.clipped_samples(report), 10)
        self.assertLess(np.max(report.mix), 1.0)

    def test_a_cut_clicks_unless_the_new_sound_covers_it(self):
        hum = 0.5 * np.cos(2 * np.pi * 150 * np.arange(RATE // 5) / RATE)
        hiss = 0.5 * np.random.default_rng(1).standard_normal(RATE // 10)
        sounds = {"hum": hum, "hiss": hiss, "soft hiss": 0.02 * hiss}
        for new, clicks in (("hum", True), ("soft hiss", True), ("hiss", False)):
            events = [mix_scene.Event(0, 1, "hum"), mix_scene.Event(0.1, 1, new)]
            cuts = mix_scene.mix(events, sounds).cuts
            self.assertEqual([mix_scene.is_click(cut) for cut in cuts], [clicks])

    def test_a_sound_that_has_faded_is_cut_without_a_click(self):
        tone = 0.5 * np.sin(0.3 * np.arange(RATE // 5))
        sounds = {"fading": tone * mix_scene.rise(0.2)[:len(tone)][::-1], "tone": tone}
        for moment, clicks in ((0.05, True), (0.1995, False)):
            events = [mix_scene.Event(0, 1, "fading"), mix_scene.Event(moment, 1, "tone")]
            cuts = mix_scene.mix(events, sounds).cuts
            self.assertEqual([mix_scene.is_click(cut) for cut in cuts], [clicks])

    def test_hits_and_blasts_cut_each_other_without_a_click(self):
        for old, new in (*itertools.product(HITS, HITS), ("explode", "explode"),
                         ("explode", "explode2")):
            with self.subTest(old=old, new=new):
                ends = range(int(CUT_FROM_S * RATE), len(self.sounds[old]), 61)
                unheard = [mix_scene.uncovered_db(self.sounds[old][:end], self.sounds[new])
                           <= -mix_scene.MASKING_MARGIN_DB for end in ends]
                self.assertGreater(np.mean(unheard), UNHEARD_CUTS)

    def test_a_busy_scene_sums_without_a_clipped_sample(self):
        for shift in BUSY_SHIFTS_MS:
            with self.subTest(shift=shift):
                report = mix_scene.mix(busy_scene(shift), self.sounds)
                self.assertEqual(mix_scene.clipped_samples(report), 0)

    def test_a_busy_scene_is_loud_and_not_timid(self):
        report = mix_scene.mix(busy_scene(0), self.sounds)
        self.assertGreater(np.max(np.abs(report.exact)), 0.75)

    def test_a_blast_and_the_hit_that_caused_it_do_not_clip(self):
        for blast, hit in itertools.product(BLASTS, ("miniExplode1", "miniExplode2")):
            with self.subTest(blast=blast, hit=hit):
                events = [mix_scene.Event(0, 3, blast), mix_scene.Event(0, 4, hit)]
                self.assertEqual(mix_scene.clipped_samples(mix_scene.mix(events, self.sounds)), 0)

    def test_a_minute_of_play_neither_clips_nor_clicks(self):
        path = os.path.join(HERE, "..", "..", "art", "sounds", "scene60.txt")
        with open(path, encoding="utf-8") as handle:
            events = mix_scene.parse_scene(handle.read())
        sounds = mix_scene.load_sounds(events, os.path.join(DATA_DIR, "sounds"))
        report = mix_scene.mix(events, sounds)
        self.assertEqual(mix_scene.clipped_samples(report), 0)
        self.assertEqual([cut for cut in report.cuts if mix_scene.is_click(cut)], [])
        self.assertGreater(len(events), 200)


if __name__ == "__main__":
    if len(sys.argv) > 1 and os.path.isdir(sys.argv[1]):
        DATA_DIR = sys.argv.pop(1)
    unittest.main()
