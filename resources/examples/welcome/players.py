"""The players: turn the tune into takes, with the small unevenness of hands. A take is a pair of sides."""

import numpy as np

from . import instruments, tune
from .synth import RATE, frames, mixed, panned, room
from .voice import sing

BAR = tune.BAR_MS / 1000
BEAT = tune.BEAT_MS / 1000


def _human(rng, beat, late=0.0, spread=0.005):
    return tune.seconds(beat) + late + float(np.clip(rng.normal(0, spread), -2 * spread, 2 * spread))


def looped(events, seconds, tail):
    """A loop of `seconds` whose ring is already there at its start, followed by `tail` seconds of its next round, for
    a crossfade."""
    once = mixed(events, seconds + 4.0)
    count = frames(seconds)
    ring = once[:, count:2 * count]
    loop = once[:, :count].copy()
    loop[:, :ring.shape[1]] += ring
    return np.concatenate([loop, loop[:, :frames(tail)]], axis=1)


def brushes(bars, seed):
    """Swing on a snare with brushes; softly, the foot keeps time."""
    rng = np.random.default_rng(seed)
    events = []
    for beat in range(4 * bars):
        strong = beat % 4 in (1, 3)
        events.append((_human(rng, beat), panned(instruments.kick(0.20 + 0.06 * (beat % 4 == 0), rng), 0)))
        events.append((_human(rng, beat) - 0.04,
                       panned(instruments.brush_sweep(0.36, 0.75 + 0.2 * strong, rng), -0.15)))
        if strong:
            events.append((_human(rng, beat), panned(instruments.brush_tap(0.42 + rng.uniform(0, 0.08), rng), 0.05)))
            events.append((_human(rng, beat), panned(instruments.hihat(0.30, rng), 0.3)))
            events.append((_human(rng, beat + 0.5), panned(instruments.brush_tap(0.22, rng), -0.05)))
        elif rng.random() < 0.3:
            events.append((_human(rng, beat + 0.5), panned(instruments.brush_tap(0.16, rng), -0.05)))
    return events


def ride_swing(bars, seed):
    """Ride cymbal, hi-hat on two and four, and a snare that talks a little."""
    rng = np.random.default_rng(seed)
    events = []
    for beat in range(4 * bars):
        strong = beat % 4 in (1, 3)
        events.append((_human(rng, beat), panned(instruments.ride(0.44 + 0.10 * strong, rng), 0.25)))
        events.append((_human(rng, beat), panned(instruments.kick(0.26 + 0.08 * (beat % 4 == 0), rng), 0)))
        if strong:
            events.append((_human(rng, beat + 0.5), panned(instruments.ride(0.30, rng), 0.25)))
            events.append((_human(rng, beat), panned(instruments.hihat(0.42, rng), -0.3)))
        if rng.random() < 0.28:
            events.append((_human(rng, beat + 0.5), panned(instruments.brush_tap(rng.uniform(0.25, 0.45), rng), 0)))
        if beat % 16 == 13:
            events.append((_human(rng, beat + 0.5), panned(instruments.kick(0.45, rng), 0)))
    return events


def drum_fill(seed):
    """One bar that leads into the next section."""
    rng = np.random.default_rng(seed)
    events = [(_human(rng, beat), panned(instruments.hihat(0.40, rng), -0.3)) for beat in (1, 3)]
    for beat, level in ((0, 0.40), (0.5, 0.22), (1, 0.45), (1.5, 0.3), (2, 0.35), (2.33, 0.42), (2.67, 0.50),
                        (3, 0.62), (3.5, 0.72)):
        events.append((_human(rng, beat), panned(instruments.brush_tap(level, rng), rng.uniform(-0.2, 0.2))))
    events += [(_human(rng, beat), panned(instruments.kick(0.35, rng), 0)) for beat in (0, 2, 3.5)]
    return room(mixed(events, BAR + 0.3), 0.4, 0.10, seed)


def drums_ending(seed):
    rng = np.random.default_rng(seed)
    events = ride_swing(2, seed)
    events.append((_human(rng, 8), panned(instruments.kick(0.5, rng), 0)))
    events.append((_human(rng, 8), panned(instruments.brush_tap(0.6, rng), 0)))
    for beat in (9.5, 10.5, 11.5):
        events.append((_human(rng, beat), panned(instruments.hihat(0.28, rng), -0.3)))
    events.append((_human(rng, 12), panned(instruments.kick(0.5, rng), 0)))
    events.append((_human(rng, 12), panned(instruments.crash(0.42, rng), 0.25)))
    return room(mixed(events, 4 * BAR + 2.6), 0.4, 0.10, seed)


def snaps(seed):
    """Fingers on two and four of one bar."""
    rng = np.random.default_rng(seed)
    events = []
    for beat in (1, 3):
        for person in (-0.4, 0.35):
            events.append((_human(rng, beat, spread=0.007),
                           panned(instruments.snap(0.55 + rng.uniform(0, 0.12), rng), person)))
    return room(mixed(events, BAR), 0.35, 0.22, seed)


