"""Serves the pages to a browser and passes on what they are asked to do."""

from __future__ import annotations

import http.server
import json
import os
import queue
import threading
import urllib.parse

import desktop
from desktop import Late, wait_for
from runner import PAGES

TYPES = {".html": "text/html; charset=utf-8", ".css": "text/css", ".js": "text/javascript"}
POLL_SECONDS = 5


class PageServer:
    """Serves the pages and passes on commands. Each load of a page has a number of its own."""

    def __init__(self):
        self.load = 0
        self.commands: dict[str, queue.Queue] = {}
        self.answers: dict[str, queue.Queue] = {}
        self.polled: set[str] = set()
        server = self

        class Handler(http.server.BaseHTTPRequestHandler):
            protocol_version = "HTTP/1.1"

            def do_GET(self):
                server.get(self)

            def do_POST(self):
                body = self.rfile.read(int(self.headers["Content-Length"]))
                server.answers[number_of(self.path)].put(json.loads(body))
                reply(self, 204)

            def log_message(self, *_):
                pass

        self.http = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        threading.Thread(target=self.http.serve_forever, daemon=True).start()

    def new_address(self, page: str) -> str:
        self.load += 1
        self.commands[str(self.load)] = queue.Queue()
        self.answers[str(self.load)] = queue.Queue()
        return f"{self.address(page)}?load={self.load}"

    def address(self, page: str) -> str:
        return f"http://127.0.0.1:{self.http.server_port}/{page}"

    def get(self, handler: http.server.BaseHTTPRequestHandler) -> None:
        path = urllib.parse.urlsplit(handler.path).path.lstrip("/")
        if path == "command":
            self.give_command(handler)
            return
        file = os.path.join(PAGES, os.path.basename(path))
        if not os.path.isfile(file):
            reply(handler, 404)
            return
        with open(file, "rb") as content:
            reply(handler, 200, content.read(), TYPES[os.path.splitext(file)[1]])

    def give_command(self, handler: http.server.BaseHTTPRequestHandler) -> None:
        number = number_of(handler.path)
        self.polled.add(number)
        try:
            command = self.commands[number].get(timeout=POLL_SECONDS)
        except queue.Empty:
            reply(handler, 204)
            return
        reply(handler, 200, json.dumps(command).encode(), "application/json")

    def ask(self, name: str, **arguments) -> object:
        """What the page that was loaded last answers."""
        number = str(self.load)
        self.commands[number].put({"name": name, **arguments})
        try:
            answer = self.answers[number].get(timeout=desktop.PATIENCE)
        except queue.Empty:
            raise Late(f"网页没有回答 {name}") from None
        if "error" in answer:
            raise Late(f"网页：{answer['error']}（{name} {arguments}）")
        return answer["value"]

    def go(self, page: str) -> None:
        queue_of_old_page = self.commands[str(self.load)]
        queue_of_old_page.put({"name": "go", "url": self.new_address(page)})
        self.wait_for_page()

    def wait_for_page(self) -> None:
        wait_for(lambda: str(self.load) in self.polled, "网页没有打开", 60)


def number_of(path: str) -> str:
    return urllib.parse.parse_qs(urllib.parse.urlsplit(path).query)["load"][0]


def reply(handler, status: int, body: bytes = b"", type_: str = "text/plain") -> None:
    try:
        handler.send_response(status)
        handler.send_header("Content-Type", type_)
        handler.send_header("Content-Length", str(len(body)))
        handler.send_header("Cache-Control", "no-store")
        handler.end_headers()
        handler.wfile.write(body)
    except OSError:
        pass  # A page that was left does not wait for the answer.
