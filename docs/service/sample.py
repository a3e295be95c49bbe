#!/usr/bin/env python3
"""A placement service to start from: two brands, one host, everything in memory, on this computer only.

    python3 docs/service/sample.py [PORT]    # 8791 unless given; 0 takes any free one
"""
import hashlib, json, struct, sys, time, zlib
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer

TOKEN = "demo-host-token"
AGREEMENT = "I show two small advertisements. What I earn is an estimate, not a guarantee."
CENTS_A_WINDOW = 5  # a window is a quarter of an hour
host = {"agreed": False, "windows": set()}  # a real service has one for each token


def picture(colour):  # a PNG, 64 pixels wide and high
    parts = [(b"IHDR", struct.pack(">IIBBBBB", 64, 64, 8, 2, 0, 0, 0)),
             (b"IDAT", zlib.compress((b"\0" + colour * 64) * 64)), (b"IEND", b"")]
    return b"\x89PNG\r\n\x1a\n" + b"".join(
        struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data)) for kind, data in parts)


HOST_REQUESTS = [("POST", "/api/host/heartbeat"), ("GET", "/api/host/me"), ("POST", "/api/host/agree")]
BRANDS = [("left", "Tin Kettle", "Sings for tea", "kettle"), ("right", "Odd Sock", "Sold one by one", "sock")]
PICTURES = {"/kettle.png": picture(b"\x3a\x6e\xa5"), "/sock.png": picture(b"\xdc\x9e\x48")}


def placement():
    return {"weekStatus": "live", "forceHide": False, "creatives": [
        {"slotId": slot, "brandName": name, "copy": line, "assetUrl": f"{ROOT}/{page}.png",
         "brandUrl": f"https://brand.example/{page}"} for slot, name, line, page in BRANDS]}


def figures():
    day = time.time() // 86400
    return {"estimatedCents": CENTS_A_WINDOW * len(host["windows"]) if host["agreed"] else 0,
            "pendingStipendCents": 0, "liveHostCount": 1, "liveDaysThisWeek": 0, "liveBucketsNeeded": 4,
            "liveBucketsToday": sum(window // 96 == day for window in host["windows"]),
            "agreed": host["agreed"], "agreementText": AGREEMENT}  # fromApplications: as the program sees it


def answer(method, path, authorization, body):
    if (method, path) == ("GET", "/api/display"):
        return 200, placement()
    if (method, path) not in HOST_REQUESTS:
        return 404, {}
    if authorization != f"Bearer {TOKEN}":
        return 401, {}
    if path == "/api/host/agree":
        host["agreed"] = True
    elif path == "/api/host/heartbeat" and body["slotsVisible"] and body["fromApplications"]:
        host["windows"].add(int(time.time() // 900))  # no slot is visible during a pause
    return 200, placement() | figures()


class Service(BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"  # keeps connections open
    wbufsize = -1  # sends head and body together

    def do_GET(self):
        body = json.loads(self.rfile.read(int(self.headers.get("Content-Length", 0))) or "{}")
        status, value = answer(self.command, self.path, self.headers.get("Authorization"), body)
        is_picture = status == 404 and self.path in PICTURES
        content = PICTURES[self.path] if is_picture else json.dumps(value).encode()
        tag = '"' + hashlib.sha256(content).hexdigest()[:16] + '"'  # the same for the same reply
        status = 304 if status == 200 and self.headers.get("If-None-Match") == tag else status
        self.send_response_only(200 if is_picture else status)
        self.send_header("Content-Length", str(len(content)))
        if status != 304:
            self.send_header("Content-Type", "image/png" if is_picture else "application/json")
        self.send_header("ETag", tag)
        self.end_headers()
        self.wfile.write(b"" if status == 304 else content)

    do_POST = do_GET


server = ThreadingHTTPServer(("127.0.0.1", int((sys.argv + [8791])[1])), Service)
ROOT = f"http://127.0.0.1:{server.server_port}"
print(f"Listening on {ROOT}", flush=True)
server.serve_forever()
