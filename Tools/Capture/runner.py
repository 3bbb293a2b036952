"""Goes through the cases of a target and compares what is captured with what is expected."""

from __future__ import annotations

import os
import subprocess
from dataclasses import dataclass, field, replace
from typing import Callable, Optional

import desktop
from capture import Answer, CaptureProgram
from desktop import Box, Late, Picture, Screen
from process import Process

PAGES = os.path.join(os.path.dirname(os.path.realpath(__file__)), "pages")
ALLOWED_OFFSET = 3
SELECTION_SECONDS = 6
# Of the application or of the programs that play the user.
FAILURES = (Late, OSError, subprocess.SubprocessError)


@dataclass(frozen=True)
class Case:
    """One selection. `place` tells the target how it is made; without a text, nothing may be read."""

    name: str
    text: Optional[str]
    sentence: Optional[str]
    place: object = None
    has_one_box: bool = True
    """Whether what is painted is the bounds of the text, which it is within a line."""
    is_word: bool = True
    """Whether a double click selects it."""


@dataclass
class Outcome:
    case: str
    text: Optional[bool] = None
    sentence: Optional[bool] = None
    address: Optional[bool] = None
    needs_offset: bool = False
    offset: Optional[float] = None
    click: Optional[bool] = None
    ms: float = 0
    faults: list[str] = field(default_factory=list)

    @property
    def rectangle(self) -> Optional[bool]:
        if not self.needs_offset:
            return None
        return self.offset is not None and self.offset <= ALLOWED_OFFSET


def without_sentences(cases: list[Case]) -> list[Case]:
    """As the clipboard has them."""
    return [replace(case, sentence=None) for case in cases]


def on_clipboard(case: Case) -> str:
    """What lies there before a capture, and afterwards again."""
    return f"剪贴板上原有的文字，{case.name}"


class Target:
    """An application whose text is selected."""

    name = ""
    program = ""
    advice = ""
    """What to do where the program is missing."""
    is_described = True
    """Whether accessibility tells what is selected. Else it comes from the clipboard, with nothing
    around it."""

    def __init__(self, folder: str, screen: Screen, _programs: str):
        """`folder` is for whatever the application keeps; the last one is where Tavik's programs are."""
        self.folder = folder
        self.screen = screen
        self.process: Optional[Process] = None

    def start(self) -> None:
        """Returns when the application can be used."""

    def end(self) -> None:
        """Leaves nothing running."""
        if self.process:
            self.process.end()

    def cases(self) -> list[Case]:
        return []

    def prepare(self, case: Case) -> None:
        """Shows the place of the case, with nothing selected."""

    def select(self, case: Case) -> None:
        """Does what the user does."""

    def has_selected(self, case: Case) -> bool:
        """A password does not come to the desktop's selection, like nothing."""
        return case.text is None or words(desktop.selected()) == words(case.text)

    def capture(self, program: CaptureProgram, case: Case) -> Answer:
        return program.capture()

    def address(self, case: Case) -> Optional[str]:
        """How the address of the case's page begins, where it has one."""
        return None

    def tells_place(self, case: Case) -> bool:
        """Whether the application tells where its text is. Where it tells something wrong, to capture
        no rectangle is right, too."""
        return True

    def warm_up(self, capture: Callable[[], Answer]) -> None:
        """What the application needs until what it says is reliable."""


def words(text: str) -> list[str]:
    return text.split()


def select(target: Target, screen: Screen, case: Case) -> Picture:
    """Selects, twice if need be, and returns what the screen showed before."""
    for attempt in (1, 2):
        desktop.forget_selection()
        target.prepare(case)
        before = screen.settled()
        target.select(case)
        try:
            desktop.wait_for(lambda: target.has_selected(case), "选区不对", SELECTION_SECONDS)
            return before
        except Late:
            if attempt == 2:
                raise Late(f"选中的是「{desktop.selected()}」，应为「{case.text}」") from None


def compare(target: Target, case: Case, answer: Answer, outcome: Outcome) -> None:
    def check(is_right: bool, what: str, found: object, expected: object) -> bool:
        if not is_right:
            outcome.faults.append(f"{what}：得到 {found!r}，应为 {expected!r}")
        return is_right

    found = answer.text if answer.error is None else answer.error
    expected = "nothingSelected" if case.text is None else case.text
    outcome.text = check(found == expected, "文字", found, expected)
    if not target.is_described:
        way = None if case.text is None else "clipboard"
        outcome.text &= check(answer.method == way, "途径", answer.method, way)
        expected = on_clipboard(case)
        outcome.text &= check(desktop.clipboard() == expected, "剪贴板", desktop.clipboard(), expected)
    if case.text is not None:
        outcome.sentence = check(answer.sentence == case.sentence, "句子", answer.sentence,
                                 case.sentence)
        address = target.address(case)
        if address is not None:
            outcome.address = check((answer.url or "").startswith(address), "网址", answer.url,
                                    address)


def compare_places(target: Target, case: Case, painted: Optional[Box], answer: Answer,
                   outcome: Outcome) -> None:
    tells_place = target.is_described and target.tells_place(case)
    if painted is not None and (answer.box is not None or tells_place):
        outcome.needs_offset = True
        outcome.offset = None if answer.box is None else painted.offset(answer.box)
        if not outcome.rectangle:
            outcome.faults.append(f"矩形：得到 {answer.box}，画出的是 {painted}")
    if case.is_word and answer.box is not None:
        desktop.forget_selection()
        target.prepare(case)
        desktop.click(answer.box.middle, 2)
        try:
            desktop.wait_for(lambda: target.has_selected(case), "双击", SELECTION_SECONDS)
            outcome.click = True
        except Late:
            outcome.click = False
            outcome.faults.append(f"双击：{answer.box.middle} 处选中了「{desktop.selected()}」")


def run_case(target: Target, screen: Screen, program: CaptureProgram, case: Case) -> Outcome:
    outcome = Outcome(case.name)
    try:
        before = select(target, screen, case)
        painted = None
        if case.text is not None:
            found = screen.painted_since(before)
            painted = found if case.has_one_box else None
        else:
            screen.settled()
        if not target.is_described:
            desktop.put_on_clipboard(on_clipboard(case))
        answer = target.capture(program, case)
        outcome.ms = answer.ms
        compare(target, case, answer, outcome)
        if case.text is not None:
            compare_places(target, case, painted, answer, outcome)
    except FAILURES as failure:
        outcome.text = False
        outcome.faults.append(f"没有选成：{failure}")
    return outcome


def run_target(target: Target, screen: Screen, program: CaptureProgram,
               only: str = "") -> list[Outcome]:
    try:
        target.start()
        target.warm_up(program.capture)
        return [run_case(target, screen, program, case) for case in target.cases() if only in case.name]
    except FAILURES as failure:
        return [Outcome("启动", text=False, faults=[f"没有准备好：{failure}"])]
    finally:
        target.end()
