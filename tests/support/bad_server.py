#!/usr/bin/python3
"""An HTTP server on loopback that behaves as the path says, mostly badly, and a proxy.

Usage: bad_server.py FOLDER

Prints one line of names and ports, "http 40001 good 40002 ...", and one line "held" for each request that waits at
the gate. The line "open" on standard input opens the gate for good; the end of input ends the server. FOLDER
gets the certificates, of which authority.pem is the one to trust, and the bytes of the answer "bomb".
"""

import contextlib
import gzip
import itertools
import os
import re
import socket
import ssl
import struct
import sys
import threading
import time

from certificates import CERTIFICATES, make_certificates

BODY = b"exact\0bytes\r\n\xff"
COMPRESSED = bytes.fromhex("1f8b08000000000002034bad484c2e6148aa2c492de6e5fa0f0024dcb1300e000000")
MIB = 1 << 20
CHUNK = b"10000\r\n" + b"x" * 65536 + b"\r\n"
BOMB = gzip.compress(bytes(64 * MIB), 9, mtime=0)
STEP = 0.05  # seconds between the bytes of a slow answer


def head(*fields, status="200 OK"):
    return "\r\n".join([f"HTTP/1.1 {status}", *fields, "", ""]).encode("latin-1")


def sized(body, *fields, status="200 OK"):
    return head(f"Content-Length: {len(body)}", *fields, status=status) + body


def to(target, status="302 Found"):
    return sized(b"moved", f"Location: {target}", status=status)


CHUNKED = head("Transfer-Encoding: chunked")
MOVED = head("Location: /length", status="302 Found")
MOVED_CHUNKED = head("Location: /length", "Transfer-Encoding: chunked", status="302 Found")

# What is sent, whole, before the connection is closed.
ANSWERS = {
    "length": sized(BODY),
    "chunked": CHUNKED + b"5\r\nexact\r\n1;with=extension\r\n\0\r\n08\r\nbytes\r\n\xff\r\n0\r\nTrailer: x\r\n\r\n",
    "once": sized(BODY),  # and no answer to whatever comes next on the same connection
    "close": head() + BODY,
    "http10": b"HTTP/1.0 200 OK\r\n\r\n" + BODY,
    "empty": sized(b""),
    "emptychunked": CHUNKED + b"0\r\n\r\n",
    "nocontent": head(status="204 No Content"),
    "hints": head("Link: </a>", status="103 Early Hints") + sized(BODY),
    "limit": sized(b"x" * MIB),
    "compressed": sized(COMPRESSED, "Content-Encoding: gzip"),
    "nothing": b"",
    "short": head("Content-Length: 16") + BODY,
    "unended": CHUNKED + b"5\r\nexact\r\n",
    "cutchunk": CHUNKED + b"10\r\nexact",
    "cuthead": b"HTTP/1.1 200 OK\r\nContent-Type: image/p",
    "cutstatus": b"HTTP/1.1 20",
    "onlyinterim": head(status="100 Continue"),
    "switching": head("Upgrade: other", status="101 Switching Protocols") + BODY,
    "longer": head("Content-Length: 5") + BODY,
    "longerkept": head("Content-Length: 5") + BODY,
    "chunkedkept": CHUNKED + b"5\r\nexact\r\n0\r\n\r\n" + sized(b"not asked for"),
    "twolengths": head("Content-Length: 14", "Content-Length: 5") + BODY,
    "samelengths": head("Content-Length: 14", "Content-Length: 14") + BODY,
    "negative": head("Content-Length: -1") + BODY,
    "overflow": head("Content-Length: 18446744073709551616") + BODY,
    "plus": head("Content-Length: +14") + BODY,
    "letters": head("Content-Length: 14 bytes") + BODY,
    "hugechunk": CHUNKED + b"8000000000000000\r\n" + BODY,
    "badchunk": CHUNKED + b"xyz\r\n" + BODY,
    "both": head("Content-Length: 3", "Transfer-Encoding: chunked") + b"5\r\nexact\r\n0\r\n\r\n",
    "gzipchunked": head("Transfer-Encoding: gzip, chunked") + b"0\r\n\r\n",
    "over": sized(b"x" * (MIB + 1)),
    "overclose": head() + b"x" * (MIB + 1),
    "terabytes": head("Content-Length: 10995116277760") + BODY,
    "bomb": sized(BOMB, "Content-Encoding: gzip"),
    "nulinhead": b"HTTP/1.1 200 OK\r\nA: b\0c\r\nContent-Length: 14\r\n\r\n" + BODY,
    "nohttp": b"220 mail.example ESMTP\r\n",
    "self": to("/self"),
    "a": to("/b"), "b": to("/a"),
    "relative": to("length"), "upwards": to("../../length"),
    "tonourl": to("http://[::1/"),
    "askbasic": sized(BODY, 'WWW-Authenticate: Basic realm="a"', status="401 Unauthorized"),
    "askdigest": sized(BODY, 'WWW-Authenticate: Digest realm="a", nonce="b"', status="401 Unauthorized"),
    "notarget": sized(BODY, status="302 Found"),
    "emptytarget": sized(BODY, "Location:", status="302 Found"),
    "hugetarget": to("/" + "x" * MIB),
    "tofile": to("file:///etc/hostname"),
    "tonever": to("/never"),
    "toftp": to("ftp://127.0.0.1/a"),
}


