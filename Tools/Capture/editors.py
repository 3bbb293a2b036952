"""Editors, in which a user finds the way by keys, and a window with Qt's own text fields."""

from __future__ import annotations

import json
import os
import re
import select
import subprocess
from dataclasses import dataclass

import desktop
from capture import Answer, CaptureProgram
from desktop import Box, Late, Screen, select_by_mouse
from process import Process
from runner import PAGES, Case, Target, without_sentences

LONG_LINE = 100_000


@dataclass(frozen=True)
class Spot:
    """Where a text stands, from the end of its line, and how it is selected."""

    line: int = 0
    occurrence: int = 1
    how: str = "keys"
    """"keys", "double", "drag" or "none"."""
    field: str = "plain"
    is_in_table: bool = False
    is_read_from_within: bool = False
    """By the application itself, as Tavik reads its own windows."""


def long_line() -> str:
    """The last one, which ends with two sentences to find."""
    text = ""
    number = 0
    while len(text) < LONG_LINE:
        text += f"Sentence number {number} of them all tells nothing. "
        number += 1
    return text + "Now a gargantuan line has come to its close. The text ends with an epilogue"


def plain_text(folder: str) -> str:
    """The path of the text that the editors show."""
    with open(os.path.join(PAGES, "editor.txt"), encoding="utf-8") as file:
        text = file.read() + long_line()
    path = os.path.join(folder, "editor.txt")
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)
    return path


PLAIN_CASES = [
    Case("文首", "Serendipity", "Serendipity opens this text.", Spot(0)),
    Case("同段第二次出现", "gauge", "She read the gauge twice.", Spot(1, 2)),
    Case("同段第三次出现", "gauge", "A third gauge was never found.", Spot(1, 3, "double")),
    Case("拖选短语", "never found", "A third gauge was never found.", Spot(1, how="drag"),
         is_word=False),
    Case("键盘选短语", "read the gauge", "She read the gauge twice.", Spot(1), is_word=False),
    Case("什么也没选", None, None, Spot(0, how="none"), is_word=False),
    Case("跨两段", "saw a lantern.\nAnother harbor", "The sailors saw a lantern.", Spot(2),
         has_one_box=False, is_word=False),
    Case("表情符号之后", "whimsical", "Look 😀 how whimsical this is.", Spot(4)),
    Case("多个表情符号之后", "jubilant", "We 🎉👩‍👩‍👧‍👦🇨🇳😀 cheered, and a jubilant 🎈 crowd sang.",
         Spot(5)),
    Case("中文里的英文", "ambiguous", "昨天我在报纸上读到 ambiguous 这个词，觉得很有意思。", Spot(6)),
    Case("中文", "报纸", "昨天我在报纸上读到 ambiguous 这个词，觉得很有意思。", Spot(6),
         is_word=False),
    Case("周围没有文字", "solitude", "solitude", Spot(8)),
    Case("100 kB 的一行", "gargantuan", "Now a gargantuan line has come to its close.", Spot(-1)),
    Case("文末", "epilogue", "The text ends with an epilogue", Spot(-1)),
]


