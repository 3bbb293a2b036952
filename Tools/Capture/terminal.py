"""A terminal, whose text has colours by which its words are found on the screen."""

from __future__ import annotations

import os
from dataclasses import dataclass

import desktop
from desktop import Box, select_by_mouse, wait_for
from process import Process
from runner import Case, Target, without_sentences


@dataclass(frozen=True)
class Spot:
    """The text has a background of this colour. Without red, so that no edge of white letters on
    another one has it."""

    colour: int
    how: str = "double"


def tinted(text: str, colour: int) -> str:
    red, green, blue = colour >> 16, colour >> 8 & 255, colour & 255
    return f"\033[48;2;{red};{green};{blue}m{text}\033[49m"


TEXT = "\r\n".join([
    f"{tinted('Serendipity', 0x0040A0)} opens this text. The rest of it follows.",
    f"The gauge was broken. She read the {tinted('gauge', 0x0050A0)} twice. "
    f"A third gauge was {tinted('never found', 0x0060A0)}.",
    "",
    f"Look 😀 how {tinted('whimsical', 0x0070A0)} this is. Well.",
    f"他来了。{tinted('昨天', 0x0090A0)}我读到 {tinted('ambiguous', 0x0080A0)} 这个词。后来忘了。",
    "",
    f"A sentence that is certainly wider than the window of the terminal goes on in a second row, where a "
    f"{tinted('conspicuous', 0x00A0A0)} word stands, and then it ends. Short.",
    "",
    tinted("solitude", 0x00B0A0),
    "",
    f"Here it closes. The text ends with an {tinted('epilogue', 0x00C0A0)}",
])

CASES = [
    Case("文首", "Serendipity", "Serendipity opens this text.", Spot(0x0040A0)),
    Case("同段第二次出现", "gauge", "She read the gauge twice.", Spot(0x0050A0)),
    Case("什么也没选", None, None, Spot(0, "none"), is_word=False),
    Case("拖选短语", "never found", "A third gauge was never found.", Spot(0x0060A0, "drag"),
         is_word=False),
    Case("表情符号之后", "whimsical", "Look 😀 how whimsical this is.", Spot(0x0070A0)),
    Case("中文里的英文", "ambiguous", "昨天我读到 ambiguous 这个词。", Spot(0x0080A0)),
    Case("中文", "昨天", "昨天我读到 ambiguous 这个词。", Spot(0x0090A0, "drag"), is_word=False),
    Case("折行的一行", "conspicuous",
         "A sentence that is certainly wider than the window of the terminal goes on in a second row, "
         "where a conspicuous word stands, and then it ends.", Spot(0x00A0A0)),
    Case("周围没有文字", "solitude", "solitude", Spot(0x00B0A0)),
    Case("文末", "epilogue", "The text ends with an epilogue", Spot(0x00C0A0)),
]


class Terminal(Target):
    name = "Xfce 终端"
    program = "xfce4-terminal"
    advice = "请安装软件包 xfce4-terminal"

    def command(self, script: str) -> list[str]:
        return ["xfce4-terminal", "--disable-server", "--geometry=100x30+20+20",
                f"--command=sh {script}"]

    def start(self) -> None:
        path = os.path.join(self.folder, "terminal.txt")
        with open(path, "w", encoding="utf-8", newline="") as file:
            file.write(TEXT)
        script = os.path.join(self.folder, "terminal.sh")
        with open(script, "w", encoding="utf-8") as file:
            file.write(f"cat {path}\nexec sleep 1000\n")
        self.process = Process(self.command(script), self.folder)
        desktop.wait_for_window(self.program)
        self.box(CASES[-1])

    def cases(self) -> list[Case]:
        return CASES

    def prepare(self, case: Case) -> None:
        """Nothing is selected any more since the desktop's selection was taken away."""

    def box(self, case: Case) -> Box:
        return wait_for(lambda: self.screen.picture().places_of(case.place.colour), case.name)

    def select(self, case: Case) -> None:
        if case.text is not None:
            select_by_mouse(self.box(case), case.place.how)


class XTerm(Terminal):
    """It describes nothing of itself. What its user has selected is PRIMARY."""

    name = "XTerm"
    program = "xterm"
    advice = "请安装软件包 xterm"
    is_described = False

    def command(self, script: str) -> list[str]:
        return ["xterm", "-u8", "-fa", "DejaVu Sans Mono", "-fs", "10", "-geometry", "100x30+20+20",
                "-xrm", "*directColor: true", "-e", "sh", script]

    def cases(self) -> list[Case]:
        return without_sentences(CASES)

    def select(self, case: Case) -> None:
        if case.text is None or case.place.how == "double":
            super().select(case)
        else:
            # The letter under the pointer does not belong to it any more.
            box = self.box(case)
            desktop.drag(box.start, (box.right + 2, box.middle[1]))
