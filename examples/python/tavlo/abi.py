"""The C interface as ctypes sees it: its structs, its tables of callbacks and its functions, one row each."""

import ctypes
from ctypes import CFUNCTYPE, POINTER, Structure, c_bool, c_char_p, c_double, c_float, c_int32, c_int64, c_size_t
from ctypes import c_uint64, c_void_p

PLACEMARK = ("ISOcountryCode", "country", "postalCode", "administrativeArea", "locality", "subLocality", "thoroughfare")


class Text(Structure):
    _fields_ = [("data", c_void_p), ("size", c_size_t)]


class String(Structure):
    _fields_ = [("data", c_void_p), ("size", c_size_t)]


class Coordinate(Structure):
    _fields_ = [("latitude", c_double), ("longitude", c_double)]


class Placemark(Structure):
    _fields_ = [("size", c_size_t), *((name, Text) for name in PLACEMARK)]


# The tables: of each callback its name, its result, and its parameters after the host's own pointer. Results that are
# no plain type: ANSWER is a text or bytes, ERROR is whether it went well, with a description, ADDED is several things
# of which one is added at a time; each has a pointer of its own as the last parameter.
ANSWER, ERROR, ADDED = "answer", "error", "added"
TABLES = {
    "package": [("text", ANSWER, [c_int32]), ("limitAdTrackingEnabled", c_bool, []), ("resolution", c_int32, []),
                ("preRoll", c_int32, []), ("setLatitudeAndLogitude", None, [Text, Text]),
                ("setUserAddress", None, [Text])],
    "unique_user_handler": [("getIsUserNew", c_int32, []), ("getUniqueUserDayValue", c_int32, []),
                            ("getUniqueUserDay", ANSWER, []), ("getUniqueUserWeekValue", c_int32, []),
                            ("getNumberOfWeek", c_int32, []), ("getUniqueUserMonthValue", c_int32, []),
                            ("getNumberOfMonth", c_int32, [])],
    "database_handler": [("getNetworkTrackerDetails", ADDED, [])],
    "logger": [("printLog", None, [Text])],
    "exception_reporter": [("tavloException", c_bool, [Text])],
    "console": [("log", None, [Text])],
    "url_data": [("dataWithContentsOfURL", ANSWER, [Text])],
    "file_manager": [("documentDirectory", ANSWER, []), ("fileExistsAtPath", c_int32, [Text]),
                     ("removeItemAtPath", ERROR, [Text, c_bool]), ("createDirectoryAtPath", ERROR, [Text]),
                     ("contentsOfDirectoryAtPath", ADDED, [Text]), ("dataWithContentsOfFile", ANSWER, [Text]),
                     ("writeToFileAtomically", ERROR, [Text, Text, c_bool])],
    "user_defaults": [("objectForKey", c_void_p, [Text]), ("setObjectForKey", None, [c_void_p, Text]),
                      ("synchronize", c_bool, [])],
    "background_queue": [("dispatchAsync", None, [c_void_p])],
    "location_services": [("locationServicesEnabled", c_bool, []), ("authorizationStatus", c_int32, []),
                          ("startUpdatingLocation", None, []), ("location", c_bool, [POINTER(Coordinate)])],
    "geocoder": [("reverseGeocodeLocation", None, [POINTER(Coordinate), c_void_p])],
    "application": [("canOpenURL", c_bool, [Text]), ("presentOpenInMenu", c_bool, [Text, Text, c_bool])],
}
COLLABORATORS = list(TABLES)[:5]
SERVICES = list(TABLES)[5:]
Released = CFUNCTYPE(None, c_void_p)


def _prototype(table, result, parameters):
    if result in (ANSWER, ERROR, ADDED):
        returned = c_bool if result == ERROR or table == "file_manager" and result == ADDED else None
        return CFUNCTYPE(returned, c_void_p, *parameters, c_void_p)
    return CFUNCTYPE(result, c_void_p, *parameters)


PROTOTYPES = {table: {name: _prototype(table, result, parameters) for name, result, parameters in rows}
              for table, rows in TABLES.items()}
STRUCTS = {table: type(table, (Structure,), {"_fields_": [("size", c_size_t), ("user", c_void_p), ("released", Released),
                                                         *callbacks.items()]})
           for table, callbacks in PROTOTYPES.items()}

OPTIONS = ("container", "domain", "resources", "certificate_authorities", "geocoding_url")


class Platform(Structure):
    _fields_ = [("size", c_size_t), *((name, Text) for name in OPTIONS), ("quiet_console", c_bool),
                *((name, POINTER(STRUCTS[name])) for name in SERVICES)]


