"""What is selected in the browsers."""

from __future__ import annotations

from dataclasses import dataclass

from runner import Case


@dataclass(frozen=True)
class Spot:
    """Where a text stands in the pages, and how it is selected."""

    element: str
    page: str = "main.html"
    occurrence: int = 1
    how: str = "double"
    """"double" and "click" at the text; "drag" over it; "outside", a drag that begins just before it, as
    a link would be dragged away; "keys", a drag over two letters that keys extend."""
    text: str = ""
    """What to look for, where that is not the text of the case."""
    frame: str = ""
    focus: str = ""
    """The field that has the focus before, with a selection of its own."""
    until: str = ""
    """A drag ends behind this text of the element `until_in`."""
    until_in: str = ""
    zoom: int = 0


CASES = [
    Case("文首", "Serendipity", "Serendipity opens this page.", Spot("#first")),
    Case("标题", "meticulous", "The meticulous heading of a page", Spot("#heading")),
    Case("粗体", "ubiquitous", "They brought some ubiquitous bold text and an ephemeral slant along.",
         Spot("#inline")),
    Case("斜体", "ephemeral", "They brought some ubiquitous bold text and an ephemeral slant along.",
         Spot("#inline")),
    Case("跨行内元素", "some ubiquitous bold text",
         "They brought some ubiquitous bold text and an ephemeral slant along.",
         Spot("#inline", how="drag"), is_word=False),
    Case("链接", "resilient", "Read the resilient manual before you start.", Spot("#link", how="outside"),
         is_word=False),
    Case("拖选到链接里", "the resilient", "Read the resilient manual before you start.",
         Spot("#link", how="drag"), is_word=False),
    Case("同段第二次出现", "gauge", "She read the gauge twice.", Spot("#twice", occurrence=2)),
    Case("同段第三次出现", "gauge", "A third gauge was never found.", Spot("#twice", occurrence=3)),
    Case("拖选短语", "never found", "A third gauge was never found.",
         Spot("#twice", how="drag"), is_word=False),
    Case("键盘选择", "third", "A third gauge was never found.", Spot("#twice", how="keys"),
         is_word=False),
    Case("什么也没选", None, None, Spot("#twice", text="gauge", how="click"), is_word=False),
    Case("跨两段", "saw a lantern.\n\nAnother harbor", None,
         Spot("#upper", how="drag", text="saw a lantern.", until="Another harbor", until_in="#lower"), has_one_box=False,
         is_word=False),
    Case("列表项", "sturdy", "Pack a sturdy umbrella", Spot("ul")),
    Case("列表项里的粗体", "frugal", "Bring the frugal lunch.", Spot("ul")),
    Case("编号列表项", "chisel", "Sharpen the chisel first", Spot("ol")),
    Case("表格单元", "plausible", "A plausible value.", Spot("table")),
    Case("表格首格", "Velocity", "Velocity of light", Spot("table")),
    Case("表情符号之后", "whimsical", "Look 😀 how whimsical this is.", Spot("#emoji")),
    Case("多个表情符号之后", "jubilant", "We 🎉👩‍👩‍👧‍👦🇨🇳😀 cheered, and a jubilant 🎈 crowd sang.",
         Spot("#emojis")),
    Case("中文里的英文", "ambiguous", "昨天我在报纸上读到 ambiguous 这个词，觉得很有意思。",
         Spot("#chinese")),
    Case("中文", "报纸", "昨天我在报纸上读到 ambiguous 这个词，觉得很有意思。",
         Spot("#chinese", how="drag"), is_word=False),
    Case("周围没有文字", "solitude", "solitude", Spot("#alone")),
    Case("输入框", "concise", "A concise remark fits in.", Spot("#field")),
    Case("输入框里用键盘", "fits in", "A concise remark fits in.", Spot("#field", how="keys"),
         is_word=False),
    Case("多行输入框", "tedious", "A second row has a tedious story.", Spot("#area")),
    Case("密码框", None, None, Spot("#password", text="confidential"), is_word=False),
    Case("焦点原在输入框", "oblivious", "An oblivious reader went on.",
         Spot("#beside", focus="#field")),
    Case("框架", "secluded", "Its secluded text has a place of its own.",
         Spot("body", frame="#frame")),
    Case("可编辑区", "tentative", "It is a tentative draft of mine.", Spot("#editable")),
    Case("邮件编辑框", "courteous", "A courteous letter begins here.", Spot("#letter")),
    Case("邮件编辑框里跨两段", "begins here.\n\nIts second", None,
         Spot("#letter", how="drag", text="begins here.", until="Its second", until_in="#rest"),
         has_one_box=False, is_word=False),
    Case("没有标记的列表", "Walton wrote", "B. Walton wrote an erudite essay.",
         Spot("#bare", how="drag"), is_word=False),
    Case("短标题", "art", "art", Spot("#short")),
    Case("链接很多的文章里跨两段", "35 closes.\n\nPart 36 opens.", None,
         Spot("#part35", how="drag", text="35 closes.", until="Part 36 opens.", until_in="#part36"),
         has_one_box=False, is_word=False),
    Case("折行的段落", "conspicuous",
         "A long sentence that is certainly wider than the window of the browser has to go on in a "
         "second line, where a conspicuous word stands near the middle of it, and then it ends.",
         Spot("#wrapped")),
    Case("拖选跨行的短语",
         "wider than the window of the browser has to go on in a second line, where a conspicuous word",
         "A long sentence that is certainly wider than the window of the browser has to go on in a "
         "second line, where a conspicuous word stands near the middle of it, and then it ends.",
         Spot("#wrapped", how="drag"), is_word=False),
    Case("文末", "epilogue", "The page ends with an epilogue", Spot("#last")),
    Case("放大的网页", "gauge", "She read the gauge twice.", Spot("#twice", occurrence=2, zoom=3)),
    Case("三千段的中间", "pedestrian", "The pedestrian number 1500 walks by.",
         Spot("#p1500", page="long.html")),
    Case("100 kB 的一段", "gargantuan", "Now a gargantuan line has come to its middle.",
         Spot("#line", page="line.html")),
]
# What is captured until it is right, before the cases of a page.
READY = Case("", "preliminaries", "This sentence is for the preliminaries.", Spot("#ready"))
