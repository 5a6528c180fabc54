"""Runs `velmora-render` for the tests, which find it by the environment variable VELMORA_RENDER."""

import os
import shutil
import subprocess
import tempfile
import unittest

import numpy as np

from velmora_project import audio_folder, read_wav, synthesize, write_audio

PROGRAM = os.environ.get("VELMORA_RENDER", "velmora-render")


class RenderTest(unittest.TestCase):
    """A test with a folder of its own, and the audio files of its class beside it."""

    # Name, seconds, rate, channels and, if not the usual one, peak of the audio files that the tests of a class share.
    AUDIO = []

    @classmethod
    def setUpClass(cls):
        cls.shared = tempfile.mkdtemp()
        cls.addClassCleanup(shutil.rmtree, cls.shared)
        for seed, (name, seconds, rate, channels, *peak) in enumerate(cls.AUDIO):
            write_audio(os.path.join(cls.shared, name), synthesize(seed, seconds, rate, channels, *peak), rate)

    def setUp(self):
        self.folder = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.folder)

    def path(self, *names):
        return os.path.join(self.folder, *names)

    def write(self, project, name="song"):
        """The project in the test's folder, with links to the shared files; its path."""
        path = self.path(name + ".audioproj")
        project.write(path)
        audio = audio_folder(path)
        for file in os.listdir(self.shared):
            if not os.path.exists(os.path.join(audio, file)):
                os.link(os.path.join(self.shared, file), os.path.join(audio, file))
        return path

    def run_program(self, *arguments, **options):
        return subprocess.run([PROGRAM, *map(str, arguments)], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              text=True, timeout=60, **options)

    def render(self, project, *options, out="mix.wav"):
        """Writes and renders a project, which must succeed without a word; the path of the result."""
        result = self.run_program(self.write(project), self.path(out), *options)
        self.assertEqual((result.returncode, result.stderr, result.stdout), (0, "", ""))
        return self.path(out)

    def mix(self, project, *options):
        return read_wav(self.render(project, *options))[0]

    def assert_close(self, samples, expected, tolerance):
        """Each sample lies within `tolerance`, a number or an array."""
        self.assertEqual(samples.shape, expected.shape)
        excess = np.abs(samples.astype(float) - expected) - tolerance
        worst = np.unravel_index(np.argmax(excess), excess.shape)
        self.assertLessEqual(excess[worst], 0, f"frame {worst[0]}, side {worst[1]}: {samples[worst]}, "
                                               f"not {expected[worst]}; {np.count_nonzero(excess > 0)} are off")
