"""One of two drives is pulled in the middle of copying."""

import os

import card
import drives
from cases.finding import Finding
from machine import LabError, wait_until
from offload import FOLDER, finish, offload, start

MIB = 1 << 20
SPEED = 2 * MIB  # bytes a second of the drive that is pulled
DISCONNECTED = "The drive was disconnected"
# What the first error is called that comes before the kernel has noticed that the drive is gone.
HONEST = (DISCONNECTED, "The drive reported a write error")


def pulled_midway(bench, system, share):
    """Pulled when SHARE of the work on it is done."""
    files = card.contents(clips=3, photos=40)
    truth = card.sums(files)
    source = bench.card(drives.FILE_SYSTEMS["exfat"], "card", files)
    healthy, pulled = bench.drive(drives.FILE_SYSTEMS["ext4"], "healthy"), bench.drive(system, "pulled")
    places = [healthy.plug_again(), pulled.plug_again()]
    finding = Finding(f"{len(truth)} files to two drives, the {system.name} one pulled at {share:.0%}, run again")

    bench.ports.slow(pulled.name, SPEED)
    before = bench.ports.moved(pulled.name)
    # Written once and read back once.
    wanted = share * 2 * card.total_bytes(files)
    process = start(bench.machine, source.place, *places)
    wait_until(lambda: process.poll() is not None or bench.ports.moved(pulled.name) - before > wanted, 120,
               "The drive was not written to that far")
    if process.poll() is not None:
        raise LabError("The offload ended before the drive was pulled.")
    bench.ports.pull(pulled.name)
    told = finish(process)
    pulled.gone()
    check_told(finding, told, truth)
    check_healthy(finding, bench.look(f"{places[0]}/{FOLDER}"), truth)

    places[1] = pulled.plug_again()
    found = bench.look(f"{places[1]}/{FOLDER}")
    verified = told.verified(truth, 1)
    finding.expect(f"of {len(verified)} told verified on the pulled drive, missing", found.missing(verified))
    finding.expect("wrong content on the pulled drive", found.wrong(truth))
    if system.atomic:
        finding.expect("names that nobody gave on the pulled drive", found.strays(truth))
    finding.expect("broken records on the pulled drive", found.broken_records())

    again = offload(bench.machine, source.place, *places)
    finding.wrong += [f"second run: {wrong}" for wrong in again.shortcomings(truth)]
    for place in places:
        found = bench.look(f"{place}/{FOLDER}")
        finding.expect("missing after the second run", found.missing(truth))
        left = found.temporaries()
        if not system.atomic and place == places[1]:
            # A move that was cut in two leaves both names, of one content. To remove one would take the content
            # from the other; that is for the file system's checker.
            finding.notes.append(f"{len(left)} temporary names left beside their copies after the second run")
            left = [path for path in left if final(path) not in truth]
        finding.expect("temporary copies after the second run", left)
        finding.expect("records after the second run", found.missing_records(truth) + found.broken_records())
    return finding


def final(temporary):
    """The name that a temporary copy is to have."""
    folder, name = os.path.split(temporary)
    return os.path.join(folder, name[1:].removesuffix(".zmpart"))


def check_told(finding, told, truth):
    if told.status != 1:
        finding.wrong.append(f"exit status {told.status} instead of 1")
    reasons, verified = told.reasons(1), len(told.verified(truth, 1))
    if told.result["destinations"][1]["verified"] != verified:
        finding.wrong.append(f"{told.result['destinations'][1]['verified']} and {verified} told verified at once")
    finding.notes.append(f"{verified} verified on the pulled one, " +
                         ", ".join(f"{count} × “{reason}”" for reason, count in reasons.items()))
    if told.result["destinations"][1]["error"] not in HONEST:
        finding.wrong.append(f"the drive was given up with {told.result['destinations'][1]['error']}")
    if told.result["destinations"][0]["verified"] != len(truth):
        finding.wrong.append(f"healthy drive: {told.reasons(0)}")


def check_healthy(finding, found, truth):
    finding.expect("missing on the healthy drive", found.missing(truth))
    finding.expect("wrong content on the healthy drive", found.wrong(truth))
    finding.expect("records on the healthy drive", found.broken_records() + found.missing_records(truth))
