#!/usr/bin/python3
"""A UDisks2 made of a file, on the system bus: mock_udisks.py STATE LOG

STATE is read anew for every call:
  {"sdb1": {"drive": NAME, "table": BLOCK, "encrypted": BLOCK, "mounts": [PATH, ...],
            "open": PATH, "writable": true, "delay": SECONDS, "exit": true, "remount": true,
            "raced": true (somebody else unmounts it first), "taken": true (it goes when unmounted),
            "error": NAME of the D-Bus error that every call answers},
   "Reader": {"ejectable": BOOL, "canPowerOff": BOOL, "sibling": NAME, "delay": SECONDS,
              "error": NAME}}
What has "ejectable" is a drive.
Each call adds a line to LOG. Prints READY once it can be called, MISSING without the packages.
"""
import json
import os
import sys
import time

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


def drive_object(name):
    return dbus.ObjectPath(f"{ROOT}/drives/{name}" if name else "/")


def interfaces(name, block):
    if "ejectable" in block:
        return {
            f"{UDISKS}.Drive": {
                "Model": name,
                "Ejectable": block["ejectable"],
                "CanPowerOff": block.get("canPowerOff", False),
                "SiblingId": block.get("sibling", ""),
                "SortKey": "01hotplug",
            }
        }
    result = {
        f"{UDISKS}.Block": {
            "Configuration": dbus.Array([], signature="(sa{sv})"),
            "Device": path_bytes(f"/dev/{name}"),
            "PreferredDevice": path_bytes(f"/dev/disk/by-id/{name}"),
            "Drive": drive_object(block.get("drive")),
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


def called(path, method):
    """Records the call of a block or drive, and answers its name and state or its error."""
    name = os.path.basename(path)
    item = state()[name]
    record(f"{name}.{method}")
    time.sleep(item.get("delay", 0))
    if "error" in item:
        raise dbus.DBusException("no", name=item["error"])
    return name, item


class Service(dbus.service.FallbackObject):
    @dbus.service.method("org.freedesktop.DBus.ObjectManager", out_signature="a{oa{sa{sv}}}")
    def GetManagedObjects(self):
        return {
            (drive_object if "ejectable" in block else block_object)(name): interfaces(name, block)
            for name, block in state().items()
        }

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
        name, block = called(path, "Unmount")
        blocks = state()
        if "remount" not in block:
            blocks[name]["mounts"].pop(0)
        if "taken" in block:
            del blocks[name]
        with open(sys.argv[1], "w", encoding="utf-8") as file:
            json.dump(blocks, file)
        if "raced" in block:
            raise dbus.DBusException("no", name=f"{UDISKS}.Error.NotMounted")

    @dbus.service.method(f"{UDISKS}.Encrypted", "a{sv}", rel_path_keyword="path")
    def Lock(self, options, path):
        called(path, "Lock")

    @dbus.service.method(f"{UDISKS}.Drive", "a{sv}", rel_path_keyword="path")
    def Eject(self, options, path):
        called(path, "Eject")

    @dbus.service.method(f"{UDISKS}.Drive", "a{sv}", rel_path_keyword="path")
    def PowerOff(self, options, path):
        called(path, "PowerOff")


dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
bus = dbus.SystemBus()
name = dbus.service.BusName(UDISKS, bus, do_not_queue=True)
service = Service(bus, ROOT)
print("READY", flush=True)
GLib.MainLoop().run()
