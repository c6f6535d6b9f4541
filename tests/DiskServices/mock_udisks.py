#!/usr/bin/python3
"""A UDisks2 made of a file, on the system bus: mock_udisks.py STATE LOG

STATE is read anew for every call:
  {"sdb1": {"drive": NAME, "table": BLOCK, "encrypted": BLOCK, "mounts": [PATH, ...],
            "open": PATH, "writable": true, "delay": SECONDS, "exit": true, "remount": true,
            "error": NAME of the D-Bus error that every call of the block answers}}
Each call adds a line to LOG. Prints READY once it can be called, MISSING without the packages.
"""
import json
import os
import sys

try:
    import dbus
    import dbus.mainloop.glib
    import dbus.service
    from gi.repository import GLib
except ImportError:
    print("MISSING", flush=True)
    sys.exit()

UDISKS = "org.freedesktop.UDisks2"
ROOT = "/org/freedesktop/UDisks2"


def state():
    with open(sys.argv[1], encoding="utf-8") as file:
        return json.load(file)


def record(call):
    with open(sys.argv[2], "a", encoding="utf-8") as file:
        file.write(call + "\n")


def path_bytes(path):
    return dbus.ByteArray(path.encode() + b"\0")


def block_object(name):
    return dbus.ObjectPath(f"{ROOT}/block_devices/{name}" if name else "/")


def interfaces(name, block):
    drive = block.get("drive")
    result = {
        f"{UDISKS}.Block": {
            "Configuration": dbus.Array([], signature="(sa{sv})"),
            "Device": path_bytes(f"/dev/{name}"),
            "PreferredDevice": path_bytes(f"/dev/disk/by-id/{name}"),
            "Drive": dbus.ObjectPath(f"{ROOT}/drives/{drive}" if drive else "/"),
            "CryptoBackingDevice": block_object(block.get("encrypted")),
            "Size": dbus.UInt64(64),
        }
    }
    if "table" in block:
        result[f"{UDISKS}.Partition"] = {"Number": 1, "Table": block_object(block["table"])}
    if "mounts" in block:
        points = dbus.Array([path_bytes(point) for point in block["mounts"]], signature="ay")
        result[f"{UDISKS}.Filesystem"] = {"MountPoints": points}
    return result


class Service(dbus.service.FallbackObject):
    @dbus.service.method("org.freedesktop.DBus.ObjectManager", out_signature="a{oa{sa{sv}}}")
    def GetManagedObjects(self):
        objects = {block_object(name): interfaces(name, block) for name, block in state().items()}
        objects[dbus.ObjectPath(f"{ROOT}/drives/Reader")] = {f"{UDISKS}.Drive": {"Model": "Reader"}}
        return objects

    @dbus.service.method(f"{UDISKS}.Block", "sa{sv}", "h", async_callbacks=("answer", "fail"),
                         rel_path_keyword="path")
    def OpenDevice(self, mode, options, answer, fail, path):
        name = os.path.basename(path)
        block = state()[name]
        record(f"{name}.OpenDevice {mode} {bool(options['flags'] & os.O_CLOEXEC)}")
        if "exit" in block:
            os._exit(0)
        if "error" in block:
            fail(dbus.DBusException("no", name=block["error"]))
            return

        def hand_over():
            flags = os.O_RDWR if "writable" in block else os.O_RDONLY
            descriptor = os.open(block["open"], flags | os.O_CLOEXEC)
            answer(dbus.types.UnixFd(descriptor))
            os.close(descriptor)

        GLib.timeout_add(int(1000 * block.get("delay", 0)), hand_over)

    @dbus.service.method(f"{UDISKS}.Filesystem", "a{sv}", rel_path_keyword="path")
    def Unmount(self, options, path):
        name = os.path.basename(path)
        blocks = state()
        record(f"{name}.Unmount")
        if "error" in blocks[name]:
            raise dbus.DBusException("no", name=blocks[name]["error"])
        if "remount" not in blocks[name]:
            blocks[name]["mounts"].pop(0)
        with open(sys.argv[1], "w", encoding="utf-8") as file:
            json.dump(blocks, file)


dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
bus = dbus.SystemBus()
name = dbus.service.BusName(UDISKS, bus, do_not_queue=True)
service = Service(bus, ROOT)
print("READY", flush=True)
GLib.MainLoop().run()
