#!/usr/bin/env python3
"""peers.py ZEPHRIMARK [--quick] [--case NAME]... [--place NAME]... [--rounds N] [--scale F]

Offloads the same card to two drives with the command line and with what people use instead, in turn,
and prints medians and ratios. Everybody gives the same guarantee: two copies, flushed, both read back
from their drives (caches dropped first), the card read twice and compared. The limit is the least time
that anybody could need (limit.py). Needs root, because caches are dropped and drives are mounted;
everything is mounted in a private namespace. Only ratios of one run mean anything.
"""

import argparse
import contextlib
import ctypes
import math
import os
import resource
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

from limit import Limit

MIB = 1 << 20
NOISE = os.urandom(4 * MIB)
CASES = {  # name: (files, bytes of each)
    "large": (4, 512 * MIB),
    "medium": (2000, 1 * MIB),
    "small": (20000, 10 * 1024),
}
SLOW_DRIVE = 80 * MIB  # bytes a second of the throttled drive
DRIVE = 5  # gigabytes, for every case at full scale
QUICK = {"scale": 0.125, "rounds": 1, "place": ["disk", "loops", "tmpfs"], "case": ["large", "small"]}
ANSWER = 4000  # microseconds that a drive behind USB takes for each request


def run(command, **options):
    return subprocess.run(command, check=True, stdout=subprocess.DEVNULL, **options)


def shell(script):
    run(["bash", "-euo", "pipefail", "-c", script])


def remove(path):
    with contextlib.suppress(FileNotFoundError):
        os.remove(path)


def drop_caches():
    os.sync()
    with open("/proc/sys/vm/drop_caches", "w") as caches:
        caches.write("3")


def make_card(folder, files, size):
    """Files that no drive can compress, in folders of a hundred."""
    for number in range(files):
        path = f"{folder}/DCIM/{100 + number // 100}MEDIA"
        os.makedirs(path, exist_ok=True)
        make_file(f"{path}/CLIP{number:05}.MOV", size, number)


def make_file(path, size, number=0):
    stamp = number.to_bytes(8, "little")
    with open(path, "wb") as file:
        while size > 0:
            piece = (stamp + NOISE)[: min(size, len(NOISE))]
            file.write(piece)
            size -= len(piece)


class Places:
    """Where the card and the drives are."""

    def __init__(self, root, stack, scale):
        self.root = root
        self.stack = stack
        self.gigabytes = math.ceil(DRIVE * scale)  # of each loop drive

    def folder(self, name):
        path = f"{self.root}/{name}"
        os.makedirs(path, exist_ok=True)
        return path

    def tmpfs(self, name):
        path = self.folder(name)
        run(["mount", "-t", "tmpfs", "-o", "size=8g", "tmpfs", path])
        self.stack.callback(run, ["umount", "-l", path])
        return path

    def late(self, name, program):
        """A folder below which every request takes its time."""
        backing, point = self.folder(f"{name}.backing"), self.folder(f"{name}.late")
        server = subprocess.Popen([program, backing, point], stdout=subprocess.PIPE)
        self.stack.callback(server.wait)
        self.stack.callback(run, ["umount", "-l", point])
        server.stdout.readline()  # "ready"
        calls = ("read", "readDirect", "write")
        rules = os.open(f"{point}/.faults", os.O_WRONLY)
        os.write(rules, "".join(f"{call} delay={ANSWER}\n" for call in calls).encode())
        os.close(rules)
        return backing, point

    def loop(self, name, limit=None, late=None):
        image = f"{self.root}/{name}.img"
        self.stack.callback(remove, image)
        # Written, not only reserved: the first write to a reserved block costs more, and whoever runs first
        # would pay for all.
        run(["dd", "status=none", "if=/dev/zero", f"of={image}", "bs=8M", f"count={self.gigabytes * 128}",
             "oflag=direct"])
        if late:
            backing, point = self.late(name, late)
            os.rename(image, f"{backing}/image")
            self.stack.callback(remove, f"{backing}/image")
            image = f"{point}/image"
        attach = ["losetup", "-f", "--show", "--direct-io=on", image]
        device = subprocess.run(attach, check=True, stdout=subprocess.PIPE, text=True).stdout.strip()
        self.stack.callback(run, ["losetup", "-d", device])
        if late:
            run(["blockdev", "--setra", "256", device])  # 128 KiB, the kernel's for USB drives
        run(["mkfs.ext4", "-q", "-E", "lazy_itable_init=0,lazy_journal_init=0", device])
        path = self.folder(name)
        run(["mount", device, path])
        self.stack.callback(run, ["umount", "-l", path])
        if limit:
            self.throttle(device, limit)
        return path

    def throttle(self, device, limit):
        numbers = os.stat(device).st_rdev
        for way in ("read", "write"):
            control = f"/sys/fs/cgroup/blkio/blkio.throttle.{way}_bps_device"
            rule = f"{os.major(numbers)}:{os.minor(numbers)} "

            def say(value, control=control, rule=rule):
                with open(control, "w") as file:
                    file.write(rule + str(value))

            say(limit)
            self.stack.callback(say, 0)


