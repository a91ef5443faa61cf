"""tavlo: the utility component of the SDK for Python, over the shared library of its C interface.

    import tavlo

    sdk = tavlo.Tavlo()
    sdk.install("logger", printLog=print)
    sdk.install_platform(container="/data/player")
    print(sdk.getCacheVideoDataPath("https://cdn.example.com/clip.mp4"))

Needs    the standard library only.
Values   texts are str; bytes that are no UTF-8 come as surrogates and go back as they came. Property-list values are
         Python's own (values.py has the kinds that Python lacks).
Absent   None, in and out; as a property-list value None is null, and an absent one is tavlo.ABSENT.
Threads  any thread, any time. Callbacks run on the thread that they are called on, with Python's lock held.
Exit     what is installed is taken out before Python ends. Callbacks that run then are waited for, 10 s at most;
         background tasks that have not begun are dropped.
Raises   TavloError with the C interface's status and error text; MemoryError. What a callback raises is told by
         sys.unraisablehook, and counts as the answer of a callback that is not there.

The operations have the names of the contract. What each does, and when its result is absent, stands in tavlo.h.
"""

import atexit
import ctypes
import ctypes.util
import functools
import os
import time
from ctypes import byref, c_void_p, pointer, sizeof

from . import abi
from .abi import borrowed, bytes_of, str_of
from .values import Date, Float, Map, Object, Set, Uid, Url, Values

__all__ = ["ABSENT", "Date", "Float", "Image", "Map", "Object", "Set", "Tavlo", "TavloError", "Uid", "Url"]

ABSENT = object()
MISUSE, NO_MEMORY, NO_ARCHIVE, REPORTED, FAILED = range(1, 6)
_BYTES = {"archive_encode", "property_list_encode"}  # what is no text


# What the library has of ours lives until it lets go of it, whoever else does.
_INSTALLED = {}
_PATIENCE = 10  # seconds
_RELEASED = abi.Released(lambda user: _INSTALLED.pop(user, None) and None)


def _take_out(functions):
    """Before Python ends: a thread that calls back into a Python that has ended would take the process with it."""
    if not _INSTALLED:
        return
    for name in ("platform", *abi.COLLABORATORS):
        getattr(functions, f"{name}_install")(None)
    latest = time.monotonic() + _PATIENCE
    while _INSTALLED and time.monotonic() < latest:
        time.sleep(0.01)
    time.sleep(0.01)  # the thread that let go last is on its way out of Python


class TavloError(Exception):
    def __init__(self, status, message):
        super().__init__(message)
        self.status = status


class Image:
    """An image's pixels: four bytes each, row by row from the top left."""

    def __init__(self, width, height, pixels):
        self.width, self.height, self.pixels = width, height, pixels


