"""The band: each function gives one stroke or note as a mono sound, peak about 1 at full velocity."""

import numpy as np

from .synth import RATE, band, edges, frames, pitch, times


def electric_piano(midi, seconds, velocity, rng):
    """Two operators per note: a bell-like attack that mellows into nearly a sine."""
    f = pitch(midi)
    t = times(seconds + 0.25)
    bright = velocity ** 1.5 * 1.9 * np.exp(-t / 0.32) + 0.22
    phase = 2 * np.pi * f * t
    body = np.sin(phase + bright * np.sin(phase + 0.3))
    body += 0.35 * np.sin(phase * 1.0021 + 0.6 * bright * np.sin(phase))
    tine = np.sin(2 * np.pi * min(7 * f, 5200.0) * t) * np.exp(-t / 0.05) * 0.10 * velocity
    decay = np.exp(-t / (1.7 * (220 / f) ** 0.35))
    return (body * decay + tine) * edges(len(t), 0.003, 0.22) * velocity * 0.62


def upright_bass(midi, seconds, velocity, rng):
    """A plucked string: harmonics that die the faster the higher they are, and a little finger noise."""
    f = pitch(midi)
    t = times(seconds + 0.07)
    bend = 1 + 0.007 * np.exp(-t / 0.025)
    phase = 2 * np.pi * f * np.cumsum(bend) / RATE
    sound = np.zeros(len(t))
    for k in range(1, 15):
        level = abs(np.sin(np.pi * k * 0.17)) / k ** (1.25 - 0.35 * velocity)
        stretch = k * np.sqrt(1 + 0.0002 * k * k)
        sound += level * np.sin(stretch * phase) * np.exp(-t * (0.9 + 0.75 * k) / (0.75 * (60 / f) ** 0.3))
    finger = band(rng.standard_normal(len(t)), 250, 1500) * np.exp(-t / 0.012)
    sound = sound + 0.25 * finger
    return sound * edges(len(t), 0.006, 0.07) * velocity * 0.75


def vibraphone(midi, seconds, velocity, rng):
    """Bars with their tuned overtones at 4 and 10 times, behind slowly turning discs."""
    f = pitch(midi)
    t = times(seconds + 0.35)
    sound = np.sin(2 * np.pi * f * t) * np.exp(-t / 1.5)
    sound += 0.28 * velocity * np.sin(2 * np.pi * 4 * f * t) * np.exp(-t / 0.35)
    if 10 * f < 12000:
        sound += 0.10 * velocity * np.sin(2 * np.pi * 10 * f * t) * np.exp(-t / 0.06)
    discs = 1 - 0.28 * (0.5 - 0.5 * np.cos(2 * np.pi * 5.1 * t + rng.uniform(0, 2 * np.pi)))
    return sound * discs * edges(len(t), 0.002, 0.30) * velocity * 0.8


def kick(velocity, rng):
    t = times(0.45)
    f = 47 + 50 * np.exp(-t / 0.028)
    skin = np.sin(2 * np.pi * np.cumsum(f) / RATE) * np.exp(-t / 0.11)
    beater = band(rng.standard_normal(len(t)), 300, 1800) * np.exp(-t / 0.006)
    return (skin + 0.25 * beater) * edges(len(t), 0.001, 0.1) * velocity


def brush_tap(velocity, rng):
    t = times(0.30)
    wires = band(rng.standard_normal(len(t)), 900, 6500) * np.exp(-t / 0.055)
    shell = np.sin(2 * np.pi * 188 * t) * np.exp(-t / 0.05)
    return (0.75 * wires + 0.30 * shell) * edges(len(t), 0.002, 0.1) * velocity


def brush_sweep(seconds, velocity, rng):
    """Half a circle of the brush on the skin."""
    count = frames(seconds)
    shape = np.sin(np.pi * np.linspace(0, 1, count) ** 0.8) ** 1.5
    return band(rng.standard_normal(count), 1400, 5200) * shape * 0.24 * velocity


def _metal(seconds, low, high, count, rng):
    """A cluster of partials that no ear can order, which is what makes a cymbal. The same bounds and count give the
    same cymbal, struck anew."""
    t = times(seconds)
    cast = np.random.default_rng(int(low) * 1000 + count)
    sound = np.zeros(len(t))
    for f in low * (high / low) ** cast.uniform(0, 1, count):
        ring = cast.uniform(0.25, 1.0) * (low / f) ** 0.3
        sound += cast.uniform(0.5, 1) * np.sin(2 * np.pi * f * t + rng.uniform(0, 2 * np.pi)) * np.exp(-t / ring)
    return sound / np.sqrt(count)


def ride(velocity, rng):
    seconds = 1.3
    t = times(seconds)
    wash = _metal(seconds, 2100, 14500, 120, rng) + 0.35 * rng.standard_normal(len(t)) * np.exp(-t / 0.2)
    wash = band(wash, 2400, 10000) * np.exp(-t / 0.38)
    tip = band(rng.standard_normal(len(t)), 3000, 9000) * np.exp(-t / 0.007)
    ping = np.sin(2 * np.pi * 3350 * t) * np.exp(-t / 0.05)
    return (0.45 * wash + 0.8 * tip + 0.18 * ping) * edges(len(t), 0.001, 0.4) * velocity * 0.55


def crash(velocity, rng):
    seconds = 3.2
    t = times(seconds)
    wash = band(rng.standard_normal(len(t)), 1800, 9000) * np.exp(-t / 0.55) * (1 - np.exp(-t / 0.02))
    return (0.55 * wash + 0.5 * _metal(seconds, 1500, 9000, 90, rng) * np.exp(-t / 0.9)) * \
        edges(len(t), 0.002, 1.0) * velocity * 0.5


def hihat(velocity, rng, decay=0.028):
    """The pedal's short chick; with a longer decay, half open."""
    seconds = 8 * decay + 0.05
    t = times(seconds)
    sound = band(rng.standard_normal(len(t)), 5500, 12500, 3) + 0.6 * _metal(seconds, 5000, 12000, 30, rng)
    return sound * np.exp(-t / decay) * edges(len(t), 0.0008, 0.02) * velocity * 0.55


def snap(velocity, rng):
    """Two fingers: a slap a moment after a softer rub."""
    t = times(0.16)
    slap = band(rng.standard_normal(len(t)), 1300, 3600, 3) * np.exp(-np.maximum(t - 0.011, 0) / 0.011)
    slap[:frames(0.011)] *= 0.25
    return slap * edges(len(t), 0.001, 0.03) * velocity * 1.3
