"""Runs whole programs and tells what each took."""

import os
import statistics
import subprocess
import time


class Run:
    """One run of a command: wall clock and user and system CPU in s, peak memory in MB, and what it printed."""

    def __init__(self, command, stdin=b""):
        begun = time.monotonic()
        with subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE) as child:
            if stdin:
                child.stdin.write(stdin)
            child.stdin.close()
            self.output = child.stdout.read().decode()
            errors = child.stderr.read().decode(errors="replace")
            _, status, usage = os.wait4(child.pid, 0)
            child.returncode = os.waitstatus_to_exitcode(status)
        self.wall = time.monotonic() - begun
        self.user = usage.ru_utime
        self.system = usage.ru_stime
        self.memory = usage.ru_maxrss / 1024
        if child.returncode != 0:
            raise RuntimeError(f"{command[0]} ended with {child.returncode}: {errors[-500:]}")


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