class Tavlo:
    """The library at the path, at $TAVLO_LIBRARY, or where the system finds it. There is one of it in a process."""

    def __init__(self, path=None):
        self.c = abi.load(path or os.environ.get("TAVLO_LIBRARY") or ctypes.util.find_library("tavlo") or "libtavlo.so")
        self.values = Values(self.c, lambda: self._failure(MISUSE))
        atexit.register(_take_out, self.c)

    @property
    def version(self):
        return self.c.version().decode()

    def __getattr__(self, name):
        """An operation by its name."""
        if name not in abi.OPERATIONS:
            raise AttributeError(name)
        return functools.partial(self._run, name)

    def _run(self, name, *arguments):
        result, parameters = abi.OPERATIONS[name]
        if name == "getAdditionalRequestingString" or (name == "getExportTavloSDKLog" and not arguments):
            arguments = (None,)
        if len(arguments) != len(parameters):
            raise TypeError(f"{name} takes {len(parameters)} argument(s), not {len(arguments)}")
        handles = []
        try:
            given = []
            for kind, argument in zip(parameters, arguments):
                if kind == abi.VALUE:
                    handles.append(None if argument is ABSENT else self.values.handle(argument))
                    given.append(handles[-1])
                else:
                    given.append(borrowed(argument) if kind is abi.Text else argument)
            return self._answer(name, result, given)
        finally:
            for handle in handles:
                self.c.value_free(handle)

    def _answer(self, name, result, given):
        function = getattr(self.c, name)
        if result is abi.NOTHING:
            return self._check(function(*given))
        out = (result if result in (abi.TEXT, abi.TRUTH) else c_void_p)()
        self._check(function(*given, byref(out)))
        if result is abi.TRUTH:
            return out.value
        if result is abi.TEXT:
            try:
                return bytes_of(out) if name in _BYTES else str_of(out)
            finally:
                self.c.string_free(byref(out))
        if not out.value:
            return ABSENT if result == abi.VALUE else None
        return {abi.VALUE: self._value, abi.IMAGE: self._image, abi.BUNDLE: self._bundle}[result](out.value)

    def _value(self, handle):
        try:
            return self.values.value(handle)
        finally:
            self.c.value_free(handle)

    def _image(self, handle):
        try:
            pixels = bytes_of(self.c.image_pixels(handle))
            return Image(self.c.image_width(handle), self.c.image_height(handle), pixels)
        finally:
            self.c.image_free(handle)

    def _bundle(self, handle):
        """A function from a resource's name and type to its path."""
        def path(name, kind, *, _keep=_Freed(self.c.bundle_free, handle)):
            out = abi.String()
            self._check(self.c.bundle_path(handle, borrowed(name), borrowed(kind), byref(out)))
            try:
                return str_of(out)
            finally:
                self.c.string_free(byref(out))
        return path

    def _failure(self, status):
        if status == NO_MEMORY:
            return MemoryError()
        return TavloError(status, self.c.last_error().decode("utf-8", "replace"))

    def _check(self, status):
        if status != 0:
            raise self._failure(status)

    # ---- What a host brings ----

    def install(self, name, **callbacks):
        """Installs a collaborator (abi.TABLES has them) of callbacks; without any, takes out what is installed."""
        if name not in abi.COLLABORATORS:
            raise TypeError(f"a host brings no {name}, but {', '.join(abi.COLLABORATORS)}")
        install = getattr(self.c, f"{name}_install")
        table = self._table(name, callbacks) if callbacks else None
        try:
            self._check(install(byref(table) if callbacks else None))
        except BaseException:
            _INSTALLED.pop(table and table.user, None)
            raise

    def install_platform(self, quiet_console=False, **options):
        """Installs the platform: texts of abi.OPTIONS, and for each of abi.SERVICES a dict of callbacks."""
        platform = abi.Platform(size=sizeof(abi.Platform), quiet_console=quiet_console)
        kept, tables = [], []
        for name, option in options.items():
            if name in abi.OPTIONS:
                kept.append(borrowed(option))
                setattr(platform, name, kept[-1])
            elif name in abi.SERVICES:
                tables.append(self._table(name, option))
                setattr(platform, name, pointer(tables[-1]))
            else:
                raise TypeError(f"a platform has no {name}, but {', '.join((*abi.OPTIONS, *abi.SERVICES))}")
        try:
            self._check(self.c.platform_install(byref(platform)))
        except BaseException:
            for table in tables:
                _INSTALLED.pop(table.user, None)
            raise

    def uninstall_platform(self):
        self._check(self.c.platform_install(None))

    def run_task(self, task):
        """Runs a task of the background queue, once."""
        self._check(self.c.task_run(task))

    def answer_geocode_request(self, request, placemarks=None, error=None):
        """Answers a request of the geocoder, once: with placemarks, each a dict of abi.PLACEMARK, or an error."""
        if error is not None:
            return self._check(self.c.geocode_request_fail(request, borrowed(error)))
        texts = [{name: borrowed(text) for name, text in each.items()} for each in placemarks or []]
        structs = [pointer(abi.Placemark(size=sizeof(abi.Placemark), **each)) for each in texts]
        array = (ctypes.POINTER(abi.Placemark) * len(structs))(*structs)
        return self._check(self.c.geocode_request_answer(request, None if placemarks is None else array, len(structs)))

    def _table(self, name, callbacks):
        from .callbacks import adapted
        if not isinstance(callbacks, dict):
            raise TypeError(f"{name} takes a dict of callbacks: {', '.join(abi.PROTOTYPES[name])}")
        unknown = set(callbacks) - set(abi.PROTOTYPES[name])
        if unknown:
            raise TypeError(f"a {name} has no {', '.join(sorted(unknown))}, but {', '.join(abi.PROTOTYPES[name])}")
        table = abi.STRUCTS[name](size=sizeof(abi.STRUCTS[name]), released=_RELEASED)
        for callback, result, parameters in abi.TABLES[name]:
            if callback in callbacks:
                function = adapted(self, name, callback, result, parameters, callbacks[callback])
                setattr(table, callback, abi.PROTOTYPES[name][callback](function))
        table.user = id(table)
        _INSTALLED[table.user] = table
        return table


class _Freed:
    """Frees a handle when nobody has it any more."""

    def __init__(self, free, handle):
        self.free, self.handle = free, handle

    def __del__(self):
        self.free(self.handle)
