#!/usr/bin/python3
"""A stand-in of the agent that tells the position daemon what the user allows.

Usage: geoclue_agent.py LEVEL    the best accuracy that any app may have; 0: the user has switched the position off

Prints one line when the daemon has accepted it.
"""

import sys

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

SERVICE = "org.freedesktop.GeoClue2"
AGENT = "org.freedesktop.GeoClue2.Agent"


class Agent(dbus.service.Object):
    @dbus.service.method(AGENT, in_signature="su", out_signature="bu")
    def AuthorizeApp(self, desktop_id, level):
        return True, level

    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="ss", out_signature="v")
    def Get(self, interface, name):
        return dbus.UInt32(sys.argv[1])

    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="s", out_signature="a{sv}")
    def GetAll(self, interface):
        return {"MaxAccuracyLevel": dbus.UInt32(sys.argv[1])}


def main():
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    loop = GLib.MainLoop()
    bus = dbus.SystemBus()
    Agent(bus, "/org/freedesktop/GeoClue2/Agent")
    manager = dbus.Interface(bus.get_object(SERVICE, "/org/freedesktop/GeoClue2/Manager"), f"{SERVICE}.Manager")
    # The daemon asks for the properties before it answers, so this must not wait for it.
    manager.AddAgent("geoclue-demo-agent", reply_handler=lambda: print("added", flush=True),
                     error_handler=lambda error: sys.exit(str(error)))
    loop.run()


if __name__ == "__main__":
    main()
