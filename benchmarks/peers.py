#!/usr/bin/env python3
"""peers.py ZEPHRIMARK [--case NAME]... [--place NAME]... [--rounds N] [--scale F]

Offloads the same card to two drives with the command line and with what people use instead, in turn,
and prints medians and ratios. Everybody gives the same guarantee: two copies, flushed, both read back
from their drives (caches dropped first), the card read twice and compared. Needs root, because caches
are dropped and drives are mounted; everything is mounted in a private namespace. Only ratios of one
run mean anything.
"""

import argparse
import contextlib
import ctypes
import os
import resource
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

MIB = 1 << 20
CASES = {  # name: (files, bytes of each)
    "large": (4, 512 * MIB),
    "medium": (2000, 1 * MIB),
    "small": (20000, 10 * 1024),
}
SLOW_DRIVE = 80 * MIB  # bytes a second of the throttled drive
FEW_REQUESTS = 400  # a second, of drives that take their time for each, as behind USB


def run(command, **options):
    return subprocess.run(command, check=True, stdout=subprocess.DEVNULL, **options)


def shell(script):
    run(["bash", "-euo", "pipefail", "-c", script])


def drop_caches():
    os.sync()
    with open("/proc/sys/vm/drop_caches", "w") as caches:
        caches.write("3")


def make_card(folder, files, size):
    """Files that no drive can compress, in folders of a hundred."""
    block = os.urandom(4 * MIB)
    for number in range(files):
        path = f"{folder}/DCIM/{100 + number // 100}MEDIA"
        os.makedirs(path, exist_ok=True)
        with open(f"{path}/CLIP{number:05}.MOV", "wb") as file:
            stamp = number.to_bytes(8, "little")
            left = size
            while left > 0:
                piece = stamp + block[: min(left, len(block)) - len(stamp)]
                file.write(piece)
                left -= len(piece)


class Places:
    """Where the card and the drives are."""

    def __init__(self, root, stack):
        self.root = root
        self.stack = stack

    def folder(self, name):
        path = f"{self.root}/{name}"
        os.makedirs(path, exist_ok=True)
        return path

    def tmpfs(self, name):
        path = self.folder(name)
        run(["mount", "-t", "tmpfs", "-o", "size=8g", "tmpfs", path])
        self.stack.callback(run, ["umount", "-l", path])
        return path

    def loop(self, name, gigabytes, limit=None, unit="bps"):
        image = f"{self.root}/{name}.img"
        with open(image, "wb") as file:
            os.posix_fallocate(file.fileno(), 0, gigabytes << 30)
        self.stack.callback(os.remove, image)
        attach = ["losetup", "-f", "--show", "--direct-io=on", image]
        device = subprocess.run(attach, check=True, stdout=subprocess.PIPE, text=True).stdout.strip()
        self.stack.callback(run, ["losetup", "-d", device])
        run(["mkfs.ext4", "-q", "-E", "lazy_itable_init=0,lazy_journal_init=0", device])
        path = self.folder(name)
        run(["mount", device, path])
        self.stack.callback(run, ["umount", "-l", path])
        if limit:
            self.throttle(device, limit, unit)
        return path

    def throttle(self, device, limit, unit):
        numbers = os.stat(device).st_rdev
        for way in ("read", "write"):
            control = f"/sys/fs/cgroup/blkio/blkio.throttle.{way}_{unit}_device"
            rule = f"{os.major(numbers)}:{os.minor(numbers)} "

            def say(value, control=control, rule=rule):
                with open(control, "w") as file:
                    file.write(rule + str(value))

            say(limit)
            self.stack.callback(say, 0)


def disk(places):
    return places.folder("card"), [places.folder("a"), places.folder("b")]


def loops(places):
    return places.folder("card"), [places.loop("a", 5), places.loop("b", 5)]


def throttled(places):
    return places.folder("card"), [places.loop("a", 5), places.loop("b", 5, SLOW_DRIVE)]


def latency(places):
    return places.folder("card"), [places.loop(name, 5, FEW_REQUESTS, "iops") for name in ("a", "b")]


def memory(places):
    return places.tmpfs("card"), [places.tmpfs("a"), places.tmpfs("b")]


PLACES = {"disk": disk, "loops": loops, "throttled": throttled, "latency": latency, "tmpfs": memory}


def ours(program, card, drives):
    run([program, "offload", "--quiet", "--template", "x", card, *drives])


def check(card, drives):
    """What gives the others our guarantee."""
    shell("sync -f " + " ".join(drives))
    drop_caches()
    hashing = [
        f"(cd {folder} && find DCIM -type f -print0 | sort -z | xargs -0 xxhsum -H1 > {folder}.sums) &"
        for folder in [card, *[f"{drive}/x" for drive in drives]]
    ]
    shell("\n".join(hashing) + "\nwait")
    for drive in drives:
        run(["cmp", f"{card}.sums", f"{drive}/x.sums"])


