#!/usr/bin/python3
"""syscalls.py PROGRAM BUDGET: how many system calls one more small file costs an offload to two drives.

Counted, not timed, so that a busy machine changes nothing: two runs whose only difference is the
number of files. Waiting among threads (futex) is left out, because how often that needs the kernel is
chance."""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

SKIPPED = 77
FEW, MANY = 100, 300


def calls_of_a_run(program, folder, files):
    card = folder / f"card{files}"
    clips = card / "DCIM" / "100MEDIA"
    clips.mkdir(parents=True)
    for number in range(files):
        (clips / f"CLIP{number:04}.MOV").write_bytes(number.to_bytes(4, "little") * 2560)
    drives = [folder / f"{files}-{name}" for name in ("first", "second")]
    for drive in drives:
        drive.mkdir()
    table = folder / "calls"
    subprocess.run(["strace", "-f", "-c", "-o", table, program, "offload", "--quiet", card, *drives], check=True)
    counts = {}
    for line in table.read_text().splitlines():
        words = line.split()
        # "% time, seconds, usecs/call, calls, [errors,] syscall"
        if len(words) >= 5 and words[3].isdigit() and words[-1] not in ("total", "futex"):
            counts[words[-1]] = int(words[3])
    return counts


def main(program, budget):
    if not shutil.which("strace"):
        print("Skipped: this needs strace")
        return SKIPPED
    # On the disk where there is one: memory would answer other calls.
    with tempfile.TemporaryDirectory(dir=os.environ.get("TMPDIR", "/var/tmp")) as name:
        few, many = (calls_of_a_run(program, pathlib.Path(name), files) for files in (FEW, MANY))
    each = {call: (count - few.get(call, 0)) / (MANY - FEW) for call, count in many.items()}
    total = sum(each.values())
    for call, count in sorted(each.items(), key=lambda item: -item[1]):
        if count >= 0.1:
            print(f"{call:<16} {count:6.1f}")
    print(f"{total:.1f} system calls for a small file, {budget} at most")
    return 0 if 0 < total <= budget else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], float(sys.argv[2])))
