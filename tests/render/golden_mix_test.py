"""Mixes of whole projects against the independent model, sample by sample."""

import random
import unittest

import numpy as np

from golden_mix import Mixer, lag, resample, to_16_bits
from rendering import RenderTest
from velmora_project import Channel, Clip, Effect, Project, decode, read_wav, synthesize


class MixTest(RenderTest):
    AUDIO = [("stereo.wav", 6, 44100, 2), ("mono.wav", 6, 44100, 1), ("loud.flac", 5, 44100, 2, 0.97),
             ("high.wav", 6, 48000, 2), ("low.flac", 6, 22050, 1)]

    def check(self, project, tolerance=2):
        mix = self.mix(project)
        expected, slack = Mixer(self.shared).mix(project)
        self.assert_close(mix, expected, tolerance + slack)

    def test_stages_between_clip_and_file(self):
        # Each line bends one stage; rounding in the wrong place, or an uncut gain, is off by more than 2 steps.
        self.check(Project([
            Channel([Clip("stereo.wav", 0, 0, 3000), Clip("stereo.wav", 3001, 17, 5003, gain=0.33339)],
                    volume=73, pan=-35),
            Channel([Clip("mono.wav", 137, 1009, 5801, gain=1.99999), Clip("loud.flac", 2500, 333, 4000, gain=0.5)],
                    music=False, gain=-4.7, pan=60),
            Channel([Clip("loud.flac", 701, 0, 4999)], voice_removal=50, volume=41),
            Channel([Clip("stereo.wav", 0, 0, 5000)], mute=True),
        ]))

    def test_gains_are_cut_to_four_digits(self):
        # At full scale the last digit is 3 steps, and nothing else rounds on the way.
        self.check(Project([Channel([Clip("loud.flac", 0, 0, 4000, gain=0.99989)])]), tolerance=1)
        self.check(Project([Channel([Clip("loud.flac", 0, 0, 4000)], gain=-0.00277)]), tolerance=1)

    def test_limits_at_each_stage(self):
        # The first channel's sum is beyond 16 bits before its volume brings it down: it must be limited before.
        self.check(Project([
            Channel([Clip("loud.flac", 0, 0, 4000, gain=6.0), Clip("stereo.wav", 0, 0, 4000, gain=5.0)], volume=30),
            Channel([Clip("mono.wav", 0, 0, 4000)], gain=18.0),
        ]))

    def test_fades(self):
        self.check(Project([
            Channel([Clip("stereo.wav", 5, 100, 3105, fade_in=600), Clip("mono.wav", 3200, 0, 2003, fade_out=1500),
                     Clip("loud.flac", 3000, 0, 2500, fade_in=1000, fade_out=1001)]),
        ]))

    def test_solo_silences_the_others(self):
        self.check(Project([
            Channel([Clip("stereo.wav", 0, 0, 2000)]), Channel([Clip("mono.wav", 0, 0, 2000)], solo=True),
            Channel([Clip("loud.flac", 0, 0, 1000)], solo=True, mute=True),
        ]))

    def test_clip_beyond_its_file(self):
        self.check(Project([Channel([Clip("stereo.wav", 10, 5500, 9000), Clip("mono.wav", 1000, 7000, 9000)])]))

    def test_other_rates(self):
        project = Project([Channel([Clip("high.wav", 0, 0, 6000)]),
                           Channel([Clip("low.flac", 1003, 501, 5800, gain=0.7)])])
        mix = self.mix(project)
        expected, _ = Mixer(self.shared).mix(project)
        # A file's first and last moments are taken for a jump from and to silence, which each resampler rounds its
        # own way.
        inner = slice(200, len(expected) - 12000)
        self.assert_close(mix[inner], expected[inner], 4)
        self.assertEqual(lag(expected, mix), 0)


