"""The power is cut at random moments of one recorded offload, and at its end."""

import collections
import filecmp
import io
import os
import random
import re
import shlex
import tarfile

import card
import cuts
import drives
from cases.finding import Finding
from evidence import Evidence
from machine import LabError
from offload import FOLDER, offload

CUTS = 20
SMALL = 16  # sectors
KEPT = (0.0, 0.5, 0.9, 1.0)  # how likely what was not flushed is there all the same
NO_COMPLAINT = ("fsck.", "exfatprogs", "e2fsck", "/dev/", "Pass ", "Leaving ", "Phase ", "No modify", "Checking ",
                "Opening ", "UUID", "There are differences", "This is mostly")
MOUNTED = {"vfat": "utf8=1,shortname=mixed", "exfat": "iocharset=utf8"}


def power_cuts(bench, system, seed):
    files = card.contents(clips=3, photos=40)
    truth = card.sums(files)
    finding = Finding(f"{len(truth)} files to {system.name}, power cut at {CUTS} moments and at the verdict "
                      f"(seed {seed})")
    recording, began, told = record(bench, system, files)
    finding.wrong += told.shortcomings(truth)
    batch, moments = write_batch(bench, recording, began, random.Random(seed))
    images = look(bench, system, batch, len(moments))
    judge_middle(finding, system, images[:-1], truth)
    judge_end(finding, images[-1], truth, told.verified(truth, 0))
    finding.notes.append(checked(images))
    return finding


def record(bench, system, files):
    """One offload; answers its recording until the verdict, the request it began with, and what it said."""
    source = bench.card(drives.FILE_SYSTEMS["exfat"], "card", files)
    drive = bench.drive(system)
    base, log = f"{bench.work}/base.img", f"{bench.work}/recording"
    drives.copy_sparse(drive.image, base)
    open(log, "wb").close()  # QEMU writes over it, but does not make it
    drive.plug(log)
    drive.mount()
    begin = os.path.getsize(log)
    told = offload(bench.machine, source.place, drive.place)
    end = os.path.getsize(log)
    drive.pull()
    check_whole(cuts.Recording(base, log, os.path.getsize(log)), drive.image)
    return cuts.Recording(base, log, end), sum(1 for _ in cuts.requests(log, begin)), told


def check_whole(recording, image):
    """A recording that does not lead to what is on the drive would prove nothing."""
    replayed = f"{image}.replayed"
    with open(replayed, "wb") as copy:
        recording.write_cut(copy, 0, len(recording.requests), 1.0, random.Random(0))
        copy.truncate(drives.SIZE)
    same = filecmp.cmp(replayed, image, shallow=False)
    os.remove(replayed)
    if not same:
        raise LabError("The recorded writes do not lead to what is on the drive.")


def write_batch(bench, recording, began, chance):
    """All images one after the other, so that they are plugged in as one. The last one is cut at the verdict and
    has only what was flushed."""
    last = len(recording.requests)
    moments = [(cut, chance.choice(KEPT)) for cut in chosen(recording, began, chance)] + [(last, 0.0)]
    batch = f"{bench.work}/batch.img"
    with open(batch, "wb") as image:
        image.truncate(len(moments) * drives.SIZE)
        for number, (cut, keep) in enumerate(moments):
            recording.write_cut(image, number * drives.SIZE, cut, keep, chance)
    return batch, moments


def chosen(recording, began, chance):
    """Half of the cuts are anywhere. Most of a run is the content of clips, in which little can break, so the other
    half is where little is written: names, sizes and allocation."""
    anywhere = range(began, len(recording.requests))
    small = [i for i in anywhere if 0 < recording.requests[i].sectors <= SMALL] or anywhere
    half = CUTS // 2
    return sorted([chance.choice(anywhere) for _ in range(half)] + [chance.choice(small) for _ in range(half)])


def look(bench, system, batch, count):
    """The evidence of each image, with its checker's status and words."""
    drive = drives.Drive(bench.machine, bench.ports, "batch", batch, "drive")
    bench.in_use.append(drive)
    drive.plug(partitioned=False)
    words = [drive.whole(), str(count), str(drives.SIZE), str(drives.START), system.name,
             MOUNTED.get(system.name, "defaults"), FOLDER, system.check]
    told = bench.machine.run("look-cuts " + shlex.join(words), limit=600)
    with tarfile.open(fileobj=io.BytesIO(told)) as tar:
        names = set(tar.getnames())
        images = []
        for number in range(count):
            refused = f"./{number}/unmountable"
            # The words of mount, where there are no files to look at.
            found = text(tar, refused) if refused in names else Evidence.of(tar, f"{number}/")
            images.append((found, int(text(tar, f"./{number}/check-status")), text(tar, f"./{number}/check")))
    return images


def text(tar, name):
    return tar.extractfile(name).read().decode(errors="replace").strip()


def judge_middle(finding, system, images, truth):
    """A final name has the original's bytes. Where a move is not atomic, the one file that is being moved at the
    moment of the cut may be hurt, which is only counted."""
    hurt, strays, broken = 0, 0, []
    for number, (found, _, _) in enumerate(images):
        if isinstance(found, str):
            finding.wrong.append(f"cut {number} cannot be mounted: {found}")
            continue
        wrong = found.wrong(truth) + found.broken_records()
        if system.atomic:
            wrong += found.strays(truth)
        strays += len(found.strays(truth))
        if len(wrong) == 1 and not system.atomic:
            hurt += 1
        elif wrong:
            broken.append(f"cut {number}: {len(wrong)} of {len(found.finals())}, as {wrong[0]}")
    finding.expect("cuts that left wrong final names", broken)
    if not system.atomic:
        finding.notes.append(f"{hurt} cuts hurt nothing but the file that was being moved; "
                             f"{strays} names in all that nobody gave")


def judge_end(finding, image, truth, verified):
    found = image[0]
    if isinstance(found, str):
        finding.wrong.append(f"cut at the verdict: cannot be mounted: {found}")
        return
    finding.expect("cut at the verdict, missing", found.missing(verified))
    finding.expect("cut at the verdict, wrong", found.wrong(truth) + found.strays(truth))
    finding.expect("cut at the verdict, records", found.broken_records() + found.missing_records(verified))


def checked(images):
    """What the checker says, of which nothing is a failure by itself: a dirty mark and lost clusters are what a power
    cut leaves of a file system without a journal."""
    said = collections.Counter(line for _, status, words in images if status for line in complaints(words))
    clean = sum(1 for _, status, _ in images if status == 0)
    most = "".join(f", {count} × “{line}”" for line, count in said.most_common(4))
    return f"checker: {clean} of {len(images)} clean{most}"


def complaints(words):
    """The lines without their numbers; indented ones explain others."""
    lines = {re.sub(r"[0-9]+", "n", line).strip() for line in words.splitlines() if not re.match(r"\s|$", line)}
    return {line for line in lines if not line.startswith(NO_COMPLAINT)}
