#!/usr/bin/env python3
"""Fails on every include that points up the house: check-layers.py [ROOT | --self-test]

A folder includes what stands on a lower floor, and itself. The document's three topics share a floor: their headers
forward-declare one another, only their sources include. What lies in internal/ is for its own folder, for that
folder's tests and for benchmarks. Includes name the whole path from the root.
"""

import os
import re
import sys
import tempfile

DOCUMENT = {"project", "audio", "effects"}
FLOORS = [
    {"persistence", "soundlayer"},
    {"core"},
    {"engine"},
    DOCUMENT,
    {"render", "timeline"},
    {"controls"},
    {"app"},
]
FLOOR_OF = {folder: floor for floor, folders in enumerate(FLOORS) for folder in folders}
WITH_QT = {"timeline", "controls", "app"}
OUTSIDE = {"tests", "bench"}
INCLUDE = re.compile(r'\s*#\s*include\s*(?:"([^"]+)"|<([^>]+)>)')


def breach(path, target, from_system):
    """Why the file `path` may not include `target`, or None; paths from the root."""
    folder = path.split("/")[0]
    if from_system:
        if folder in FLOOR_OF and folder not in WITH_QT and re.match(r"Q[A-Z]|Qt[A-Z]", target):
            return "no Qt below timeline/"
        return None
    parts = target.split("/")
    owner = parts[0]
    if (owner == "tests" and folder in OUTSIDE) or owner == folder == "bench":
        return None
    if owner not in FLOOR_OF or ".." in parts:
        return "name the whole path from the root"
    if "internal" in parts[1:-1] and owner != folder and folder != "bench" and not path.startswith(f"tests/{owner}/"):
        return f"internal to {owner}/"
    if folder in OUTSIDE or owner == folder or FLOOR_OF[owner] < FLOOR_OF[folder]:
        return None
    if {owner, folder} <= DOCUMENT:
        return None if path.endswith(".cpp") else "topics of the document meet in sources only"
    return f"{folder}/ does not stand above {owner}/"


def check(root):
    """The breaches of a tree, as printable lines, and the number of files that were read."""
    lines = []
    files = 0
    for top in sorted(set(FLOOR_OF) | OUTSIDE):
        for where, _, names in sorted(os.walk(os.path.join(root, top))):
            for name in sorted(names):
                if not name.endswith((".h", ".cpp")):
                    continue
                full = os.path.join(where, name)
                path = os.path.relpath(full, root)
                files += 1
                with open(full, encoding="utf-8") as text:
                    for number, line in enumerate(text, 1):
                        match = INCLUDE.match(line)
                        if not match:
                            continue
                        why = breach(path, match[1] or match[2], match[1] is None)
                        if why:
                            lines.append(f"{path}:{number}: {match[1] or match[2]}: {why}")
    return lines, files


def self_test():
    """Plants includes of every kind in a tree and looks which are found."""
    allowed = [
        ("core/A.cpp", '"soundlayer/soundlayer.h"'),
        ("engine/internal/A.h", '"engine/internal/B.h"'),
        ("audio/A.cpp", '"project/B.h"'),
        ("tests/engine/A.cpp", '"engine/internal/B.h"'),
        ("tests/engine/B.cpp", '"tests/support/B.h"'),
        ("bench/A.cpp", '"engine/internal/B.h"'),
        ("render/main.cpp", '"audio/A.h"'),
        ("controls/A.h", "<QWidget>"),
        ("engine/A.cpp", "<vector>"),
    ]
    refused = [
        ("core/B.cpp", '"engine/audioplayer.h"'),
        ("soundlayer/B.cpp", '"core/Units.h"'),
        ("persistence/B.cpp", '"soundlayer/soundlayer.h"'),
        ("engine/B.cpp", '"audio/A.h"'),
        ("audio/B.h", '"project/B.h"'),
        ("engine/C.cpp", '"soundlayer/internal/AudioFile.h"'),
        ("tests/audio/B.cpp", '"engine/internal/B.h"'),
        ("engine/D.cpp", '"LevelStore.h"'),
        ("engine/E.cpp", '"../core/Units.h"'),
        ("core/F.h", "<QString>"),
        ("project/G.cpp", '"tests/support/B.h"'),
    ]
    with tempfile.TemporaryDirectory() as root:
        for path, target in allowed + refused:
            os.makedirs(os.path.dirname(os.path.join(root, path)), exist_ok=True)
            with open(os.path.join(root, path), "a", encoding="utf-8") as text:
                text.write(f"#pragma once\n  #  include {target}\n")
        found = {line.split(":")[0] for line in check(root)[0]}
    expected = {path for path, _ in refused}
    for path in sorted(found ^ expected):
        print(f"{path}: {'refused' if path in found else 'not noticed'}")
    return found == expected


def main():
    if sys.argv[1:] == ["--self-test"]:
        return 0 if self_test() else 1
    root = sys.argv[1] if len(sys.argv) > 1 else os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    lines, files = check(root)
    print("\n".join(lines + [f"include layers: {files} files, {len(lines)} breaches"]))
    return 1 if lines or not files else 0


if __name__ == "__main__":
    sys.exit(main())
