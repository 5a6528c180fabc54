"""Compares velmora-render with other mixers on one project, and prints tables for docs/BENCHMARKS.md.

Usage: bench.py PROGRAMS WORK [ROUNDS], where PROGRAMS is the folder of our release binaries and WORK one for audio.
"""

import os
import platform
import random
import sys
import time

import numpy as np

import bench_project
import peers
from golden_mix import Mixer, lag
from measure import Run, interleaved
from velmora_project import Channel, Clip, Project, audio_folder, read_wav

OURS = "velmora-render"


def main():
    programs, work = sys.argv[1:3]
    rounds = int(sys.argv[3]) if len(sys.argv) > 3 else 3
    os.makedirs(work, exist_ok=True)
    song = os.path.join(work, "bench.audioproj")
    project = bench_project.make(song)
    folder = audio_folder(song)
    converted = os.path.join(work, "ecasound")
    convert = peers.ecasound_files(folder, converted)
    Run(convert)

    print(f"{time.strftime('%Y-%m-%d')}, {machine()}; medians of {rounds} interleaved runs.\n")
    render = os.path.join(programs, "velmora-render")
    clips = [clip for channel in project.channels for clip in channel.clips]
    stretches = "".join(f"{clip.start}\t{clip.length}\t{os.path.join(folder, clip.file)}\n" for clip in clips).encode()
    decoder = os.path.join(programs, "velmora-decode-bench")
    compare_mixers({
        OURS: ([render, song, out(work, OURS)], b""),
        OURS + ", 1 thread": ([render, "--threads", "1", song, out(work, OURS)], b""),
        "ffmpeg": (peers.ffmpeg_command(project, folder, out(work, "ffmpeg")), b""),
        "WMA to WAV for ecasound": (convert, b""),
        "ecasound, linear": (peers.ecasound_command(project, converted, out(work, "ecasound linear"), "resample-lq"),
                             b""),
        "decoding alone, 1 thread": ([decoder, "0"], stretches),
        "decoding and resampling, 1 thread": ([decoder, "44100"], stretches),
    }, {
        # Many times slower than the rest, so once is enough.
        "ecasound": (peers.ecasound_command(project, converted, out(work, "ecasound")), b""),
    }, rounds)
    compare_mixes(project, folder, work)
    compare_effects(render, project, folder, converted, work, rounds)
    measure_memory(render, work)
    compare_loads(os.path.join(programs, "velmora-load-bench"), folder, work, rounds)


def compare_effects(render, project, folder, converted, work, rounds):
    """The same mix with a full chain on each voice channel and an echo on a music channel."""
    song = os.path.join(work, "effects.audioproj")
    project = bench_project.with_effects(project, song)
    link_audio(folder, song)
    compare_mixers({
        OURS: ([render, song, out(work, OURS)], b""),
        OURS + ", 1 thread": ([render, "--threads", "1", song, out(work, OURS)], b""),
        **{f"ecasound, linear, {name}": (peers.ecasound_command(project, converted, out(work, "ecasound"),
                                                                "resample-lq", reverb=reverb), b"")
           for name, reverb in (("TAP reverb", "tap"), ("C* plate", "plate"))},
    }, {}, rounds)


def link_audio(folder, song):
    """The files of `folder` also in the audio folder of `song`."""
    into = audio_folder(song)
    for name in os.listdir(folder):
        if not os.path.exists(os.path.join(into, name)):
            os.link(os.path.join(folder, name), os.path.join(into, name))


def machine():
    with open("/proc/cpuinfo", encoding="ascii") as file:
        name = next(line.split(":")[1].strip() for line in file if line.startswith("model name"))
    return f"{name}, {len(os.sched_getaffinity(0))} cores, Linux {platform.release()}"


def compare_mixers(commands, slow_commands, rounds):
    results = {**interleaved(commands, rounds), **interleaved(slow_commands, 1)}
    own = results[OURS]
    print("| Program | user CPU s | system s | wall s | peak MB | user / ours | wall / ours |")
    print("|---|---|---|---|---|---|---|")
    for name, one in results.items():
        print(f"| {name} | {one.user:.2f} | {one.system:.2f} | {one.wall:.2f} | {one.memory:.0f} "
              f"| {one.user / own.user:.2f} | {one.wall / own.wall:.2f} |")
    print()


def out(work, name):
    return os.path.join(work, f"mix of {name}.wav")


def compare_mixes(project, folder, work):
    """How far the mixes are from the model, so that all have really done the same work."""
    expected, slack = Mixer(folder).mix(project)
    quiet = slack.max(axis=1) == 0
    print("| Mix of | lag, frames | error outside fades, steps of 16 bits: RMS | worst | signal RMS |")
    print("|---|---|---|---|---|")
    for name in (OURS, "ffmpeg", "ecasound", "ecasound linear"):
        samples = read_wav(out(work, name))[0]
        size = min(len(samples), len(expected))
        error = np.abs(samples[:size] - expected[:size])[quiet[:size]]
        middle = slice(size // 2, size // 2 + 30 * 44100)
        print(f"| {name} | {lag(expected[middle], samples[middle])} | {np.sqrt(np.mean(error ** 2)):.2f} "
              f"| {error.max():.0f} | {np.sqrt(np.mean(expected ** 2)):.0f} |")
    print()


def measure_memory(render, work):
    """Peak memory of one clip per file, as the files grow."""
    print("| Length of each of 8 files, min | peak MB |")
    print("|---|---|")
    for minutes in (5, 30):
        path = os.path.join(work, f"long {minutes}.audioproj")
        project = Project([Channel([Clip(name, 0, 0, minutes * 60000)])
                           for name in bench_project.long_files(path, minutes)])
        project.write(path)
        run = Run([render, path, os.path.join(work, "long.wav")])
        print(f"| {minutes} | {run.memory:.0f} |")
    os.remove(os.path.join(work, "long.wav"))
    print()


def compare_loads(loader, folder, work, rounds):
    chance = random.Random(7)
    names = sorted(os.listdir(folder))
    paths = {}
    for count in (1000, 10000):
        clips = [Clip(chance.choice(names), chance.randint(0, 3600000), chance.randint(0, 1000),
                      chance.randint(2000, 90000), gain=round(chance.uniform(0.1, 2), 4),
                      fade_in=chance.randint(1, 900), title=f"Take {i} & more") for i in range(count)]
        paths[count] = os.path.join(work, f"load {count}.audioproj")
        link_audio(folder, paths[count])
        Project([Channel(clips[i::10]) for i in range(10)]).write(paths[count])
    # Several within one process, so that the start of the program does not hide the ratio; the best of all, since
    # single loads are so short that whatever else the machine does shows.
    loads = dict.fromkeys(paths, 1e9)
    for _ in range(3 * rounds):
        for count, path in paths.items():
            loads[count] = min(loads[count], *map(float, Run([loader, path, "3"]).output.split()))
    starts = interleaved({"ours": ([loader, paths[1000], "1"], b""),
                          "sox": (["sox", "-n", "-n", "trim", "0", "0"], b"")}, 3 * rounds)
    print("| Load, best | ms |")
    print("|---|---|")
    print(f"| 1,000 clips | {loads[1000]:.1f} |")
    print(f"| 10,000 clips | {loads[10000]:.1f} |")
    print(f"| ratio | {loads[10000] / loads[1000]:.1f} |")
    print(f"| 1,000 clips, start and end of the program included | {1000 * starts['ours'].wall:.1f} |")
    print(f"| ten starts of sox | {10000 * starts['sox'].wall:.1f} |")


if __name__ == "__main__":
    main()
