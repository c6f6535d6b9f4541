"""The machine with its cards and drives, as the cases use them."""

import contextlib
import io
import os
import shlex
import tarfile

import card
import drives
from evidence import Evidence
from machine import LabError, Machine
from usb import Ports

HERE = os.path.dirname(os.path.abspath(__file__))


class Bench:
    def __init__(self, root, work):
        self.work = work
        self.machine = Machine(root, work)
        self.ports = None
        self.cards = {}
        self.in_use = []

    def start(self, package):
        """Boots and installs; answers how many seconds the boot took."""
        seconds = self.machine.boot()
        self.ports = Ports(f"{self.work}/qmp")
        with open(package, "rb") as file:
            self.machine.run("cat >/root/product.deb && dpkg -i /root/product.deb", given=file.read(), limit=300)
        for tool in ("look", "look-cuts"):
            with open(f"{HERE}/{tool}.sh", "rb") as file:
                place = f"/usr/local/bin/{tool}"
                self.machine.run(f"cat >{place} && chmod +x {place}", given=file.read())
        return seconds

    def end(self):
        self.machine.end()

    def card(self, system, name, files):
        """A card with FILES, plugged in and mounted; the same one each time, for it is only ever read."""
        key = name + system.name
        if key not in self.cards:
            reader = drives.Drive(self.machine, self.ports, key, f"{self.work}/{key}.img", "card")
            drives.make(reader, system, "A001")
            place = shlex.quote(reader.mount())
            self.machine.run(f"tar --no-same-owner --no-same-permissions -C {place} -xf -", user=True,
                             given=card.packed(files), limit=120)
            reader.remount()
            self.cards[key] = reader
        return self.cards[key]

    def drive(self, system, name="drive"):
        """A new drive with nothing on it, not plugged in."""
        blank = f"{self.work}/blank-{system.name}.img"
        if not os.path.exists(blank):
            maker = drives.Drive(self.machine, self.ports, "blank" + system.name, blank, "drive")
            try:
                drives.make(maker, system, "DRIVE")
                maker.pull()
            except LabError:
                os.remove(blank)
                raise
        image = f"{self.work}/{name}.img"
        with contextlib.suppress(FileNotFoundError):
            os.remove(image)
        drives.copy_sparse(blank, image)
        new = drives.Drive(self.machine, self.ports, name, image, "drive")
        self.in_use.append(new)
        return new

    def look(self, folder):
        """What FOLDER holds, as seen by the user."""
        told = self.machine.run(f"out=$(mktemp -d) && look {shlex.quote(folder)} $out && tar -C $out -cf - .",
                                user=True, limit=180)
        with tarfile.open(fileobj=io.BytesIO(told)) as tar:
            return Evidence.of(tar)

    def release(self):
        """Every drive that a case plugged in is pulled, however it ended; cards stay."""
        for drive in self.in_use:
            if drive.plugged:
                with contextlib.suppress(LabError):
                    drive.pull()
        self.in_use.clear()
