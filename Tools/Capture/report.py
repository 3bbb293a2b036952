"""What came of the cases, as tables in Chinese."""

from __future__ import annotations

import unicodedata
from typing import Iterable, Optional

from runner import Outcome

COLUMNS = ["用例", "文字", "句子", "网址", "矩形偏差", "双击选回", "毫秒"]
NEEDED_SENTENCES = 0.95


def mark(is_right: Optional[bool]) -> str:
    return "—" if is_right is None else "✓" if is_right else "✗"


def offset(outcome: Outcome) -> str:
    if outcome.rectangle is None:
        return "—"
    if outcome.offset is None:
        return "✗ 没有"
    return f"{'' if outcome.rectangle else '✗ '}{outcome.offset:g} px"


def row(outcome: Outcome) -> list[str]:
    return [outcome.case, mark(outcome.text), mark(outcome.sentence), mark(outcome.address), offset(outcome),
            mark(outcome.click), f"{outcome.ms:.0f}"]


def width(text: str) -> int:
    """Columns of a terminal."""
    return sum(2 if unicodedata.east_asian_width(sign) in "WF" else 1 for sign in text)


def table(rows: list[list[str]]) -> list[str]:
    """In Markdown, aligned for readers of plain text."""
    widths = [max(width(cells[i]) for cells in rows) for i in range(len(rows[0]))]

    def line(cells: list[str]) -> str:
        padded = (cell + " " * (size - width(cell)) for cell, size in zip(cells, widths))
        return f"| {' | '.join(padded)} |"

    return [line(rows[0]), f"|{'|'.join('-' * (size + 2) for size in widths)}|",
            *(line(cells) for cells in rows[1:])]


def share(results: Iterable[Optional[bool]]) -> tuple[int, int]:
    """How many are right, of how many."""
    known = [result for result in results if result is not None]
    return sum(known), len(known)


class Report:
    def __init__(self):
        self.targets: dict[str, list[Outcome]] = {}
        self.skipped: dict[str, str] = {}

    def counts(self, outcomes: list[Outcome]) -> list[tuple[int, int]]:
        return [share(outcome.text for outcome in outcomes),
                share(outcome.sentence for outcome in outcomes),
                share(outcome.address for outcome in outcomes),
                share(outcome.rectangle for outcome in outcomes),
                share(outcome.click for outcome in outcomes)]

    def all_outcomes(self) -> list[Outcome]:
        return [outcome for outcomes in self.targets.values() for outcome in outcomes]

    def is_passed(self) -> bool:
        text, sentence, *others = self.counts(self.all_outcomes())
        return (text[0] == text[1] > 0 and sentence[0] >= NEEDED_SENTENCES * sentence[1]
                and all(right == all_ for right, all_ in others))

    def target_lines(self, name: str) -> list[str]:
        outcomes = self.targets[name]
        faults = [f"- {outcome.case}：{fault}" for outcome in outcomes for fault in outcome.faults]
        return [f"## {name}", "", *table([COLUMNS, *(row(outcome) for outcome in outcomes)]), "",
                *faults, *([""] if faults else [])]

    def summary_lines(self) -> list[str]:
        rows = [["程序", "用例", "文字", "句子", "网址", "矩形", "双击", "最长毫秒"]]
        for name, outcomes in [*self.targets.items(), ("合计", self.all_outcomes())]:
            rows.append([name, str(len(outcomes)),
                         *(f"{right}/{all_}" for right, all_ in self.counts(outcomes)),
                         f"{max((outcome.ms for outcome in outcomes), default=0):.0f}"])
        skipped = [f"- 跳过 {name}：{reason}" for name, reason in self.skipped.items()]
        return ["## 汇总", "", *table(rows), "", *skipped, *([""] if skipped else [])]

    def lines(self) -> list[str]:
        return [line for name in self.targets for line in self.target_lines(name)] \
            + self.summary_lines()
