#!/usr/bin/python3
"""The position daemon of the desktop on a bus of its own, fed by a stand-in of a receiver.

Usage: geoclue_world.py FOLDER

Makes the sockets FOLDER/bus, of a message bus that lets everyone do everything, and FOLDER/nmea, of a receiver that
tells its position ten times a second. Reads commands, one a line, and answers "done" to each when it is carried out:

  daemon              starts the daemon, and waits until it has its name
  daemon without ID   the same, and the app of this id is allowed nothing
  daemon blind        the same, without any source of positions
  agent               starts the agent of the daemon's own package, which decides for the user
  agent LEVEL         starts geoclue_agent.py, and waits until the daemon has accepted it
  at LAT,N,LON,E      moves the receiver; before that it tells nothing
  peers               answers with the number of connections to the bus instead
  stop daemon         makes it hang; also of the bus
  kill daemon         ends it at once, and waits until it has ended; also of the bus and of the agent

The daemon gets no network, and a configuration of this script's. Where that cannot be had, which takes the rights of
root, "daemon" starts it as the system has it, and the other two answer "cannot". The end of input ends everything.
"""

import ctypes
import os
import signal
import socket
import subprocess
import sys
import threading
import time

import dbus

LIBEXEC = "/usr/libexec"
CONFIGURATION = "/etc/geoclue/geoclue.conf"
NAME = "org.freedesktop.GeoClue2"
PERIOD = 0.1  # seconds between two sentences
BUS = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-BUS Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>system</type>
  <listen>unix:path={folder}/bus</listen>
  <policy context="default">
    <allow user="*"/><allow own="*"/><allow send_destination="*"/><allow send_type="method_call"/>
    <allow send_type="signal"/><allow send_type="method_return"/><allow send_type="error"/>
    <allow receive_type="method_call"/><allow receive_type="signal"/>
    <allow receive_type="method_return"/><allow receive_type="error"/>
  </policy>
</busconfig>
"""


def end_with_parent():
    pr_set_pdeathsig = 1
    ctypes.CDLL(None).prctl(pr_set_pdeathsig, signal.SIGKILL)


def sentence(place):
    latitude, north, longitude, east = place.split(",")
    clock = time.strftime("%H%M%S", time.gmtime())
    text = f"GPGGA,{clock},{latitude},{north},{longitude},{east},1,08,0.9,216.0,M,0.0,M,,"
    checksum = 0
    for byte in text.encode():
        checksum ^= byte
    return f"${text}*{checksum:02X}\r\n".encode()


def configuration(sources, apps=""):
    groups = ["network-nmea", "3g", "cdma", "modem-gps", "wifi", "compass"]
    text = "[agent]\nwhitelist=geoclue-demo-agent\n"
    text += "".join(f"[{group}]\nenable={sources}\nsubmit-data=false\n" for group in groups)
    return text + apps


# What a daemon is started with: the configuration in place of the system's, and whether it has the receiver.
CONFIGURATIONS = {
    "": lambda _: (configuration("true"), True),
    "without": lambda app: (configuration("true", f"[{app}]\nallowed=false\nsystem=false\nusers=\n"), True),
    "blind": lambda _: (configuration("false"), False),
}


class World:
    def __init__(self, folder):
        self.folder = folder
        self.processes = {}
        self.place = None

    def start(self, name, *command):
        environment = dict(os.environ, DBUS_SYSTEM_BUS_ADDRESS=f"unix:path={self.folder}/bus", LC_ALL="C")
        with open(f"{self.folder}/{name}.log", "ab") as log:
            self.processes[name] = subprocess.Popen(command, env=environment, stdin=subprocess.DEVNULL,
                                                    stdout=log, stderr=log, preexec_fn=end_with_parent)

    def wait_for(self, condition):
        while not condition():
            for name, process in self.processes.items():
                if process.poll() is not None:
                    sys.exit(f"the {name} has ended with {process.returncode}")
            time.sleep(0.01)

    def start_bus(self):
        with open(f"{self.folder}/bus.conf", "w", encoding="utf-8") as conf:
            conf.write(BUS.format(folder=self.folder))
        self.start("bus", "dbus-daemon", f"--config-file={self.folder}/bus.conf", "--nofork", "--nopidfile")
        self.wait_for(lambda: os.path.exists(f"{self.folder}/bus"))

    def ask_bus(self, question):
        bus = dbus.bus.BusConnection(f"unix:path={self.folder}/bus")
        answer = question(bus)
        bus.close()
        return answer

    def start_daemon(self, kind, app):
        text, source = CONFIGURATIONS[kind](app)
        path = f"{self.folder}/geoclue.conf"
        with open(path, "w", encoding="utf-8") as conf:
            conf.write(text)
        apart = ["unshare", "--mount", "--net", "sh", "-c", f"mount --bind {path} {CONFIGURATION} && exec \"$@\"", "sh"]
        if subprocess.run(apart + ["true"], capture_output=True, check=False).returncode != 0:
            if kind:
                return "cannot"
            apart = []
        receiver = ["-u", f"{self.folder}/nmea"] if source else []
        self.start("daemon", *apart, f"{LIBEXEC}/geoclue", "-t", "0", *receiver)
        self.wait_for(lambda: self.ask_bus(lambda bus: bus.name_has_owner(NAME)))
        return "done"

    def start_agent(self, level):
        if not level:
            self.start("agent", f"{LIBEXEC}/geoclue-2.0/demos/agent")
            return
        log = f"{self.folder}/agent.log"
        self.start("agent", sys.executable, "-B", os.path.join(os.path.dirname(__file__), "geoclue_agent.py"), level)
        self.wait_for(lambda: "added" in open(log, encoding="utf-8").read())

    def serve(self, connection):
        try:
            while True:
                if self.place:
                    connection.sendall(sentence(self.place))
                time.sleep(PERIOD)
        except OSError:
            connection.close()

    def listen(self):
        receiver = socket.socket(socket.AF_UNIX)
        receiver.bind(f"{self.folder}/nmea")
        os.chmod(f"{self.folder}/nmea", 0o666)
        receiver.listen()
        while True:
            connection, _ = receiver.accept()
            threading.Thread(target=self.serve, args=(connection,), daemon=True).start()

    def carry_out(self, command, argument):
        if command == "daemon":
            kind, _, app = argument.partition(" ")
            return self.start_daemon(kind, app)
        if command == "agent":
            self.start_agent(argument)
        elif command == "at":
            self.place = argument
        elif command == "peers":
            return str(self.ask_bus(lambda bus: sum(name.startswith(":") for name in bus.list_names()) - 1))
        elif command == "stop":
            self.processes[argument].send_signal(signal.SIGSTOP)
        elif command == "kill":
            process = self.processes.pop(argument)
            process.kill()
            process.wait()
        else:
            sys.exit(f"no command {command}")
        return "done"

    def run(self):
        os.chmod(self.folder, 0o755)
        threading.Thread(target=self.listen, daemon=True).start()
        self.start_bus()
        print("done", flush=True)
        for line in sys.stdin:
            command, _, argument = line.strip().partition(" ")
            print(self.carry_out(command, argument), flush=True)
        for process in self.processes.values():
            process.kill()
        os._exit(0)


if __name__ == "__main__":
    World(sys.argv[1]).run()
