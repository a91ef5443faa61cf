"""Keyed archives over Python's own property lists, as a second opinion.

fixtures           "NAME CONTENTS" of the root in each JSON file of tests/fixtures/archives
read               lines of hexadecimal archives: each one's contents as text
write SEED COUNT   COUNT random archives: lines "HEX CONTENTS"

Contents are written without sharing, with sets and maps sorted by their text: N nothing at all, n null, T, F,
i<decimal>, r<bits>, d<bits of the seconds since 2001>, t<UTF-8>, b<bytes>, l<UTF-8>(base), [item,...],
<item,...>, {key=value,...}, o<UTF-8 of the class name>{field=value,...}; bits, UTF-8 and bytes in hexadecimal.
"""

import datetime
import json
import pathlib
import plistlib
import random
import re
import struct
import sys
from collections import namedtuple

EPOCH = datetime.datetime(2001, 1, 1)
EPOCH_SINCE_1970 = 978307200.0


class Null:
    pass


Date = namedtuple("Date", "seconds")
Set = namedtuple("Set", "items")
Url = namedtuple("Url", "text base", defaults=[None])
Map = namedtuple("Map", "entries")
Custom = namedtuple("Custom", "name entries")


# The archiver's own names of fields, of which those of a class must not be one.
UNNAMED = re.compile(r"\$+[0-9]+")


def name_in_archive(name):
    return "$" + name if name.startswith("$") and not UNNAMED.fullmatch(name) else name


def name_in_class(name):
    return name[1:] if name.startswith("$$") and not UNNAMED.fullmatch(name) else name


def bits(number):
    return struct.pack(">d", number).hex()


def braces(entries):
    return "{" + ",".join(sorted(contents(k) + "=" + contents(v) for k, v in entries)) + "}"


def contents(value):
    if value is None:
        return "N"
    if isinstance(value, Null):
        return "n"
    if isinstance(value, bool):
        return "T" if value else "F"
    if isinstance(value, int):
        return f"i{value}"
    if isinstance(value, float):
        return "r" + bits(value)
    if isinstance(value, Date):
        return "d" + bits(value.seconds)
    if isinstance(value, str):
        return "t" + value.encode().hex()
    if isinstance(value, bytes):
        return "b" + value.hex()
    if isinstance(value, Url):
        return "l" + value.text.encode().hex() + ("" if value.base is None else "(" + contents(value.base) + ")")
    if isinstance(value, list):
        return "[" + ",".join(map(contents, value)) + "]"
    if isinstance(value, Set):
        return "<" + ",".join(sorted(map(contents, value.items))) + ">"
    if isinstance(value, Map):
        return braces(value.entries)
    return "o" + value.name.encode().hex() + braces(value.entries)


def from_json(value):
    if isinstance(value, list):
        return [from_json(item) for item in value]
    if not isinstance(value, dict):
        return value
    if "$date" in value:
        return Date(value["$date"] - EPOCH_SINCE_1970)
    if "$data" in value:
        return bytes.fromhex(value["$data"])
    if "$set" in value:
        return Set(from_json(value["$set"]))
    if "$url" in value:
        return Url(value["$url"], Url(value["base"]) if "base" in value else None)
    if "$map" in value:
        return Map([(from_json(k), from_json(v)) for k, v in value["$map"]])
    if "$null" in value:
        return Null()
    entries = [(k, from_json(v)) for k, v in value.items() if k != "$class"]
    return Custom(value["$class"], entries) if "$class" in value else Map(entries)


class Reader:
    def __init__(self, archive):
        self.objects = archive["$objects"]
        self.made = {}

    def part(self, value):
        return self.object(value.data) if isinstance(value, plistlib.UID) else value

    def parts(self, values):
        return [self.object(uid.data) for uid in values]

    def object(self, number):
        if number == 0:
            return None
        if number not in self.made:
            self.made[number] = self.make(self.objects[number])
        return self.made[number]

    def make(self, fields):
        if isinstance(fields, datetime.datetime):
            return Date((fields - EPOCH).total_seconds())
        if not isinstance(fields, dict):
            return fields
        name = self.objects[fields["$class"].data]["$classname"]
        kind = name.replace("NSMutable", "NS")
        if kind == "NSNull":
            return Null()
        if kind in ("NSString", "NSData"):
            return fields["NS." + kind[2:].lower()]
        if kind == "NSDate":
            return Date(fields["NS.time"])
        if kind == "NSURL":
            return Url(self.part(fields["NS.relative"]), self.part(fields["NS.base"]))
        if kind == "NSArray":
            return self.parts(fields["NS.objects"])
        if kind == "NSSet":
            return Set(self.parts(fields["NS.objects"]))
        if kind == "NSDictionary":
            return Map(list(zip(self.parts(fields["NS.keys"]), self.parts(fields["NS.objects"]))))
        return Custom(name, [(name_in_class(k), self.part(v)) for k, v in fields.items() if k != "$class"])


def read(archive):
    return Reader(archive).object(archive["$top"]["root"].data)


