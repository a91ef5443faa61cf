"""Random sessions and what each of them sends, from tables of its own.

Usage: wire_contract.py SEED COUNT

Prints one line a session, of six fields in hexadecimal with a tab between them: the session as JSON, the ad
request, the in-app request, the unique-user fragment, the tracker payload as JSON, the console's lines.
"""

import json
import random
import sys
from urllib.parse import quote

# e: encoded, r: as is, c: constant, b: truth value, d: integer of the package, u: integer counter, m: day marker,
# i: encoded identifier. One row: key, rendering, source.
AD = """
appId e applicationId
os_version e os_version
app_version r app_version
device_id r device_id
timestamp r timestamp
app_bundle_name e app_bundle_name
sdk_version c 4.1.0
token e token
advertisingID e advertisingID
limitedTracking b limitAdTrackingEnabled
mac_address e mac_address
device_type e device_type
mobile_no e mobile_no
email_address e email_address
connection_type e connection_type
screen_density_x r screen_density_x
screen_density_y r screen_density_y
screen_height r screen_height
carrier_name r carrier_name
screen_density_category e screen_density_category
device_model e device_model
language e language
maturity_rating e maturity_rating
asset_value e asset_value
opt_userid e thirdPartyUserId
source e source
name e name
age e age
sex e sex
location e location
marital_status e maritalStatus
birthday e birthday
facebook_id e facebook_id
twitter_handle e twitter_handle
education e education
nationality e nationality
Page e page
lat e getLatitude
long e getLongitude
address e getUserAddress
sessionId e iosID
"""

IN_APP = """
app_id i ApplicationId
os_version e os_version
app_version r app_version
device_id r device_id
timestamp r timestamp
app_bundle_name e app_bundle_name
sdk_version c 4.1.0
token e token
advertisingID e advertisingID
limitedTracking b limitAdTrackingEnabled
device_type e device_type
connection_type e connection_type
screen_density_x r screen_density_x
screen_density_y r screen_density_y
swidth r screen_width
sheight r screen_height
carrier_name r carrier_name
screen_density_category e screen_density_category
device_model e device_model
language e language
opt_userid i OptionalId
os_id r device_id
Page e page
sessionId r iosID
"""

TRACKER = """
Key r accesskey
resolution d resolution
preroll d preRoll
offerids c 0
appId e applicationId
os_version e os_version
app_version e app_version
device_id e device_id
Page e page
token e token
timestamp e timestamp
app_bundle_name e app_bundle_name
sdk_version c 4.1.0
advertisingID e advertisingID
limitedTracking b limitAdTrackingEnabled
device_type e device_type
connection_type e connection_type
screen_density_x e screen_density_x
screen_density_y e screen_density_y
swidth c 720
sheight r screen_height
screen_density_category e screen_density_category
carrier_name e carrier_name
device_model e device_model
language e language
ru u getIsUserNew
uud u getUniqueUserDayValue
uud_n m getUniqueUserDay
uuw u getUniqueUserWeekValue
uuw_n u getNumberOfWeek
uum u getUniqueUserMonthValue
uum_n u getNumberOfMonth
user_id c 1234
track_id c 2423432432
"""

TEXTS = """applicationId os_version app_version device_id timestamp app_bundle_name token advertisingID mac_address
device_type mobile_no email_address connection_type screen_density_x screen_density_y screen_width screen_height
carrier_name screen_density_category device_model language maturity_rating asset_value thirdPartyUserId source name
age sex location maritalStatus birthday facebook_id twitter_handle education nationality page getLatitude
getLongitude getUserAddress iosID accesskey""".split()
COUNTERS = """getIsUserNew getUniqueUserDayValue getUniqueUserWeekValue getNumberOfWeek getUniqueUserMonthValue
getNumberOfMonth""".split()

PIECES = ["a", "Z", "7", " ", "&", "=", "%", "+", "/", "?", "#", "~", ".", "-", "_", "\"", "\\", "'", "\n", "\t",
          "\0", "\x1b", "\x7f", "ü", "ß", "é", "日", "€", "😀", "\u2028", "\ufffd", "\uffff", "\U0010ffff", "(null)"]


def plain(text):
    return "(null)" if text is None else text


def encoded(text):
    return plain(text) if text is None else quote(text, safe="-._~")