def wait_for_client_to_leave(connection):
    while connection.recv(4096):
        pass


def pump(source, sink):
    with contextlib.suppress(OSError):  # either end has had enough
        while block := source.recv(65536):
            sink.sendall(block)
        sink.shutdown(socket.SHUT_WR)


def drip(connection, before, slow):
    connection.sendall(before)
    for byte in slow:
        connection.sendall(bytes([byte]))
        time.sleep(STEP)


def forever(connection, before, block):
    connection.sendall(before)
    while True:
        connection.sendall(block)


def forever_slow(connection, before, block):
    connection.sendall(before)
    while True:
        connection.sendall(block)
        time.sleep(STEP)


def send_half_and_stall(connection, _):
    connection.sendall(head("Content-Length: 14") + BODY[:7])
    wait_for_client_to_leave(connection)


def send_half_and_reset(connection, _):
    connection.sendall(head("Content-Length: 14") + BODY[:7])
    connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))


def send_bytes_one_by_one(connection, _):
    connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
    for byte in sized(BODY):
        connection.sendall(bytes([byte]))


ACTIONS = {
    "never": lambda connection, _: wait_for_client_to_leave(connection),
    "slowhead": lambda connection, _: drip(connection, b"HTTP/1.1 200 OK\r\nA: ", b"x" * 1000),
    "slowfields": lambda connection, _: forever_slow(connection, b"HTTP/1.1 200 OK\r\n", b"A: b\r\n"),
    "slowbody": lambda connection, _: drip(connection, head("Content-Length: 1000"), b"x" * 1000),
    "stall": send_half_and_stall,
    "reset": send_half_and_reset,
    "onebyone": send_bytes_one_by_one,
    "endless": lambda connection, _: forever(connection, head(), b"x" * 65536),
    "endlesschunks": lambda connection, _: forever(connection, CHUNKED, CHUNK),
    "fields": lambda connection, _: forever(connection, b"HTTP/1.1 200 OK\r\n", b"A: b\r\n" * 1000),
    "longfield": lambda connection, _: forever(connection, b"HTTP/1.1 200 OK\r\nA: ", b"x" * 65536),
    "manyfields": lambda connection, _: connection.sendall(head(*["A: b"] * 100000) + BODY),
    "hugefield": lambda connection, _: connection.sendall(head("A: " + "x" * 64 * MIB) + BODY),
    "interim": lambda connection, _: forever(connection, b"", head(status="100 Continue") * 100),
    "trailers": lambda connection, _: forever(connection, CHUNKED + b"1\r\nx\r\n0\r\n", b"A: b\r\n" * 1000),
    "redirectflood": lambda connection, _: forever(connection, MOVED, b"x" * 65536),
    "redirectchunks": lambda connection, _: forever(connection, MOVED_CHUNKED, CHUNK),
}


