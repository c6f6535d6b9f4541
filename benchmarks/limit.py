"""The least time that anybody could need to bring a card's bytes onto drives with the full guarantee, as
LimitBenchmark finds it. Nobody knows beforehand which way of asking the drives is the fastest, so many are
tried once with a part of the bytes, and the best few run as often as everybody else."""

import os
import subprocess
import sys

KIB, MIB = 1 << 10, 1 << 20
# Chosen one after the other: the others are meanwhile the best found so far, or the first named here.
WAYS = {
    "write": ["reserve", "extend", "cached"],
    "parts": [1, 4, 16],  # one is read back while the next is written
    "request": [4 * MIB, 256 * KIB, 1 * MIB, 16 * MIB],
    "depth": [2, 1, 4, 8],
}
# Where the drives are memory, their bytes may also be looked at where they are.
READS = {"read": ["direct", "mapped"]}
QUICK_WAYS = {"write": ["reserve", "extend"], "parts": [16, 1], "request": [4 * MIB], "depth": [2]}
TRIAL = 256 * MIB  # bytes
KEPT = 3


class Limit:
    def __init__(self, program, is_memory, is_quick):
        self.program = program
        ways = QUICK_WAYS if is_quick else WAYS
        self.is_memory = is_memory
        self.ways = {**READS, **ways} if is_memory else ways
        self.kept = KEPT - 1 if is_quick else KEPT
        self.plans = []
        self.note = ""  # what the program says about the file systems

    def search(self, card, drives, prepare):
        """Finds the best plans. Before each run `prepare` is called with the bytes of cache that it fills."""
        seconds = {}
        plan = tuple(values[0] for values in self.ways.values())
        for place, values in enumerate(self.ways.values()):
            for value in values:
                trial = (*plan[:place], value, *plan[place + 1 :])
                if trial not in seconds:
                    seconds[trial] = self.seconds(trial, card, drives, prepare, TRIAL)
            plan = min(seconds, key=seconds.get)
        self.plans = sorted(seconds, key=seconds.get)[: self.kept]

    def run(self, card, drives, prepare):
        """The seconds of the fastest plan."""
        return min(self.seconds(plan, card, drives, prepare) for plan in self.plans)

    def describe(self):
        plans = [" ".join(f"{name}={value}" for name, value in zip(self.ways, plan)) for plan in self.plans]
        return "; ".join(plans) + self.note

    def seconds(self, plan, card, drives, prepare, most=None):
        original = f"{card}.bytes"
        count = min(os.stat(original).st_size, most or sys.maxsize)
        # Direct requests use the program's own memory, which it touches before its clock starts.
        prepare(2 * count if self.is_memory or "cached" in plan else 0)
        options = [f"--{name}={value}" for name, value in zip(self.ways, plan)]
        command = [self.program, *options, f"--bytes={count}", original, *drives]
        answer = subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout
        seconds, self.note = answer.strip().split(" s", 1)
        return float(seconds)
