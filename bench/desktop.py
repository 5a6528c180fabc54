"""A display, a window manager, a sound server and a home folder of its own for the program to run in."""

import os
import shutil
import subprocess
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
CONFIG = "<Config>\n<Global_FirstRun>bool: False</Global_FirstRun>\n</Config>\n"


class Desktop:
    """To be used with `with`; its programs end with it."""

    def __enter__(self):
        self.folder = Path(tempfile.mkdtemp(prefix="velmora-window-"))
        self.processes = []
        subprocess.run([ROOT / "scripts/audio-server.sh", "start", self.folder], check=True, stdout=subprocess.DEVNULL)
        reading, writing = os.pipe()
        self.begin(["Xvfb", "-displayfd", str(writing), "-screen", "0", "1400x900x24", "-nolisten", "tcp"],
                   pass_fds=[writing], stderr=subprocess.DEVNULL)
        os.close(writing)
        with os.fdopen(reading) as display:
            number = display.readline().strip()
        self.home = self.folder / "home"
        self.environment = {
            "DISPLAY": ":" + number, "HOME": str(self.home), "PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8",
            "XDG_RUNTIME_DIR": str(self.folder), "PULSE_SERVER": f"unix:{self.folder}/pulse.sock", "NO_AT_BRIDGE": "1",
        }
        self.folder.chmod(0o700)
        # Not the first run: nothing is asked.
        (self.home / ".config/velmora").mkdir(parents=True)
        (self.home / ".config/velmora/config.xml").write_text(CONFIG)
        return self

    def __exit__(self, *_):
        for process in reversed(self.processes):
            process.kill()
            process.wait()
        subprocess.run([ROOT / "scripts/audio-server.sh", "stop", self.folder], check=True)
        shutil.rmtree(self.folder, ignore_errors=True)

    def begin(self, command, **options):
        self.processes.append(subprocess.Popen(command, **options))
        return self.processes[-1]

    def manage_windows(self):
        """Without a manager windows come faster, but keys reach none."""
        self.begin(["openbox"], env=self.environment, stderr=subprocess.DEVNULL)
        while "_NET_SUPPORTING_WM_CHECK" not in self.ask("xprop", "-root"):
            time.sleep(0.05)

    def ask(self, *command):
        return subprocess.run(command, env=self.environment, capture_output=True, text=True, check=False).stdout

    def own_welcome(self):
        """A copy of the Welcome project that may be played with."""
        for path in (ROOT / "resources/examples").glob("Welcome*"):
            copy = shutil.copytree if path.is_dir() else shutil.copy
            copy(path, self.folder / path.name)
        return str(self.folder / "Welcome (Bar style).audioproj")
