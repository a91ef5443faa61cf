"""Generated URL texts and the extension that each has: a line each, the text in hexadecimal, a tab, the
extension in hexadecimal, or "-" where the text is no URL reference or its path no UTF-8.

The grammar is the ABNF of RFC 3986, appendix A, as one regular expression."""
import ipaddress
import random
import re
import sys
import urllib.parse

PCT = r"%[0-9A-Fa-f]{2}"
UNRESERVED = r"A-Za-z0-9\-._~"
SUB = r"!$&'()*+,;="
PCHAR = rf"(?:[{UNRESERVED}{SUB}:@]|{PCT})"
SEGMENT_NZ_NC = rf"(?:[{UNRESERVED}{SUB}@]|{PCT})+"
ABEMPTY = rf"(?:/{PCHAR}*)*"
ABSOLUTE = rf"/(?:{PCHAR}+(?:/{PCHAR}*)*)?"
ROOTLESS = rf"{PCHAR}+(?:/{PCHAR}*)*"
NOSCHEME = rf"{SEGMENT_NZ_NC}(?:/{PCHAR}*)*"
TAIL = rf"(?:\?(?:{PCHAR}|[/?])*)?(?:#(?:{PCHAR}|[/?])*)?"
SCHEME = r"[A-Za-z][A-Za-z0-9+\-.]*"


def authority(literal):
    host = rf"(?:\[(?P<{literal}>[^\]]*)\]|(?:[{UNRESERVED}{SUB}]|{PCT})*)"
    return rf"(?:(?:[{UNRESERVED}{SUB}:]|{PCT})*@)?{host}(?::[0-9]*)?"


URL = re.compile(
    rf"(?:{SCHEME}:(?://{authority('literal1')}(?P<path1>{ABEMPTY})|(?P<path2>{ABSOLUTE}|{ROOTLESS}|))"
    rf"|//{authority('literal2')}(?P<path3>{ABEMPTY})|(?P<path4>{ABSOLUTE}|{NOSCHEME}|)){TAIL}"
)
FUTURE = re.compile(rf"[vV][0-9A-Fa-f]+\.[{UNRESERVED}{SUB}:]+")


def is_literal(text):
    if FUTURE.fullmatch(text):
        return True
    try:
        ipaddress.IPv6Address(text)
        return "%" not in text
    except ValueError:
        return False


def extension(text):
    match = URL.fullmatch(text)
    if not match:
        return None
    literals = [match["literal1"], match["literal2"]]
    if any(literal is not None and not is_literal(literal) for literal in literals):
        return None
    path = next(match[f"path{i}"] for i in (1, 2, 3, 4) if match[f"path{i}"] is not None)
    try:
        decoded = urllib.parse.unquote_to_bytes(path).decode("utf-8")
    except UnicodeDecodeError:
        return None
    last = decoded.rstrip("/").rpartition("/")[2]
    return last.rpartition(".")[2] if "." in last else ""


SCHEMES = ["", "http:", "https:", "HTTP:", "file:", "mailto:", "a+b-c.d:", "1x:", ":", "h ttp:", "", "", ""]
AUTHORITIES = ["//h", "//cdn.example.com:8080", "//u:p@h", "//[::1]", "//[1:2:3:4:5:6:7:8]:80", "//[::ffff:1.2.3.4]",
               "//[1::2::3]", "//[v1.a:b]", "//[VF.a]", "//[vx.a]", "//[::1", "//h:8a", "//a@b@c", "//", "///", "", "", "//h%20x",
               "//[1:2:3:4:5:6:7::]", "//[1::2:3:4:5:6:7:8]", "//[::1.2.3.256]", "//[::01.2.3.4]", "//[fe80::1%25e]",
               "//h:", "//:80", "//[::]x", "//[12345::]", "//[:1::2]", "//[1:2:3:4:5:6:1.2.3.4]", "//[]"]
PATHS = ["/v/clip.mp4", "/clip.MP4", "/", "", "/media/", "/a.b/c", "/c.tar.gz", "/clip%2Emp4", "/.mp4", "/clip.mp4/",
         "/clip.mp4//", "a@b.com", "x.y;p=1", "/x.y;p.q", "/n%2Fm.o", "/name.", "/..", "/a%FF.mp4", "/%C3%A9.%C3%A9",
         "/%zz", "/%4", "c:d.e", "./c:d.e", "/a b.c", "/x.a%00b", "/%ED%A0%80.x", "/a:b@c.d", "/\u00e9.mp4", "//x.y"]
TAILS = ["", "", "?q=1", "?a/b?c.d", "#f.g", "?q#f", "##", "#a#b", "?[x]", "?%", "? ", "#\\", "?", "#"]
BYTES = "".join(chr(c) for c in range(33, 127)) + " \n\t\x00\x7f\u00e9\u2028"


def generate(count, seed):
    source = random.Random(seed)
    for _ in range(count):
        # The first third of each list is well-formed; half of the texts are made of those alone.
        share = source.choice((1, 3))
        text = "".join(source.choice(part[: len(part) // share]) for part in (SCHEMES, AUTHORITIES, PATHS, TAILS))
        for _ in range(source.choice((0, 0, 0, 0, 1, 1, 2, 3))):
            at = source.randrange(len(text) + 1)
            text = text[:at] + source.choice(BYTES) + text[at + source.choice((0, 1)):]
        yield text


if __name__ == "__main__":
    for generated in generate(int(sys.argv[1]), int(sys.argv[2])):
        answer = extension(generated)
        print(generated.encode().hex(), "-" if answer is None else answer.encode().hex(), sep="\t")