def rendered(session, how, source):
    package = session.get("package") or {}
    users = session.get("uniqueUser") or {}
    identifiers = session.get("identifiers") or {}
    return {
        "e": lambda: encoded(package.get(source)),
        "r": lambda: plain(package.get(source)),
        "c": lambda: source,
        "b": lambda: "1" if package.get(source) else "0",
        "d": lambda: str(package.get(source) or 0),
        "u": lambda: str(users.get(source) or 0),
        "m": lambda: plain(users.get(source)),
        "i": lambda: encoded(identifiers.get(source)),
    }[how]()


def pairs(session, table):
    for row in table.strip().splitlines():
        key, how, source = row.split()
        yield key, rendered(session, how, source)


def query(session, table):
    return "&".join(f"{key}={value}" for key, value in pairs(session, table))


def user(session):
    users = session.get("uniqueUser") or {}
    number = [str(users.get(name) or 0) for name in COUNTERS]
    return (f"&ru={number[0]}&ru_n=&uud={number[1]}&uud_n={plain(users.get('getUniqueUserDay'))}"
            f"&uuw={number[2]}&uuw_n={number[3]}&uum={number[4]}&uum_n={number[5]}")


def integer_reading(value):
    if value is None:
        return 0
    if isinstance(value, str):
        text = value.lstrip(" \t\n")
        sign = -1 if text.startswith("-") else 1
        if text[:1] in ("-", "+"):
            text = text[1:]
        digits = ""
        for character in text:
            if character not in "0123456789":
                break
            digits += character
        return max(-2**31, min(2**31 - 1, sign * int(digits or "0")))
    low = int(value) & 0xFFFFFFFF
    return low - 2**32 if low >= 2**31 else low


def text_form(value):
    if isinstance(value, float):
        return "%.16g" % value
    return plain(value) if value is None or isinstance(value, str) else str(value)


def tracker(session):
    records = session.get("trackerRecords") or []
    kept, lines = [], ""
    for record in records if len(records) > 1 else []:
        values = [record.get(name) for name in ("networkID", "event", "count")]
        lines += "  ".join(map(text_form, values)) + "\n"
        if integer_reading(values[2]) > 0:
            named = zip(("network_id", "event", "count"), values)
            kept.append({key: value for key, value in named if value is not None})
    payload = dict(pairs(session, TRACKER)) | {"network_event_count": kept}
    return json.dumps(payload, ensure_ascii=False, separators=(",", ":")), lines


def random_text(source):
    return "".join(source.choices(PIECES, k=source.randrange(8)))


def random_integer(source):
    return source.choice([0, 1, -1, 2**31 - 1, -2**31, source.randint(-2**31, 2**31 - 1)])


def some_of(source, names, value):
    """Each name is missing, null or has a value."""
    return {name: None if source.random() < 0.2 else value(source) for name in names if source.random() < 0.8}


def random_count(source):
    return source.choice([None, 0, 1, -2, 5, 2**31, 2**32 + 7, -2**63, 2**63, 2**100 + 3, 0.5, 2.75, -1.0, 3.0,
                          "", "0", "1", " \t\n12x", "+7", "-3", "++1", "99999999999", "-99999999999", "abc", "１"])


def random_record(source):
    def name(_):
        return source.choice([random_text(source), random_integer(source), 2**80, source.randrange(-99, 99) / 8])
    record = some_of(source, ["networkID", "event"], name) | some_of(source, ["count"], random_count)
    return dict(source.sample(sorted(record.items()), len(record)))


def random_session(source):
    sections = {
        "package": some_of(source, TEXTS, random_text)
                   | some_of(source, ["limitAdTrackingEnabled"], lambda s: s.random() < 0.5)
                   | some_of(source, ["resolution", "preRoll"], random_integer),
        "uniqueUser": some_of(source, COUNTERS, random_integer) | some_of(source, ["getUniqueUserDay"], random_text),
        "trackerRecords": [random_record(source) for _ in range(source.randrange(5))],
        "identifiers": some_of(source, ["ApplicationId", "OptionalId", "SecurityKey"], random_text),
    }
    names = list(sections)
    source.shuffle(names)
    return {name: source.choice([sections[name]] * 8 + [None]) for name in names if source.random() < 0.95}


def main(seed, count):
    source = random.Random(seed)
    for _ in range(count):
        session = random_session(source)
        document = json.dumps(session, ensure_ascii=source.random() < 0.5, indent=source.choice([None, 1]))
        fields = [document, query(session, AD), query(session, IN_APP), user(session), *tracker(session)]
        print("\t".join(field.encode("utf-8").hex() for field in fields))


if __name__ == "__main__":
    main(sys.argv[1], int(sys.argv[2]))
