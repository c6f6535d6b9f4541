#!/usr/bin/env python3
"""lab.py [--list] [--root FOLDER --package PACKAGE] [NAME...]

Cards and drives of the kernel's own file systems at an emulated machine. Boots the disk that root.sh made in
FOLDER, installs PACKAGE, tries the cases of those names (all of them otherwise; "cuts" is every case that begins
so), and prints what was found. Ends with 1 if anything is wrong. ZEPHRIMARK_SEED=n chooses the power cuts.
"""

import argparse
import os
import shutil
import signal
import sys
import tempfile
import time

from bench import Bench
from cases.finding import Finding
from cases.pairs import pair
from cases.power_cuts import power_cuts
from cases.pulled_after import pulled_after
from cases.pulled_midway import pulled_midway
from drives import FILE_SYSTEMS
from machine import LabError
from table import Row, table

PORTABLE = [FILE_SYSTEMS[name] for name in ("exfat", "vfat", "ext4")]
SHARES = {"early": 0.3, "late": 0.7}


def all_cases(seed):
    """Name: what tries it on a bench."""
    cases = {f"pulled-{system.name}": lambda bench, system=system: pulled_after(bench, system) for system in PORTABLE}
    for system in FILE_SYSTEMS.values():
        cases[f"cuts-{system.name}"] = lambda bench, system=system: power_cuts(bench, system, seed)
    for system in PORTABLE:
        for when, share in SHARES.items():
            cases[f"midway-{system.name}-{when}"] = (
                lambda bench, system=system, share=share: pulled_midway(bench, system, share))
    for source in PORTABLE:
        for target in PORTABLE:
            cases[f"pair-{source.name}-{target.name}"] = (
                lambda bench, source=source, target=target: pair(bench, source, target))
    return cases


def chosen(cases, names):
    for name in names:
        if not any(matches(case, name) for case in cases):
            sys.exit(f"There is no case {name}; --list lists them.")
    return {case: attempt for case, attempt in cases.items()
            if not names or any(matches(case, name) for name in names)}


def matches(case, name):
    return case == name or case.startswith(name + "-")


def attempted(bench, name, attempt):
    print(f"{name} …", file=sys.stderr, flush=True)
    began = time.monotonic()
    try:
        finding = attempt(bench)
    except LabError as error:
        finding = Finding("not to its end", [str(error)])
    bench.release()
    return Row(name, finding, time.monotonic() - began)


def run(cases, root, package):
    work = tempfile.mkdtemp(prefix="zephrimark-lab.")
    bench = Bench(root, work)
    try:
        seconds = bench.start(package)
        print(f"The machine answered after {seconds:.0f} s.", file=sys.stderr)
        return [attempted(bench, name, attempt) for name, attempt in cases.items()]
    finally:
        bench.end()
        shutil.rmtree(work)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("names", nargs="*", metavar="NAME")
    parser.add_argument("--list", action="store_true")
    parser.add_argument("--root")
    parser.add_argument("--package")
    arguments = parser.parse_args()
    cases = chosen(all_cases(int(os.environ.get("ZEPHRIMARK_SEED", "1"))), arguments.names)
    if arguments.list:
        print("\n".join(cases))
        return
    # Whoever stops this stops the machine.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    try:
        rows = run(cases, arguments.root, arguments.package)
    except LabError as error:
        sys.exit(str(error))
    print(table(rows))
    sys.exit(1 if any(row.finding.wrong for row in rows) else 0)


main()