def disk(places, _options):
    return [places.folder(name) for name in ("card", "a", "b")]


def loops(places, _options):
    return places.folder("card"), places.loop("a"), places.loop("b")


def throttled(places, _options):
    return places.folder("card"), places.loop("a"), places.loop("b", limit=SLOW_DRIVE)


def latency(places, options):
    return [places.loop(name, late=options.fault_fs) for name in ("card", "a", "b")]


def memory(places, _options):
    return [places.tmpfs(name) for name in ("card", "a", "b")]


PLACES = {"disk": disk, "loops": loops, "throttled": throttled, "latency": latency, "tmpfs": memory}


def ours(program, card, drives, *options):
    run([program, "offload", "--quiet", "--template", "x", *options, card, *drives])


def ours_reading_once(program, card, drives):
    ours(program, card, drives, "--read-once")


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


SLOWEST_PEER = "rclone copy + check"
PEERS = {
    "rsync + xxhsum": copied_by(lambda card, drive: f"rsync -a {card}/ {drive}/"),
    "cp + sync + xxhsum": copied_by(lambda card, drive: f"cp -a {card}/. {drive}/"),
    SLOWEST_PEER: rclone,
}


def children_time():
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


def clear(drives):
    for drive in drives:
        shutil.rmtree(f"{drive}/x", ignore_errors=True)
        remove(f"{drive}/x.sums")


def warm_memory(count):
    """A virtual machine's host hands out memory when it is first touched, and takes back what has been free for
    some seconds. Who gets such memory for the page cache runs at a fraction of the speed, so everybody starts
    with as much that was touched just before."""
    with open("/proc/meminfo", encoding="ascii") as file:
        free = int(next(line.split()[1] for line in file if line.startswith("MemFree"))) * 1024
    populate = 23  # MADV_POPULATE_WRITE, which Python has no name for yet
    memory = f"m = mmap.mmap(-1, {min(count, free * 3 // 4)})"
    run([sys.executable, "-c", f"import mmap; {memory}; m.madvise(mmap.MADV_HUGEPAGE); m.madvise({populate})"])


def prepare(drives, cached, keep=False):
    """Everybody starts like this; `cached` is how many bytes of cache they fill."""
    if not keep:
        clear(drives)
    drop_caches()
    if cached:
        warm_memory(cached)


def measure(offload, program, card, drives, keep=False):
    prepare(drives, 2 * os.stat(f"{card}.bytes").st_size, keep)
    cpu = children_time()
    start = time.monotonic()
    offload(program, card, drives)
    return time.monotonic() - start, children_time() - cpu


def rounds_of(limit, card, drives, options):
    """For each kind of run its seconds and its processor seconds, one of each a round."""
    names = ["ours", *options.peers, "limit"]
    seconds = {name: [] for name in [*names, "resumed", "resumed, read once", "xxhsum"]}
    processor = {name: [] for name in seconds}

    def note(name, offload, keep=False):
        used = measure(offload, options.program, card, drives, keep)
        seconds[name].append(used[0])
        processor[name].append(used[1])

    for number in range(options.rounds):
        # Turned each round, so that nobody always runs behind the same one.
        for name in names[number % len(names) :] + names[: number % len(names)]:
            if name == "limit":
                seconds[name].append(limit.run(card, drives, lambda cached: prepare(drives, cached)))
            elif name in PEERS:
                note(name, PEERS[name])
            else:
                note(name, ours)
                note("resumed", ours, keep=True)
                note("xxhsum", lambda _program, card, drives: check(card, drives), keep=True)
                note("resumed, read once", ours_reading_once, keep=True)
    return seconds, processor


