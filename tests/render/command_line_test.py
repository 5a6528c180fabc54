"""What `velmora-render` answers, and what it leaves on disk, when all is well and when it is not."""

import os
import pty
import random
import resource
import signal
import subprocess
import unittest

from rendering import PROGRAM, RenderTest
from velmora_project import Channel, Clip, Project, audio_folder, read_wav

EARLIER = b"an earlier mix"


def limited_to(size):
    """For `preexec_fn`: no file grows beyond `size` bytes, as if the disk were full."""
    return lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))


class CommandLineTest(RenderTest):
    AUDIO = [("a.wav", 2, 44100, 2), ("b.mp3", 2, 48000, 1)]

    def song(self):
        return Project([Channel([Clip("a.wav", 0, 0, 1500), Clip("b.mp3", 700, 0, 1900)])])

    def fails(self, code, *arguments, saying, **options):
        """The program ends with `code` and one or more lines of its own that hold each of `saying`."""
        result = self.run_program(*arguments, **options)
        self.assertEqual(result.returncode, code, result.stderr)
        for text in [saying] if isinstance(saying, str) else saying:
            self.assertIn(text, result.stderr)
        for line in result.stderr.splitlines():
            self.assertRegex(line, "^(velmora-render: .*|Try 'velmora-render --help'.)$")
        self.assertEqual(result.stdout, "")

    def write_earlier(self, name="mix.wav"):
        """A file of the name to be written, alone in a folder, so that anything left beside it shows."""
        os.makedirs(self.path("out"), exist_ok=True)
        path = self.path("out", name)
        with open(path, "wb") as file:
            file.write(EARLIER)
        return path

    def assert_untouched(self, path):
        with open(path, "rb") as file:
            self.assertEqual(file.read(), EARLIER)
        self.assertEqual(os.listdir(os.path.dirname(path)), [os.path.basename(path)])

    def test_usage(self):
        song = self.write(self.song())
        out = self.path("mix.wav")
        self.fails(2, saying="--help")
        self.fails(2, song, saying="--help")
        self.fails(2, song, out, "more", saying="--help")
        self.fails(2, song, out, "--loud", saying="--loud")
        for option, value in (("--rate", "0"), ("--rate", "44100x"), ("--rate", "99999999999"), ("--channels", "3"),
                              ("--bitrate", "-1"), ("--threads", "0"), ("--threads", "")):
            self.fails(2, song, out, option, value, saying=[option, f"'{value}'"])
        self.fails(2, song, out, "--bitrate", "128000", saying="WMA")
        self.fails(2, song, self.path("mix.wma"), "--rate", "96000", saying="48000")
        for name in ("mix.mp3", "mix", ".wav/mix", "mix.wav.flac"):
            self.fails(2, song, self.path(name), saying=[".wav", ".wma"])
        self.assertFalse(os.path.exists(out))
        for option, text in (("--help", "--ignore-missing"), ("--version", "velmora-render ")):
            result = self.run_program(option)
            self.assertEqual((result.returncode, result.stderr), (0, ""))
            self.assertIn(text, result.stdout)

    def test_project_folder_stays_as_it_is(self):
        song = self.write(self.song())
        # What a program with a window would clean up, lock or cache.
        with open(os.path.join(audio_folder(song), "unused.wav"), "wb") as file:
            file.write(EARLIER)

        def state():
            found = {}
            for folder, _, files in os.walk(self.folder):
                found[folder] = os.stat(folder).st_mtime_ns
                for name in files:
                    path = os.path.join(folder, name)
                    with open(path, "rb") as file:
                        found[path] = (os.stat(path).st_mtime_ns, file.read())
            return found

        before = state()
        out = os.path.join(self.shared, "mix.WAV")
        self.addCleanup(os.remove, out)
        self.assertEqual(self.run_program(song, out).returncode, 0)
        self.assertEqual(state(), before)
        self.assertEqual(len(read_wav(out)[0]), 2600 * 441 // 10)

    def test_replaces_an_earlier_file_behind_a_link(self):
        song = self.write(self.song())
        earlier = self.write_earlier()
        os.symlink(earlier, self.path("link.wav"))
        self.assertEqual(self.run_program(song, self.path("link.wav")).returncode, 0)
        self.assertTrue(os.path.islink(self.path("link.wav")))
        self.assertEqual(len(read_wav(earlier)[0]), 2600 * 441 // 10)
        self.assertEqual(os.listdir(self.path("out")), ["mix.wav"])

    def test_missing_and_unreadable_audio(self):
        project = self.song()
        song = self.write(project)
        out = self.write_earlier()
        files = audio_folder(song)
        os.rename(os.path.join(files, "b.mp3"), self.path("away"))
        self.fails(1, song, out, saying=[os.path.join(files, "b.mp3"), "missing", "--ignore-missing"])
        self.assert_untouched(out)
        self.assertEqual(self.run_program(song, out, "--ignore-missing").returncode, 0)
        self.assertEqual(len(read_wav(out)[0]), 1500 * 441 // 10)

        out = self.write_earlier()
        with open(os.path.join(files, "b.mp3"), "w", encoding="ascii") as file:
            file.write("no sound at all\n" * 100)
        self.fails(1, song, out, saying=[os.path.join(files, "b.mp3"), "--ignore-missing"])
        self.assert_untouched(out)
        self.assertEqual(self.run_program(song, out, "--ignore-missing").returncode, 0)

        out = self.write_earlier()
        os.rename(files, self.path("gone"))
        self.fails(1, song, out, saying=files)
        self.assert_untouched(out)

    def test_a_project_names_only_its_own_files_and_absolute_ones(self):
        song = self.write(Project([Channel([Clip("..\\secret.wav", 0, 0, 1000)])]))
        os.link(os.path.join(self.shared, "a.wav"), self.path("secret.wav"))
        self.fails(1, song, self.path("mix.wav"), saying="secret.wav")

    def test_bad_projects(self):
        out = self.write_earlier()
        good = self.song().text()
        cut = [good[: len(good) * part // 10] for part in (1, 3, 5, 7)]
        bad = {
            "empty": "", "random": random.Random(5).randbytes(5000), "text": "Dear diary\n" * 50, "zeros": bytes(10000),
            **{f"cut {i}": text for i, text in enumerate(cut)},
            "later": Project([], version="2.5").text(), "earlier": Project([], version="0.9").text(),
            "no version": good.replace("FileVersion", "Version"), "other": good.replace("AudioProject", "Config"),
            "no data": good.replace("Data>", "Date>"),
            "no channel": good.replace("<ChannelMode>int: 0", "<ChannelMode>int: -1"),
            "deep": "<AudioProject>" + "<Data>" * 100000,
        }
        for name, content in bad.items():
            with self.subTest(name):
                path = self.path(name + ".audioproj")
                audio_folder(path)
                with open(path, "wb") as file:
                    file.write(content if isinstance(content, bytes) else content.encode())
                self.fails(1, path, out, saying=path)
                self.assert_untouched(out)
        self.fails(1, self.path("later.audioproj"), out, saying="newer")
        self.fails(1, self.path("none.audioproj"), out, saying=["none.audioproj", "No such file"])
        self.fails(1, self.folder, out, saying=[self.folder, "folder"])

    def test_numbers_in_a_project_size_nothing(self):
        good = self.song().text()
        for old, new in (("EventsA_Size>int: 10", "EventsA_Size>int: 2147483647"),
                         ("MusicChannelArray_C>int: 1", "MusicChannelArray_C>int: 2147483647"),
                         ("TotalN>int: 0", "TotalN>int: 2147483646"), ("TotalFx>int: 0", "TotalFx>int: 2147483647"),
                         ("TimePos>float: 700", "TimePos>float: -1e300"),
                         ("EndMS>int: 1900", "EndMS>int: -2147483648")):
            with self.subTest(new):
                self.assertIn(old, good)
                song = self.write(self.song())
                with open(song, "w", encoding="utf-8") as file:
                    file.write(good.replace(old, new))
                result = self.run_program(song, self.path("mix.wav"))
                self.assertIn(result.returncode, (0, 1), result.stderr)
        # The peak of all programs that ran so far; a table of the stated size would take many times this.
        self.assertLess(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss, 1 << 20)

    def test_refuses_to_write_over_the_project(self):
        project = self.song()
        song = self.write(project)
        outside = self.path("take.wav")
        os.link(os.path.join(self.shared, "a.wav"), outside)
        project.channels[0].clips.append(Clip("Z:" + outside.replace("/", "\\"), 0, 0, 500))
        project.write(song)
        audio = audio_folder(song)
        os.symlink(audio, self.path("link"))
        os.link(song, self.path("song.wav"))
        for out in (self.path("song.wav"), outside, os.path.join(audio, "a.wav"), os.path.join(audio, "new.wav"),
                    self.path("link", "new.wav")):
            self.fails(1, song, out, saying=out)
        self.assertEqual(len(read_wav(outside)[0]), 88200)
        self.assertEqual(sorted(os.listdir(audio)), ["a.wav", "b.mp3"])

    def test_output_that_cannot_be_written(self):
        song = self.write(self.song())
        self.fails(1, song, self.path("none", "mix.wav"), saying=[self.path("none"), "folder"])
        self.fails(1, song, os.path.join(song, "mix.wav"), saying=song)
        os.mkdir(self.path("folder.wav"))
        self.fails(1, song, self.path("folder.wav"), saying="folder.wav")
        os.mkfifo(self.path("fifo.wav"))
        self.fails(1, song, self.path("fifo.wav"), saying="fifo.wav")

    def test_full_disk(self):
        # So long that only who stops at the first failed write ends in time.
        song = self.write(Project([Channel([Clip("a.wav", 0, 0, 1000), Clip("a.wav", 2000000000, 0, 1000)])]))

        for name in ("mix.wav", "mix.wma"):
            with self.subTest(name):
                out = self.write_earlier(name)
                self.fails(1, song, out, saying=out, preexec_fn=limited_to(20000))
                self.assert_untouched(out)
                os.remove(out)

    def test_told_to_end_in_mid_render(self):
        # Hours of silence between two clips. Who does not hear the signal runs into the limit, and says so.
        song = self.write(Project([Channel([Clip("a.wav", 0, 0, 1000), Clip("a.wav", 5 * 3600 * 1000, 0, 1000)])]))
        for number in (signal.SIGINT, signal.SIGTERM):
            with self.subTest(number):
                out = self.write_earlier()
                terminal, stderr = pty.openpty()
                with subprocess.Popen([PROGRAM, song, out], stderr=stderr, preexec_fn=limited_to(300 << 20)) as program:
                    os.close(stderr)
                    progress = os.read(terminal, 1000)
                    self.assertIn(b"%", progress)
                    self.assertEqual(len(os.listdir(os.path.dirname(out))), 2)
                    program.send_signal(number)
                    said = b""
                    while True:
                        try:
                            block = os.read(terminal, 1000)
                        except OSError:  # the other end is closed
                            break
                        said += block
                    self.assertEqual(program.wait(timeout=60), 1)
                os.close(terminal)
                self.assertIn(b"interrupted", said)
                self.assertIn(out.encode(), said)
                self.assert_untouched(out)


if __name__ == "__main__":
    unittest.main()