class Server:
    def __init__(self, folder):
        self.folder = folder
        self.gate = threading.Event()
        self.printing = threading.Lock()
        self.connections = 0
        self.ports = {}
        make_certificates(folder)
        with open(f"{folder}/bomb", "wb") as file:
            file.write(BOMB)

    def say(self, line):
        with self.printing:
            print(line, flush=True)

    def listen(self, name, handle, host="127.0.0.1", port=0):
        family = socket.AF_INET6 if ":" in host else socket.AF_INET
        listener = socket.socket(family)
        listener.bind((host, port))
        listener.listen(128)
        self.ports[name] = listener.getsockname()[1]
        threading.Thread(target=self.accept, args=(listener, handle), daemon=True).start()

    def accept(self, listener, handle):
        while True:
            connection, _ = listener.accept()
            self.connections += 1
            threading.Thread(target=self.serve, args=(connection, handle), daemon=True).start()

    def serve(self, connection, handle):
        with connection:
            try:
                handle(connection)
            except OSError:  # the client has had enough
                pass

    def http(self, connection):
        """Answers requests until one behaves in a way that needs the connection closed."""
        for served in itertools.count():
            request = b""
            while b"\r\n\r\n" not in request:
                block = connection.recv(4096)
                if not block:
                    return
                request += block
            method, target = request.decode("ascii").split(" ")[:2]
            if method == "CONNECT":
                return self.tunnel(connection, *target.split(":"))
            path, _, query = re.sub("^http://[^/]*", "", target).partition("?")
            name, _, argument = path[1:].partition("/")
            if name == "once" and served > 0:
                return
            if not self.answer(connection, name, argument, query):
                return

    def tunnel(self, connection, host, port):
        """What a proxy does for TLS. It knows no host but this one."""
        if host != "localhost":
            return connection.sendall(sized(BODY, status="403 Forbidden"))
        with socket.create_connection((host, port)) as origin:
            connection.sendall(head("Transfer-Encoding: to be ignored", status="200 Connected"))
            threading.Thread(target=pump, args=(connection, origin), daemon=True).start()
            return pump(origin, connection)

    def answer(self, connection, name, argument, query):
        """True when the connection may be used again. A query mostly only makes URLs differ."""
        if name == "status":
            connection.sendall(sized(BODY, status=f"{argument} Status"))
        elif name == "chain":
            steps = int(argument)
            connection.sendall(to(f"/chain/{steps - 1}") if steps else sized(BODY))
        elif name == "connections":
            connection.sendall(sized(str(self.connections).encode()))
        elif name == "queryonly":
            connection.sendall(sized(BODY) if query else to("?again"))
        elif name == "elsewhere":
            connection.sendall(to(f"//localhost:{self.ports['http']}/length"))
        elif name == "argument":
            connection.sendall(sized(argument.encode()))
        elif name == "tocut":
            return connection.sendall(to(f"https://localhost:{self.ports['cut']}/close", "302 F\r\nConnection: close"))
        elif name == "torefused":
            connection.sendall(to(f"http://127.0.0.1:{self.ports['refused']}/"))
        elif name == "tosecure":
            connection.sendall(to(f"https://localhost:{self.ports['good']}/length"))
        elif name == "gate":
            self.say("held")
            self.gate.wait()
            connection.sendall(sized(BODY))
        elif name in ACTIONS:
            ACTIONS[name](connection, self)
            return False
        else:
            connection.sendall(ANSWERS[name])
            return name in ("length", "empty", "compressed", "relative", "tonever", "once", "longerkept", "chunkedkept")
        return True

    def tls(self, connection, certificate, cut):
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(f"{self.folder}/{certificate}.pem", f"{self.folder}/key.pem")
        with context.wrap_socket(connection, server_side=True) as secure:
            self.http(secure)
            if not cut:
                secure.unwrap()

    def run(self):
        self.listen("http", self.http)
        try:
            self.listen("ipv6", self.http, "::1")
        except OSError:
            self.ports["ipv6"] = 0
        for name in CERTIFICATES:
            self.listen(name, lambda connection, name=name: self.tls(connection, name, cut=False))
        self.listen("cut", lambda connection: self.tls(connection, "good", cut=True))
        self.listen("silent", wait_for_client_to_leave)
        self.listen("garbage", lambda connection: connection.sendall(b"\x16\x03\x01 garbage\r\n" * 10))
        refused = socket.socket()  # bound, so that no one else is there, and not listened to
        refused.bind(("127.0.0.1", 0))
        self.ports["refused"] = refused.getsockname()[1]
        self.say(" ".join(f"{name} {port}" for name, port in self.ports.items()))
        for line in sys.stdin:
            if line == "open\n":
                self.gate.set()
        os._exit(0)


if __name__ == "__main__":
    Server(sys.argv[1]).run()