def copied_by(copy):
    def offload(_program, card, drives):
        for drive in drives:
            os.makedirs(f"{drive}/x")
        shell("\n".join(copy(card, f"{drive}/x") + " &" for drive in drives) + "\nwait")
        check(card, drives)

    return offload


def rclone(_program, card, drives):
    for drive in drives:
        os.makedirs(f"{drive}/x")
    copies = [f"rclone copy --quiet {card} {drive}/x &" for drive in drives]
    shell("\n".join(copies) + "\nwait\nsync -f " + " ".join(drives))
    drop_caches()
    checks = [f"rclone check --quiet --download {card} {drive}/x &" for drive in drives]
    shell("\n".join(checks) + "\nwait")


PEERS = {
    "rsync + xxhsum": copied_by(lambda card, drive: f"rsync -a {card}/ {drive}/"),
    "cp + sync + xxhsum": copied_by(lambda card, drive: f"cp -a {card}/. {drive}/"),
    "rclone copy + check": rclone,
}


def hardware(card, drives, total):
    """Seconds that the drives alone need: written and read once, in long direct requests, both at once; on
    one disk for all, the card's bytes come twice on top."""
    megabytes = max(1, total // MIB)
    drop_caches()
    start = time.monotonic()
    for step in ("if=/dev/zero of={}/limit oflag=direct conv=fsync", "if={}/limit of=/dev/null iflag=direct"):
        shell("\n".join(f"dd status=none bs=8M count={max(1, megabytes // 8)} {step.format(d)} &" for d in drives)
              + "\nwait")
    return time.monotonic() - start


def children_time():
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


def clear(drives):
    for drive in drives:
        shutil.rmtree(f"{drive}/x", ignore_errors=True)
        for name in ("x.sums", "limit"):
            with contextlib.suppress(FileNotFoundError):
                os.remove(f"{drive}/{name}")


def measure(offload, program, card, drives, keep=False):
    if not keep:
        clear(drives)
    drop_caches()
    cpu = children_time()
    start = time.monotonic()
    offload(program, card, drives)
    return time.monotonic() - start, children_time() - cpu


def compare(program, place, case, rounds, scale, root):
    files, size = CASES[case]
    files = max(2, int(files * scale)) if files > 4 else files
    size = size if files > 4 else int(size * scale)
    with contextlib.ExitStack() as stack:
        folder = tempfile.mkdtemp(dir=root)
        stack.callback(shutil.rmtree, folder, ignore_errors=True)
        card, drives = PLACES[place](Places(folder, stack))
        make_card(card, files, size)
        runs = {"ours": ours, **PEERS}
        times = {name: [] for name in runs}
        cpu = {name: [] for name in runs}
        again = []
        for _ in range(rounds):
            for name, offload in runs.items():
                seconds, used = measure(offload, program, card, drives)
                times[name].append(seconds)
                cpu[name].append(used)
                if name == "ours":
                    resumed, _ = measure(ours, program, card, drives, keep=True)
                    drop_caches()
                    start = time.monotonic()
                    check(card, drives)
                    again.append(resumed / (time.monotonic() - start))
        # Best of each round, so that a ratio is of runs that lie beside each other.
        best = [min(times[name][i] for name in PEERS) for i in range(rounds)]
        least = [min(cpu[name][i] for name in PEERS) for i in range(rounds)]
        ratio = statistics.median(times["ours"][i] / best[i] for i in range(rounds))
        work = statistics.median(cpu["ours"][i] / least[i] for i in range(rounds))
        clear(drives)
        limit = hardware(card, drives, files * size)
        figures = "  ".join(f"{name} {statistics.median(t):.1f}" for name, t in times.items())
        print(f"{place:<10} {case:<7} {files:>6} x {size:>10,} B  ratio {ratio:.2f}  processor {work:.2f}  "
              f"resumed/xxhsum {statistics.median(again):.2f}  | seconds: {figures}  drives alone {limit:.1f}",
              flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawTextHelpFormatter)
    parser.add_argument("program")
    parser.add_argument("--case", action="append", choices=CASES)
    parser.add_argument("--place", action="append", choices=PLACES)
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--scale", type=float, default=1.0)
    parser.add_argument("--root", default="/var/tmp", help="a folder on the disk to measure")
    options = parser.parse_args()
    if os.geteuid() != 0:
        sys.exit("The comparison with other tools needs root: it drops caches and mounts drives.")
    clone_new_namespace = 0x00020000
    if ctypes.CDLL(None, use_errno=True).unshare(clone_new_namespace) != 0:
        sys.exit("No private mount namespace is to be had here: " + os.strerror(ctypes.get_errno()))
    run(["mount", "--make-rprivate", "/"])
    program = os.path.abspath(options.program)
    for place in options.place or PLACES:
        for case in options.case or CASES:
            compare(program, place, case, options.rounds, options.scale, options.root)


if __name__ == "__main__":
    main()
