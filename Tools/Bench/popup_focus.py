"""Counts in a private desktop whether popups leave the keyboard to whom it belongs: popup_focus.py TRIAL.
Ends with 1 when one does not.
"""

import contextlib
import pathlib
import re
import string
import subprocess
import sys
import tempfile
import time

from popup import await_word
from popup_trial import Trial
from targets import active_title, double_click, output_of, running, selected_word, wait_until

TYPED = string.ascii_lowercase + string.digits + string.ascii_lowercase[:24]
TYPING_ROUNDS = 5
POPUPS = 20
HOVER_PRESSES = 10
PATIENCE_SECONDS = 2

failed = False


def report(what, good, total, more=""):
    global failed
    failed = failed or good != total
    print(f"  {what:<52}{good:5} of {total:<5}{'' if good == total else ' WRONG'}{more}", flush=True)


def xdotool(*arguments):
    subprocess.run(["xdotool", *map(str, arguments)], check=True)


def soon(is_so):
    deadline = time.monotonic() + PATIENCE_SECONDS
    while time.monotonic() < deadline:
        if is_so():
            return True
        time.sleep(0.01)
    return False


def common(first, second):
    """How many characters of `first` come in `second`, in their order."""
    rest = iter(second)
    return sum(1 for each in first if each in rest)


class Editor:
    """Mousepad, in the file of which stands what was typed."""

    def __init__(self, folder):
        self.file = folder / "text.txt"

    def typed(self, expected):
        """What stands behind the last line break, once that is `expected` or it is late."""
        def last():
            xdotool("key", "ctrl+s")
            return self.file.read_text().rpartition("\n")[2]

        soon(lambda: last() == expected)
        return last()


class Terminal:
    """XTerm with a program that writes down each key."""

    def __init__(self, file):
        self.file = file

    def typed(self, expected):
        def last():
            return self.file.read_text().rpartition("\n")[2]

        soon(lambda: last() == expected)
        return last()


@contextlib.contextmanager
def terminal():
    with tempfile.TemporaryDirectory() as folder:
        file = pathlib.Path(folder, "keys")
        file.touch()
        started = pathlib.Path(folder, "started")
        write_down = f"stty raw -echo; touch {started}; exec cat >{file}"
        with running(["xterm", "-T", "keys", "-e", "sh", "-c", write_down]):
            wait_until(lambda: started.exists() and "keys" in active_title(), "xterm ")
            yield Terminal(file)


def type_under_popups(trial, name, victim):
    """Each round begins a line of its own."""
    arrived = shown = 0
    elsewhere = trial.state()["keyPresses"]
    exact = True
    for _ in range(TYPING_ROUNDS):
        xdotool("key", "ctrl+End", "Return") if name == "mousepad" else xdotool("key", "Return")
        time.sleep(0.2)
        trial.ask("flicker")
        xdotool("type", "--delay", "12", TYPED)
        shown += trial.ask("calm")["shown"]
        typed = victim.typed(TYPED)
        arrived += common(TYPED, typed)
        exact = exact and typed == TYPED
    total = TYPING_ROUNDS * len(TYPED)
    report(f"keys typed into {name} under hover popups", arrived, total,
           f"  ({shown} popups{'' if exact else ', in another order or more than once'})")
    report("  of them came to a popup", trial.state()["keyPresses"] - elsewhere, 0)


def close_by_escape(_trial, _window):
    xdotool("key", "Escape")


def close_by_button(trial, _window):
    xdotool("mousemove", *trial.state()["closeButton"], "click", 1)


def close_by_click_outside(trial, window):
    left, top, width, height = trial.state()["frame"]
    x = window["X"] + 60
    for y in range(window["Y"] + window["HEIGHT"] - 40, window["Y"] + 80, -20):
        if not (left - 5 <= x < left + width + 5 and top - 5 <= y < top + height + 5):
            xdotool("mousemove", x, y, "click", 1)
            return
    sys.exit("弹窗盖住了整个窗口")


def active_window():
    shell = output_of("xdotool", "getactivewindow", "getwindowgeometry", "--shell")
    return {name: int(value) for name, value in re.findall(r"^(\w+)=(\d+)$", shell, re.M)}


def has_come_back(trial, focus):
    def is_back():
        state = trial.state()
        return not state["visible"] and state["focus"] == focus

    return soon(is_back)


class LastLine:
    """Types single letters at the end of the editor's text."""

    def __init__(self, editor):
        self.editor = editor
        self.expected = ""
        xdotool("key", "ctrl+End", "Return")

    def takes_a_key(self):
        letter = string.ascii_lowercase[len(self.expected) % 26]
        xdotool("key", "ctrl+End", letter)
        self.expected += letter
        typed = self.editor.typed(self.expected)
        is_right = typed == self.expected
        self.expected = typed
        return is_right


def look_up(trial, place):
    """Who had the keyboard before the popup came. The editor may take a double click for two single
    ones while its text still rolls to the last letter.
    """
    for _ in range(3):
        double_click(*place)
        time.sleep(0.3)
        focus = trial.state()["focus"]
        if "total" in trial.ask("lookup"):
            return focus
    return None


def press_hot_key(trial, editor, place):
    """Popups of the hot key, closed in each way by turns."""
    ways = {"Escape": close_by_escape, "close button": close_by_button,
            "click outside": close_by_click_outside}
    counts = {name: [0, 0, 0, 0] for name in ways}
    window = active_window()
    line = LastLine(editor)
    for turn in range(POPUPS):
        name = list(ways)[turn % len(ways)]
        count = counts[name]
        count[0] += 1
        focus = look_up(trial, place)
        if focus is None:
            continue
        count[1] += soon(lambda: trial.state()["key"] and not trial.state()["keyRelease"])
        ways[name](trial, window)
        count[2] += has_come_back(trial, focus)
        count[3] += line.takes_a_key()
        trial.ask("close")
    for name, (total, became_key, came_back, typed) in counts.items():
        report("hot-key popup has the keyboard", became_key, total)
        report(f"  closed by {name}: focus is as before", came_back, total)
        report("  and a key comes to the editor", typed, total)


def press_hover_popups(trial, editor):
    line = LastLine(editor)
    became_key = came_back = typed = 0
    for _ in range(HOVER_PRESSES):
        focus = trial.state()["focus"]
        trial.ask("hover 300 500")
        state = trial.state()
        left, top, _width, height = state["frame"]
        xdotool("mousemove", left + 6, top + height // 2, "click", 1)
        became_key += soon(lambda: trial.state()["key"])
        xdotool("key", "Escape")
        came_back += has_come_back(trial, focus)
        typed += line.takes_a_key()
        trial.ask("close")
    report("hover popup that is pressed has the keyboard", became_key, HOVER_PRESSES)
    report("  closed by Escape: focus is as before", came_back, HOVER_PRESSES)
    report("  and a key comes to the editor", typed, HOVER_PRESSES)


def main():
    program = sys.argv[1]
    with Trial(program) as trial:
        with terminal() as victim:
            type_under_popups(trial, "xterm", victim)
        with selected_word("mousepad") as (folder, place):
            await_word(trial, trial.state()["focus"])
            editor = Editor(folder)
            type_under_popups(trial, "mousepad", editor)
            press_hot_key(trial, editor, place)
            press_hover_popups(trial, editor)
    return failed


sys.exit(main())
