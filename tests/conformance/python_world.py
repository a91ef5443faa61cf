"""What a case is run in: everything that a host and its platform bring, made of callbacks."""

import shutil
import struct
import zlib
from pathlib import Path

DOCUMENTS = "/app/Documents"
SECONDS_FROM_1970_TO_2001 = 978307200
MISSING, FILE, DIRECTORY = range(3)
COUNTERS = ("getIsUserNew", "getUniqueUserDayValue", "getUniqueUserDay", "getUniqueUserWeekValue", "getNumberOfWeek",
            "getUniqueUserMonthValue", "getNumberOfMonth")


def bytes_of(given):
    """A file's, or a body's: a text or {"hex": "..."}."""
    if isinstance(given, dict):
        return bytes.fromhex(given["hex"])
    return (given or "").encode()


def png(width):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    pixels = b"\0" + b"\xff" * 4 * width
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, 1, 8, 6, 0, 0, 0)) +
            chunk(b"IDAT", zlib.compress(pixels)) + chunk(b"IEND", b""))


class Files:
    """Paths to bytes, of directories to None."""

    def __init__(self, given, failing):
        self.failing, self.entries = failing, {DOCUMENTS: None}
        for name, content in given.items():
            parts = name.split("/")
            for count in range(1, len(parts)):
                self.entries[f"{DOCUMENTS}/{'/'.join(parts[:count])}"] = None
            if parts[-1]:
                self.entries[f"{DOCUMENTS}/{name}"] = bytes_of(content)

    def may(self, operation, path):
        for each in self.failing:
            if each["operation"] == operation and path in (f"{DOCUMENTS}/{each['path']}" if "path" in each else path,):
                raise OSError(each["description"])

    def has_folder_above(self, path):
        return self.entries.get(path.rpartition("/")[0], b"") is None

    def fileExistsAtPath(self, path):
        if path not in self.entries:
            return MISSING
        return DIRECTORY if self.entries[path] is None else FILE

    def removeItemAtPath(self, path, file_only):
        self.may("removeItemAtPath", path)
        if self.fileExistsAtPath(path) in (MISSING, DIRECTORY if file_only else MISSING):
            raise OSError("there is nothing to remove")
        self.remove(path)

    def remove(self, path):
        self.entries = {each: content for each, content in self.entries.items()
                        if each != path and not each.startswith(path + "/")}

    def createDirectoryAtPath(self, path):
        self.may("createDirectoryAtPath", path)
        if path in self.entries or not self.has_folder_above(path):
            raise OSError("there is no place for a directory")
        self.entries[path] = None

    def contentsOfDirectoryAtPath(self, path):
        try:
            self.may("contentsOfDirectoryAtPath", path)
        except OSError:
            return None
        if self.fileExistsAtPath(path) != DIRECTORY:
            return None
        below = [each[len(path) + 1:] for each in self.entries if each.startswith(path + "/")]
        return [name for name in below if "/" not in name]

    def dataWithContentsOfFile(self, path):
        try:
            self.may("dataWithContentsOfFile", path)
        except OSError:
            return None
        return self.entries.get(path)

    def writeToFileAtomically(self, content, path, _durable_name):
        self.may("writeToFileAtomically", path)
        if self.fileExistsAtPath(path) == DIRECTORY or not self.has_folder_above(path):
            raise OSError("there is no place for a file")
        self.entries[path] = content

    def tree(self):
        """As a case gives it: files, and directories with nothing in them."""
        tree = {}
        for path, content in self.entries.items():
            name = path[len(DOCUMENTS) + 1:]
            if content is not None:
                tree[name] = content
            elif name and not any(each.startswith(path + "/") for each in self.entries):
                tree[name + "/"] = b""
        return tree

    def callbacks(self):
        names = ("fileExistsAtPath", "removeItemAtPath", "createDirectoryAtPath", "contentsOfDirectoryAtPath",
                 "dataWithContentsOfFile", "writeToFileAtomically")
        return {"documentDirectory": lambda: DOCUMENTS, **{name: getattr(self, name) for name in names}}


