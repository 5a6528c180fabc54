"""Runs whole programs and tells what each took."""

import json
import os
import statistics
import subprocess
import sys
import time


class Run:
    """One run of a command: wall clock and user and system CPU in s, peak memory in MB, and what it printed."""

    def __init__(self, command, stdin=b""):
        # A process counts the memory of the one that it was forked from as its own peak. So a small one starts it.
        launcher = [sys.executable, "-I", "-S", os.path.abspath(__file__), *command]
        result = subprocess.run(launcher, input=stdin, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        errors = result.stderr.decode(errors="replace").splitlines()
        if result.returncode != 0:
            raise RuntimeError(f"{command[0]} ended with {result.returncode}: {errors[-5:]}")
        self.output = result.stdout.decode()
        self.wall, self.user, self.system, self.memory = json.loads(errors[-1])


class Medians:
    """The medians of several runs of one command."""

    def __init__(self, runs):
        self.wall, self.user, self.system, self.memory = (
            statistics.median(getattr(run, name) for run in runs) for name in ("wall", "user", "system", "memory"))


def interleaved(commands, times):
    """Runs each of the commands, {name: (command, stdin)}, in turn, `times` rounds; the medians by name."""
    runs = {name: [] for name in commands}
    for _ in range(times):
        for name, (command, stdin) in commands.items():
            runs[name].append(Run(command, stdin))
    return {name: Medians(of_one) for name, of_one in runs.items()}


def launch(command):
    """Runs a command in place of this process; its figures follow its own words on standard error."""
    begun = time.monotonic()
    _, status, usage = os.wait4(os.posix_spawnp(command[0], command, os.environ), 0)
    wall = time.monotonic() - begun
    sys.stderr.write("\n" + json.dumps([wall, usage.ru_utime, usage.ru_stime, usage.ru_maxrss / 1024]) + "\n")
    return os.waitstatus_to_exitcode(status)


if __name__ == "__main__":
    sys.exit(launch(sys.argv[1:]))
