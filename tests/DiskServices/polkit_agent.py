#!/usr/bin/python3
"""Stands for the user before a password prompt: polkit_agent.py PID allow|dismiss

Answers for the process PID and must run as root. Prints READY once it would be asked, each message
it is asked with, and MISSING without the packages.
"""
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

POLKIT = "org.freedesktop.PolicyKit1"
PATH = "/com/zephrimark/Agent"


class Dismissed(dbus.DBusException):
    _dbus_error_name = f"{POLKIT}.Error.Cancelled"


class Agent(dbus.service.Object):
    @dbus.service.method(f"{POLKIT}.AuthenticationAgent", "sssa{ss}sa(sa{sv})")
    def BeginAuthentication(self, action, message, icon, details, cookie, identities):
        print(f"{action}: {message}", flush=True)
        if sys.argv[2] == "dismiss":
            raise Dismissed("dismissed")
        root = ("unix-user", dbus.Dictionary({"uid": dbus.UInt32(0)}, signature="sv"))
        authority_of(helper_bus).AuthenticationAgentResponse2(dbus.UInt32(user), cookie, root)

    @dbus.service.method(f"{POLKIT}.AuthenticationAgent", "s")
    def CancelAuthentication(self, cookie):
        pass


def user_of(pid):
    with open(f"/proc/{pid}/status", encoding="utf-8") as file:
        return next(int(line.split()[1]) for line in file if line.startswith("Uid:"))


def subject(pid):
    with open(f"/proc/{pid}/stat", encoding="utf-8") as file:
        start = int(file.read().rsplit(")", 1)[1].split()[19])
    values = {"pid": dbus.UInt32(pid), "start-time": dbus.UInt64(start), "uid": dbus.Int32(user)}
    return ("unix-process", dbus.Dictionary(values, signature="sv"))


def authority_of(bus):
    return dbus.Interface(bus.get_object(POLKIT, "/org/freedesktop/PolicyKit1/Authority"), f"{POLKIT}.Authority")


# As on a desktop: the agent is the user's, and only the administrator may say that they authenticated.
dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
process = int(sys.argv[1])
user = user_of(process)
helper_bus = dbus.SystemBus(private=True)
os.seteuid(user)
bus = dbus.SystemBus(private=True)
os.seteuid(0)
agent = Agent(bus, PATH)
authority_of(bus).RegisterAuthenticationAgent(subject(process), "C", PATH)
print("READY", flush=True)
GLib.MainLoop().run()
