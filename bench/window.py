"""Measures the main window on a display and a sound server of its own, and prints tables for docs/BENCHMARKS.md.

Usage: window.py PROGRAMS WORK [ROUNDS], where PROGRAMS is the folder of our release binaries and WORK one for audio.
"""

import os
import random
import shutil
import statistics
import subprocess
import sys
import time

import bench_project
from desktop import Desktop
from velmora_project import Channel, Clip, Project, audio_folder

CLIPS = 1000
LOAD_S = 10
REST_S = 13  # the output rests after ten seconds of silence


def main():
    programs, work = (os.path.abspath(path) for path in sys.argv[1:3])
    rounds = int(sys.argv[3]) if len(sys.argv) > 3 else 9
    song, big = make_projects(work)
    bench = os.path.join(programs, "velmora-window-bench")
    compare_starts(programs, rounds)
    with Desktop() as desktop:
        desktop.manage_windows()
        welcome = desktop.own_welcome()
        measure_load(os.path.join(programs, "velmora"), welcome, desktop)
        measure_session([bench, "use", welcome, big], desktop)
        measure_session([bench, "write", welcome, song], desktop)


def make_projects(work):
    """The song of the other benchmarks, and 1,000 clips on ten channels over its files; each to be worked on."""
    os.makedirs(work, exist_ok=True)
    original = os.path.join(work, "bench.audioproj")
    project = bench_project.make(original)
    folder = os.path.join(work, "window")
    shutil.rmtree(folder, ignore_errors=True)
    song, big = os.path.join(folder, "song.audioproj"), os.path.join(folder, "big.audioproj")
    for path in (song, big):
        link_audio(audio_folder(original), path)
    project.write(song)
    # Beside the folders, to be dropped.
    subprocess.run(["ffmpeg", "-v", "error", "-stream_loop", str(3600 // bench_project.FILE_SECONDS - 1), "-i",
                    os.path.join(audio_folder(original), "mp3 44100 stereo.mp3"), "-c", "copy",
                    os.path.join(folder, "an hour.mp3")], check=True)
    chance = random.Random(7)
    names = sorted(os.listdir(audio_folder(big)))
    rows = [Clip(chance.choice(names), chance.randint(0, 600000), chance.randint(0, 1000), chance.randint(2000, 90000),
                 gain=round(chance.uniform(0.1, 2), 4), fade_in=chance.randint(1, 900), title=f"Take {i}")
            for i in range(CLIPS)]
    Project([Channel(rows[i::10], music=i > 7) for i in range(10)]).write(big)
    return song, big


def link_audio(folder, song):
    """The files of `folder` also in the audio folder of `song`."""
    into = audio_folder(song)
    for name in os.listdir(folder):
        if not os.path.exists(os.path.join(into, name)):
            os.link(os.path.join(folder, name), os.path.join(into, name))


def start(command, desktop):
    """Seconds from the command to a window that reacts."""
    begun = time.monotonic()
    output = subprocess.run(command, env=desktop.environment, capture_output=True, text=True, check=True).stdout
    return float(output.split()[0]) - begun


def compare_starts(programs, rounds):
    with Desktop() as desktop:
        commands = {"an empty window": [os.path.join(programs, "velmora-empty-window")],
                    "velmora with the Welcome project": [os.path.join(programs, "velmora-window-bench"), "start",
                                                         desktop.own_welcome()]}
        times = {name: [] for name in commands}
        for turn in range(rounds + 1):
            for name, command in commands.items():
                took = 1000 * start(command, desktop)
                if turn > 0:  # the first fills the disk's cache
                    times[name].append(took)
    medians = [statistics.median(taken) for taken in times.values()]
    print("| From the start to a window that reacts, median | ms |\n|---|---|")
    for name, median in zip(times, medians):
        print(f"| {name} | {median:.0f} |")
    print(f"| ratio | {medians[1] / medians[0]:.2f} |\n", flush=True)


def cpu_times(pid):
    """CPU of a process in s: the interface thread's, and that of all others."""
    own, others = 0.0, 0.0
    for thread in os.listdir(f"/proc/{pid}/task"):
        with open(f"/proc/{pid}/task/{thread}/schedstat", encoding="ascii") as file:
            seconds = int(file.read().split()[0]) / 1e9
        if int(thread) == pid:
            own += seconds
        else:
            others += seconds
    return own, others


def measure_load(program, project, desktop):
    process = desktop.begin([program, project], env=desktop.environment)
    while not (window := desktop.ask("xdotool", "search", "--onlyvisible", "--name", "^Velmora").split()):
        time.sleep(0.1)
    subprocess.run(["xdotool", "windowactivate", "--sync", window[-1]], env=desktop.environment, check=True)
    time.sleep(REST_S)
    print(f"| % of a core, over {LOAD_S} s | interface | sound | in all |\n|---|---|---|---|")
    # Playing begins where both strips' channels sound.
    for state, keys in (("idle", ["n", "n", "p"]), ("playing, all meters moving", ["p"]), ("just stopped", [])):
        before = cpu_times(process.pid)
        time.sleep(LOAD_S)
        own, others = (100 * (b - a) / LOAD_S for a, b in zip(before, cpu_times(process.pid)))
        print(f"| {state} | {own:.2f} | {others:.2f} | {own + others:.2f} |", flush=True)
        if keys:
            subprocess.run(["xdotool", "key", *keys], env=desktop.environment, check=True)
            time.sleep(2)
    print()
    process.terminate()
    process.wait()


def measure_session(command, desktop):
    run = subprocess.run(command, env=desktop.environment, capture_output=True, text=True, check=True)
    sys.stderr.write(run.stderr)
    print("| Step | an event waited at most, ms | a painting, ms |\n|---|---|---|")
    worst = {}
    for line in run.stdout.splitlines():
        name, *times = line.split("\t")
        worst[name] = [max(pair) for pair in zip(worst.get(name, (0, 0)), map(float, times))]
    for name, (held, unpainted) in worst.items():
        print(f"| {name} | {held:.1f} | {unpainted:.1f} |")
    print(flush=True)


if __name__ == "__main__":
    main()
