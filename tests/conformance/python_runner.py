#!/usr/bin/python3
"""Runs the conformance cases through the Python module, which is examples/python/tavlo.

Usage: python_runner.py FOLDER    prints each difference; status 1 when there is any

$TAVLO_LIBRARY is the shared library of the C interface.
Each case has a process of its own: what the library keeps for the process can be emptied in no other way.
"""

import json
import os
import sys
import tempfile
import traceback
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path[:0] = [str(ROOT / "examples/python"), str(Path(__file__).resolve().parent)]

import tavlo  # noqa: E402
from python_world import DOCUMENTS, SECONDS_FROM_1970_TO_2001, World, bytes_of  # noqa: E402

# What callbacks never see: the two settings of a location manager, and the reads of a record.
UNSEEN = ("setDistanceFilter:", "setDesiredAccuracy:", "networkID", "event", "count")
IMAGES = {1: "volume.png", 2: "mute.png"}


def with_places(value, resources):
    places = {"${documents}": DOCUMENTS, "${documentsUrl}": f"file://{DOCUMENTS}/", "${resources}": resources}
    if isinstance(value, str):
        for name, place in places.items():
            value = value.replace(name, place)
        return value
    if isinstance(value, list):
        return [with_places(each, resources) for each in value]
    if isinstance(value, dict):
        if "$date" in value:
            return {"$date": float(value["$date"])}
        return {with_places(key, resources): with_places(each, resources) for key, each in value.items()}
    return value


def value_of(given):
    """What the module takes for it."""
    if isinstance(given, list):
        return [value_of(each) for each in given]
    if isinstance(given, dict):
        if "$date" in given:
            return tavlo.Date(given["$date"] - SECONDS_FROM_1970_TO_2001)
        return {key: value_of(each) for key, each in given.items()}
    return given


def json_of(value):
    if isinstance(value, list):
        return [json_of(each) for each in value]
    if isinstance(value, dict):
        return {key: json_of(each) for key, each in value.items()}
    if isinstance(value, tavlo.Date):
        return {"$date": value.seconds + SECONDS_FROM_1970_TO_2001}
    if isinstance(value, bytes):
        return value.decode("latin-1")
    return None if value is tavlo.ABSENT else value


def shown(value):
    return json.dumps(value, sort_keys=True)  # which tells 1 from 1.0 and from true


def matches(expected, got):
    """A text may end in "${any}", and {"$json": V} is a text that is V as JSON."""
    if isinstance(expected, str) and isinstance(got, str) and expected.endswith("${any}"):
        return got.startswith(expected.removesuffix("${any}"))
    if isinstance(expected, dict) and "$json" in expected:
        return isinstance(got, str) and shown(json.loads(got)) == shown(expected["$json"])
    if isinstance(expected, list) and isinstance(got, list):
        return len(expected) == len(got) and all(map(matches, expected, got))
    return shown(expected) == shown(got)


class Run:
    def __init__(self, sdk, where, one, resources):
        self.sdk, self.where, self.steps, self.differences = sdk, where, one["steps"], 0
        self.world = World(sdk, one.get("given", {}), resources)

    def run(self):
        for self.number, step in enumerate(self.steps, 1):
            self.run_step(step)
        return self.differences

    def tell(self, what, expected, got):
        self.differences += 1
        print(f"{self.where}, step {self.number}: {what}\n  expected: {shown(expected)}\n  got:      {shown(got)}")

    def compare(self, what, expected, got):
        if not matches(expected, got):
            self.tell(what, expected, got)

    def run_step(self, step):
        answer, raised = None, False
        try:
            answer = self.call(step["call"], step.get("with")) if "call" in step else self.world.act(step)
        except (tavlo.TavloError, LookupError, TypeError) as error:
            raised = str(error)
        if bool(raised) != step.get("raises", False):
            self.tell("raises", step.get("raises", False), raised)
        if "gives" in step:
            self.compare("gives", step["gives"], answer)
        self.compare_events(step)
        self.compare_state(step)

    def call(self, operation, given):
        takes_value = operation in ("md5", "sortCacahedVideoDates")
        argument = tavlo.ABSENT if given is None and takes_value else value_of(given) if takes_value else given
        if operation == "getExportTavloSDKLog":
            argument = given and "x11:1"
        if operation == "urlEncode":
            return self.sdk.url_encode(given)
        try:
            function = getattr(self.sdk, operation)
        except AttributeError:
            raise LookupError(f"there is no operation {operation}") from None
        without = given is None and operation in NO_ARGUMENT
        answer = function() if without else function(argument)
        if operation == "frameworkBundle":
            return answer and f"{self.world.resources}/TavloSDKResource.bundle"
        if isinstance(answer, tavlo.Image):
            return IMAGES[answer.width]
        return json_of(answer)

    def compare_events(self, step):
        seen = self.world.take()
        for name in ("log", "console", "reports", "menus"):
            self.compare(name, step.get(name, []), seen[name])
        if "asks" in step:
            self.compare("asks", [ask for ask in step["asks"] if not ask.startswith(UNSEEN)], seen["asks"])

    def compare_state(self, step):
        if "settings" in step:
            self.compare("settings", step["settings"], self.world.settings)
        if "files" in step:
            expected = {path: bytes_of(content).decode("latin-1") for path, content in step["files"].items()}
            self.compare("files", expected, json_of(self.world.tree()))
        for name, text in step.get("package", {}).items() if step.get("do") != "set" else ():
            self.compare(name, text, self.world.package.get(name))


NO_ARGUMENT = {"trackerNetworkSessionData", "getInAppNotificationAdditionalRequest", "getUserInfoRequestString",
               "clearCache", "getAppIdFromUserDefault", "getOptionalIdFromUserDefault",
               "getSecurityKeyTFromUserDefault", "fetchCurrentLocation", "frameworkBundle", "getVolumeImage",
               "getMuteImage", "quillmixInstalledOnThisDevice", "getAdditionalRequestingString"}


def holds(sdk, where, one, resources):
    """Whether the case does."""
    sys.stdout.flush()
    child = os.fork()
    if child == 0:
        status = 1
        try:
            status = 1 if Run(sdk, where, one, resources).run() else 0
        except BaseException:
            print(f"{where}: {traceback.format_exc()}")
        sys.stdout.flush()
        os._exit(status)
    return os.waitpid(child, 0)[1] == 0


def main(arguments):
    if len(arguments) != 1 or not Path(arguments[0]).is_dir():
        print(__doc__, file=sys.stderr)
        return 2
    sdk = tavlo.Tavlo()
    outcomes = []
    with tempfile.TemporaryDirectory() as resources:
        for path in sorted(Path(arguments[0]).glob("*.json")):
            try:
                cases = with_places(json.loads(path.read_text(encoding="utf-8")), resources)
            except ValueError as error:
                print(f"{path}: {error}", file=sys.stderr)
                return 2
            outcomes += [holds(sdk, f"{path.stem}: {one['name']}", one, resources) for one in cases]
    print(f"{sum(outcomes)} of {len(outcomes)} cases hold")
    return 0 if all(outcomes) else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
