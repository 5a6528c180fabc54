"""The mix of a project as the program makes it, up to rounding and the 10 ms steps of its fades: what the maker
measures and looks at."""

import math
import os

import numpy as np

from . import files, project_text
from .synth import RATE


def _gain_of_fades(clip, count):
    at = np.arange(count) / RATE * 1000
    gain = np.ones(count)
    if clip.fade_in != project_text.UNSET:
        gain *= np.minimum(1, at / clip.fade_in)
    if clip.fade_out != project_text.UNSET:
        length = clip.end - clip.start
        gain *= np.clip(1 - (at - clip.fade_out) / (length - clip.fade_out), 0, 1)
    return gain


def mix(channels, folder):
    """Both sides of the whole mix, and of each channel by its title, at RATE."""
    length = max(clip.at + clip.end - clip.start for channel in channels for clip in channel.clips)
    count = int(length * RATE / 1000) + 1
    takes = {}
    total = np.zeros((2, count))
    parts = {}
    for channel in channels:
        part = np.zeros((2, count))
        for clip in channel.clips:
            if clip.file not in takes:
                takes[clip.file] = files.read(os.path.join(folder, clip.file))
            at = int(clip.at * RATE // 1000)
            end = int((clip.at + clip.end - clip.start) * RATE // 1000)
            first = at + math.ceil((clip.start - clip.at) * RATE / 1000)
            sound = takes[clip.file][:, first:first + end - at]
            part[:, at:at + sound.shape[1]] += sound * clip.gain * _gain_of_fades(clip, sound.shape[1])
        part *= 2 ** (channel.gain / 6) * channel.volume / 100
        part[0] *= 1 - max(channel.pan, 0) / 100
        part[1] *= 1 + min(channel.pan, 0) / 100
        parts[channel.title] = part
        if not channel.mute:
            total += part
    return total, parts


def _db(value):
    return 20 * np.log10(max(value, 1e-9))


def report(total, parts, sections):
    """Levels in dBFS of the whole, of the channels and of the sections, and the balance of the spectrum."""
    print(f"length {total.shape[1] / RATE:.2f} s, peak {_db(np.abs(total).max()):.2f} dBFS, "
          f"RMS {_db(np.sqrt(np.mean(total ** 2))):.2f} dBFS, DC {total.mean(axis=1)}")
    for title, part in parts.items():
        sounding = np.abs(part).max(axis=0) > 1e-4
        rms = np.sqrt(np.mean(part[:, sounding] ** 2)) if sounding.any() else 0
        print(f"  {title:16s} peak {_db(np.abs(part).max()):7.2f}  RMS while sounding {_db(rms):7.2f}")
    for title, begin, end in sections:
        part = total[:, int(begin * RATE):int(end * RATE)]
        print(f"  {title:16s} peak {_db(np.abs(part).max()):7.2f}  RMS {_db(np.sqrt(np.mean(part ** 2))):7.2f}  "
              f"left {_db(np.sqrt(np.mean(part[0] ** 2))):7.2f}  right {_db(np.sqrt(np.mean(part[1] ** 2))):7.2f}")
    power = np.abs(np.fft.rfft(total.mean(axis=0))) ** 2
    f = np.fft.rfftfreq(total.shape[1], 1 / RATE)
    bounds = [20, 60, 120, 250, 500, 1000, 2000, 4000, 8000, 16000]
    print("  octaves, dB of the whole: " + ", ".join(
        f"{low}-{high} {10 * np.log10(power[(f >= low) & (f < high)].sum() / power.sum()):.1f}"
        for low, high in zip(bounds, bounds[1:])))