class Editor(Target):
    window = ""

    def __init__(self, folder: str, screen: Screen, programs: str):
        super().__init__(folder, screen, programs)
        self.path = plain_text(folder)
        with open(self.path, encoding="utf-8") as file:
            self.text = file.read()

    def command(self) -> list[str]:
        return [self.program, self.path]

    def start(self) -> None:
        self.process = Process(self.command(), self.folder)
        window = desktop.wait_for_window(self.window)
        desktop.user("windowmove", window, 40, 40, "windowsize", window, 1100, 640)
        self.screen.settled()

    def cases(self) -> list[Case]:
        return PLAIN_CASES

    def prepare(self, case: Case) -> None:
        """Puts the caret before the text."""
        spot: Spot = case.place
        if case.text is None:
            desktop.keys("ctrl+Home")
            return
        lines = self.text.split("\n")
        rest = lines[spot.line]
        for _ in range(spot.occurrence):
            rest = rest[rest.index(case.text.split("\n", maxsplit=1)[0]) + 1:]
        if spot.line < 0:
            self.go_back_from_end(case.text[0] + rest)
        else:
            desktop.keys("ctrl+Home", *desktop.times("Down", spot.line), "End",
                         *desktop.times("Left", len(rest) + 1))

    def go_back_from_end(self, rest: str) -> None:
        desktop.keys("ctrl+End", *desktop.times("Left", len(rest)))

    def select_by_keys(self, case: Case) -> None:
        desktop.keys(*desktop.times("shift+Right", len(case.text)))

    def select(self, case: Case) -> None:
        if case.text is None:
            return
        before = self.screen.settled()
        self.select_by_keys(case)
        if case.place.how != "keys":
            box = self.screen.painted_since(before)
            self.prepare(case)
            select_by_mouse(box, case.place.how)


class Mousepad(Editor):
    name = "Mousepad"
    program = "mousepad"
    advice = "请安装软件包 mousepad"
    window = "mousepad"

    # In so long a line, a step by a character takes GTK a second; full stops are steps, too. From the
    # word's end, so that the view does not move any more when it is selected.
    def go_back_from_end(self, rest: str) -> None:
        steps = re.findall(r"\w+|[^\w\s]", rest)
        desktop.keys("ctrl+End")
        self.process.wait_until_idle()
        desktop.keys(*desktop.times("ctrl+Left", len(steps)), "ctrl+Right")
        self.process.wait_until_idle()

    def select_by_keys(self, case: Case) -> None:
        if case.place.line < 0:
            desktop.keys("ctrl+shift+Left")
        else:
            super().select_by_keys(case)


class FeatherPad(Editor):
    name = "FeatherPad"
    program = "featherpad"
    advice = "请安装软件包 featherpad"
    window = "featherpad"

    def tells_place(self, case: Case) -> bool:
        return False


RICH_CASES = [
    Case("标题", "meticulous", "The meticulous heading of a text.", Spot(field="rich", how="double")),
    Case("粗体", "ubiquitous", "They brought some ubiquitous bold text and an ephemeral slant along.",
         Spot(field="rich", how="double")),
    Case("斜体", "ephemeral", "They brought some ubiquitous bold text and an ephemeral slant along.",
         Spot(field="rich", how="double")),
    Case("跨行内元素", "some ubiquitous bold text",
         "They brought some ubiquitous bold text and an ephemeral slant along.",
         Spot(field="rich", how="drag"), is_word=False),
    Case("链接", "resilient", "Read the resilient manual before you start.", Spot(field="rich", how="double")),
    Case("列表项", "sturdy", "Pack a sturdy umbrella.", Spot(field="rich", how="double")),
    Case("表格单元", "plausible", "A plausible value.",
         Spot(field="rich", how="double", is_in_table=True)),
    Case("表情符号之后", "whimsical", "Look 😀 how whimsical this is.", Spot(field="rich", how="double")),
    Case("文末", "epilogue", "The text ends with an epilogue", Spot(field="rich", how="double")),
]
FIELD_CASES = [
    Case("输入框", "concise", "A concise remark fits in.", Spot(field="line", how="double")),
    Case("输入框里用键盘", "fits in", "A concise remark fits in.", Spot(field="line", how="keys"),
         is_word=False),
    Case("密码框", None, None, Spot(field="password", how="double"), is_word=False),
    Case("自己的窗口", "ephemeral", "They brought some ubiquitous bold text and an ephemeral slant along.",
         Spot(field="rich", how="double", is_read_from_within=True)),
    Case("自己的密码框", None, None,
         Spot(field="password", how="double", is_read_from_within=True), is_word=False),
]


