#!/usr/bin/env python3
"""A user's first hour, with a real window, real keys and a sound server of its own: start, play, mark, save, record,
undo, compress, reopen, export, quit. See `desktop` for what it needs."""

import array
import math
import re
import subprocess
import time
import unittest
import wave
from pathlib import Path

from desktop import Desktop

RATE = 44100
TONE = 441  # Hz
# In the File menu, from its first entry.
COMPRESS = ["Down"] * 5 + ["Return"]
SAVE_AS = ["Down"] * 3 + ["Return"]
EXPORT_WAVE = ["Down"] * 6 + ["Right", "Down", "Return"]


def read_wave(path):
    """Left samples of a file, whose header need not be final."""
    data = Path(path).read_bytes()
    form = data.find(b"fmt ")
    channels = int.from_bytes(data[form + 10:form + 12], "little")
    start = data.find(b"data", form) + 8
    samples = array.array("h", data[start:start + (len(data) - start) // 2 * 2])
    return samples[::channels]


def hertz(samples):
    """The tone by the middle one of its periods, so that a gap does not count; 0 for silence."""
    rising = [i for i in range(1, len(samples)) if samples[i - 1] < 0 <= samples[i]]
    periods = sorted(b - a for a, b in zip(rising, rising[1:]))
    return RATE / periods[len(periods) // 2] if len(periods) > TONE / 2 else 0


class Walk(Desktop):
    def setUp(self):
        super().setUp()
        tone = array.array("h", (int(12000 * math.sin(2 * math.pi * TONE * i / RATE)) for i in range(10 * RATE)))
        self.tone = self.folder / "tone.wav"
        with wave.open(str(self.tone), "wb") as file:
            file.setparams((1, 2, RATE, 0, "NONE", ""))
            file.writeframes(tone.tobytes())

    def enter(self, text):
        subprocess.run(["xdotool", "key", "ctrl+a"], env=self.environment, check=True)
        subprocess.run(["xdotool", "type", "--delay", "5", text], env=self.environment, check=True)
        self.keys("Return")

    def wait_end(self):
        self.wait("the end of the program", lambda: self.program.poll() is not None)
        self.assertEqual(self.program.returncode, 0)

    def heard(self, seconds=1.5):
        """What goes to the ears for some time."""
        file = self.folder / "heard.wav"
        with subprocess.Popen(["parec", "--device=velmora_out.monitor", "--file-format=wav", "--channels=1", file],
                              env=self.environment) as listening:
            time.sleep(seconds)
            listening.terminate()
        return read_wave(file)

    def record(self, seconds):
        """A take of the tone that the server plays."""
        playing = self.begin(["paplay", self.tone], env=self.environment)
        self.wait("the tone", lambda: max(self.heard(0.3), default=0) > 1000)
        self.keys("r")
        time.sleep(seconds)
        self.shot("recording")
        self.keys("r")
        playing.terminate()
        playing.wait()

    def takes(self, folder):
        return sorted(folder.glob("*.wav"))

    def test_first_hour(self):
        self.start_first()
        self.shot("welcome")
        self.keys("p")
        self.assertGreater(max(self.heard(2)), 1000, "playing is heard")
        self.shot("playing")
        self.keys("p")
        self.wait("silence", lambda: max(self.heard(0.5), default=0) == 0)

        self.keys("ctrl+m")
        self.wait_title("Add mark.*")
        self.shot("add-mark")
        self.enter("Here")
        self.wait_title(r"Velmora \[.*Welcome.*")
        self.keys("alt+f", *SAVE_AS)
        self.wait_title("Save.*")
        self.shot("save")
        saved = self.folder / "My song.audioproj"
        self.enter(str(saved))
        self.wait_title(rf"Velmora \[{saved}\]")
        self.assertIn("<Title>str: Here<", saved.read_text())
        self.keys("alt+F4")
        self.wait_end()

        self.start(str(saved))
        self.wait_title(rf"Velmora \[{saved}\]")
        self.shot("reopened")
        self.keys("p")
        self.assertGreater(max(self.heard(2)), 1000)
        self.keys("p")
        mix = self.folder / "song.wav"
        self.keys("alt+f", *EXPORT_WAVE)
        self.wait_title("(Export|Save).*")
        self.enter(str(mix))
        self.wait_title("Export project")
        self.shot("exported")
        self.keys("Return")
        self.wait_title(rf"Velmora \[{saved}\]")
        self.assertGreater(max(read_wave(mix)), 1000)

        # Keys go by their places where another script is written.
        subprocess.run(["setxkbmap", "ru"], env=self.environment, check=True)
        self.keys("33")
        self.assertGreater(max(self.heard(2)), 1000, "P plays")
        self.keys("33")
        self.keys("ctrl+58")
        self.wait_title("Add mark.*")
        self.keys("Escape")
        self.wait_title(rf"Velmora \[{saved}\]")
        subprocess.run(["setxkbmap", "us"], env=self.environment, check=True)

        before = saved.read_bytes()
        self.keys("ctrl+m")
        self.wait_title("Add mark.*")
        self.enter("Never saved")
        self.wait_title(rf"Velmora \[{saved}\]")
        self.keys("alt+F4")
        self.wait_title("Velmora")
        self.shot("save-question")
        self.keys("alt+n")
        self.wait_end()
        self.assertEqual(saved.read_bytes(), before)
        self.assertEqual((self.folder / "said").read_text(), "")

    def test_takes(self):
        self.start_first()
        self.keys("ctrl+n")
        self.wait_title("Velmora *")
        folder = self.home / "Documents/Velmora/Project 1"
        self.record(1.5)
        self.wait("a take", lambda: len(self.takes(folder)) == 1)
        self.keys("ctrl+z")
        self.record(2.5)
        self.wait("another take", lambda: len(self.takes(folder)) == 2)
        take = self.takes(folder)[1]
        self.assertGreater(len(read_wave(take)), 2 * RATE)
        self.assertAlmostEqual(hertz(read_wave(take)), TONE, delta=5)
        self.shot("recorded")
        self.keys("ctrl+s")
        self.wait_title("Save.*")
        saved = self.folder / "My takes.audioproj"
        self.enter(str(saved))
        self.wait_title(rf"Velmora \[{saved}\]")
        self.assertEqual(self.clip_files(saved), [take.name])
        self.keys("alt+F4")
        self.wait_end()

        self.start(str(saved))
        self.wait_title(rf"Velmora \[{saved}\]")
        self.keys("p")
        self.assertAlmostEqual(hertz(self.heard(2)), TONE, delta=5)
        self.keys("p")
        self.keys("alt+f", *COMPRESS)
        self.wait_title("Compress project")
        self.keys("alt+y")
        small = (self.folder / "My takes - Audio files" / take.name).with_suffix(".wma")
        self.wait("the compressed take", small.exists)
        time.sleep(1)
        self.shot("compressed")
        self.keys("Return")
        self.wait_title(rf"Velmora \[{saved}\]")
        self.keys("ctrl+s")
        self.wait("the save", lambda: self.clip_files(saved) == [small.name])
        self.keys("alt+F4")
        self.wait_end()
        self.assertEqual((self.folder / "said").read_text(), "")

    def clip_files(self, project):
        return re.findall(r"<FilePath>str: ([^<]*)", project.read_text())


if __name__ == "__main__":
    unittest.main()
