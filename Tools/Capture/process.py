"""An application that is started for the tests, with folders of its own."""

from __future__ import annotations

import os
import signal
import subprocess
import tempfile
import time
from typing import Optional

import desktop


class Process:
    def __init__(self, command: list[str], folder: str, **options):
        home = tempfile.mkdtemp(prefix="home-", dir=folder)
        # A scroll bar that fades away would be a change of the picture.
        environment = dict(os.environ, HOME=home, GTK_OVERLAY_SCROLLING="0")
        for name, place in (("CONFIG", ".config"), ("DATA", ".local/share"),
                            ("STATE", ".local/state"), ("CACHE", ".cache")):
            environment[f"XDG_{name}_HOME"] = os.path.join(home, place)
            os.makedirs(environment[f"XDG_{name}_HOME"], exist_ok=True)
        options.setdefault("stdin", subprocess.DEVNULL)
        options.setdefault("stdout", subprocess.DEVNULL)
        with open(os.path.join(folder, "targets.log"), "ab") as log:
            # In a group of its own, so that it ends with all it has started.
            self.process = subprocess.Popen(command, env=environment, cwd=folder, stderr=log,
                                            start_new_session=True, **options)

    def wait_until_idle(self) -> None:
        """For programs that take their time before they show anything."""
        def is_idle() -> bool:
            before = self.processor_ticks()
            time.sleep(0.1)
            return self.processor_ticks() == before

        desktop.wait_for(is_idle, "程序没有停下来")

    def processor_ticks(self) -> int:
        with open(f"/proc/{self.process.pid}/stat", encoding="utf-8") as file:
            fields = file.read().rpartition(")")[2].split()
        return int(fields[11]) + int(fields[12])

    def end(self, seconds: float = 2) -> Optional[int]:
        for number in (signal.SIGTERM, signal.SIGKILL):
            try:
                os.killpg(self.process.pid, number)
            except ProcessLookupError:
                pass
            try:
                return self.process.wait(seconds)
            except subprocess.TimeoutExpired:
                continue
        return None
