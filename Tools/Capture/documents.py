"""A viewer of PDF. The words that are selected stand in coloured boxes."""

from __future__ import annotations

import os
from dataclasses import dataclass
from typing import Optional

import desktop
from desktop import Box, Screen, select_by_mouse, wait_for
from process import Process
from runner import Case, Target

SIZE = 12
# Each letter of Courier is that wide.
ADVANCE = 0.6 * SIZE
LEADING = 18
LEFT, TOP = 40, 780
# Where a click takes back the selection.
BESIDE = (1080, 600)


PAGES = [
    ["Serendipity opens this document. The rest",
     "of it follows.",
     "",
     "The gauge was broken. She read the gauge twice, in",
     "a sentence that runs over two ends of lines and",
     "has a conspicuous word in its last one. A third",
     "gauge was never found.",
     "",
     "Solitude"],
    ["On the second page a frugal lunch is eaten. It is",
     "good. Here it closes. The text ends with an epilogue"],
]
TWICE = ("She read the gauge twice, in a sentence that runs over two ends of lines and has a "
         "conspicuous word in its last one.")


@dataclass(frozen=True)
class Mark:
    """A coloured box behind a text of a line."""

    colour: int
    page: int
    line: int
    text: str
    occurrence: int = 1


@dataclass(frozen=True)
class Spot:
    mark: Mark
    until: Optional[Mark] = None
    """Where a drag ends, if it is another one."""
    how: str = "double"
    zoom: int = 0


FIRST = Mark(0xE0F001, 0, 0, "Serendipity")
SECOND_GAUGE = Mark(0xE0F002, 0, 3, "gauge", 2)
LINE_END = Mark(0xE0F003, 0, 4, "lines and")
LINE_START = Mark(0xE0F004, 0, 5, "has a")
IN_LAST_LINE = Mark(0xE0F005, 0, 5, "conspicuous")
PHRASE = Mark(0xE0F006, 0, 6, "never found")
ALONE = Mark(0xE0F007, 0, 8, "Solitude")
SECOND_PAGE = Mark(0xE0F008, 1, 0, "frugal")
LAST = Mark(0xE0F009, 1, 1, "epilogue")
MARKS = [FIRST, SECOND_GAUGE, LINE_END, LINE_START, IN_LAST_LINE, PHRASE, ALONE, SECOND_PAGE, LAST]

CASES = [
    Case("文首", "Serendipity", "Serendipity opens this document.", Spot(FIRST)),
    Case("同段第二次出现", "gauge", TWICE, Spot(SECOND_GAUGE)),
    Case("跨行的句子", "conspicuous", TWICE, Spot(IN_LAST_LINE)),
    Case("拖选短语", "never found", "A third gauge was never found.", Spot(PHRASE, how="drag"),
         is_word=False),
    Case("拖选跨行的短语", "lines and\nhas a", TWICE, Spot(LINE_END, LINE_START, how="drag"),
         is_word=False),
    Case("周围没有文字", "Solitude", "Solitude", Spot(ALONE)),
    Case("放大的页面", "conspicuous", TWICE, Spot(IN_LAST_LINE, zoom=1)),
    Case("第二页", "frugal", "On the second page a frugal lunch is eaten.", Spot(SECOND_PAGE)),
    Case("文末", "epilogue", "The text ends with an epilogue", Spot(LAST)),
]


def content(page: int) -> str:
    """The page's boxes and lines, in PDF's language."""
    parts = []
    for mark in MARKS:
        if mark.page == page:
            place = -1
            for _ in range(mark.occurrence):
                place = PAGES[page][mark.line].index(mark.text, place + 1)
            colour = " ".join(f"{(mark.colour >> shift & 255) / 255:.5f}" for shift in (16, 8, 0))
            parts.append(f"{colour} rg {LEFT + place * ADVANCE:g} {TOP - mark.line * LEADING - 3:g} "
                         f"{len(mark.text) * ADVANCE:g} {SIZE} re f")
    for number, line in enumerate(PAGES[page]):
        parts.append(f"0 g BT /F {SIZE} Tf {LEFT} {TOP - number * LEADING} Td ({line}) Tj ET")
    return "\n".join(parts)


def pdf() -> bytes:
    pages = range(len(PAGES))
    objects = ["<< /Type /Catalog /Pages 2 0 R >>",
               f"<< /Type /Pages /Count {len(PAGES)} /Kids [{' '.join(f'{4 + 2 * i} 0 R' for i in pages)}] >>",
               "<< /Type /Font /Subtype /Type1 /BaseFont /Courier >>"]
    for page in pages:
        text = content(page)
        objects += [f"<< /Type /Page /Parent 2 0 R /MediaBox [0 0 420 820] /Contents {5 + 2 * page} 0 R "
                    "/Resources << /Font << /F 3 0 R >> >> >>",
                    f"<< /Length {len(text)} >>\nstream\n{text}\nendstream"]
    data, places = b"%PDF-1.4\n", []
    for number, text in enumerate(objects, 1):
        places.append(len(data))
        data += f"{number} 0 obj\n{text}\nendobj\n".encode()
    table = "".join(f"{place:010} 00000 n \n" for place in places)
    return data + (f"xref\n0 {len(objects) + 1}\n0000000000 65535 f \n{table}trailer\n"
                   f"<< /Size {len(objects) + 1} /Root 1 0 R >>\nstartxref\n{len(data)}\n%%EOF\n").encode()


class Evince(Target):
    name = "Evince"
    program = "evince"
    advice = "请安装软件包 evince"

    def __init__(self, folder: str, screen: Screen, programs: str):
        super().__init__(folder, screen, programs)
        self.page = 0
        self.zoom = 0

    def start(self) -> None:
        path = os.path.join(self.folder, "document.pdf")
        with open(path, "wb") as file:
            file.write(pdf())
        self.process = Process(["evince", path], self.folder)
        window = desktop.wait_for_window("evince")
        desktop.user("windowmove", window, 20, 20, "windowsize", window, 1100, 700)
        self.box(FIRST)
        self.screen.settled()

    def cases(self) -> list[Case]:
        return CASES

    def prepare(self, case: Case) -> None:
        spot: Spot = case.place
        desktop.click(BESIDE)
        if spot.mark.page != self.page:
            desktop.keys("n" if spot.mark.page else "p")
            self.page = spot.mark.page
        if spot.zoom != self.zoom:
            desktop.keys("ctrl+0", *desktop.times("ctrl+plus", spot.zoom))
            self.zoom = spot.zoom
        self.box(spot.mark)
        self.screen.settled()

    def box(self, mark: Mark) -> Box:
        return wait_for(lambda: self.screen.picture().places_of(mark.colour), f"没有看到「{mark.text}」")

    def select(self, case: Case) -> None:
        spot: Spot = case.place
        box = self.box(spot.mark)
        if spot.until:
            desktop.drag(box.start, self.box(spot.until).end)
        else:
            select_by_mouse(box, spot.how)
