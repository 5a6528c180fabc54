#!/usr/bin/env python3
"""Installs the build into a fresh folder and uses it from there: what a user gets must be whole, and must not lean on
the build tree. VELMORA_BUILD is the build folder."""

import configparser
import os
import re
import shutil
import subprocess
import tempfile
import time
import unittest
import xml.etree.ElementTree
from pathlib import Path

BUILD = Path(os.environ["VELMORA_BUILD"])
WELCOME = "share/velmora/examples/Welcome (Bar style).audioproj"


class Installed(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.prefix = Path(tempfile.mkdtemp(prefix="velmora-installed-"))
        subprocess.run(["cmake", "--install", BUILD, "--prefix", cls.prefix], check=True, stdout=subprocess.DEVNULL)
        cls.home = cls.prefix / "home"
        cls.home.mkdir()

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.prefix)

    def run_program(self, *arguments):
        environment = {"HOME": str(self.home), "PATH": "/usr/bin:/bin", "LC_ALL": "C"}
        return subprocess.run(arguments, env=environment, capture_output=True, text=True, timeout=120, check=False)

    def test_renders_the_welcome_project_as_the_build_does(self):
        mixes = []
        for program in (self.prefix / "bin/velmora-render", BUILD / "bin/velmora-render"):
            out = self.home / f"{len(mixes)}.wav"
            done = self.run_program(program, self.prefix / WELCOME, out)
            self.assertEqual(done.returncode, 0, done.stderr)
            mixes.append(out.read_bytes())
        self.assertGreater(len(mixes[0]), 1_000_000)
        self.assertTrue(mixes[0] == mixes[1])

    def test_first_start_opens_the_users_copy_of_the_welcome_project(self):
        window = self.prefix / "bin/velmora"
        if not window.exists():
            self.skipTest("built without the window")
        home = self.prefix / "first"
        home.mkdir(mode=0o700)
        environment = {"HOME": str(home), "PATH": "/usr/bin:/bin", "LC_ALL": "C.UTF-8", "QT_QPA_PLATFORM": "offscreen",
                       "XDG_RUNTIME_DIR": str(home)}
        environment |= {name: os.environ[name] for name in ("PULSE_SERVER", "ALSA_CONFIG_PATH") if name in os.environ}
        with subprocess.Popen([window], env=environment, stderr=subprocess.PIPE, text=True) as running:
            opened = home / "Documents/Velmora/Examples/Welcome (Bar style) - Audio files/accheck.dat"
            until = time.monotonic() + 60
            while not opened.exists() and running.poll() is None and time.monotonic() < until:
                time.sleep(0.05)
            ended = running.poll()
            running.kill()
            said = running.stderr.read()
        self.assertTrue(opened.exists(), said)
        self.assertIsNone(ended, said)
        # The platform without a display says this of each window of fixed size.
        self.assertEqual(said.replace("This plugin does not support propagateSizeHints()\n", ""), "")

    def test_own_libraries_come_from_the_installation(self):
        for program in (self.prefix / "bin").iterdir():
            loaded = self.run_program("ldd", program).stdout
            self.assertNotIn("not found", loaded)
            for library in re.findall(r"=> (.*lib(?:velmora|audioplayer).*) \(", loaded):
                self.assertEqual(Path(library).resolve().parent, (self.prefix / "lib/velmora").resolve())
            self.assertIn("libvelmora_soundlayer", loaded)

    def test_program_files_are_there_and_nothing_else(self):
        files = {str(path.relative_to(self.prefix / "share/velmora")) for path in self.files("share/velmora")}
        self.assertTrue({"paths.cfg", "sounds/hihat.wav", "help/html/introduction.html"} <= files, files)
        stray = [name for name in files if re.search(r"\.(py|pyc|qrc|dat)$|(^|/)\.", name)]
        self.assertEqual(stray, [])
        pages = {page.stem for page in self.files("share/man/man1")}
        self.assertEqual(pages, {program.name for program in (self.prefix / "bin").iterdir()})

    def test_desktop_knows_the_program_and_its_files(self):
        entry = configparser.ConfigParser(interpolation=None)
        entry.optionxform = str
        entry.read(self.prefix / "share/applications/velmora.desktop")
        entry = entry["Desktop Entry"]
        window = entry["Exec"].split()[0]
        self.assertEqual((self.prefix / "bin" / window).exists(), (BUILD / "bin" / window).exists())
        icons = self.prefix / "share/icons/hicolor/scalable"
        self.assertTrue((icons / "apps" / (entry["Icon"] + ".svg")).exists())

        mime = xml.etree.ElementTree.parse(self.prefix / "share/mime/packages/velmora.xml")
        space = "{http://www.freedesktop.org/standards/shared-mime-info}"
        kind = mime.find(space + "mime-type")
        self.assertIn(kind.get("type"), entry["MimeType"].split(";"))
        self.assertTrue((icons / "mimetypes" / (kind.get("type").replace("/", "-") + ".svg")).exists())
        match = kind.find(f"{space}magic/{space}match")
        first, last = (int(number) for number in match.get("offset").split(":"))
        place = (self.prefix / WELCOME).read_text().find(match.get("value"))
        self.assertTrue(first <= place <= last, place)

    def files(self, folder):
        return [path for path in (self.prefix / folder).rglob("*") if path.is_file()]


if __name__ == "__main__":
    unittest.main()
