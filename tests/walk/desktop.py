"""A desktop of its own for tests of the whole program. VELMORA is the program, VELMORA_SERVER scripts/audio-server.sh;
pictures go to the folder VELMORA_SHOTS. Needs xvfb, openbox, xdotool, x11-utils, imagemagick and pulseaudio-utils."""

import os
import re
import shutil
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

PROGRAM = os.environ["VELMORA"]
SERVER = os.environ["VELMORA_SERVER"]
SHOTS = Path(os.environ["VELMORA_SHOTS"])


class Desktop(unittest.TestCase):
    """A display, a window manager and a sound server for each test, and the program on them."""

    def setUp(self):
        self.folder = Path(tempfile.mkdtemp(prefix="velmora-walk-"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.home = self.folder / "home"
        SHOTS.mkdir(parents=True, exist_ok=True)
        self.shots = 0
        self.program = None

        subprocess.run([SERVER, "start", self.folder], check=True, stdout=subprocess.DEVNULL)
        self.addCleanup(subprocess.run, [SERVER, "stop", self.folder], check=True)
        reading, writing = os.pipe()
        self.begin(["Xvfb", "-displayfd", str(writing), "-screen", "0", "1400x900x24", "-nolisten", "tcp"],
                   pass_fds=[writing], stderr=subprocess.DEVNULL)
        os.close(writing)
        with os.fdopen(reading) as display:
            number = display.readline().strip()
        self.environment = {
            "DISPLAY": ":" + number, "HOME": str(self.home), "PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8",
            "XDG_RUNTIME_DIR": str(self.folder), "PULSE_SERVER": f"unix:{self.folder}/pulse.sock",
            "NO_AT_BRIDGE": "1",
        }
        self.folder.chmod(0o700)
        self.begin(["openbox"], env=self.environment, stderr=subprocess.DEVNULL)
        self.wait("the window manager", lambda: "_NET_SUPPORTING_WM_CHECK" in self.ask("xprop", "-root"))

    def begin(self, command, **options):
        """A program that ends with the test at the latest."""
        process = subprocess.Popen(command, **options)

        def end():
            process.kill()
            process.wait()
        self.addCleanup(end)
        return process

    def ask(self, *command):
        return subprocess.run(command, env=self.environment, capture_output=True, text=True, check=False).stdout

    def wait(self, what, happened, seconds=60):
        until = time.monotonic() + seconds
        while not happened():
            if time.monotonic() > until:
                self.shot("late")
                self.fail(f"{what} did not come; in front is '{self.title()}'; {self.said()}; it ended with "
                          f"{self.program and self.program.poll()}")
            time.sleep(0.05)

    def shot(self, name):
        self.shots += 1
        picture = SHOTS / f"{self.id().rpartition('.')[2]}-{self.shots:02}-{name}.png"
        subprocess.run(["import", "-window", "root", picture], env=self.environment, check=True)

    def title(self):
        return self.ask("xdotool", "getactivewindow", "getwindowname").rstrip("\n")

    def wait_title(self, wanted):
        """Waits for a window in front with this title, a pattern, and for it to be painted."""
        self.wait(f"a window '{wanted}'", lambda: re.fullmatch(wanted, self.title()))
        time.sleep(0.3)

    def keys(self, *names):
        for name in names:
            subprocess.run(["xdotool", "key", "--delay", "30", name], env=self.environment, check=True)

    def start(self, *arguments):
        self.said_file = open(self.folder / "said", "a+", encoding="utf-8")
        self.addCleanup(self.said_file.close)
        self.program = self.begin([PROGRAM, *arguments], env=self.environment, stderr=self.said_file)

    def said(self):
        return "it said: " + (self.folder / "said").read_text() if (self.folder / "said").exists() else ""

    def start_first(self):
        """The first start of all, up to the Welcome project."""
        self.start()
        self.wait_title("Velmora")
        self.shot("first-question")
        self.keys("alt+n")
        self.wait_title(r"Velmora \[.*Welcome \(Bar style\)\.audioproj\]")
