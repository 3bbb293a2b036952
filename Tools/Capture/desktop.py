"""The desktop as a user has it: its screen, mouse, keyboard and selection."""

from __future__ import annotations

import collections
import ctypes
import math
import subprocess
import time
from dataclasses import dataclass
from typing import Callable, Optional, TypeVar

PATIENCE = 20
INTERVAL = 0.03
# Where the pointer rests and nothing pops up beneath it.
AWAY = (2, 2)
DOUBLE_CLICK_SECONDS = 0.6

Value = TypeVar("Value")


class Late(Exception):
    """What was waited for did not come about."""


def wait_for(attempt: Callable[[], Value], what: str, seconds: float = PATIENCE) -> Value:
    """The first result of `attempt` that counts as true."""
    deadline = time.monotonic() + seconds
    while True:
        value = attempt()
        if value:
            return value
        if time.monotonic() > deadline:
            raise Late(f"{what}：等了 {seconds:g} 秒")
        time.sleep(INTERVAL)


@dataclass(frozen=True)
class Box:
    """A rectangle of the screen; right and bottom are the first pixels outside."""

    left: float
    top: float
    right: float
    bottom: float

    @property
    def middle(self) -> tuple[int, int]:
        return round((self.left + self.right - 1) / 2), round((self.top + self.bottom - 1) / 2)

    @property
    def start(self) -> tuple[float, float]:
        """Where a drag over the text in the box begins."""
        return self.left + 1, self.middle[1]

    @property
    def end(self) -> tuple[float, float]:
        return self.right - 1, self.middle[1]

    def offset(self, other: Box) -> float:
        """How far the sides are apart where they are furthest."""
        return max(abs(self.left - other.left), abs(self.top - other.top),
                   abs(self.right - other.right), abs(self.bottom - other.bottom))

    def __str__(self) -> str:
        return f"{self.left:g},{self.top:g}–{self.right:g},{self.bottom:g}"


class Picture:
    """What the screen showed; a pixel is 0xRRGGBB."""

    def __init__(self, width: int, height: int, data: bytes):
        self.width = width
        self.height = height
        self.data = data

    def row(self, y: int) -> memoryview:
        stride = self.width * 4
        return memoryview(self.data)[y * stride:(y + 1) * stride].cast("I")

    def places_of(self, colour: int) -> Optional[Box]:
        return bounds([(x, y) for y in range(self.height) if colour in (row := self.row(y))
                       for x in range(self.width) if row[x] == colour])

    def painted_since(self, before: Picture) -> Optional[Box]:
        """Where the colour that was added most was added: that of a selection."""
        places = collections.defaultdict(list)
        for y in range(self.height):
            row, old = self.row(y), before.row(y)
            if row != old:
                for x in range(self.width):
                    if row[x] != old[x]:
                        places[row[x]].append((x, y))
        return bounds(max(places.values(), key=len)) if places else None


def bounds(places: list[tuple[int, int]]) -> Optional[Box]:
    if not places:
        return None
    columns = [x for x, _ in places]
    return Box(min(columns), places[0][1], max(columns) + 1, places[-1][1] + 1)


class Image(ctypes.Structure):
    """The beginning of XImage."""

    _fields_ = [("width", ctypes.c_int), ("height", ctypes.c_int), ("xoffset", ctypes.c_int),
                ("format", ctypes.c_int), ("data", ctypes.POINTER(ctypes.c_char))]


