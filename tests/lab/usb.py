"""What is plugged into the machine's USB ports: cards and drives come, become slow, and are pulled without a
word, as by a hand. QEMU is told so through its control socket (QMP)."""

import json
import socket

from machine import LabError, wait_until

LOOKS = {  # what a device says of itself: a reader with a card in it, or a portable drive
    "card": {"removable": True, "vendor": "Generic", "product": "Card_Reader"},
    "drive": {"removable": False, "vendor": "Maker", "product": "Portable"},
}
ANSWER_LIMIT = 60  # seconds


class Ports:
    def __init__(self, path):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.settimeout(ANSWER_LIMIT)
        self.socket.connect(path)
        self.lines = self.socket.makefile("r")
        self.lines.readline()  # the greeting
        self.do("qmp_capabilities")

    def do(self, command, **arguments):
        request = json.dumps({"execute": command, "arguments": arguments})
        try:
            self.socket.sendall(request.encode() + b"\n")
            return self.answer(command)
        except TimeoutError:
            raise LabError(f"QEMU did not answer to {command} within {ANSWER_LIMIT} s.") from None
        except (OSError, ValueError) as error:
            raise LabError(f"QEMU has gone: {error}") from None

    def answer(self, command):
        while True:
            answer = json.loads(self.lines.readline())
            if "error" in answer:
                raise LabError(f"QEMU says to {command}: {answer['error']['desc']}")
            if "return" in answer:  # everything else is news that nobody asked for
                return answer["return"]

    def plug(self, name, image, kind, log=None):
        """IMAGE as a card or drive. Every write and flush is also recorded in LOG, if there is one."""
        # What the machine flushes need not reach this computer's own disk, which keeps its power.
        cache = {"no-flush": True}
        disk = {"driver": "raw", "node-name": f"{name}-disk", "cache": cache,
                "file": {"driver": "file", "filename": image, "locking": "off", "cache": cache}}
        if log:
            disk = {"driver": "blklogwrites", "node-name": f"{name}-log", "file": disk, "log-sector-size": 512,
                    "log": {"driver": "file", "filename": log, "locking": "off", "cache": cache}}
        self.do("object-add", **{"qom-type": "throttle-group", "id": f"{name}-speed"})
        self.do("blockdev-add", **{"driver": "throttle", "node-name": name, "throttle-group": f"{name}-speed",
                                   "file": disk})
        self.do("device_add", driver="usb-bot", id=f"{name}-usb", bus="xhci.0", serial=serial(name))
        self.do("device_add", driver="scsi-hd", id=f"{name}-scsi", bus=f"{name}-usb.0", drive=name, lun=0,
                serial=serial(name), **LOOKS[kind])
        # The machine sees a reader only once what is in it is complete.
        self.do("qom-set", path=f"/machine/peripheral/{name}-usb", property="attached", value=True)

    def pull(self, name):
        """From one moment to the next; what the machine had not sent yet does not reach the image."""
        self.do("device_del", id=f"{name}-usb")
        wait_until(lambda: not self.holds(name), 30, f"QEMU did not let go of {name}")
        self.do("blockdev-del", **{"node-name": name})
        self.do("object-del", id=f"{name}-speed")

    def holds(self, name):
        return any(entry.get("qdev", "").endswith(f"{name}-scsi") for entry in self.do("query-block"))

    def moved(self, name):
        """Bytes read from and written to it since it was plugged in."""
        for entry in self.do("query-blockstats"):
            if entry.get("node-name") == name:
                return entry["stats"]["rd_bytes"] + entry["stats"]["wr_bytes"]
        raise LabError(f"There is no {name} plugged in.")

    def slow(self, name, speed):
        """Bounds its speed to SPEED bytes a second, so that there is a middle of a run to pull it in."""
        self.do("qom-set", path=f"/objects/{name}-speed", property="limits", value={"bps-total": speed})


def serial(name):
    return "LAB" + name.upper()


def link(name, kind):
    """The name in /dev of the device's one partition."""
    looks = LOOKS[kind]
    return f"/dev/disk/by-id/usb-{looks['vendor']}_{looks['product']}_{serial(name)}-0:0-part1"
