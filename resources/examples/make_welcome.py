#!/usr/bin/env python3
"""Makes the Welcome project beside this file: its takes, played by our own instruments, and the project's text.

    make_welcome.py               writes the project, its audio folder and ../sounds/hihat.wav
    make_welcome.py --mix OUT.wav  the same, and mixes it to OUT for a listener

Needs numpy and ffmpeg; the program itself needs neither, as the files that this makes are kept in the repository. The
tune stands in welcome/tune.py, who plays it in welcome/players.py, and who comes when in `arrangement` below. Every
random number has a fixed seed: the same versions of numpy and ffmpeg give the same files.
"""

import argparse
import os

import numpy as np

from welcome import files, instruments, mix, players, tune
from welcome.project_text import UNSET, Channel, Clip, project_text
from welcome.synth import RATE, frames

HERE = os.path.dirname(os.path.abspath(__file__))
NAME = "Welcome (Bar style)"
FOLDER = os.path.join(HERE, NAME + " - Audio files")

BAR = tune.BAR_MS
BEAT = tune.BEAT_MS
CROSSFADE = 60  # ms
JOIN = 200  # ms after the bar line at which loops are joined
RUN = 4922  # ms of the ending before the vibraphone comes in
BREATH = 500  # ms that a sung take begins before its first note's bar


def record():
    """Plays and writes every take."""
    loop = 4 * BAR / 1000
    chorus = tune.BARS_IN_CHORUS
    write = lambda name, *args, **kw: files.write(os.path.join(FOLDER, name), *args, **kw)
    write("Drums brushes.ogg", players.looped(players.brushes(4, 11), loop, 0.3), -6, extra=["-q:a", "4"])
    write("Drums ride.ogg", players.looped(players.ride_swing(4, 12), loop, 0.3), -4, extra=["-q:a", "4"])
    write("Drums fill.wav", [0.5 * sum(players.drum_fill(13))[:frames(BAR / 1000 + 0.3)]], -5)
    write("Drums ending.ogg", players.drums_ending(14), -4, extra=["-q:a", "4"])
    write("Bass turnaround.mp3", [players.bass(tune.BASS_TURNAROUND, 21)[0]], -4, extra=["-b:a", "64k"])
    write("Bass chorus.mp3", [players.bass(tune.BASS_CHORUS, 22)[0]], -4, extra=["-b:a", "64k"])
    write("Bass ending.mp3", [players.bass(tune.BASS_ENDING, 23, [(8, 1.2, 41), (12, 4.6, 29)])[0]], -4,
          extra=["-b:a", "64k"])
    write("Keys take 1.mp3", players.keys(tune.CHORUS_CHORDS, chorus, 31), -4, rate=48000, extra=["-b:a", "96k"])
    write("Keys take 2.ogg", players.keys(tune.CHORUS_CHORDS, chorus, 32), -4, rate=48000, extra=["-q:a", "3"])
    write("Keys ending.ogg", players.keys(tune.ENDING_CHORDS, 4, 33, 2.6, tune.ENDING_HITS), -4, rate=48000,
          extra=["-q:a", "3"])
    write("Lead hum.flac", players.lead(tune.HUM, 41, 0, 2), -9, rate=32000)
    write("Lead first line.flac", players.lead(tune.FIRST_LINE, 42, 1, 4), -4, rate=32000)
    write("Lead second line.flac", players.lead(shifted(tune.SECOND_LINE, 12), 43, 0, 4), -4, rate=32000)
    write("Lead third line.flac", players.lead(shifted(tune.THIRD_LINE, 28), 44, 0, 4), -4, rate=32000)
    write("Lead last line.flac", players.lead(tune.LAST_LINE, 45, 0, 3), -4, rate=32000)
    write("Backing chorus.ogg", players.choir(backing_lines(), 51, chorus), -6, extra=["-q:a", "1"])
    write("Backing last chord.ogg", players.choir([shifted(v, 12) for v in tune.LAST_CHORD], 52, 2), -6,
          extra=["-q:a", "2"])
    write("Vibes solo.wma", players.vibes(tune.SOLO_LINE, 61, chorus * BAR / 1000 + 1.0), -4,
          extra=["-b:a", "96k", "-packet_size", "4622"])
    write("Vibes ending.ogg", [side[frames(RUN / 1000):] for side in players.vibes_ending(62)], -6,
          extra=["-q:a", "3"])
    write("Finger snaps.wav", [0.5 * sum(players.snaps(71))], -5, rate=22050)
    rng = np.random.default_rng(81)
    files.write(os.path.join(HERE, "..", "sounds", "hihat.wav"), [instruments.hihat(1.0, rng, 0.016)], -2)


