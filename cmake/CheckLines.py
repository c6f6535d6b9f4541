#!/usr/bin/env python3
"""CheckLines.py [ROOT]: fails when a line of our sources is longer than 100 columns.

clang-format leaves a comment alone that it cannot break well, and knows nothing of QML, CMake and
shell scripts.
"""
import os
import sys

COLUMNS = 100
ENDINGS = (".h", ".cpp", ".qml", ".cmake", ".sh", "CMakeLists.txt")
SCRIPTS = ("run", "test", os.path.join(".ci", "run"))
# Made by tools, or not by us.
LEFT_OUT = ("build", ".git", "corpus")


def sources(root):
    for folder, folders, files in os.walk(root):
        folders[:] = sorted(name for name in folders if name not in LEFT_OUT)
        for name in sorted(files):
            path = os.path.relpath(os.path.join(folder, name), root)
            if path.endswith(ENDINGS) or path in SCRIPTS:
                yield path


def main():
    root = sys.argv[1] if len(sys.argv) > 1 else os.path.dirname(os.path.dirname(__file__))
    checked = failed = 0
    for path in sources(root):
        checked += 1
        with open(os.path.join(root, path), encoding="utf-8") as source:
            for number, line in enumerate(source, 1):
                if len(line.rstrip("\n")) > COLUMNS:
                    failed += 1
                    print(f"{path}:{number}: {len(line) - 1} columns")
    if checked == 0:
        print(f"There are no sources in {root}.")
    return 1 if failed or not checked else 0


if __name__ == "__main__":
    sys.exit(main())
