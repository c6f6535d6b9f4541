"""Cards and drives with a file system, in images: made by the machine, plugged in, mounted as a desktop does."""

import os
import re
import shlex
from dataclasses import dataclass

import usb
from machine import LabError

MIB = 1 << 20
SIZE = 320 * MIB  # the least that XFS can be made on; nearly all of it is a hole
START = 1 * MIB  # of the one partition
GIVEN = "mount {{device}} /mnt && {}chown user: /mnt && umount /mnt"  # where files have owners


@dataclass(frozen=True)
class FileSystem:
    """How one is made and checked ({device} is its partition), and the finest step of its modification dates."""

    name: str
    partition: str  # its type in the partition table
    make: str
    check: str
    step: float  # seconds
    atomic: bool = True  # a move shows the old name or the new one after a power cut, whole


FILE_SYSTEMS = {
    system.name: system
    for system in (
        FileSystem("exfat", "7", "mkfs.exfat -L {label} {device}", "fsck.exfat -n {device}", 0.01),
        FileSystem("vfat", "c", "mkfs.vfat -F 32 -n {label} {device}", "fsck.vfat -n {device}", 2, atomic=False),
        # lost+found is for root alone, which makes a card with it one that cannot be read as a whole.
        FileSystem("ext4", "83", "mkfs.ext4 -q -L {label} {device} && " + GIVEN.format("rmdir /mnt/lost+found && "),
                   "e2fsck -fn {device}", 1e-6),
        FileSystem("xfs", "83", "mkfs.xfs -q -L {label} {device} && " + GIVEN.format(""),
                   "xfs_repair -n {device}", 1e-6),
        FileSystem("btrfs", "83", "mkfs.btrfs -q -L {label} {device} && " + GIVEN.format(""),
                   "btrfs check {device}", 1e-6),
    )
}


class Drive:
    """A card or drive: plugged in or not, mounted or not."""

    def __init__(self, machine, ports, name, image, kind):
        self.machine = machine
        self.ports = ports
        self.name = name
        self.image = image
        self.kind = kind
        self.device = usb.link(name, kind)
        self.plugged = False
        self.place = None

    def plug(self, log=None, partitioned=True):
        self.ports.plug(self.name, self.image, self.kind, log)
        self.plugged = True
        device = self.device if partitioned else self.whole()
        self.machine.run(f"udevadm wait --timeout=30 --settle {device}")

    def whole(self):
        return self.device.removesuffix("-part1")

    def mount(self):
        """Mounted by udisks2 for the user at the screen, with the options that it has for the file system."""
        # udev knows a device before udisks2 does.
        told = self.machine.run(
            f"for i in $(seq 100); do udisksctl info -b $(readlink -e {self.device}) >/dev/null 2>&1 && break; "
            f"sleep 0.1; done; udisksctl mount -b $(readlink -e {self.device})", user=True).decode()
        found = re.search(r" at (/media/\S+)", told)
        if not found:
            raise LabError(f"udisks2 did not mount {self.name}: {told}")
        self.place = found[1].rstrip(".")
        return self.place

    def unmount(self):
        self.machine.run(f"udisksctl unmount -b $(readlink -e {self.device})", user=True, limit=120)
        self.place = None

    def remount(self):
        """So that what is seen comes from the medium."""
        self.unmount()
        return self.mount()

    def pull(self):
        self.ports.pull(self.name)
        self.gone()

    def gone(self):
        """After it was pulled: waits until the machine has noticed and nothing is mounted from it."""
        self.plugged = False
        self.machine.run(f"udevadm wait --removed --timeout=30 {self.whole()}")
        if self.place:
            place = shlex.quote(self.place)
            self.machine.run(f"for i in $(seq 300); do mountpoint -q {place} || exit 0; sleep 0.1; done; "
                             f"echo 'still mounted after the drive was pulled' >&2; exit 1")
        self.place = None

    def plug_again(self):
        self.plug()
        return self.mount()


def make(drive, system, label):
    """One partition with the file system, on an image that is made anew."""
    with open(drive.image, "wb") as image:
        image.truncate(SIZE)
    drive.plug(partitioned=False)
    table = f"label: dos\\nstart={START // 512},type={system.partition}\\n"
    drive.machine.run(f"printf '{table}' | sfdisk -q --wipe=always {drive.whole()} && "
                      f"udevadm wait --timeout=30 --settle {drive.device}")
    drive.machine.run(system.make.format(label=label, device=drive.device), limit=120)
    drive.machine.run("udevadm settle && sync")


def copy_sparse(source, target):
    """The bytes of an image without its holes, which are nearly all of it."""
    with open(source, "rb") as old, open(target, "wb") as new:
        new.truncate(os.path.getsize(source))
        copy_extents(old, new, 0)


def copy_extents(old, new, offset):
    """To OFFSET of NEW, which has nothing but holes there."""
    end = 0
    size = os.fstat(old.fileno()).st_size
    while end < size:
        try:
            begin = os.lseek(old.fileno(), end, os.SEEK_DATA)
        except OSError:
            return  # only a hole is left
        end = os.lseek(old.fileno(), begin, os.SEEK_HOLE)
        old.seek(begin)
        new.seek(offset + begin)
        while begin < end:
            piece = old.read(min(end - begin, 4 * MIB))
            new.write(piece)
            begin += len(piece)
