"""Prints docs/cache-vectors.json: URLs, and the names of their files in the media cache.

Usage: cache_vectors.py > docs/cache-vectors.json

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


def vector(about, url):
    found = extension(url)
    return {
        "about": about,
        "url": url,
        "video": f"{digest(cleaned(url))}.{'(null)' if found is None else found}" if url else None,
        "bannerWritten": digest(trimmed(url, is_whitespace)),
        "bannerLookedUp": digest(cleaned(url)) if cleaned(url) else None,
    }


if __name__ == "__main__":
    print(json.dumps([vector(about, url) for about, url in URLS], indent=1))
