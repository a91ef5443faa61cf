"""Property-list values as Python's own: None is null, and the types here are the kinds that Python lacks."""

from ctypes import byref, c_bool, c_double, c_int64, c_uint64, c_void_p
from dataclasses import dataclass, field

from .abi import borrowed, bytes_of, str_of

NULL, BOOLEAN, INTEGER, REAL, DATE, TEXT, DATA, URL, UID, LIST, SET, MAP, OBJECT = range(13)


@dataclass(frozen=True)
class Date:
    seconds: float  # since 2001-01-01 00:00:00 UTC


@dataclass(frozen=True)
class Uid:
    index: int


@dataclass(frozen=True)
class Url:
    text: str
    base: "Url" = None


@dataclass(frozen=True)
class Set:
    """A set keeps its order, and its items need not be hashable."""
    items: list


@dataclass(frozen=True)
class Map:
    """A map whose keys are not all texts; one whose keys are is a dict."""
    entries: list  # of pairs


@dataclass(frozen=True)
class Object:
    class_name: str
    fields: dict = field(default_factory=dict)


class Float(float):
    """A number that is stored in 32 bits."""


class Values:
    """Makes handles of values, which the caller frees, and reads handles."""

    def __init__(self, functions, failure):
        self.c, self.failure = functions, failure

    def handle(self, value):
        handle = self._handle(value)
        if not handle:
            raise self.failure()
        return handle

    def _handle(self, value):
        simple = {bool: self.c.value_from_boolean, float: self.c.value_from_double, Float: self.c.value_from_float}
        if value is None:
            return self.c.value_null()
        if type(value) in simple:
            return simple[type(value)](value)
        if isinstance(value, int):
            if not -2**127 <= value < 2**127:
                raise OverflowError("no property list holds an integer of more than 128 bits")
            return self.c.value_from_int128(value >> 64, value & (2**64 - 1))
        if isinstance(value, str):
            return self.c.value_from_text(borrowed(value))
        if isinstance(value, (bytes, bytearray)):
            return self.c.value_from_data(borrowed(value))
        if isinstance(value, Date):
            return self.c.value_from_date(value.seconds)
        if isinstance(value, Uid):
            return self.c.value_from_uid(value.index)
        if isinstance(value, Url):
            with self.handles([] if value.base is None else [value.base]) as base:
                return self.c.value_from_url(borrowed(value.text), base[0] if len(base) else None)
        return self._container(value)

    def _container(self, value):
        if isinstance(value, (list, tuple)):
            with self.handles(value) as items:
                return self.c.value_from_list(items, len(items))
        if isinstance(value, Set):
            with self.handles(value.items) as items:
                return self.c.value_from_set(items, len(items))
        if isinstance(value, Object):
            with self.handles([value.fields]) as fields:
                return self.c.value_from_object(borrowed(value.class_name), fields[0])
        if isinstance(value, (dict, Map)):
            entries = list(value.items() if isinstance(value, dict) else value.entries)
            with self.handles([key for key, _ in entries]) as keys, self.handles([item for _, item in entries]) as items:
                return self.c.value_from_map(keys, items, len(entries))
        raise TypeError(f"no property list holds a {type(value).__name__}")

    def handles(self, values):
        return _Handles(self, values)

    def value(self, handle):
        """What the handle, which stays as it is, leads to."""
        kind = self.c.value_kind(handle)
        if kind == NULL:
            return None
        if kind == BOOLEAN:
            return self._out(self.c.value_boolean, handle, c_bool)
        if kind == INTEGER:
            high, low = c_int64(), c_uint64()
            self.c.value_int128(handle, byref(high), byref(low))
            return (high.value << 64) + low.value
        if kind == REAL:
            real = self._out(self.c.value_double, handle, c_double)
            return Float(real) if self.c.value_is_float(handle) else real
        if kind == DATE:
            return Date(self._out(self.c.value_date, handle, c_double))
        if kind == UID:
            return Uid(self._out(self.c.value_uid, handle, c_uint64))
        if kind == TEXT:
            return str_of(self.c.value_text(handle))
        if kind == DATA:
            return bytes_of(self.c.value_data(handle))
        if kind == URL:
            base = self.c.value_url_base(handle)
            return Url(str_of(self.c.value_url(handle)), self.value(base) if base else None)
        return self._contents(handle, kind)

    def _contents(self, handle, kind):
        count = range(self.c.value_count(handle))
        if kind in (LIST, SET):
            items = [self.value(self.c.value_item(handle, index)) for index in count]
            return items if kind == LIST else Set(items)
        entries = [(self.value(self.c.value_key(handle, index)), self.value(self.c.value_entry(handle, index)))
                   for index in count]
        if kind == OBJECT:
            return Object(str_of(self.c.value_class_name(handle)), dict(entries))
        return dict(entries) if all(isinstance(key, str) for key, _ in entries) else Map(entries)

    @staticmethod
    def _out(function, handle, kind):
        result = kind()
        function(handle, byref(result))
        return result.value


class _Handles:
    """Handles of several values, as the array that a container is made of; freed at the end."""

    def __init__(self, values, items):
        self.values, self.items = values, items

    def __enter__(self):
        made = []
        try:
            for item in self.items:
                made.append(self.values.handle(item))
        except BaseException:
            for handle in made:
                self.values.c.value_free(handle)
            raise
        self.array = (c_void_p * len(made))(*made)
        return self.array

    def __exit__(self, *_):
        for handle in self.array:
            self.values.c.value_free(handle)
