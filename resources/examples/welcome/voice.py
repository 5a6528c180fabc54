"""A singer without words: harmonics of a gliding pitch, weighed by the resonances of a mouth that moves."""

import numpy as np

from .synth import RATE, band, frames, pitch

_STEP = 0.004  # seconds between two positions of the mouth
_HARMONICS = 40

# Resonances in Hz with their widths, and how loud the sound comes out.
_MOUTHS = {
    "a": ((820, 90), (1230, 100), (2750, 140), (3500, 200), (4600, 260), 1.00),
    "o": ((520, 80), (920, 90), (2650, 140), (3450, 200), (4500, 260), 0.90),
    "u": ((370, 70), (850, 90), (2500, 140), (3350, 200), (4400, 260), 0.75),
    "l": ((400, 90), (1350, 160), (2750, 220), (3500, 260), (4600, 300), 0.50),
    "m": ((270, 60), (1050, 280), (2300, 320), (3300, 400), (4400, 500), 0.34),
    "d": ((330, 90), (1700, 160), (2700, 220), (3500, 260), (4600, 300), 0.06),
    "b": ((300, 90), (800, 160), (2400, 220), (3400, 260), (4500, 300), 0.05),
}

# A syllable is an onset, its length in seconds, and the vowels passed through after it.
_SYLLABLES = {
    "la": ("l", 0.075, "a"),
    "lo": ("l", 0.075, "o"),
    "da": ("d", 0.040, "a"),
    "ba": ("b", 0.045, "a"),
    "doo": ("d", 0.040, "u"),
    "dow": ("d", 0.040, "au"),
    "mm": ("m", 0.0, "m"),
    "moh": ("m", 0.11, "o"),
    "ooh": ("u", 0.0, "u"),
    "ooah": ("u", 0.0, "ua"),
    "ah": ("a", 0.0, "a"),
}


def _mouth(name):
    *resonances, loudness = _MOUTHS[name]
    return np.array([value for pair in resonances for value in pair] + [loudness], dtype=float)


def _smooth(track, seconds):
    """Glides between the values of a track (positions along axis 0)."""
    width = max(1, int(round(seconds / _STEP)))
    window = np.hanning(width + 2)[1:-1]
    window /= window.sum()
    padded = np.concatenate([np.repeat(track[:1], width, axis=0), track, np.repeat(track[-1:], width, axis=0)])
    columns = padded.reshape(len(padded), -1)
    smoothed = np.stack([np.convolve(c, window, "same") for c in columns.T], axis=1)
    return smoothed[width:-width].reshape(track.shape)


def sing(notes, seconds, seed, vibrato_cents=26, brightness=1.0):
    """A mono phrase of `seconds`. Notes are (start, length, midi, syllable, velocity) in time order; notes that touch
    are sung on one breath, with a glide."""
    rng = np.random.default_rng(seed)
    steps = int(np.ceil(seconds / _STEP)) + 2
    clock = np.arange(steps) * _STEP
    tone = np.full(steps, float(notes[0][2]))
    mouth = np.tile(_mouth("m"), (steps, 1))
    level = np.zeros(steps)
    shake = np.zeros(steps)
    for i, (start, length, midi, syllable, velocity) in enumerate(notes):
        onset, onset_length, vowels = _SYLLABLES[syllable]
        end = start + length
        fresh = i == 0 or start - (notes[i - 1][0] + notes[i - 1][1]) > 0.05
        held = clock >= start - 0.02
        tone[held] = midi
        if fresh:
            # The first tone of a breath is found from a little below.
            scoop = (clock >= start - 0.02) & (clock < start + 0.05)
            tone[scoop] = midi - 1.1
        mouth[clock >= start - 0.5 * onset_length] = _mouth(onset)
        for k, vowel in enumerate(vowels):
            begin = start + 0.5 * onset_length + k * 0.55 * length
            mouth[clock >= begin] = _mouth(vowel)
        inside = (clock >= start) & (clock < end)
        level[inside] = velocity * (1 - 0.40 * ((clock[inside] - start) / max(length, 0.8)) ** 2)
        shake[inside] = np.clip((clock[inside] - start - 0.22) / 0.35, 0, 1)
    drift = _smooth(rng.standard_normal(steps), 0.25)
    tone = _smooth(tone, 0.085)
    vibrato = np.sin(2 * np.pi * 5.3 * clock + 0.4 * np.cumsum(drift) * _STEP)
    tone += 0.01 * vibrato_cents * _smooth(shake, 0.1) * vibrato
    tone += 0.16 * drift
    mouth = _smooth(mouth, 0.055)
    level = _smooth(level, 0.06) * (1 + 0.10 * drift)

    at = np.arange(frames(seconds)) / RATE
    f0 = np.interp(at, clock, pitch(tone))
    phase = 2 * np.pi * np.cumsum(f0) / RATE
    loudness = _smooth(mouth[:, -1], 0.02)
    base = pitch(tone)
    gains = []
    for k in range(1, _HARMONICS + 1):
        f = base * k
        tilt = k ** -0.80 / np.sqrt(1 + (f / (4200.0 * brightness)) ** 2)
        # What makes a trained voice carry: a cluster of resonances near 3 kHz.
        ring = 1 + 1.6 * brightness / (1 + ((f - 2950) / 500) ** 2)
        gain = tilt * ring * np.where(f < 9000, 1.0, 0.0)
        for r in range(5):
            centre, width = mouth[:, 2 * r], mouth[:, 2 * r + 1]
            gain = gain / np.sqrt((1 - (f / centre) ** 2) ** 2 + (f * width * 1.3 / centre ** 2) ** 2)
        gains.append(gain)
    gains = np.array(gains)
    gains *= loudness * level / np.sqrt(np.sum(gains ** 2, axis=0))
    sound = np.zeros(len(at))
    for k in range(1, _HARMONICS + 1):
        sound += np.interp(at, clock, gains[k - 1]) * np.sin(k * phase)
    breath = band(rng.standard_normal(len(at)), 1800, 6500)
    sound += 0.022 * breath * np.interp(at, clock, level * (0.3 + loudness))
    return sound * 0.55
