"""Building blocks of the instruments: time, envelopes, filters, rooms.

Sounds are numpy arrays of 64-bit floats, one per side, full scale 1. Times are seconds unless a name says otherwise.
"""

import numpy as np

RATE = 44100


def frames(seconds):
    return int(round(seconds * RATE))


def times(seconds):
    return np.arange(frames(seconds)) / RATE


def pitch(midi):
    """Frequency in Hz of a MIDI note; 69 is 440 Hz."""
    return 440.0 * 2.0 ** ((np.asarray(midi, dtype=float) - 69.0) / 12.0)


def edges(count, attack, release):
    """An envelope of 1 with raised-cosine ends."""
    envelope = np.ones(count)
    a, r = min(frames(attack), count), min(frames(release), count)
    envelope[:a] *= 0.5 - 0.5 * np.cos(np.pi * np.arange(a) / max(a, 1))
    envelope[count - r:] *= 0.5 + 0.5 * np.cos(np.pi * np.arange(r) / max(r, 1))
    return envelope


def band(sound, low, high, slope=2.0):
    """Keeps low..high Hz, falling off with the given order on both sides; no phase shift."""
    size = 1 << int(np.ceil(np.log2(len(sound) + RATE // 20)))
    f = np.fft.rfftfreq(size, 1 / RATE)
    gain = 1 / (1 + (f / high) ** (2 * slope))
    if low > 0:
        gain *= 1 - 1 / (1 + (f / low) ** (2 * slope))
    return np.fft.irfft(np.fft.rfft(sound, size) * gain, size)[:len(sound)]


def convolve(sound, response):
    size = 1 << int(np.ceil(np.log2(len(sound) + len(response))))
    wet = np.fft.irfft(np.fft.rfft(sound, size) * np.fft.rfft(response, size), size)
    return wet[:len(sound) + len(response) - 1]


def room(sides, seconds=0.55, share=0.14, seed=1):
    """A small bar around a sound: a few reflections off the walls and a soft tail. Returns both sides, longer by
    `seconds`."""
    rng = np.random.default_rng(seed)
    t = times(seconds)
    result = []
    for side, sound in enumerate(sides):
        response = band(rng.standard_normal(len(t)) * np.exp(-6.9 * t / seconds), 180, 4200)
        response *= np.minimum(1, t / 0.012) / np.sqrt(np.sum(response ** 2))
        for delay, level in ((0.0071, 0.35), (0.0113, -0.28), (0.0179, 0.22), (0.0233, 0.16)):
            response[frames(delay * (1.0 + 0.13 * side))] += level
        wet = convolve(sound, response)
        dry = np.pad(sound, (0, len(wet) - len(sound)))
        result.append(dry + share * wet)
    return result


def mixed(events, seconds):
    """Adds (start, sides) to silence of the given length, both sides; what reaches beyond the ends is cut."""
    total = np.zeros((2, frames(seconds)))
    for start, sides in events:
        at = frames(start)
        for side in range(2):
            sound = sides[side]
            skip = max(0, -at)
            count = min(len(sound) - skip, total.shape[1] - at - skip)
            if count > 0:
                total[side, at + skip:at + skip + count] += sound[skip:skip + count]
    return total


def panned(sound, position):
    """Both sides of a mono sound; -1 is left, 1 is right, at equal power."""
    angle = (position + 1) * np.pi / 4
    return [sound * np.cos(angle) * np.sqrt(2), sound * np.sin(angle) * np.sqrt(2)]
