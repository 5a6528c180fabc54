"""Renders the example's voice and music through every effect, preset and pack, and measures what comes out.

Usage: listening_set.py VELMORA_RENDER FOLDER. Peak and RMS in dB of full scale, loudness in LU beside the dry sound, the
spectrum's centre in Hz, and how many frames were limited.
"""

import os
import re
import shutil
import subprocess
import sys
import tempfile

import numpy as np

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
sys.path.insert(0, os.path.join(ROOT, "tests", "render"))
from velmora_project import Channel, Clip, Effect, Project, audio_folder, chain_list, read_wav  # noqa: E402

AUDIO = os.path.join(ROOT, "resources", "examples", "Welcome (Bar style) - Audio files")
PRESETS = os.path.join(ROOT, "resources", "presets")
KINDS = ["Chorus", "Compressor", "Distortion", "Echo", "Flanger", "Graphic EQ", "Parametric EQ", "Reverb"]
TAIL = 3000  # ms of silence at the end, in which an effect may ring
# As the example has them, but for the volumes of its channels.
SOUNDS = {
    "voice": [Clip("Lead first line.flac", 0, 0, 9000), Clip("Lead second line.flac", 9000, 0, 6000)],
    "music": [Clip("Keys take 1.mp3", 0, 0, 15000, gain=0.6), Clip("Drums ride.ogg", 0, 0, 15000, gain=0.5),
              Clip("Bass chorus.mp3", 0, 0, 15000, gain=0.5)],
}


def main():
    render, into = sys.argv[1:3]
    os.makedirs(into, exist_ok=True)
    print("| Sound | peak dB | RMS dB | loudness beside dry, LU | centre Hz | frames at the limit |")
    print("|---|---|---|---|---|---|")
    with tempfile.TemporaryDirectory() as folder:
        for sound, clips in SOUNDS.items():
            dry = None
            for name, pack in [("dry", "")] + settings(sound):
                out = os.path.join(into, f"{sound} - {name}.wav")
                mix(render, folder, clips, pack, out)
                loudness = measure_loudness(out)
                dry = loudness if dry is None else dry
                print(f"| {sound}, {name} | {figures(out, loudness - dry)} |", flush=True)


def settings(sound):
    """Name and pack text of all that is to be heard: packs of the sound's kind, effects as they are added, presets."""
    folder = os.path.join(PRESETS, "FxPacks-" + sound.title())
    found = [("pack " + name.rsplit(".", 1)[0], read(os.path.join(folder, name))) for name in sorted(os.listdir(folder))]
    for kind in KINDS:
        plain = chain_list([Effect(kind)], iter(range(9))).text()
        found.append((kind, plain))
        for name in sorted(os.listdir(os.path.join(PRESETS, "Fx"))):
            if name.endswith(".fx." + kind):
                before, after = re.split("(?<=<Data>).*(?=</Data>)", plain, flags=re.S)
                found.append((f"{kind} {name.split('.fx.')[0]}", before + read(os.path.join(PRESETS, "Fx", name)) + after))
    return found


def read(path):
    with open(path, encoding="utf-8", newline="") as file:
        return file.read()


def mix(render, folder, clips, pack, out):
    song = os.path.join(folder, "song.audioproj")
    end = max(clip.time + clip.length for clip in clips)
    silence = Clip(clips[0].file, end, 0, TAIL, gain=0.0)
    Project([Channel([*clips, silence], pack=pack)]).write(song)
    audio = audio_folder(song)
    for clip in clips:
        if not os.path.exists(os.path.join(audio, clip.file)):
            shutil.copy(os.path.join(AUDIO, clip.file), audio)
    subprocess.run([render, "--quiet", song, out], check=True)


def measure_loudness(path):
    """Integrated loudness in LUFS, by the `ffmpeg` command."""
    result = subprocess.run(["ffmpeg", "-hide_banner", "-nostats", "-i", path, "-af", "ebur128", "-f", "null", "-"],
                            stderr=subprocess.PIPE, text=True, check=True)
    return float(re.findall(r"I:\s+(-?[\d.]+) LUFS", result.stderr)[-1])


def figures(path, beside_dry):
    samples, rate = read_wav(path)
    samples = samples / 32768
    spectrum = np.abs(np.fft.rfft(samples, axis=0)) ** 2
    power = spectrum.sum(axis=1)
    centre = (power * np.fft.rfftfreq(len(samples), 1 / rate)).sum() / power.sum()
    decibels = lambda value: 20 * np.log10(max(value, 1e-9))
    limit = np.count_nonzero(np.abs(samples).max(axis=1) > 0.9999)
    return (f"{decibels(np.abs(samples).max()):.1f} | {decibels(np.sqrt(np.mean(samples ** 2))):.1f} "
            f"| {beside_dry:+.1f} | {centre:.0f} | {limit}")


if __name__ == "__main__":
    main()