# The operations: what a row begins with is what it gives.
TEXT, VALUE, TRUTH, BUNDLE, IMAGE, NOTHING = String, "value", c_bool, "bundle", "image", None
OPERATIONS = {
    "getAdditionalRequestingString": (TEXT, [c_void_p]),
    "trackerNetworkSessionData": (VALUE, []),
    "getInAppNotificationAdditionalRequest": (TEXT, []),
    "getUserInfoRequestString": (TEXT, []),
    "getDocumentDirectoryPath": (TEXT, [Text]),
    "getCacheVideoDataPath": (TEXT, [Text]),
    "getCacheVideoPathOfSavedInDB": (TEXT, [Text]),
    "getCachedVideoList": (VALUE, [c_bool]),
    "deleteCachedVideo": (TRUTH, [Text]),
    "clearCache": (NOTHING, []),
    "sortCacahedVideoDates": (VALUE, [VALUE]),
    "getCacheBannerImagePath": (TEXT, [Text]),
    "cachedBannerImage": (NOTHING, [Text]),
    "setAppIdToUserDefault": (NOTHING, [Text]),
    "setOptionalIdToUserDefault": (NOTHING, [Text]),
    "setSecurityKeyToUserDefault": (NOTHING, [Text]),
    "getAppIdFromUserDefault": (TEXT, []),
    "getOptionalIdFromUserDefault": (TEXT, []),
    "getSecurityKeyTFromUserDefault": (TEXT, []),
    "fetchCurrentLocation": (NOTHING, []),
    "frameworkBundle": (BUNDLE, []),
    "getVolumeImage": (IMAGE, []),
    "getMuteImage": (IMAGE, []),
    "getExportTavloSDKLog": (NOTHING, [Text]),
    "quillmixInstalledOnThisDevice": (TRUTH, []),
    "md5": (TEXT, [VALUE]),
    "getFileExtensionFromUrl": (TEXT, [Text]),
    # No operations of the 27:
    "url_encode": (TEXT, [Text]),
    "archive_encode": (TEXT, [VALUE]),
    "archive_decode": (VALUE, [Text]),
    "property_list_encode": (TEXT, [VALUE]),
    "property_list_decode": (VALUE, [Text]),
    "value_text_form": (TEXT, [VALUE]),
}

# What is called as it is: name, result, parameters.
_P = c_void_p
FUNCTIONS = [
    ("version", c_char_p, []), ("version_number", c_int32, []), ("last_error", c_char_p, []),
    ("string_free", None, [POINTER(String)]), ("answer_text", c_int32, [_P, Text]),
    ("package_text_name", c_char_p, [c_int32]), ("names_add", c_int32, [_P, Text]),
    ("tracker_records_add", c_int32, [_P, _P, _P, _P]), ("print_log", c_int32, [Text]),
    *((f"{table}_install", c_int32, [POINTER(STRUCTS[table])]) for table in COLLABORATORS),
    ("platform_install", c_int32, [POINTER(Platform)]),
    ("task_run", c_int32, [_P]), ("task_drop", None, [_P]),
    ("geocode_request_answer", c_int32, [_P, POINTER(POINTER(Placemark)), c_size_t]),
    ("geocode_request_fail", c_int32, [_P, Text]), ("geocode_request_drop", None, [_P]),
    ("bundle_path", c_int32, [_P, Text, Text, POINTER(String)]), ("bundle_free", None, [_P]),
    ("image_width", c_size_t, [_P]), ("image_height", c_size_t, [_P]), ("image_pixels", Text, [_P]),
    ("image_free", None, [_P]),
    ("value_null", _P, []), ("value_from_boolean", _P, [c_bool]), ("value_from_int128", _P, [c_int64, c_uint64]),
    ("value_from_double", _P, [c_double]), ("value_from_float", _P, [c_float]), ("value_from_date", _P, [c_double]),
    ("value_from_uid", _P, [c_uint64]), ("value_from_text", _P, [Text]), ("value_from_data", _P, [Text]),
    ("value_from_url", _P, [Text, _P]), ("value_from_object", _P, [Text, _P]),
    ("value_from_list", _P, [POINTER(_P), c_size_t]), ("value_from_set", _P, [POINTER(_P), c_size_t]),
    ("value_from_map", _P, [POINTER(_P), POINTER(_P), c_size_t]), ("value_free", None, [_P]),
    ("value_kind", c_int32, [_P]), ("value_boolean", c_bool, [_P, POINTER(c_bool)]),
    ("value_int128", c_bool, [_P, POINTER(c_int64), POINTER(c_uint64)]),
    ("value_double", c_bool, [_P, POINTER(c_double)]), ("value_is_float", c_bool, [_P]),
    ("value_date", c_bool, [_P, POINTER(c_double)]), ("value_uid", c_bool, [_P, POINTER(c_uint64)]),
    ("value_text", Text, [_P]), ("value_data", Text, [_P]), ("value_url", Text, [_P]), ("value_url_base", _P, [_P]),
    ("value_class_name", Text, [_P]), ("value_count", c_size_t, [_P]), ("value_item", _P, [_P, c_size_t]),
    ("value_key", _P, [_P, c_size_t]), ("value_entry", _P, [_P, c_size_t]),
]


def load(path):
    """The library with its functions declared, as attributes without "tavlo_"."""
    library = ctypes.CDLL(path)
    functions = {}
    for name, result, parameters in FUNCTIONS:
        functions[name] = library[f"tavlo_{name}"]
        functions[name].restype, functions[name].argtypes = result, parameters
    results = {TEXT: String, TRUTH: c_bool, VALUE: _P, BUNDLE: _P, IMAGE: _P}
    for name, (result, parameters) in OPERATIONS.items():
        functions[name] = library[f"tavlo_{name}"]
        functions[name].restype = c_int32
        functions[name].argtypes = [_P if parameter == VALUE else parameter for parameter in parameters]
        if result is not NOTHING:
            functions[name].argtypes += [POINTER(results[result])]
    return type("Functions", (), {name: staticmethod(function) for name, function in functions.items()})


def borrowed(text):
    """A str, bytes or None as the C interface takes it, for as long as what is returned lives."""
    if text is None:
        return Text(None, 0)
    if not isinstance(text, (str, bytes, bytearray, memoryview)):
        raise TypeError(f"a text is a str, bytes or None, not {type(text).__name__}")
    data = text.encode("utf-8", "surrogateescape") if isinstance(text, str) else bytes(text)
    buffer = ctypes.create_string_buffer(data, len(data) + 1)
    result = Text(ctypes.addressof(buffer), len(data))
    result.kept = buffer
    return result


def bytes_of(text):
    return ctypes.string_at(text.data, text.size) if text.data else None


def str_of(text):
    data = bytes_of(text)
    return None if data is None else data.decode("utf-8", "surrogateescape")