def shifted(notes, beats):
    return [(note[0] - beats, *note[1:]) for note in notes]


def backing_lines():
    """One line of notes for each of the three singers."""
    return [[(beat, length, voices[i], "ooh") for beat, length, *voices in tune.BACKING] for i in range(3)]


def looping(file, bar, bars, joined=False):
    """Clips of a four-bar loop from `bar` on for `bars` bars. Each fades into the next a little after the bar line,
    between two strokes, and the last one out before it. `joined` goes on from a clip of the loop that ends so."""
    clips = []
    title = file.rsplit(".", 1)[0]
    for done in range(0, bars, 4):
        count = min(4, bars - done)
        begin = JOIN if done or joined else 0
        end = count * BAR + (JOIN + CROSSFADE if done + count < bars else 0)
        fade = UNSET if begin == 0 else CROSSFADE
        clips.append(Clip((bar + done) * BAR + begin, file, begin, end, fade, end - begin - CROSSFADE, title=title))
    return clips


def arrangement():
    """Channels with their clips."""
    chorus = tune.BARS_IN_CHORUS * BAR
    intro, verse, solo, ending = (bar * BAR for bar in (tune.INTRO, tune.VERSE, tune.SOLO, tune.ENDING))
    drums = [Clip(0, "Drums brushes.ogg", 3 * BAR, 4 * BAR + JOIN + CROSSFADE, 1500, BAR + JOIN, title="Count-in")]
    drums += looping("Drums brushes.ogg", tune.INTRO, tune.SOLO - tune.INTRO - 1, joined=True)
    drums += [Clip(solo - BAR, "Drums fill.wav", 0, BAR + 300, fade_out=BAR + 100, title="Fill")]
    drums += looping("Drums ride.ogg", tune.SOLO, tune.ENDING - tune.SOLO - 1)
    drums += [Clip(ending - BAR, "Drums fill.wav", 0, BAR + 300, fade_out=BAR + 100, gain=1.15, title="Fill")]
    drums += [Clip(ending, "Drums ending.ogg", 0, 4 * BAR + 2500, fade_out=4 * BAR + 500, title="Ending")]

    bass = [Clip(intro, "Bass turnaround.mp3", 0, 2 * BAR + 200, fade_out=2 * BAR + 50),
            Clip(intro + 2 * BAR, "Bass turnaround.mp3", 0, 2 * BAR + 200, fade_out=2 * BAR + 50),
            Clip(verse, "Bass chorus.mp3", 0, chorus + 200, fade_out=chorus + 50, gain=0.9),
            Clip(solo, "Bass chorus.mp3", 0, chorus + 200, fade_out=chorus + 50),
            Clip(ending, "Bass ending.mp3", 0, 4 * BAR + 700, fade_out=4 * BAR)]

    keys = [Clip(intro, "Keys take 2.ogg", 10 * BAR, 12 * BAR + 400, 2500, 2 * BAR, title="Intro"),
            Clip(intro + 2 * BAR, "Keys take 1.mp3", 10 * BAR, 12 * BAR + 300, 120, 2 * BAR, title="Intro"),
            Clip(verse, "Keys take 1.mp3", 0, chorus + 300, fade_out=chorus, gain=0.85, title="Verse"),
            Clip(solo, "Keys take 2.ogg", 0, 8 * BAR + 250, fade_out=8 * BAR - 50, title="Solo"),
            Clip(solo + 8 * BAR - 50, "Keys take 1.mp3", 8 * BAR - 50, chorus + 300, 300, 4 * BAR + 50,
                 title="Solo (take 1)"),
            Clip(ending, "Keys ending.ogg", 0, 4 * BAR + 2500, fade_out=4 * BAR + 600, title="Ending")]

    lead = [Clip(intro + 2 * BAR, "Lead hum.flac", 0, 2 * BAR, 80, 2 * BAR - 450, gain=0.8, title="Hum"),
            Clip(verse - BREATH, "Lead first line.flac", BAR - BREATH, 4 * BAR, 30, 3 * BAR - 200,
                 title="First line"),
            Clip(verse + 3 * BAR + 900, "Lead second line.flac", 900, 4 * BAR + 100, 40, 4 * BAR - 1300,
                 title="Second line"),
            Clip(verse + 7 * BAR + 300, "Lead third line.flac", 300, 4 * BAR + 300, 40, 4 * BAR - 800, gain=1.05,
                 title="Third line"),
            Clip(ending, "Lead last line.flac", 0, 3 * BAR - 300, fade_out=3 * BAR - 1000, title="Last line")]

    backing = [Clip(solo - 100, "Backing chorus.ogg", 0, chorus + 300, 1200, chorus - 700, title="Ooh"),
               Clip(ending + 3 * BAR - 30, "Backing last chord.ogg", 0, 2 * BAR + 500, fade_out=BAR, gain=1.1,
                    title="Last chord")]

    vibes = [Clip(verse + 2 * BAR + 1170, "Vibes solo.wma", 2 * BAR + 1170, 4 * BAR - 30, 40, 1900, gain=0.55,
                  title="Answer"),
             Clip(verse + 11 * BAR - 40, "Vibes solo.wma", 11 * BAR - 40, 12 * BAR + 200, 30, BAR - 60, gain=0.7,
                  title="Answer"),
             Clip(solo, "Vibes solo.wma", 0, chorus + 900, fade_out=chorus + 200, title="Solo"),
             Clip(ending + RUN, "Vibes ending.ogg", 0, 4700, fade_out=3300, title="Run")]

    fingers = [Clip(bar * BAR, "Finger snaps.wav", 0, BAR, gain=gain)
               for bar, gain in [(0, 0.8)] + [(bar, 1.0) for bar in range(tune.INTRO, tune.VERSE + 4)] +
               [(bar, 0.7) for bar in range(tune.VERSE + 8, tune.VERSE + 11)] + [(tune.ENDING, 1.0),
                                                                              (tune.ENDING + 1, 1.0)]]

    spare = [Clip(solo, "Lead first line.flac", 0, 4 * BAR, title="First line, spare take")]
    return [
        Channel("Drums", False, drums, volume=78),
        Channel("Bass", False, bass, volume=64, pan=-5),
        Channel("Keys", True, keys, volume=62, pan=-22),
        Channel("Lead voice", True, lead, volume=44, gain=1.0, pan=4),
        Channel("Backing voices", True, backing, volume=48, pan=14, gain=-2.0),
        Channel("Vibes", True, vibes, volume=58, pan=24, gain=0.5),
        Channel("Finger snaps", True, fingers, volume=46, pan=-35),
        Channel("Spare take", True, spare, volume=70, mute=True),
    ]


