#!/usr/bin/python3
"""window.py PROGRAM: offloads a folder with the window on a screen in memory, and reads the screens as
a screen reader does. Everything is private: screen, session bus, settings, runtime folder."""

import os
import pathlib
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time

SKIPPED = 77
# Names differ: Atspi 2.56 calls a push button just a button, and Qt 6.8 tells of one with a menu that it
# has one, which Qt 6.4 does not.
ROLES = {"push button": "button", "push button menu": "button"}
FILES = {"CLIPS/A001.MXF": b"a" * 3_000_000, "CLIPS/A002.MXF": b"b" * 5_000, "NOTES.TXT": b"take 3"}


def skip_without_tools():
    missing = [tool for tool in ("Xvfb", "dbus-run-session") if not shutil.which(tool)]
    try:
        import gi

        gi.require_version("Atspi", "2.0")
    except (ImportError, ValueError):
        missing.append("gir1.2-atspi-2.0 with python3-gi")
    if missing:
        print("Skipped: this needs", ", ".join(missing))
        sys.exit(SKIPPED)


def start_screen():
    """A server and the number of its display. Servers that start or end at the same moment can take the
    socket from each other, so one that cannot be reached is given up for another."""
    for _ in range(5):
        told, tell = os.pipe()
        server = subprocess.Popen(["Xvfb", "-displayfd", str(tell), "-nolisten", "tcp", "-screen", "0", "1280x1024x24"],
                                  pass_fds=[tell], stderr=subprocess.DEVNULL)
        os.close(tell)
        with os.fdopen(told) as answer:
            display = answer.readline().strip()
        # Long enough for another that ends to have taken its sockets away.
        time.sleep(0.3)
        with socket.socket(socket.AF_UNIX) as probe:
            if display and probe.connect_ex("/tmp/.X11-unix/X" + display) == 0 and server.poll() is None:
                return server, display
        server.terminate()
        server.wait()
    raise AssertionError("Xvfb did not start")


def run_on_private_screen(program):
    server, display = start_screen()
    try:
        with tempfile.TemporaryDirectory() as folder:
            private = {"HOME": folder, "XDG_RUNTIME_DIR": folder, "XDG_CONFIG_HOME": folder,
                       "XDG_CACHE_HOME": folder, "DISPLAY": ":" + display, "QT_QPA_PLATFORM": "xcb",
                       "QT_QUICK_BACKEND": "software", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
                       "LANG": "C.UTF-8"}
            command = ["dbus-run-session", "--", sys.executable, __file__, "--inside", program, folder]
            return subprocess.run(command, env={"PATH": os.environ["PATH"], **private}, check=False).returncode
    finally:
        server.terminate()
        server.wait()


class Screen:
    """What assistive technology sees of one launch of the program."""

    def __init__(self, command):
        from gi.repository import Atspi

        # The registry runs before the program looks for it: asked first, it starts.
        Atspi.get_desktop(0).get_child_count()
        self.process = subprocess.Popen(command)

    def application(self):
        from gi.repository import Atspi, GLib

        # What was asked is remembered, and news of it comes only by a loop that nobody runs here.
        while GLib.MainContext.default().iteration(False):
            pass
        desktop = Atspi.get_desktop(0)
        desktop.clear_cache()
        for i in range(desktop.get_child_count()):
            child = desktop.get_child_at_index(i)
            if child is not None and child.get_process_id() == self.process.pid:
                return child
        return None

    def elements(self):
        """The elements that are shown, as (role, name, description, element)."""
        from gi.repository import Atspi, GLib

        found = []

        def collect(element):
            if element is None:
                return
            element.clear_cache()
            if element.get_state_set().contains(Atspi.StateType.SHOWING):
                role = element.get_role_name()
                found.append((ROLES.get(role, role), element.get_name(), element.get_description(), element))
            for i in range(element.get_child_count()):
                collect(element.get_child_at_index(i))

        try:
            collect(self.application())
        except GLib.Error:
            pass  # an element went while it was read; whoever waits reads again
        return found

    def wait_for(self, role, name):
        """The description and the element, once it is shown; `name` is its beginning."""
        end = time.monotonic() + 30
        seen = []
        while time.monotonic() < end:
            seen = self.elements()
            for found_role, found_name, description, element in seen:
                if found_role == role and found_name.startswith(name):
                    return description, element
            time.sleep(0.05)
        raise AssertionError(f"no {role} {name!r} among " + "\n".join(str(row[:3]) for row in seen))

    def press(self, role, name):
        _, element = self.wait_for(role, name)
        actions = [element.get_action_name(i) for i in range(element.get_n_actions())]
        assert "Press" in actions, actions
        element.do_action(actions.index("Press"))


def is_checked(element):
    from gi.repository import Atspi

    return element.get_state_set().contains(Atspi.StateType.CHECKED)


def check_setup(command):
    screen = Screen(command)
    screen.wait_for("label", "Step 3 of 4: Copy and verify. Ready.")
    screen.wait_for("heading", "Copy to")
    screen.wait_for("combo box", "Checksum, XXH64")
    _, card = screen.wait_for("radio button", "card")
    assert is_checked(card)
    description, twice = screen.wait_for("check box", "Read the card twice")
    assert is_checked(twice) and description.startswith("Reads every file from the card a second time"), description
    _, eject = screen.wait_for("check box", "Eject the card when verified")
    assert not is_checked(eject)
    description, _ = screen.wait_for("check box", "Save a card image")
    assert "whole card" in description, description
    for name in ("Use a Folder…", "Remove", "Start Offload"):
        screen.wait_for("button", name)
    screen.process.send_signal(signal.SIGTERM)
    assert screen.process.wait(10) in (0, -signal.SIGTERM)


def check_offload(command, drives):
    screen = Screen(command + ["-ZMAutoStart", "YES"])
    screen.wait_for("heading", "Offload verified")
    screen.wait_for("label", "Step 4 of 4: Done. Every file is verified on every drive.")
    rows = [row for row in screen.elements() if row[0] == "list item"]
    assert len(rows) == len(drives), rows
    assert all(row[2] == f"{len(FILES)} of {len(FILES)} verified" for row in rows), rows
    for drive in drives:
        for name, content in FILES.items():
            copies = list(drive.rglob(name))
            assert [copy.read_bytes() for copy in copies] == [content], copies
        assert list(drive.rglob("Offload Report*.html")) and list(drive.rglob("ascmhl/*.mhl"))
    screen.press("button", "Menu")
    screen.press("menu item", "Quit")
    assert screen.process.wait(10) == 0


def check_inside(program, folder):
    card = pathlib.Path(folder, "card")
    for name, content in FILES.items():
        (card / name).parent.mkdir(parents=True, exist_ok=True)
        (card / name).write_bytes(content)
    drives = [pathlib.Path(folder, name) for name in ("first", "second")]
    for drive in drives:
        drive.mkdir()
    command = [program, "-ZMSource", str(card), "-ZMDestinations", ":".join(map(str, drives))]
    check_setup(command)
    check_offload(command, drives)


if sys.argv[1] == "--inside":
    import gi

    gi.require_version("Atspi", "2.0")
    check_inside(*sys.argv[2:])
else:
    skip_without_tools()
    sys.exit(run_on_private_screen(sys.argv[1]))
