"""An independent model of the mix: what `velmora-render` must write, to the sample outside fades.

It knows only the rules: the frame of a time, the cut of gains, where each stage rounds to 16 bits. It shares no code
with the program: compressed files are decoded by the `ffmpeg` command, rates converted by Fourier transform.
"""

import math
import os

import numpy as np

from velmora_project import decode, probe, read_wav

FADE_STEP = 10  # ms


class Mixer:
    """Mixes projects whose audio lies in `folder`, at `rate`."""

    def __init__(self, folder, rate=44100):
        self.folder = folder
        self.rate = rate
        self._files = {}

    def mix(self, project):
        """The stereo mix, and how far each sample of it may be off because a fade may be late by a step of 10 ms."""
        shape = (self.frame(project.length), 2)
        total, total_slack = np.zeros(shape), np.zeros(shape)
        soloed = any(channel.solo for channel in project.channels)
        for channel in project.channels:
            if channel.mute or soloed != channel.solo:
                continue
            signal, slack = np.zeros(shape), np.zeros(shape)
            for clip in channel.clips:
                self._add_clip(clip, signal, slack)
            signal = _gain_stage(_removal_stage(to_16_bits(signal), channel), channel)
            pan = channel.pan / 100
            factors = channel.volume / 100 * np.array([1 - max(pan, 0), 1 + min(pan, 0)])
            total += signal * factors
            total_slack += slack * factors * (2 ** (channel.gain / 6)) * (2 if channel.voice_removal else 1)
        return to_16_bits(total), total_slack

    def frame(self, time):
        return time * self.rate // 1000

    def _add_clip(self, clip, signal, slack):
        first, end = self.frame(clip.time), self.frame(clip.time + clip.length)
        source = self.file(clip.file)
        offset = math.ceil((clip.start - clip.time) * self.rate / 1000)
        samples = np.zeros((end - first, 2))
        have = source[max(0, first + offset) : max(0, end + offset)]
        samples[: len(have)] = have
        if clip.gain != 1:
            samples = to_16_bits(samples * (math.floor(clip.gain * 10000) / 10000))
        place = np.arange(first, end) * 1000 / self.rate - clip.time
        volume = np.ones(end - first)
        loose = np.zeros(end - first)
        if clip.fade_in > 0:
            volume = np.minimum(volume, place / clip.fade_in)
            # The last step falls up to 10 ms after the end of the fade, and acts over 10 ms more.
            loose[place < clip.fade_in + 2 * FADE_STEP] += FADE_STEP / clip.fade_in
        if clip.fade_out > 0:
            span = clip.length - clip.fade_out
            volume = np.minimum(volume, 1 - (place - clip.fade_out) / span)
            loose[place > clip.fade_out - FADE_STEP] += FADE_STEP / span
        signal[first:end] += samples * np.clip(volume, 0, 1)[:, None]
        slack[first:end] += np.abs(samples) * loose[:, None]

    def file(self, name):
        """A file of the audio folder as stereo at the mixer's rate, in 16-bit values."""
        if name not in self._files:
            path = os.path.join(self.folder, name)
            samples = read_wav(path)[0] if name.endswith(".wav") else decode(path)
            if samples.shape[1] == 1:
                samples = np.repeat(samples, 2, axis=1)
            self._files[name] = to_16_bits(resample(samples, int(probe(path, "sample_rate")), self.rate))
        return self._files[name]


def to_16_bits(values):
    """Rounds to the nearest, halves to the even one, and limits."""
    return np.clip(np.rint(values), -32768, 32767)


def resample(samples, rate, new_rate):
    """ceil(length x new rate / rate) frames, each side by itself as the sum of the sines that it consists of."""
    if rate == new_rate:
        return samples
    period = rate // math.gcd(rate, new_rate)
    # Silence around, in whole periods: the transform takes the end to be followed by the start.
    before = period * 8
    after = before + -len(samples) % period
    padded = np.concatenate([np.zeros((before, samples.shape[1])), samples, np.zeros((after, samples.shape[1]))])
    spectrum = np.fft.rfft(padded, axis=0)
    length = len(padded) * new_rate // rate
    wanted = np.zeros((length // 2 + 1, samples.shape[1]), complex)
    shared = min(len(spectrum), len(wanted))
    wanted[:shared] = spectrum[:shared]
    result = np.fft.irfft(wanted, length, axis=0) * (new_rate / rate)
    start = before * new_rate // rate
    return result[start : start + -(-len(samples) * new_rate // rate)]


def _removal_stage(signal, channel):
    if channel.voice_removal == 0:
        return signal
    amount = math.floor(channel.voice_removal / 100 * 10000) / 10000
    difference = signal[:, :1] - signal[:, 1:]
    return to_16_bits(signal * (1 - amount) + difference * amount)


def _gain_stage(signal, channel):
    factor = 2 ** (channel.gain / 6)
    if abs(factor - 1) <= 0.0001:
        return signal
    return to_16_bits(signal * (math.floor(factor * 10000) / 10000))


def lag(reference, other, reach=4000):
    """Frames by which `other` comes after `reference`, by the peak of their cross-correlation."""
    a, b = (np.asarray(x, float).mean(axis=1) for x in (reference, other))
    size = 1 << (len(a) + len(b)).bit_length()
    product = np.fft.irfft(np.conj(np.fft.rfft(a, size)) * np.fft.rfft(b, size), size)
    near = np.concatenate([product[-reach:], product[:reach]])
    return int(np.argmax(near)) - reach