class Screen:
    """Only a screen of 24 bits has what is asked of it here."""

    def __init__(self):
        self.x11 = ctypes.CDLL("libX11.so.6")
        self.x11.XOpenDisplay.restype = ctypes.c_void_p
        self.x11.XDefaultRootWindow.argtypes = [ctypes.c_void_p]
        self.x11.XDefaultRootWindow.restype = ctypes.c_ulong
        self.x11.XDestroyImage.argtypes = [ctypes.POINTER(Image)]
        self.x11.XGetImage.argtypes = [
            ctypes.c_void_p, ctypes.c_ulong, ctypes.c_int, ctypes.c_int, ctypes.c_uint,
            ctypes.c_uint, ctypes.c_ulong, ctypes.c_int]
        self.x11.XGetImage.restype = ctypes.POINTER(Image)
        self.display = self.x11.XOpenDisplay(None)
        size = output_of("xdotool", "getdisplaygeometry").split()
        self.width, self.height = int(size[0]), int(size[1])

    def picture(self) -> Picture:
        every_plane, by_pixel = 0xFFFFFF, 2
        image = self.x11.XGetImage(
            self.display, self.x11.XDefaultRootWindow(self.display), 0, 0, self.width,
            self.height, every_plane, by_pixel)
        data = ctypes.string_at(image.contents.data, self.width * self.height * 4)
        self.x11.XDestroyImage(image)
        return Picture(self.width, self.height, data)

    def settled(self) -> Picture:
        """The picture when nothing has moved for a moment."""
        last = self.picture()

        def same() -> Optional[Picture]:
            nonlocal last
            time.sleep(0.07)
            previous, last = last, self.picture()
            return last if previous.data == last.data else None

        return wait_for(same, "画面没有静止")

    def painted_since(self, before: Picture) -> Box:
        """Where a selection is painted, once it is."""
        wait_for(lambda: self.picture().data != before.data, "没有看到选区")
        box = self.settled().painted_since(before)
        if box is None:
            raise Late("没有看到选区")
        return box


def output_of(*command: str) -> str:
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                          text=True, check=False).stdout


def user(*actions: object) -> None:
    """What the user does, in the words of xdotool."""
    subprocess.run(["xdotool", *(str(action) for action in actions)], check=True,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def move(place: tuple[float, float]) -> list[object]:
    return ["mousemove", round(place[0]), round(place[1]), "sleep", 0.03]


last_click = (0.0, 0.0, 0.0)


def click(place: tuple[float, float], times: int = 1) -> None:
    """Never so soon after another one that it would count as one more of the same."""
    global last_click
    x, y, moment = last_click
    if math.dist((x, y), place) < 12:
        time.sleep(max(0, moment + DOUBLE_CLICK_SECONDS - time.monotonic()))
    last_click = (*place, time.monotonic())
    user(*move(place), "click", "--repeat", times, "--delay", 30, 1)


def drag(start: tuple[float, float], end: tuple[float, float]) -> None:
    between = (start[0] + end[0]) / 2, (start[1] + end[1]) / 2
    user(*move(start), "mousedown", 1, "sleep", 0.05, *move(between), *move(end), *move(end),
         "mouseup", 1, *move(AWAY))


def select_by_mouse(box: Box, how: str) -> None:
    """Selects the text in the box: how is "double" or "drag"."""
    if how == "double":
        # Not in its middle, so that a later click there is no third one here.
        click(((3 * box.left + box.right) / 4, box.middle[1]), 2)
    else:
        drag(box.start, box.end)


def keys(*names: str) -> None:
    user("key", "--delay", 4, *names)


def times(key: str, number: int) -> list[str]:
    return [key] * number


NOTHING = "〔nothing is selected〕"


def forget_selection() -> None:
    """Takes PRIMARY, so that the next selection is seen to come about. Some programs give up
    theirs then."""
    subprocess.run(["xclip", "-selection", "primary", "-in"], input=NOTHING, text=True, check=True,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def put_on_clipboard(text: str) -> None:
    subprocess.run(["xclip", "-selection", "clipboard", "-in"], input=text, text=True, check=True,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    # It returns before the server knows.
    wait_for(lambda: clipboard() == text, "剪贴板没有放上")


def clipboard() -> str:
    return output_of("xclip", "-selection", "clipboard", "-out")


def selected() -> str:
    """PRIMARY, which programs set when the user selects."""
    return output_of("xclip", "-selection", "primary", "-out")


def active_window() -> tuple[str, str]:
    """Id and class of the window in front."""
    number = output_of("xdotool", "getactivewindow").strip()
    return number, output_of("xprop", "-id", number or "0", "WM_CLASS")


def wait_for_window(name: str) -> str:
    """The id of the window of that class, once it is in front."""
    def found() -> Optional[str]:
        number, class_ = active_window()
        return number if name.lower() in class_.lower() else None

    return wait_for(found, f"没有看到 {name} 的窗口", 60)