class FormatTest(RenderTest):
    AUDIO = [("a.mp3", 5, 44100, 2), ("a.ogg", 5, 44100, 2), ("a.opus", 5, 48000, 2), ("a.m4a", 5, 44100, 2),
             ("a.flac", 5, 44100, 2), ("b.mp3", 5, 48000, 1)]

    def test_compressed_files_lie_where_their_source_did(self):
        for seed, (name, seconds, rate, channels) in enumerate(self.AUDIO):
            with self.subTest(name):
                source = synthesize(seed, seconds, rate, channels)
                mix = self.mix(Project([Channel([Clip(name, 100, 0, 5000)])]))
                self.assertEqual(lag(resample(source, rate, 44100), mix[4410:]), 0)

    def test_compressed_files_sound_as_decoded_by_another(self):
        for name, *_ in self.AUDIO:
            with self.subTest(name):
                project = Project([Channel([Clip(name, 0, 0, 2000), Clip(name, 2107, 2345, 4900)])])
                mix = self.mix(project)
                expected, _ = Mixer(self.shared).mix(project)
                self.assert_close(mix[4000:], expected[4000:], 4)


class SplitTest(RenderTest):
    """A clip split anywhere sounds as before."""

    AUDIO = [(f"{rate}.{form}", 4, rate, 2)
             for rate in (44100, 48000) for form in ("wav", "flac", "mp3", "ogg", "wma")]

    def test_any_split_is_inaudible(self):
        chance = random.Random(4)
        whole, split, regions = [], [], []
        time = 0
        for name, _, rate, _ in self.AUDIO:
            clip = Clip(name, time + chance.randint(1, 99), chance.randint(0, 300), 3900, gain=0.8)
            pieces = [clip]
            for at in sorted(chance.sample(range(1, clip.length), 12)):
                last = pieces.pop()
                pieces += last.split(at - (last.time - clip.time))
            whole.append(clip)
            split += pieces
            regions.append((name, clip.time * 44100 // 1000, (clip.time + clip.length) * 44100 // 1000,
                            0 if rate == 44100 else 1))
            time += 4000
        before = self.mix(Project([Channel(whole)]))
        chance.shuffle(split)
        after = self.mix(Project([Channel(split)]))
        for name, first, end, tolerance in regions:
            with self.subTest(name):
                self.assertGreater(np.abs(before[first:end].astype(int)).max(), 1000)
                self.assert_close(after[first:end], before[first:end], tolerance)


class EffectsTest(RenderTest):
    AUDIO = [("stereo.wav", 3, 44100, 2)]
    KINDS = {
        "Chorus": {"fFrecuency": 2, "fDelay": 12}, "Compressor": {"fThreshold": -30},
        "Distortion": {"fGain": -12}, "Echo": {}, "Flanger": {"fFrecuency": 1, "fDelay": 2},
        "Graphic EQ": {f"freq{i}": 4 - 2 * i for i in range(1, 8)}, "Parametric EQ": {}, "Reverb": {},
    }

    def channel(self, *effects, **settings):
        return Channel([Clip("stereo.wav", 150, 0, 1500), Clip("stereo.wav", 2600, 700, 2700)], effects=list(effects),
                       **settings)

    def test_each_effect_is_heard_and_none_that_is_disabled(self):
        dry = self.mix(Project([self.channel()])).astype(int)
        for kind, values in self.KINDS.items():
            with self.subTest(kind):
                heard = self.mix(Project([self.channel(Effect(kind, values))])).astype(int)
                self.assertEqual(heard.shape, dry.shape)
                self.assertGreater(np.sqrt(np.mean((heard - dry) ** 2)), 100)
                self.assertLess(np.abs(heard).max(), 32767)
        off = [Effect(kind, values, enabled=False) for kind, values in self.KINDS.items()]
        self.assert_close(self.mix(Project([self.channel(*off)])), dry, 0)

    def test_same_bytes_with_all_effects_and_any_number_of_threads(self):
        every = [Effect(kind, values) for kind, values in self.KINDS.items()]
        project = Project([self.channel(*every[i:], *every[:i], volume=30, pan=10 * i) for i in range(0, 8, 2)])
        results = set()
        for threads in (1, 2, 4):
            with open(self.render(project, "--threads", threads), "rb") as file:
                results.add(file.read())
        self.assertEqual(len(results), 1)

    def test_echo_repeats_at_its_sample(self):
        dry = self.mix(Project([self.channel()])).astype(float)
        echo = Effect("Echo", {"fWetDryMix": 100, "fLeftDelay": 100, "fRightDelay": 1000})
        mix = self.mix(Project([self.channel(echo)]))
        for side, delay in ((0, 4410), (1, 44100)):
            self.assert_close(mix[delay:, [side]], dry[:-delay, [side]], 1)
            self.assertEqual(np.abs(mix[:delay, side]).max(), 0)

    def test_effects_run_by_priority(self):
        # What makes loud before all is made even is not heard; behind it, it is.
        loud = Effect("Parametric EQ", {"fCenter": 1000, "fBandwidth": 36, "fGain": 15})
        crushed = Effect("Compressor", {"fThreshold": -60, "fRatio": 100})
        one, other = (self.mix(Project([self.channel(*order)])).astype(int)
                      for order in ((loud, crushed), (crushed, loud)))
        self.assertGreater(np.std(other), 2 * np.std(one))


