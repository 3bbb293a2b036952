#!/usr/bin/env python3
"""A language model's service on the loopback interface, for tests.

llm_server.py LOG [CERTIFICATE]: prints its port when it is ready, speaks TLS when it is given a
file with a certificate and its key, and ends when its standard input is closed.

What it answers is called a scenario. A client of chat completions names it in the path
(/SCENARIO/v1/chat/completions), one of messages (/v1/messages) by the model. What it receives goes
to LOG, one JSON object a line, before it answers.
"""

import gzip
import json
import os
import ssl
import sys
import threading
import time
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer

DEPTH = 100_000
MIB = 1024 * 1024

EXPLANATION = json.dumps(
    {
        "meaning_in_context": "放弃",
        "translation": "她放弃了。",
        "examples": [{"en": "Don't give up.", "zh": "别放弃。"}],
    },
    ensure_ascii=False,
)

# What the model writes.
TEXTS = {
    "prose": f"Here you go: {EXPLANATION} Hope it helps",
    "thoughts": f"<think>An easy one.</think>\n{EXPLANATION}",
    "thoughts-with-braces": f"<think>Like {{en, zh}}?</think>\n```json\n{EXPLANATION}\n```",
    "chatty": "I am not sure, sorry.",
    "speechless": "",
    "empty-object": "Sorry. {}",
    "deep-text": '{"a":' * DEPTH + "1" + "}" * DEPTH,
    "surrogate-text": '{"meaning_in_context": "\\ud800"}',
}

# What the service answers in place of a reply: status, headers and body.
ANSWERS = {
    "unauthorized": (401, {"Content-Type": "text/html"}, "<html>" + "e\u0301" * 5000),
    "too-many": (429, {}, '{"error": {"message": "Slow down."}}'),
    "overloaded": (500, {}, ""),
    "redirect": (302, {"Location": "/good/v1/chat/completions"}, "elsewhere"),
    "empty": (200, {}, ""),
    "broken": (200, {}, '{"choices": [{"message": {"content": "{'),
    "deep": (200, {}, "[" * DEPTH + "]" * DEPTH),
    "latin1": (200, {}, b'{"choices": "caf\xe9"}'),
    "surrogate": (200, {}, '{"choices": "\\ud800", "content": "\\ud800"}'),
    "huge": (200, {}, b"{" + b" " * 9 * MIB + b"}"),
    "bomb": (200, {"Content-Encoding": "gzip"}, gzip.compress(b"{" + b" " * 16 * MIB + b"}", 1)),
}

# What comes over the wire in place of an answer, and what is repeated after it, if anything.
WIRE = {
    "foreign": (b"SSH-2.0-OpenSSH_9.2\r\n\r\n", b""),
    "cut": (b"HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n{", b""),
    "hang-up": (b"", b""),
    "drip": (b"HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n", b" "),
}


def chat_completion(text, refused):
    message = {"role": "assistant", "content": None if refused else text}
    return {"id": "1", "choices": [{"index": 0, "message": message, "finish_reason": "stop"}]}


def message(text, refused):
    half = len(text) // 2
    return {
        "type": "message",
        "content": [
            {"type": "thinking", "thinking": "{"},
            {"type": "text", "text": text[:half]},
            {"type": "text", "text": text[half:]},
        ],
        "stop_reason": "refusal" if refused else "end_turn",
    }


class Handler(BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def do_POST(self):
        body = self.rfile.read(int(self.headers["Content-Length"]))
        self.server.record(
            {
                "method": self.command,
                "path": self.path,
                "headers": {name.lower(): value for name, value in self.headers.items()},
                "body": body.decode(),
            }
        )
        is_chat = self.path.endswith("/v1/chat/completions")
        scenario = self.path.split("/")[1] if is_chat else json.loads(body)["model"]
        self.close_connection = True
        if scenario in WIRE:
            self.send_wire(*WIRE[scenario])
        elif scenario in ANSWERS:
            self.send(*ANSWERS[scenario])
        elif scenario == "tell-tale":
            self.send(401, {}, "x" * 190 + self.key())
        else:
            text = TEXTS.get(scenario, EXPLANATION)
            if scenario == "tell-tale-text":
                text = f"Your key is {self.key()}."
            reply = (chat_completion if is_chat else message)(text, scenario == "refusal")
            mime = "text/plain" if scenario == "mislabelled" else "application/json"
            self.send(200, {"Content-Type": mime}, json.dumps(reply))

    def key(self):
        return self.headers.get("x-api-key") or self.headers["Authorization"].split()[1]

    def send(self, status, headers, body):
        data = body.encode() if isinstance(body, str) else body
        self.send_response(status)
        for name, value in headers.items():
            self.send_header(name, value)
        self.send_header("Content-Length", str(len(data)))
        self.end_headers()
        self.wfile.write(data)

    def send_wire(self, data, repeated):
        self.wfile.write(data)
        while repeated:
            self.wfile.write(repeated)
            time.sleep(0.05)

    def log_message(self, *_):
        pass


class Server(ThreadingHTTPServer):
    daemon_threads = True

    def __init__(self, log, certificate=None):
        super().__init__(("127.0.0.1", 0), Handler)
        self.log = open(log, "w", encoding="utf-8")
        if certificate:
            context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
            context.load_cert_chain(certificate)
            # The handshake belongs to the connection's thread, or a silent client stops them all.
            self.socket = context.wrap_socket(
                self.socket, server_side=True, do_handshake_on_connect=False
            )

    def record(self, request):
        self.log.write(json.dumps(request) + "\n")
        self.log.flush()

    def handle_error(self, *_):
        """A client that goes away is what some tests are about."""


def main():
    server = Server(*sys.argv[1:])
    threading.Thread(target=server.serve_forever, daemon=True).start()
    print(server.server_port, flush=True)
    sys.stdin.read()
    os._exit(0)


if __name__ == "__main__":
    main()
