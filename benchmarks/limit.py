"""The least time that anybody could need to bring a card's bytes onto drives with the full guarantee, as
LimitBenchmark finds it. Nobody knows beforehand which way of asking the drives is the fastest, so many are
tried once with a part of the bytes, and the best few run as often as everybody else."""

import subprocess

KIB, MIB = 1 << 10, 1 << 20
# In the order in which they are chosen, each beside the best of those before it and the first of those
# behind.
WAYS = {
    "write": ["reserve", "extend", "cached"],
    "parts": [1, 4, 16],  # one is read back while the next is written
    "request": [4 * MIB, 256 * KIB, 1 * MIB, 16 * MIB],
    "depth": [2, 1, 4, 8],
}
# Where the drives are memory, their bytes may also be looked at where they are.
READS = {"read": ["direct", "mapped"]}
QUICK_WAYS = {"write": ["reserve", "extend"], "parts": [1, 16], "request": [4 * MIB, 1 * MIB], "depth": [2, 1]}
TRIAL = 256 * MIB  # bytes
KEPT = 3


class Limit:
    def __init__(self, program, is_memory, is_quick):
        self.program = program
        ways = QUICK_WAYS if is_quick else WAYS
        self.ways = {**READS, **ways} if is_memory else ways
        self.kept = KEPT - 1 if is_quick else KEPT
        self.plans = []
        self.note = ""  # what the program says about the file systems

    def search(self, card, drives, prepare):
        """Finds the best plans; `prepare` is called before each trial."""
        seconds = {}
        plan = tuple(values[0] for values in self.ways.values())
        for place, values in enumerate(self.ways.values()):
            for value in values:
                trial = (*plan[:place], value, *plan[place + 1 :])
                if trial not in seconds:
                    prepare()
                    seconds[trial] = self.seconds(trial, card, drives, TRIAL)
            plan = min(seconds, key=seconds.get)
        self.plans = sorted(seconds, key=seconds.get)[: self.kept]

    def run(self, card, drives, prepare):
        """The seconds of the fastest plan."""
        seconds = []
        for plan in self.plans:
            prepare()
            seconds.append(self.seconds(plan, card, drives))
        return min(seconds)

    def describe(self):
        plans = [" ".join(f"{name}={value}" for name, value in zip(self.ways, plan)) for plan in self.plans]
        return "; ".join(plans) + self.note

    def seconds(self, plan, card, drives, count=None):
        options = [f"--{name}={value}" for name, value in zip(self.ways, plan)]
        if count:
            options.append(f"--bytes={count}")
        command = [self.program, *options, f"{card}.bytes", *drives]
        answer = subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout
        seconds, self.note = answer.strip().split(" s", 1)
        return float(seconds)
