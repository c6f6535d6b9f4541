"""Offloads within the machine, by the command line as the user at the screen has it."""

import json
import re
import shlex
import subprocess
from dataclasses import dataclass

from machine import LabError

FOLDER = "o"  # what the offload is called on each drive
LIMIT = 180  # seconds; a run that takes longer hangs


@dataclass(frozen=True)
class Told:
    """What one run said."""

    status: int
    result: dict

    def verified(self, truth, drive):
        """The files that it said are verified on the drive of that number."""
        failed = {item["path"] for item in self.result["failed"] if not item["outcomes"][drive]["verified"]}
        return [path for path in truth if path not in failed]

    def reasons(self, drive):
        """How often it gave each reason for a file of that drive."""
        counts = {}
        for item in self.result["failed"]:
            outcome = item["outcomes"][drive]
            if not outcome["verified"]:
                counts[outcome["reason"]] = counts.get(outcome["reason"], 0) + 1
        return counts

    def shortcomings(self, truth):
        """Why this was not an offload with everything verified on every drive."""
        told = [] if self.status == 0 else [f"exit status {self.status}"]
        for drive, destination in enumerate(self.result["destinations"]):
            if destination["verified"] != len(truth):
                told.append(f"{destination['verified']} of {len(truth)} verified: {self.reasons(drive)}")
        if self.result["unreadable"]:
            told.append(f"{len(self.result['unreadable'])} unreadable on the card")
        return told


def command(source, destinations, *options):
    return shlex.join(["zephrimark", "offload", *options, "--template", FOLDER, source, *destinations])


def start(machine, source, *destinations):
    return machine.start(command(source, destinations, "--quiet", "--json"), user=True)


def finish(process):
    """What a run said that was started; it has LIMIT seconds to come to its end."""
    try:
        output, errors = process.communicate(timeout=LIMIT)
    except subprocess.TimeoutExpired:
        process.kill()
        process.communicate()
        raise LabError(f"The offload did not end within {LIMIT} s.") from None
    lines = [json.loads(line) for line in output.decode().splitlines() if line.startswith("{")]
    results = [line for line in lines if line["type"] == "result"]
    if not results:
        raise LabError(f"The offload ended with {process.returncode} and no result: {errors.decode().strip()}")
    return Told(process.returncode, results[-1])


def offload(machine, source, *destinations):
    return finish(start(machine, source, *destinations))


def resume_shortcomings(machine, truth, source, *destinations):
    """Runs it again, for people: why that was not a run that found every copy in its place."""
    status, output, errors = machine.attempt(command(source, destinations), user=True, limit=LIMIT)
    told = [] if status == 0 else [f"second run: exit status {status}: {errors.decode().strip()[-200:]}"]
    there = [int(count) for count in re.findall(r"(\d+) already there", output.decode())]
    if there != [len(truth)] * len(destinations):
        told.append(f"second run: {there or 'none'} of {len(truth)} already there")
    return told
