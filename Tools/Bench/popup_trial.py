"""The program tavik-popup-trial, by whose commands popups are shown; PopupTrial.h tells of them."""

import json
import select
import subprocess
import sys

ANSWER_SECONDS = 10


class Trial:
    def __init__(self, program):
        self.process = subprocess.Popen([program], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        stderr=subprocess.DEVNULL)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.stdin.close()
        try:
            self.process.wait(5)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()

    def ask(self, command, seconds=ANSWER_SECONDS):
        self.process.stdin.write(f"{command}\n".encode())
        self.process.stdin.flush()
        if not select.select([self.process.stdout], [], [], seconds)[0]:
            sys.exit(f"tavik-popup-trial 没有回答 {command}")
        line = self.process.stdout.readline()
        if not line:
            sys.exit(f"tavik-popup-trial 在 {command} 时意外结束（{self.process.wait()}）")
        return json.loads(line)

    def state(self):
        return self.ask("state")