class TkEditor(Editor):
    """The text of Tk, a toolkit that knows nothing of accessibility."""

    name = "Tk"
    program = "wish"
    advice = "请安装软件包 tk"
    window = "editor"
    is_described = False

    def __init__(self, folder: str, screen: Screen, programs: str):
        super().__init__(folder, screen, programs)
        # It takes its time for the last line, which is long.
        self.text = "\n".join(self.text.split("\n")[:-1])
        with open(self.path, "w", encoding="utf-8") as file:
            file.write(self.text)

    def command(self) -> list[str]:
        return [self.program, os.path.join(PAGES, "editor.tcl"), self.path]

    def cases(self) -> list[Case]:
        lines_without_emoji = (0, 1, 2, 6, 8)
        return without_sentences([case for case in PLAIN_CASES
                                  if case.place.line in lines_without_emoji])


LABEL_CASES = [
    Case("标签", "selectable", None, Spot(field="label", how="double")),
    Case("标签里拖选", "some selectable text", None, Spot(field="label", how="drag"), is_word=False),
    Case("标签里什么也没选", None, None, Spot(field="label", how="none"), is_word=False),
]


class QtEditor(Target):
    """Its fields tell where their words are."""

    name = "Qt"
    advice = "请先编译 ci 预设"
    prefix: list[str] = []

    def __init__(self, folder: str, screen: Screen, programs: str):
        super().__init__(folder, screen, programs)
        self.program = os.path.join(programs, "tavik-trial-editor")

    def start(self) -> None:
        self.process = Process(
            [*self.prefix, self.program, os.path.join(PAGES, "editor.html"),
             plain_text(self.folder)],
            self.folder, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, bufsize=1)
        desktop.wait_for_window("tavik-trial-editor")

    def tells_place(self, case: Case) -> bool:
        return case.place.field == "rich" and not case.place.is_in_table

    def cases(self) -> list[Case]:
        return RICH_CASES + PLAIN_CASES + FIELD_CASES

    def capture(self, program: CaptureProgram, case: Case) -> Answer:
        if case.place.is_read_from_within:
            return Answer(json.loads(self.ask("capture")))
        return super().capture(program, case)

    def ask(self, request: str) -> str:
        process = self.process.process
        process.stdin.write(request + "\n")
        if not select.select([process.stdout], [], [], desktop.PATIENCE)[0]:
            raise Late(f"Qt 窗口没有回答 {request}")
        return process.stdout.readline().strip()

    def box(self, case: Case) -> Box:
        spot: Spot = case.place
        text = (case.text or "e").split("\n", maxsplit=1)[0]
        x, y, width, height = map(int, self.ask(f"{spot.field} {spot.occurrence} {text}").split())
        return Box(x, y, x + width, y + height)

    def prepare(self, case: Case) -> None:
        self.ask("clear")
        self.box(case)

    def select(self, case: Case) -> None:
        box, how = self.box(case), case.place.how
        if how == "none":
            desktop.click(box.start)
        elif case.text is None:
            # Nothing but the paint tells that a password is selected.
            before = self.screen.settled()
            select_by_mouse(box, how)
            self.screen.painted_since(before)
        elif how == "keys":
            desktop.click((box.left, box.middle[1]))
            desktop.keys(*desktop.times("shift+Right", len(case.text)))
        else:
            select_by_mouse(box, how)


class QtWithoutBus(QtEditor):
    """Without a session bus, it finds nobody to describe itself to."""

    name = "没有辅助功能的 Qt"
    prefix = ["env", "DBUS_SESSION_BUS_ADDRESS=disabled:"]
    is_described = False
    names = {"跨行内元素", "粗体", "什么也没选", "跨两段", "多个表情符号之后", "输入框", "密码框"}

    def cases(self) -> list[Case]:
        described = [case for case in RICH_CASES + PLAIN_CASES + FIELD_CASES
                     if case.name in self.names and not case.place.is_read_from_within]
        return LABEL_CASES + without_sentences(described)
