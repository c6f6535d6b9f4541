"""What a power cut can leave of a drive, made from the recorded writes of one run.

A recording is QEMU's (blklogwrites): a header of one sector, then for each request a sector that says what it
was, and what it wrote. What was flushed before a cut is there; of what was written after the last flush, any
part may be."""

import struct
from dataclasses import dataclass

from drives import copy_extents

SECTOR = 512
MAGIC = 0x6A736677736872
FLUSH, FUA, DISCARD = 1, 2, 4


@dataclass(frozen=True)
class Request:
    sector: int
    sectors: int
    flags: int
    data: int  # where in the recording, none for a discard


class Recording:
    """The requests that reached a drive until END, the recording's size at that moment."""

    def __init__(self, base, log, end):
        self.base = base
        self.log = log
        self.requests = list(requests(log, end))
        self.flushes = [i for i, request in enumerate(self.requests) if request.flags & FLUSH]

    def write_cut(self, image, offset, cut, keep, chance):
        """The drive's image to OFFSET of IMAGE, as it is when the power goes before request CUT and each of the
        requests that were not flushed had the chance KEEP to reach the medium. Answers how many did not."""
        lost = 0
        flushed = max((i for i in self.flushes if i < cut), default=-1)
        with open(self.base, "rb") as base:
            copy_extents(base, image, offset)
        with open(self.log, "rb") as log:
            for number, request in enumerate(self.requests[:cut]):
                if number <= flushed or request.flags & FUA or chance.random() < keep:
                    apply(request, log, image, offset)
                elif request.sectors:
                    lost += 1
        return lost


def requests(log, end):
    with open(log, "rb") as file:
        magic, version, _, size = struct.unpack("<QQQI", file.read(28))
        assert (magic, version, size) == (MAGIC, 1, SECTOR), "not a recording"
        at = SECTOR
        while at + SECTOR <= end:
            file.seek(at)
            sector, sectors, flags, _ = struct.unpack("<QQQQ", file.read(32))
            at += SECTOR
            written = 0 if flags & DISCARD else sectors * SECTOR
            if at + written > end:
                return  # still under way at that moment
            yield Request(sector, sectors, flags, at)
            at += written


def apply(request, log, image, offset):
    image.seek(offset + request.sector * SECTOR)
    if request.flags & DISCARD:
        image.write(bytes(request.sectors * SECTOR))
    elif request.sectors:
        log.seek(request.data)
        image.write(log.read(request.sectors * SECTOR))