def ratio(times, peers):
    """The median of the ratios to the best of the peers in the same round, which ran beside it."""
    return statistics.median(mine / min(others) for mine, *others in zip(times, *peers))


HEADINGS = ["time/peer", "time/limit", "cpu/peer", "resumed/xxhsum", "read once/xxhsum"]


def print_headings(options):
    if options.quick:
        print("A rough figure from a small card and one round: ./run benchmark measures.")
    print(f"{'place':<9} {'case':<6} {'files':>5}   {'bytes each':>11}  " + "  ".join(HEADINGS))


def print_figures(place, case, sizes, figures, seconds, limit, options):
    columns = "  ".join(f"{figure:>{len(heading)}.2f}" for figure, heading in zip(figures, HEADINGS))
    print(f"{place:<9} {case:<6} {sizes[0]:>5} x {sizes[1]:>11,}  {columns}", flush=True)
    if not options.quick:
        print("    medians: " + ", ".join(f"{name} {statistics.median(t):.2f} s" for name, t in seconds.items()))
        print("    limit: " + limit.describe(), flush=True)


def compare(place, case, options):
    files, size = CASES[case]
    files = max(2, int(files * options.scale)) if files > 4 else files
    size = size if files > 4 else int(size * options.scale)
    with contextlib.ExitStack() as stack:
        folder = tempfile.mkdtemp(dir=options.root)
        stack.callback(shutil.rmtree, folder, ignore_errors=True)
        card, *drives = PLACES[place](Places(folder, stack, options.scale), options)
        card += "/card"
        make_card(card, files, size)
        make_file(f"{card}.bytes", files * size)
        limit = Limit(options.limit, place == "tmpfs", options.quick)
        limit.search(card, drives, lambda cached: prepare(drives, cached))
        seconds, processor = rounds_of(limit, card, drives, options)
        peers = [seconds[name] for name in options.peers]
        figures = [
            ratio(seconds["ours"], peers),
            ratio(seconds["ours"], [seconds["limit"]]),
            ratio(processor["ours"], [processor[name] for name in options.peers]),
            ratio(seconds["resumed"], [seconds["xxhsum"]]),
            ratio(seconds["resumed, read once"], [seconds["xxhsum"]]),
        ]
        print_figures(place, case, (files, size), figures, seconds, limit, options)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawTextHelpFormatter)
    parser.add_argument("program")
    parser.add_argument("--quick", action="store_true", help="rough figures of a few cases in two minutes")
    parser.add_argument("--case", action="append", choices=CASES)
    parser.add_argument("--place", action="append", choices=PLACES)
    parser.add_argument("--rounds", type=int)
    parser.add_argument("--scale", type=float)
    parser.add_argument("--limit", help="LimitBenchmark; usually that of the program's build")
    parser.add_argument("--fault-fs", help="the file system of the tests, for drives with latency")
    parser.add_argument("--root", default="/var/tmp", help="a folder on the disk to measure")
    options = parser.parse_args()
    every = [place for place in PLACES if place != "latency" or options.fault_fs]
    usual = QUICK if options.quick else {"scale": 1.0, "rounds": 3, "place": every, "case": list(CASES)}
    for name, value in usual.items():
        if not getattr(options, name):
            setattr(options, name, value)
    if os.geteuid() != 0:
        sys.exit("The comparison with other tools needs root: it drops caches and mounts drives.")
    clone_new_namespace = 0x00020000
    if ctypes.CDLL(None, use_errno=True).unshare(clone_new_namespace) != 0:
        sys.exit("No private mount namespace is to be had here: " + os.strerror(ctypes.get_errno()))
    run(["mount", "--make-rprivate", "/"])
    options.program = os.path.abspath(options.program)
    options.peers = [name for name in PEERS if not options.quick or name != SLOWEST_PEER]
    build = os.path.dirname(os.path.dirname(options.program))
    options.limit = options.limit or f"{build}/benchmarks/LimitBenchmark"
    print_headings(options)
    for place in options.place:
        for case in options.case:
            compare(place, case, options)


if __name__ == "__main__":
    main()
