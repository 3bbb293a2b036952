"""The program under test, which reads what is selected in the application in front."""

from __future__ import annotations

import json
import select
import subprocess
from typing import Optional

from desktop import Box

ANSWER_SECONDS = 15


class Answer:
    """What was captured. Without a selection the text is absent."""

    def __init__(self, fields: dict):
        self.text: Optional[str] = fields.get("text")
        self.sentence: Optional[str] = fields.get("sentence")
        self.error: Optional[str] = fields.get("error")
        self.url: Optional[str] = fields.get("url")
        self.method: Optional[str] = fields.get("method")
        self.ms: float = fields.get("ms", 0)
        anchor = fields.get("anchor")
        self.box = anchor and Box(anchor["x"], anchor["y"], anchor["x"] + anchor["width"],
                                  anchor["y"] + anchor["height"])


class CaptureProgram:
    def __init__(self, path: str, log: str):
        self.path = path
        self.log = log
        self.process: Optional[subprocess.Popen] = None

    def capture(self) -> Answer:
        if self.process is None or self.process.poll() is not None:
            self.start()
        try:
            self.process.stdin.write("capture\n")
        except BrokenPipeError:
            return Answer({"error": "程序已经退出"})
        if not select.select([self.process.stdout], [], [], ANSWER_SECONDS)[0]:
            # Its answer would be taken for the next one.
            self.process.kill()
            self.process.wait()
            return Answer({"error": f"{ANSWER_SECONDS} 秒没有回答"})
        line = self.process.stdout.readline()
        return Answer(json.loads(line) if line else {"error": "程序已经退出"})

    def start(self) -> None:
        with open(self.log, "ab") as errors:
            self.process = subprocess.Popen([self.path], stdin=subprocess.PIPE,
                                            stdout=subprocess.PIPE, stderr=errors, text=True,
                                            bufsize=1)

    def end(self) -> None:
        if self.process is not None:
            self.process.stdin.close()
            try:
                self.process.wait(5)
            except subprocess.TimeoutExpired:
                self.process.kill()
