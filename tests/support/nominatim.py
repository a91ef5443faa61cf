#!/usr/bin/python3
"""A stand-in of a Nominatim-compatible service on loopback that answers as the first part of the path says.

Usage: nominatim.py

Prints its port, then one line for each request: the method, the path, the user agent, and the members of the query in
alphabetical order. The request of "hold" is not answered before the end of input, which ends the service.
"""

import http.server
import json
import os
import sys
import threading
import time
import urllib.parse

DELHI = {"road": "Rajpath", "suburb": "Connaught Place", "city": "New Delhi", "state": "Delhi", "postcode": "110001",
         "country": "India", "country_code": "in"}
FRAME = {"place_id": 1, "licence": "none", "osm_type": "way", "osm_id": "1", "lat": "28.6", "lon": "77.2",
         "display_name": "Rajpath", "boundingbox": ["28.5", "28.7", "77.1", "77.3"]}
WRONG = {"lat": {}, "lon": [1], "boundingbox": "x", "osm_type": "alien", "osm_id": [], "place_id": {},
         "display_name": 5, "licence": {"a": 1}, "icon": "::"}


def with_address(**address):
    return json.dumps({**FRAME, "address": address}).encode()


ANSWERS = {
    "good": with_address(**DELHI),
    "town": with_address(town="Leh", state="Ladakh"),
    "village": with_address(village="Hunder"),
    "all": with_address(village="Village", town="Town", city="City", country="Country"),
    "quoted": with_address(road='A "b" \\ / c', city="Zürich \u2028 \U0001f600"),
    "bare": json.dumps({"address": {"city": "New Delhi"}}).encode(),
    "wrong": json.dumps({**WRONG, "address": {"road": {"a": 1}, "suburb": ["b"], "city": "New Delhi", "state": None,
                                              "postcode": 110001, "country": ""}}).encode(),
    "unable": json.dumps({"error": "Unable to geocode"}).encode(),
    "nothing": b"{}",
    "hollow": with_address(road="", city=""),
    "street": json.dumps({**FRAME, "address": "Rajpath"}).encode(),
    "array": b"[" + with_address(**DELHI) + b"]",
    "nojson": b"<html>busy</html>",
    "empty": b"",
    "grammar": b'{"address": {"road" "Rajpath"}}',
    "half": with_address(**DELHI)[:-20],
    "twice": with_address(**DELHI) * 2,
    "bytes": b'{"address": {"road": "\xff"}}',
    "deep": b'{"a":' * 100_000 + b"1" + b"}" * 100_000,
    "large": with_address(city="New Delhi", road="x" * (1 << 20)),
}


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def log_message(self, *_):
        pass

    def send(self, status, body, length=None):
        self.send_response(status)
        self.send_header("Content-Length", str(len(body) if length is None else length))
        self.end_headers()
        self.wfile.write(body)

    def do_GET(self):
        path, _, query = self.path.partition("?")
        agent = self.headers.get("User-Agent", "none")
        print(self.command, path, f"[{agent}]", "&".join(sorted(query.split("&"))), flush=True)
        name = path.split("/")[1]
        if name == "hold":
            threading.Event().wait()
        elif name == "drip":
            self.send_response(200)
            self.send_header("Content-Length", "1000")
            self.end_headers()
            while True:
                self.wfile.write(b"{")
                time.sleep(0.05)
        elif name == "cut":
            self.send(200, ANSWERS["good"], len(ANSWERS["good"]) + 1)
            self.close_connection = True
        elif name == "echo":  # a place whose road is the latitude asked for
            self.send(200, with_address(road=urllib.parse.parse_qs(query)["lat"][0]))
        elif name in ANSWERS:
            self.send(200, ANSWERS[name])
        else:
            self.send(int(name), ANSWERS["good"])


class Server(http.server.ThreadingHTTPServer):
    daemon_threads = True

    def handle_error(self, *_):
        pass  # the client has gone


def main():
    server = Server(("127.0.0.1", 0), Handler)
    print(server.server_address[1], flush=True)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    sys.stdin.read()
    os._exit(0)


if __name__ == "__main__":
    main()
