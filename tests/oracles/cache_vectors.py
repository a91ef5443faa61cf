"""Prints conformance/cache-names.json: URLs, and the names of their files in the media cache.

Usage: cache_vectors.py > conformance/cache-names.json

MD5 is Python's own, the blanks are those of its Unicode tables, and the URLs' extensions those of extension.py."""
import hashlib
import json
import unicodedata

from extension import extension

NEWLINES = "\n\v\f\r\x85\u2028\u2029"

URLS = [
    ("a video", "http://h/a.mp4"),
    ("only the query differs: another digest", "http://h/a.mp4?session=1"),
    ("only the query differs: and another", "http://h/a.mp4?session=2"),
    ("the fragment counts, too", "http://h/a.mp4#t=10"),
    ("https, a port, capitals", "https://CDN.example.com:8443/V/Clip.MP4"),
    ("several dots", "http://h/a.b/clip.tar.gz"),
    ("no extension: the name ends in a dot", "http://h/clip"),
    ("a dot in a folder is no extension", "http://h/v1.2/clip"),
    ("a dot at the end", "http://h/clip."),
    ("no path at all", "http://h"),
    ("a slash at the end does not count", "http://h/clip.mp4/"),
    ("a percent-encoded dot", "http://h/clip%2Emp4"),
    ("a percent-encoded slash", "http://h/n%2Fm.o"),
    ("percent-encoded bytes outside ASCII", "http://h/%C3%A9.%C3%A9"),
    ("percent-encoded bytes that are no UTF-8", "http://h/a%FF.mp4"),
    ("a bad percent-encoding", "http://h/a%zz.mp4"),
    ("a relative reference", "clip.mp4"),
    ("a banner image", "https://cdn.example.com/banner.png"),
    ("blanks at the ends", "  http://h/a.mp4 "),
    ("a tab in front", "\thttp://h/a.mp4"),
    ("a blank inside stays", "http://h/a b.mp4"),
    ("a newline inside: stored under one name, looked up under another", "http://h/\na.mp4"),
    ("a newline at the end", "http://h/a.mp4\n"),
    ("a newline in front", "\nhttp://h/a.mp4"),
    ("newlines and blanks", " \n http://h/a\n.mp4\n \n"),
    ("a newline before a combining mark goes, too", "http://h/a\n\u0301.mp4"),
    ("a carriage return at the end", "http://h/a.mp4\r"),
    ("a carriage return and a newline", "http://h/a.mp4\r\n"),
    ("a carriage return inside stays", "http://h/\ra.mp4"),
    ("a vertical tab and a form feed at the ends", "\vhttp://h/a.mp4\f"),
    ("U+0085 at the end", "http://h/a.mp4\u0085"),
    ("U+2028 at the end", "http://h/a.mp4\u2028"),
    ("U+2029 at the end", "http://h/a.mp4\u2029"),
    ("U+00A0 at the ends", "\u00a0http://h/a.mp4\u00a0"),
    ("U+3000 at the ends", "\u3000http://h/a.mp4\u3000"),
    ("U+1680, U+2003, U+202F and U+205F at the ends", "\u1680\u2003http://h/a.mp4\u202f\u205f"),
    ("U+200B is no blank", "http://h/a.mp4\u200b"),
    ("U+180E is no blank", "http://h/a.mp4\u180e"),
    ("U+FEFF in front stays", "\ufeffhttp://h/a.mp4"),
    ("U+001F is no blank", "http://h/a.mp4\u001f"),
    ("text outside ASCII is no URL", "http://h/\u00fc.mp4"),
    ("text beyond the first plane", "http://h/\U0001f600.mp4"),
    ("only blanks", " \t "),
    ("only a newline", "\n"),
    ("nothing", ""),
]


def is_whitespace(character):
    return character == "\t" or unicodedata.category(character) == "Zs"


def trimmed(text, is_blank):
    begin, end = 0, len(text)
    while begin < end and is_blank(text[begin]):
        begin += 1
    while begin < end and is_blank(text[end - 1]):
        end -= 1
    return text[begin:end]


def cleaned(text):
    return trimmed(text.replace("\n", ""), lambda c: is_whitespace(c) or c in NEWLINES)


def digest(text):
    return hashlib.md5(text.encode()).hexdigest()


PATH = "Cached directory path : ${documents}/TavloCache/"
WRITTEN = "getAndSaveBannerImage() - write successfully"


def error(operation, what):
    return f"{operation}() - ERROR: {what}"


def video(url):
    operation, step = "getCacheVideoDataPath", {"with": url, "gives": None}
    if not url:
        return {"call": operation, **step, "log": [error(operation, "Passed file url parameter is nil")]}
    found = extension(url)
    name = f"{digest(cleaned(url))}.{'(null)' if found is None else found}"
    return {"call": operation, **step, "log": [PATH + name, error(operation, "Cache Video Data  does not exist")]}


def looked_up(url):
    operation, written = "getCacheBannerImagePath", digest(trimmed(url, is_whitespace))
    if not cleaned(url):
        missing = error(operation, "Passed file url parameter is nil")
        return {"call": operation, "with": url, "gives": None, "log": [missing]}
    name = digest(cleaned(url))
    if name == written:
        return {"call": operation, "with": url, "gives": "${documents}/TavloCache/" + name, "log": [PATH + name]}
    missing = error(operation, "Cache Banner Image Data  does not exist")
    return {"call": operation, "with": url, "gives": None, "log": [PATH + name, missing]}


def case(about, url):
    """A look-up of a video; where there is anything to fetch, a banner image stored; and its look-up."""
    words = "".join(c if c.isascii() and (c.isalnum() or c == "+") else " " for c in about).replace("+", "").split()
    steps = [video(url)]
    given = {"files": {"TavloCache/": None}}
    if cleaned(url):
        text = trimmed(url, is_whitespace)
        given["urls"] = {text: "image"}
        steps += [{"call": "cachedBannerImage", "with": url},
                  {"do": "runTasks", "log": [PATH + digest(text), WRITTEN],
                   "files": {"TavloCache/" + digest(text): "image"}}]
    steps.append(looked_up(url))
    return {"name": "".join(word[0].upper() + word[1:] for word in words), "about": about, "given": given,
            "steps": steps}


if __name__ == "__main__":
    print(json.dumps([case(about, url) for about, url in URLS], indent=1))
