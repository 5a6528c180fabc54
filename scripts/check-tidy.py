#!/usr/bin/env python3
"""Runs clang-tidy over the sources of the product in build/dev: check-tidy.py [FOLDER-OR-FILE...]

A source that passed is stamped in build/dev/tidy and left out until it, a header that it includes, or .clang-tidy is
newer than the stamp.
"""

import concurrent.futures
import json
import os
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
BUILD = os.path.join(ROOT, "build", "dev")
LEFT_OUT = ("tests", "bench")  # macros of the test libraries take minutes and find nothing


def dependencies():
    """Object file -> what it was made from, as ninja knows it after a build."""
    made_from = {}
    current = None
    listing = subprocess.run(["ninja", "-C", BUILD, "-t", "deps"], capture_output=True, text=True, check=False).stdout
    for line in listing.splitlines():
        if line.startswith(" "):
            made_from[current].append(os.path.join(BUILD, line.strip()))
        elif line and ": #deps" in line:
            current = line.split(": #deps")[0]
            made_from[current] = []
    return made_from


def newest(paths):
    return max((os.stat(path).st_mtime for path in paths if os.path.exists(path)), default=0.0)


def tidy(path):
    # The database has flags that only GCC knows.
    done = subprocess.run(["clang-tidy", "--quiet", "--warnings-as-errors=*", "-p", BUILD,
                           "--extra-arg=-Wno-unknown-warning-option", path],
                          capture_output=True, text=True, check=False)
    return path, done.returncode, done.stdout


def main():
    database = os.path.join(BUILD, "compile_commands.json")
    if not os.path.exists(database):
        subprocess.run(["cmake", "--preset", "dev"], cwd=ROOT, stdout=subprocess.DEVNULL, check=True)
    chosen = [os.path.abspath(name) for name in sys.argv[1:]] or [ROOT]
    made_from = dependencies()
    config = os.path.join(ROOT, ".clang-tidy")
    with open(database, encoding="utf-8") as text:
        entries = json.load(text)

    todo = {}
    for entry in entries:
        path = entry["file"]
        inside = os.path.relpath(path, ROOT)
        if inside.split(os.sep)[0] in LEFT_OUT + ("build",):
            continue
        if not any(path == name or path.startswith(name.rstrip(os.sep) + os.sep) for name in chosen):
            continue
        stamp = os.path.join(BUILD, "tidy", inside + ".ok")
        known = made_from.get(entry.get("output", ""))
        if known and os.path.exists(stamp) and newest(known + [path, config]) < os.stat(stamp).st_mtime:
            continue
        todo[path] = stamp

    failed = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for path, code, report in pool.map(tidy, sorted(todo)):
            if code != 0:
                failed += 1
                print(report.strip() or f"{path}: clang-tidy ended with {code}", flush=True)
                continue
            os.makedirs(os.path.dirname(todo[path]), exist_ok=True)
            with open(todo[path], "w", encoding="utf-8"):
                pass
    print(f"clang-tidy: {len(todo)} sources read, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