def bass(line, seed, last=None):
    """One note a beat, with a skipped note here and there; `last` is (beat, length, note) to end on."""
    rng = np.random.default_rng(seed)
    events = []
    for beat, note in enumerate(line):
        velocity = 0.72 + 0.10 * (beat % 4 == 0) + rng.uniform(-0.05, 0.05)
        length = BEAT * rng.uniform(0.86, 0.95)
        events.append((_human(rng, beat, -0.006), panned(instruments.upright_bass(note, length, velocity, rng), 0)))
        if beat % 4 == 3 and rng.random() < 0.45:
            events.append((_human(rng, beat + 0.5, -0.004),
                           panned(instruments.upright_bass(note, 0.12, 0.38, rng), 0)))
    for beat, length, note in last or []:
        events.append((tune.seconds(beat), panned(instruments.upright_bass(note, length * BEAT, 0.78, rng), 0)))
    end = max(start + len(sides[0]) / RATE for start, sides in events)
    return room(mixed(events, end), 0.35, 0.05, seed)


def _chord(events, rng, beat, length, notes, velocity):
    """Struck from below, not quite together, spread from left to right."""
    start = _human(rng, beat, 0.004)
    for i, note in enumerate(notes):
        at = start + 0.005 * i + rng.uniform(0, 0.004)
        strength = velocity * rng.uniform(0.9, 1.08) * (1.08 if i == len(notes) - 1 else 1.0)
        sound = instruments.electric_piano(note, length * BEAT, strength, rng)
        events.append((at, panned(sound, -0.35 + 0.7 * i / max(len(notes) - 1, 1))))


def _piano_sound(sides, seed):
    """The instrument's slow tremolo from side to side, then the room."""
    at = np.arange(len(sides[0])) / RATE
    sway = 0.16 * np.sin(2 * np.pi * 4.6 * at)
    return room([sides[0] * (1 + sway), sides[1] * (1 - sway)], 0.6, 0.12, seed)


def keys(chords, bars, seed, tail=1.2, hits=()):
    """Chords in a drawn rhythm for each bar."""
    rng = np.random.default_rng(seed)
    events = []
    for bar in range(bars):
        inside = [(beat, chord) for b, beat, chord in chords if b == bar]
        if not inside:
            continue
        patterns = tune.COMPING if len(inside) == 1 else tune.COMPING_SPLIT
        for beat, length in patterns[rng.integers(len(patterns))]:
            chord = [c for at, c in inside if at <= beat][-1]
            _chord(events, rng, 4 * bar + beat, length, chord, rng.uniform(0.50, 0.62))
    for beat, length, notes, velocity in hits:
        _chord(events, rng, beat, length, notes, velocity)
    return _piano_sound(mixed(events, bars * BAR + tail), seed)


def vibes(line, seed, seconds):
    rng = np.random.default_rng(seed)
    events = []
    for i, (beat, length, note) in enumerate(line):
        accent = 0.10 if beat % 1 else 0.0  # swing leans on the off beat
        velocity = 0.52 + accent + rng.uniform(-0.06, 0.06)
        sound = instruments.vibraphone(note, length * BEAT * 0.95, velocity, rng)
        events.append((_human(rng, beat, 0.008), panned(sound, (note - 72) / 40)))
        if length >= 1.4:
            # A second mallet under the long notes.
            under = note - (4 if (note - 65) % 12 in (4, 9, 0) else 3)
            second = instruments.vibraphone(under, length * BEAT, 0.3, rng)
            events.append((_human(rng, beat, 0.012), panned(second, (under - 72) / 40)))
    return room(mixed(events, seconds), 0.7, 0.16, seed)


def vibes_ending(seed):
    rng = np.random.default_rng(seed)
    events = []
    for i, note in enumerate(tune.ENDING_RUN):
        stroke = instruments.vibraphone(note, 0.4 * BEAT, 0.28 + 0.02 * i, rng)
        events.append(((11 + i / len(tune.ENDING_RUN)) * BEAT, panned(stroke, (note - 72) / 40)))
    for note in (81, 86):
        events.append((_human(rng, 12), panned(instruments.vibraphone(note, 5 * BEAT, 0.42, rng), 0.1)))
    return room(mixed(events, 4 * BAR + 2.4), 0.7, 0.16, seed)


def lead(notes, seed, before_bars, bars):
    """A sung take of `bars` that begins `before_bars` before beat 0 of its notes. Mono."""
    rng = np.random.default_rng(seed)
    timed = []
    for beat, length, note, syllable in notes:
        start = tune.seconds(beat)
        end = tune.seconds(beat + length)
        timed.append((start + before_bars * BAR + rng.normal(0, 0.006), end - start - 0.02, note, syllable,
                      0.74 + 0.08 * (beat % 4 == 0) + 0.014 * (note - 65) + rng.uniform(-0.05, 0.05)))
    sound = sing(timed, bars * BAR, seed)
    sides = room([sound, sound], 0.5, 0.13, seed)
    return [0.5 * (sides[0] + sides[1])]


def choir(lines, seed, bars, level=0.62):
    """Several singers, each a little out of tune with the others and at a place of their own."""
    total = np.zeros((2, frames(bars * BAR)))
    rng = np.random.default_rng(seed)
    for i, notes in enumerate(lines):
        for double in range(2):
            timed = []
            for beat, length, note, syllable in notes:
                start = max(0.0, tune.seconds(beat) + rng.uniform(-0.015, 0.025))
                timed.append((start, tune.seconds(beat + length) - tune.seconds(beat), note + rng.normal(0, 0.05),
                              syllable, level))
            sound = sing(timed, bars * BAR, seed + 10 * i + double, vibrato_cents=18, brightness=0.7)
            position = (-0.6, 0.1, 0.7)[i % 3] + 0.2 * (double - 0.5)
            for side, part in enumerate(panned(sound, position)):
                total[side] += 0.5 * part[:total.shape[1]]
    return room(list(total), 0.8, 0.22, seed)