class Writer:
    """Lays archives down in every way that archivers are known to."""

    def __init__(self, rng):
        self.rng = rng
        self.objects = ["$null"]
        self.numbers = {}
        self.classes = {}

    def class_named(self, name):
        if name not in self.classes:
            self.classes[name] = plistlib.UID(len(self.objects))
            self.objects.append({"$classname": name, "$classes": [name, "NSObject"]})
        return self.classes[name]

    def known(self, kind, fields, mutable=True):
        return "NS" + ("Mutable" if mutable and self.rng.random() < 0.5 else "") + kind, fields

    def add(self, value):
        if value is None:
            return plistlib.UID(0)
        if id(value) in self.numbers:
            return self.numbers[id(value)]
        number = len(self.objects)
        self.numbers[id(value)] = plistlib.UID(number)
        self.objects.append(None)
        self.objects[number] = self.laid_down(value)
        return plistlib.UID(number)

    def laid_down(self, value):
        plain = self.rng.random() < 0.7
        if isinstance(value, Date) and plain:
            return EPOCH + datetime.timedelta(seconds=value.seconds)
        if isinstance(value, (bool, int, float)) or (isinstance(value, (str, bytes)) and plain):
            return value
        name, fields = self.object(value)
        fields["$class"] = self.class_named(name)
        names = list(fields)
        self.rng.shuffle(names)
        return {name: fields[name] for name in names}

    def object(self, value):
        if isinstance(value, Null):
            return self.known("Null", {}, mutable=False)
        if isinstance(value, Date):
            in_whole = value.seconds.is_integer() and self.rng.random() < 0.3
            return self.known("Date", {"NS.time": int(value.seconds) if in_whole else value.seconds}, mutable=False)
        if isinstance(value, str):
            as_bytes = self.rng.random() < 0.3
            return self.known("String", {"NS.bytes": value.encode()} if as_bytes else {"NS.string": value})
        if isinstance(value, bytes):
            return self.known("Data", {"NS.data": value})
        if isinstance(value, Url):
            fields = {"NS.base": self.add(value.base), "NS.relative": self.add(value.text)}
            return self.known("URL", fields, mutable=False)
        if isinstance(value, list):
            return self.known("Array", {"NS.objects": [self.add(item) for item in value]})
        if isinstance(value, Set):
            return self.known("Set", {"NS.objects": [self.add(item) for item in value.items]})
        if isinstance(value, Map):
            fields = {"NS.keys": [self.add(k) for k, _ in value.entries],
                      "NS.objects": [self.add(v) for _, v in value.entries]}
            return self.known("Dictionary", fields)
        return value.name, {name_in_archive(name): self.field(field) for name, field in value.entries}

    def field(self, value):
        in_place = isinstance(value, (bool, int, float, str, bytes)) and self.rng.random() < 0.7
        return value if in_place else self.add(value)


def write(value, rng):
    writer = Writer(rng)
    archive = {"$version": 100000, "$archiver": rng.choice(["NSKeyedArchiver", "SomeArchiver"]),
               "$top": {rng.choice(["root", "other"]): writer.add(value)}, "$objects": writer.objects}
    names = list(archive)
    rng.shuffle(names)
    return plistlib.dumps({name: archive[name] for name in names}, fmt=plistlib.FMT_BINARY, sort_keys=False)


def random_text(rng):
    alphabet = rng.choice(["abc", "abc \u00e9\u65e5\U0001f600", "\x00\x7f\x80\u07ff\u0800\ud7ff\ue000\uffff\U0010ffff"])
    return "".join(rng.choices(alphabet, k=rng.choice([0, 1, 3, 3, 14, 15, 16, 100])))


def random_url(rng, depth):
    return Url(random_text(rng), random_url(rng, depth - 1) if depth > 0 and rng.random() < 0.5 else None)


def random_scalar(rng):
    return rng.choice([
        lambda: None,
        Null,
        lambda: rng.random() < 0.5,
        lambda: rng.choice([-1, 1]) * rng.getrandbits(rng.randrange(64)),
        lambda: rng.choice([-(1 << 63), (1 << 63) - 1, 1 << 63, (1 << 64) - 1, 255, 256, 65535, 65536, 1 << 32]),
        lambda: struct.unpack(">d", rng.randbytes(8))[0],
        lambda: rng.choice([0.0, 1.5, float("inf"), float("nan")]),  # no -0.0: plistlib takes it for 0.0
        lambda: Date(rng.randrange(-60_000_000_000, 60_000_000_000) / 2),
        lambda: random_text(rng),
        lambda: rng.randbytes(rng.choice([0, 1, 1, 2, 14, 15, 16, 256])),
        lambda: random_url(rng, 3),
    ])()


def distinct(keys):
    return list({contents(key): key for key in keys}.values())


def random_graph(rng, depth, made):
    if made and rng.random() < 0.2:
        return rng.choice(made)
    if depth == 0 or rng.random() < 0.4:
        return random_scalar(rng)
    size = rng.choice([0, 1, 2, 3] if depth < 4 else [1, 2, 5, 14, 15, 16])
    items = [random_graph(rng, depth - 1, made) for _ in range(size)]
    kind = rng.randrange(4)
    if kind == 0:
        value = items
    elif kind == 1:
        value = Set(items)
    elif kind == 2:
        keys = [random_text(rng) if rng.random() < 0.7 else random_graph(rng, depth - 1, made) for _ in items]
        value = Map(list(zip(distinct(keys), items)))
    else:
        name = rng.choice(["AdVideoRecord", "NSOrderedSet", "NSMutable", "Bücher"])
        fields = distinct(rng.choice(["", "", "$", "$$"]) + random_text(rng) for _ in items)
        value = Custom(name, list(zip(fields, items)))
    made.append(value)
    return value


def main(mode, *arguments):
    if mode == "fixtures":
        folder = pathlib.Path(__file__).parent.parent / "fixtures" / "archives"
        for path in sorted(folder.glob("*.json")):
            print(path.stem, contents(from_json(json.loads(path.read_text(encoding="utf-8"))["root"])))
    elif mode == "read":
        for line in sys.stdin:
            print(contents(read(plistlib.loads(bytes.fromhex(line), fmt=plistlib.FMT_BINARY))))
    elif mode == "write":
        rng = random.Random(arguments[0])
        for _ in range(int(arguments[1])):
            graph = random_graph(rng, 4, [])
            print(write(graph, rng).hex(), contents(graph))
    else:
        sys.exit(f"unknown mode {mode}")


main(*sys.argv[1:])
