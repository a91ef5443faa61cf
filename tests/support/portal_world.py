#!/usr/bin/python3
"""A desktop for tests: a session bus of its own, the real desktop portal, and a chooser of apps that is told what to do.

Usage: portal_world.py FOLDER whole       bus, portal, chooser
       portal_world.py FOLDER no-chooser  bus and portal
       portal_world.py FOLDER no-portal   the bus alone
       portal_world.py FOLDER deaf        a bus and a portal that never answers

Prints the bus's address, then a line for each thing that happens:

  asked PARENT URI     the chooser is to choose; it waits for an answer on standard input:
                       "choose" the app of this desktop, "cancel", or "fail"
                       a deaf portal prints "asked PARENT PATH READ-ONLY WISHES..." of the file that it was handed
  closed               the request is taken back while the chooser waits
  opened PATH          the app of this desktop was started with the file
  portal ended         without being told to
  ended                everything, as it was told to

Other lines on standard input: "end portal", "end bus", "end all". It ends, and everything with it, when standard input does.
"""

import fcntl
import os
import signal
import subprocess
import sys
import threading
from pathlib import Path

import dbus
import dbus.bus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

IMPLEMENTATION = "org.freedesktop.impl.portal.desktop.test"
CHOOSER = "org.freedesktop.impl.portal.AppChooser"
REQUEST = "org.freedesktop.impl.portal.Request"
PORTAL = "org.freedesktop.portal.Desktop"
OBJECT = "/org/freedesktop/portal/desktop"
CHOSEN, CANCELLED, FAILED = 0, 1, 2

BUS = """<busconfig>
  <type>session</type>
  <listen>unix:path={folder}/bus</listen>
  <policy context="default"><allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/>
    <allow own="*"/></policy>
</busconfig>
"""
PORTAL_FILE = f"[portal]\nDBusName={IMPLEMENTATION}\nInterfaces={CHOOSER}\nUseIn=test\n"
APP = """[Desktop Entry]
Type=Application
Name=Test app
Exec={folder}/app %f
MimeType=text/plain;x-scheme-handler/tavlo-test;
"""
APP_PROGRAM = '#!/bin/sh\nprintf "%s\\n" "$1" > "{folder}/opened"\n'

children = {}


def say(*words):
    print(*words, flush=True)


def write(path, text, mode=0o644):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(text, encoding="utf-8")
    path.chmod(mode)


class Asked(dbus.service.Object):
    """A request that the chooser has not answered."""

    def __init__(self, bus, path, answered, failed):
        super().__init__(bus, path)
        self.answered, self.failed = answered, failed

    def answer(self, response, choice=None):
        self.remove_from_connection()
        if Chooser.waiting is self:
            Chooser.waiting = None
        result = {} if choice is None else {"choice": dbus.String(choice)}
        self.answered(dbus.UInt32(response), dbus.Dictionary(result, signature="sv"))

    @dbus.service.method(REQUEST, in_signature="", out_signature="")
    def Close(self):
        say("closed")
        self.answer(FAILED)


class Chooser(dbus.service.Object):
    waiting = None

    @dbus.service.method(CHOOSER, in_signature="ossasa{sv}", out_signature="ua{sv}",
                         async_callbacks=("answered", "failed"))
    def ChooseApplication(self, handle, app_id, parent, choices, options, answered, failed):
        Chooser.waiting = Asked(self.connection, handle, answered, failed)
        say("asked", parent or "-", options.get("uri", "-"))

    @dbus.service.method(CHOOSER, in_signature="oas", out_signature="")
    def UpdateChoices(self, handle, choices):
        pass


class Deaf(dbus.service.Object):
    @dbus.service.method("org.freedesktop.portal.OpenURI", in_signature="sha{sv}", out_signature="o",
                         async_callbacks=("answered", "failed"))
    def OpenFile(self, parent, file, options, answered, failed):
        descriptor = file.take()
        is_read_only = fcntl.fcntl(descriptor, fcntl.F_GETFL) & os.O_ACCMODE == os.O_RDONLY
        wishes = [name for name, wish in sorted(options.items()) if wish]
        say("asked", parent or "-", os.readlink(f"/proc/self/fd/{descriptor}"), is_read_only, *wishes)


def end(name):
    child = children.pop(name, None)
    if child:
        child.kill()
        child.wait()


def start_bus(folder):
    write(folder / "bus.conf", BUS.format(folder=folder))
    children["bus"] = subprocess.Popen(["dbus-daemon", f"--config-file={folder}/bus.conf", "--nofork",
                                        "--print-address"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                                       text=True)
    address = children["bus"].stdout.readline().strip()
    os.environ["DBUS_SESSION_BUS_ADDRESS"] = address
    return address


def start_portal(folder):
    write(folder / "portals/test.portal", PORTAL_FILE)
    write(folder / "share/applications/test-app.desktop", APP.format(folder=folder))
    write(folder / "app", APP_PROGRAM.format(folder=folder), 0o755)
    environment = {**os.environ, "XDG_DESKTOP_PORTAL_DIR": str(folder / "portals"), "XDG_CURRENT_DESKTOP": "test",
                   "XDG_DATA_DIRS": f"{folder}/share:/usr/share", "XDG_DATA_HOME": str(folder / "data"),
                   "XDG_CONFIG_HOME": str(folder / "config"), "XDG_CACHE_HOME": str(folder / "cache"),
                   "GSETTINGS_BACKEND": "memory"}
    with open(folder / "portal.log", "wb") as log:
        children["portal"] = subprocess.Popen(["/usr/libexec/xdg-desktop-portal"], env=environment, stdout=log,
                                              stderr=log)
    threading.Thread(target=tell_of_end, args=(children["portal"],), daemon=True).start()


def tell_of_end(portal):
    portal.wait()
    if "portal" in children:
        say("portal ended")


def do(line):
    actions = {"choose": (CHOSEN, "test-app"), "cancel": (CANCELLED,), "fail": (FAILED,)}
    if line in actions:
        Chooser.waiting.answer(*actions[line])
    elif line == "end all":
        everything = list(children.values())
        children.clear()  # so that nothing tells of its end
        for child in everything:
            child.kill()
            child.wait()
        say("ended")
    elif line.startswith("end "):
        end(line.removeprefix("end "))
    return GLib.SOURCE_REMOVE


def read_lines(loop):
    for line in sys.stdin:
        GLib.idle_add(do, line.strip())
    GLib.idle_add(loop.quit)


def watch_for_opened(fifo):
    while True:
        with open(fifo, encoding="utf-8") as lines:
            for line in lines:
                say("opened", line.strip())


def main(folder, kind):
    address = start_bus(folder)
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    bus = dbus.bus.BusConnection(address)
    bus.set_exit_on_disconnect(False)
    loop = GLib.MainLoop()
    if kind == "whole":
        bus.request_name(IMPLEMENTATION)
        Chooser(bus, OBJECT)
    if kind == "deaf":
        bus.request_name(PORTAL)
        Deaf(bus, OBJECT)
    if kind in ("whole", "no-chooser"):
        os.mkfifo(folder / "opened")
        threading.Thread(target=watch_for_opened, args=(folder / "opened",), daemon=True).start()
        start_portal(folder)
        bus.watch_name_owner(PORTAL, lambda owner: owner and say(address))
    else:
        say(address)
    threading.Thread(target=read_lines, args=(loop,), daemon=True).start()
    loop.run()


if __name__ == "__main__":
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    try:
        main(Path(sys.argv[1]), sys.argv[2])
    finally:
        for one in list(children):
            end(one)