def marks():
    return [(0, "Start"), (tune.INTRO * BAR, "Intro"), (tune.VERSE * BAR, "Verse"), (tune.SOLO * BAR, "Solo"),
            (tune.ENDING * BAR, "Ending")]


def main():
    parser = argparse.ArgumentParser(description="Makes the Welcome project.")
    parser.add_argument("--mix", metavar="OUT", help="mix it to this WAV file too")
    parser.add_argument("--keep-takes", action="store_true", help="only write the project's text")
    options = parser.parse_args()
    os.makedirs(FOLDER, exist_ok=True)
    os.makedirs(os.path.join(HERE, "..", "sounds"), exist_ok=True)
    if not options.keep_takes:
        record()
    channels = arrangement()
    with open(os.path.join(HERE, NAME + ".audioproj"), "wb") as file:
        file.write(project_text(channels, marks(), BEAT).encode())
    total, parts = mix.mix(channels, FOLDER)
    bounds = [at / 1000 for at, _ in marks()] + [total.shape[1] / RATE]
    mix.report(total, parts, [(title, bounds[i], bounds[i + 1]) for i, (_, title) in enumerate(marks())])
    if options.mix:
        files.write_wav(options.mix, np.clip(np.round(total.T * 32767), -32768, 32767))


if __name__ == "__main__":
    main()