class OutputTest(RenderTest):
    AUDIO = [("stereo.wav", 4, 44100, 2), ("high.mp3", 4, 48000, 1), ("a.wma", 4, 44100, 2)]

    def project(self):
        # All fades: at a hard edge there is sound of all frequencies, and no two resamplers cut it alike.
        return Project([Channel([Clip("stereo.wav", 0, 0, 3500, fade_in=50, fade_out=3400),
                                 Clip("high.mp3", 500, 100, 3600, fade_in=300, fade_out=3300)]),
                        Channel([Clip("a.wma", 250, 0, 3750, fade_in=50, fade_out=3600)], pan=50, volume=60)])

    def test_same_bytes_each_time_and_with_any_number_of_threads(self):
        for out in ("mix.wav", "mix.wma"):
            results = set()
            for threads in (1, 2, 4, 2):
                with open(self.render(self.project(), "--threads", threads, out=out), "rb") as file:
                    results.add(file.read())
            self.assertEqual(len(results), 1, out)

    def test_mono_is_the_mean(self):
        stereo = self.mix(self.project()).astype(int)
        mono = self.mix(self.project(), "--channels", 1)
        self.assert_close(mono, stereo.mean(axis=1, keepdims=True), 1)

    def test_rates(self):
        mix = self.mix(self.project())
        for rate in (8000, 22050, 48000, 96000):
            samples, stated = read_wav(self.render(self.project(), "--rate", rate))
            self.assertEqual(stated, rate)
            expected = to_16_bits(resample(mix, 44100, rate))
            self.assertLessEqual(abs(len(samples) - len(expected)), 1)
            inner = slice(200, min(len(samples), len(expected)) - 200)
            self.assertEqual(lag(expected, samples), 0)
            if rate > 44100:
                self.assert_close(samples[inner], expected[inner], 3)

    def test_wma_lines_up_and_keeps_its_length(self):
        mix = self.mix(self.project())
        for rate, channels in ((44100, 2), (48000, 1), (22050, 2)):
            with self.subTest(rate=rate, channels=channels):
                out = self.render(self.project(), "--rate", rate, "--channels", channels, "--bitrate", 192000,
                                  out="mix.wma")
                expected = resample(mix if channels == 2 else mix.mean(axis=1, keepdims=True), 44100, rate)
                self.assertEqual(lag(expected, decode(out)), 0)
                # Read back as a clip: nothing is missing at its end, and nothing comes after it.
                again = self.mix(Project([Channel([Clip("Z:" + out.replace("/", "\\"), 0, 0, 4500)])]))
                wanted = np.zeros((4500 * 441 // 10, 2))
                source = mix if channels == 2 else np.repeat(mix.mean(axis=1, keepdims=True), 2, axis=1)
                wanted[: len(source)] = source
                self.assertEqual(lag(wanted, again), 0)
                error = np.abs(again - wanted).max(axis=1)
                self.assertEqual(error[len(source) + 50 :].max(), 0)
                tail = slice(len(source) - 3000, len(source) - 100)
                if rate >= 44100:
                    self.assertLess(np.sqrt(np.mean((again[tail] - wanted[tail]) ** 2)),
                                    0.1 * np.sqrt(np.mean(wanted[tail] ** 2)))

    def test_empty_project_gives_a_file_without_audio(self):
        self.assertEqual(len(self.mix(Project([Channel([])]))), 0)


if __name__ == "__main__":
    unittest.main()
