"""The emulated machine: boots, runs commands, ends. It has no network but the way in for commands."""

import contextlib
import os
import shlex
import socket
import subprocess
import time

BOOT_LIMIT = 180  # seconds


class LabError(Exception):
    """Why a case could not be tried to its end, as a sentence."""


class Machine:
    """One boot of the disk that root.sh made. What it writes to that disk is gone with it."""

    def __init__(self, root, work):
        self.root = root
        self.work = work
        self.port = free_port()
        self.qemu = None
        self.entrance = None

    def boot(self):
        """Starts the machine and answers how many seconds it took until it ran a command."""
        began = time.monotonic()
        with open(f"{self.work}/qemu.log", "w") as log:
            self.qemu = subprocess.Popen(self.qemu_command(), stdin=subprocess.DEVNULL, stdout=log, stderr=log)
        while not self.answers():
            self.check_alive()
            if time.monotonic() - began > BOOT_LIMIT:
                raise LabError(f"The machine did not answer within {BOOT_LIMIT} s. Its console:\n{self.console()}")
            time.sleep(0.2)
        # One connection for everything: in this slow machine a handshake takes longer than most commands.
        self.entrance = subprocess.Popen(self.ssh("-M", "-N"), stdin=subprocess.DEVNULL)
        wait_until(lambda: os.path.exists(f"{self.work}/ssh"), 30, "The machine's entrance did not open")
        return time.monotonic() - began

    def qemu_command(self):
        # Emulated unless asked for otherwise: where machines are nested, /dev/kvm may open and then hang.
        fast = os.environ.get("ZEPHRIMARK_KVM")
        accelerator, processor = ("kvm", "host") if fast else ("tcg,thread=multi,tb-size=512", "max,-svm")
        kernel = "console=ttyS0 net.ifnames=0 mitigations=off tsc=reliable nowatchdog systemd.show_status=0"
        network = f"user,id=net,restrict=on,hostfwd=tcp:127.0.0.1:{self.port}-:22"
        return ["qemu-system-x86_64", "-machine", "q35,usb=off,sata=off", "-accel", accelerator, "-cpu", processor,
                "-smp", "2", "-m", "2048", "-nodefaults", "-display", "none", "-vga", "none",
                "-kernel", f"{self.root}/vmlinux", "-initrd", f"{self.root}/initrd", "-append", kernel,
                "-serial", f"file:{self.work}/console", "-qmp", f"unix:{self.work}/qmp,server=on,wait=off",
                "-drive", f"file={self.root}/root.img,format=raw,if=virtio,snapshot=on,cache=unsafe",
                "-netdev", network, "-device", "virtio-net-pci,netdev=net,romfile=",
                "-device", "virtio-rng-pci", "-device", "qemu-xhci,id=xhci,p2=8,p3=8"]

    def ssh(self, *words):
        options = ("StrictHostKeyChecking=no", "UserKnownHostsFile=/dev/null", "ConnectTimeout=5", "BatchMode=yes")
        return ["ssh", "-q", "-F", "none", "-i", f"{self.root}/key", "-p", str(self.port), "-S", f"{self.work}/ssh",
                *(word for option in options for word in ("-o", option)), "root@127.0.0.1", *words]

    def answers(self):
        with contextlib.suppress(subprocess.TimeoutExpired):
            return subprocess.run(self.ssh("true"), stdin=subprocess.DEVNULL, timeout=20, check=False).returncode == 0
        return False

    def console(self):
        with open(f"{self.work}/console", errors="replace") as console:
            return "".join(console.readlines()[-20:])

    def check_alive(self):
        if self.qemu.poll() is not None:
            with open(f"{self.work}/qemu.log") as log:
                raise LabError(f"The machine ended with {self.qemu.returncode}: {log.read().strip()}")

    def start(self, command, user=False):
        """A process that is COMMAND, for the shell: as root, or as the user at the screen."""
        command = f"in-session bash -c {shlex.quote(command)}" if user else command
        return subprocess.Popen(self.ssh(command), stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE)

    def attempt(self, command, user=False, given=b"", limit=60):
        """Status, output and error output of COMMAND, which has LIMIT seconds."""
        process = self.start(command, user)
        try:
            output, errors = process.communicate(given, timeout=limit)
        except subprocess.TimeoutExpired:
            process.kill()
            process.communicate()
            self.check_alive()
            raise LabError(f"It did not end within {limit} s: {command}") from None
        return process.returncode, output, errors

    def run(self, command, user=False, given=b"", limit=60):
        """The output of COMMAND, which must succeed."""
        status, output, errors = self.attempt(command, user, given, limit)
        if status != 0:
            self.check_alive()
            raise LabError(f"Status {status} of {command}: {errors.decode(errors='replace').strip()}")
        return output

    def end(self):
        """Nothing in it is worth an orderly end, which can take minutes on a busy disk."""
        for process in (self.entrance, self.qemu):
            if process is not None:
                process.kill()
                process.wait()


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def wait_until(holds, limit, sentence):
    """Asks again and again; after LIMIT seconds, SENTENCE is what is wrong."""
    end = time.monotonic() + limit
    while not holds():
        if time.monotonic() > end:
            raise LabError(f"{sentence} within {limit} s.")
        time.sleep(0.02)