class World:
    def __init__(self, sdk, given, resources):
        self.sdk, self.given, self.resources = sdk, given, resources
        self.files = Files(given.get("files", {}), given.get("failing", []))
        self.package = dict(given.get("package") or {})
        self.settings, self.pending = dict(given.get("settings", {})), {}
        self.tasks, self.look_ups, self.reads = [], [], 0
        self.take()
        self.write_bundle(given.get("bundle", ["volume.png", "mute.png"]))
        self.install_host()
        self.install_platform()

    def take(self):
        seen = self.__dict__.get("seen")
        self.seen = {name: [] for name in ("log", "console", "reports", "asks", "menus")}
        return seen

    def tree(self):
        return self.files.tree()

    def act(self, step):
        what = step["do"]
        if what == "runTasks":
            while self.tasks:
                self.sdk.run_task(self.tasks.pop(0))
        elif what == "answer":
            self.sdk.answer_geocode_request(self.look_ups[step.get("lookUp", 0)], step.get("placemarks"),
                                            step.get("error"))
        elif what == "restart":
            self.pending.clear()
        elif what == "set":
            self.package.update(step["package"])
        elif what == "remove":
            self.files.remove(f"{DOCUMENTS}/{step['path']}")
        elif what == "bundle":
            self.write_bundle(step["images"])
        else:
            raise LookupError(f"nothing here does {what}")

    def write_bundle(self, images):
        folder = Path(self.resources, "TavloSDKResource.bundle")
        shutil.rmtree(folder, ignore_errors=True)
        for name in images or ():
            folder.mkdir(exist_ok=True)
            folder.joinpath(name).write_bytes(png(2 if name == "mute.png" else 1))

    # ---- The host ----

    def ask(self, what, answer=None):
        self.seen["asks"].append(what)
        return answer

    def install_host(self):
        def read(name):
            return self.ask(name, self.package.get(name))

        def set_position(latitude, longitude):
            self.ask("setLatitude:AndLogitude:")
            self.package.update(getLatitude=latitude, getLongitude=longitude)

        def set_address(address):
            self.ask("setUserAddress:")
            self.package["getUserAddress"] = address

        if self.given.get("package", {}) is not None:
            self.sdk.install("package", text=read,
                             limitAdTrackingEnabled=lambda: read("limitAdTrackingEnabled") or False,
                             resolution=lambda: read("resolution") or 0, preRoll=lambda: read("preRoll") or 0,
                             setLatitudeAndLogitude=set_position, setUserAddress=set_address)
        counters = self.given.get("counters", {})
        if counters is not None:
            self.sdk.install("unique_user_handler", **{
                name: lambda name=name: self.ask(name, counters.get(name, None if name == COUNTERS[2] else 0))
                for name in COUNTERS})
        records = [[each.get(name) for name in ("networkID", "event", "count")]
                   for each in self.given.get("records") or ()]
        self.sdk.install("database_handler",
                         getNetworkTrackerDetails=lambda: self.ask("getNetworkTrackerDetails", records))
        self.sdk.install("logger", printLog=lambda message: self.seen["log"].append(message))
        self.sdk.install("exception_reporter", tavloException=self.report)

    def report(self, message):
        self.seen["reports"].append(message)
        return True

    # ---- The platform ----

    def install_platform(self):
        location = self.given.get("location", {})
        apps = self.given.get("apps", {})
        urls = {url: bytes_of(content) for url, content in self.given.get("urls", {}).items()}
        fixes = location.get("fixes", [location.get("fix")])

        def set_object(value, key):
            self.ask(f"setObject:forKey:{key}")
            self.pending[key] = value

        def object_for(key):
            return self.ask(f"objectForKey:{key}", self.pending.get(key, self.settings.get(key)))

        def synchronize():
            self.settings.update(self.pending)
            self.pending.clear()
            return self.ask("synchronize", True)

        def newest():
            self.reads += 1
            return self.ask("location", fixes[min(self.reads, len(fixes)) - 1])

        def look_up(position, request):
            self.ask("reverseGeocodeLocation:" + ("%f,%f" % position if position else "(null)"))
            self.look_ups.append(request)

        def present(url, window, animated):
            self.seen["menus"].append({"url": url, "rect": [0, 0, 0, 0], "view": window is not None,
                                       "animated": animated})
            return apps.get("shows", True)

        self.sdk.install_platform(
            container=self.resources, resources=self.resources,
            console={"log": lambda line: self.seen["console"].append(line)},
            url_data={"dataWithContentsOfURL": urls.get},
            file_manager=self.files.callbacks(),
            user_defaults={"objectForKey": object_for, "setObjectForKey": set_object, "synchronize": synchronize},
            background_queue={"dispatchAsync": self.tasks.append},
            location_services={
                "locationServicesEnabled": lambda: self.ask("locationServicesEnabled", location.get("enabled", True)),
                "authorizationStatus": lambda: self.ask("authorizationStatus", location.get("status", 3)),
                "startUpdatingLocation": lambda: self.ask("startUpdatingLocation"), "location": newest},
            geocoder={"reverseGeocodeLocation": look_up},
            application={"canOpenURL": lambda url: self.ask(f"canOpenURL:{url}", apps.get("opens", False)),
                         "presentOpenInMenu": present})
