"""The projects that the mixers are compared on: 10 channels, 98 clips, 10 minutes; WAV, MP3 and WMA at 44.1 and 48 kHz,
mono and stereo; gains, fades, volumes and pans. Clips of one channel never overlap, which the peers' best form needs.
"""

import dataclasses
import os
import random
import sys

import numpy as np

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "render"))
from velmora_project import Channel, Clip, Effect, Project, UNSET, audio_folder, synthesize, write_audio  # noqa: E402

CLIPS = [10] * 8 + [9] * 2
FILE_SECONDS = 180
MINUTES = 10


def sources():
    """Name, format, rate and channels of the twelve audio files."""
    return [(f"{form} {rate} {'mono' if channels == 1 else 'stereo'}.{form}", rate, channels)
            for form in ("wav", "mp3", "wma") for rate in (44100, 48000) for channels in (1, 2)]


def make(path):
    """Writes the project and its audio unless they are there; returns the project."""
    folder = audio_folder(path)
    names = sources()
    for seed, (name, rate, channels) in enumerate(names):
        file = os.path.join(folder, name)
        if not os.path.exists(file):
            # The ending decides the format, so the name under which it grows keeps it.
            growing = os.path.join(folder, "growing " + name)
            write_audio(growing, synthesize(seed, FILE_SECONDS, rate, channels, peak=0.25), rate)
            os.rename(growing, file)
    project = Project(_channels([name for name, _, _ in names]))
    project.write(path)
    return project


# Gains in dB at the centres of the graphic equalizer.
GAINS = [-4, 2, -3, 3, 2, -2, 4]
COMPRESSOR = {"fGain": 3, "fAttack": 5, "fRelease": 150, "fThreshold": -20, "fRatio": 3}
REVERB = {"finGain": 0, "fReverbMix": -12, "fReverbTime": 1500, "fHighFreqRTRatio": 0.5}
ECHO = {"fWetDryMix": 30, "fFeedback": 40, "fLeftDelay": 350, "fRightDelay": 400}


def with_effects(project, path):
    """The same clips at `path`, a full chain on each voice channel and an echo on the first music channel."""
    chain = [Effect("Graphic EQ", {f"freq{i + 1}": gain for i, gain in enumerate(GAINS)}),
             Effect("Compressor", COMPRESSOR), Effect("Reverb", REVERB)]
    music = next(channel for channel in project.channels if channel.music)
    channels = [dataclasses.replace(channel, effects=[Effect("Echo", ECHO)] if channel is music else
                                    [] if channel.music else chain) for channel in project.channels]
    effects = Project(channels)
    effects.write(path)
    return effects


def long_files(path, minutes):
    """Eight files of `minutes`, each the sound of a short one over and over, in the audio folder of `path`."""
    folder = audio_folder(path)
    chosen = [source for source in sources() if source[2] == 2 or source[1] == 48000][:8]
    for seed, (name, rate, channels) in enumerate(chosen):
        file = os.path.join(folder, name)
        if not os.path.exists(file):
            minute = synthesize(seed, 60, rate, channels, peak=0.1)
            growing = os.path.join(folder, "growing " + name)
            write_audio(growing, np.tile(minute, (minutes, 1)), rate)
            os.rename(growing, file)
    return [name for name, _, _ in chosen]


def _channels(names):
    chance = random.Random(98)
    channels = []
    turn = 0
    for index, count in enumerate(CLIPS):
        slot = MINUTES * 60000 // count
        clips = []
        for row in range(count):
            length = chance.randint(slot - 9000, slot - 1000)
            start = chance.randint(0, FILE_SECONDS * 1000 - length - 1000)
            time = row * slot + chance.randint(0, slot - length - 1)
            faded = row % 2 == 0
            clips.append(Clip(names[turn % len(names)], time, start, start + length,
                              gain=1.0 if row % 3 == 0 else round(chance.uniform(0.4, 1.5), 4),
                              fade_in=chance.randint(200, 4000) if faded else UNSET,
                              fade_out=length - chance.randint(200, 4000) if faded else UNSET))
            turn += 1
        turn += 1  # so that a channel does not repeat the order of the one before
        channels.append(Channel(clips, title=f"Channel {index + 1}", music=index >= 8,
                                volume=chance.randint(40, 100), pan=chance.choice([0, -40, 25, 60, -15])))
    # The timeline ends exactly at 10 minutes.
    last = channels[0].clips[-1]
    last.time = MINUTES * 60000 - last.length
    return channels
