"""Browsers. The pages tell by themselves where their words are, and obey the harness."""

from __future__ import annotations

import json
import math
import os
from typing import Callable, Optional

import desktop
from capture import Answer
from desktop import Late, Screen, wait_for
from page_server import PageServer
from process import Process
from runner import ALLOWED_OFFSET, Case, Target, without_sentences
from web_cases import CASES, READY, Spot

READY_SECONDS = 10


class Browser(Target):
    window = ""

    def __init__(self, folder: str, screen: Screen, programs: str):
        super().__init__(folder, screen, programs)
        self.server = PageServer()
        self.page = ""
        self.zoom = 0
        self.origin = (0.0, 0.0)
        self.read: Callable[[], Answer] = lambda: Answer({})

    def command(self, address: str) -> list[str]:
        raise NotImplementedError

    def start(self) -> None:
        self.page = "main.html"
        self.process = Process(self.command(self.server.new_address(self.page)), self.folder)
        desktop.wait_for_window(self.window)
        self.server.wait_for_page()
        self.find_origin()

    def end(self) -> None:
        super().end()
        self.server.http.shutdown()

    def cases(self) -> list[Case]:
        return CASES

    def address(self, case: Case) -> Optional[str]:
        spot: Spot = case.place
        return self.server.address("frame.html" if spot.frame else spot.page)

    def find_origin(self) -> None:
        """Where on the screen the page begins, by what it says of the pointer; two times the same."""
        aim = [self.screen.width // 2, self.screen.height // 2]
        last: list[tuple[float, float]] = [(0, 0)]

        def is_found() -> bool:
            aim[0] += 1
            desktop.user(*desktop.move((aim[0], aim[1])))
            pointer = self.server.ask("pointer")
            if pointer is None:
                return False
            last.append((aim[0] - pointer["x"] * pointer["scale"],
                         aim[1] - pointer["y"] * pointer["scale"]))
            return math.dist(*last[-2:]) < 2

        wait_for(is_found, "网页没有看到鼠标")
        self.origin = last[-1]

    def warm_up(self, capture: Callable[[], Answer]) -> None:
        self.read = capture
        self.get_ready()

    def get_ready(self) -> None:
        """Bounds are wrong for a while after a page was loaded or scaled."""
        desktop.forget_selection()
        self.show(READY)
        before = self.screen.settled()
        self.select(READY)
        painted = self.screen.painted_since(before)

        def is_ready() -> bool:
            box = self.read().box
            return box is not None and box.offset(painted) <= ALLOWED_OFFSET

        try:
            wait_for(is_ready, "位置不对", READY_SECONDS)
        except Late:
            pass  # The cases will tell what is wrong.

    def prepare(self, case: Case) -> None:
        spot: Spot = case.place
        if spot.page != self.page:
            self.page = spot.page
            self.server.go(spot.page)
            self.get_ready()
        if spot.zoom != self.zoom:
            self.set_zoom(spot.zoom)
            self.get_ready()
        self.show(case)

    def set_zoom(self, zoom: int) -> None:
        before = self.server.ask("scale")
        desktop.keys("ctrl+0", *desktop.times("ctrl+plus", zoom))
        wait_for(lambda: self.server.ask("scale") != before, "网页没有放大")
        self.zoom = zoom
        self.screen.settled()
        self.find_origin()

    def ask_about(self, name: str, spot: Spot, text: str) -> object:
        return self.server.ask(name, element=spot.element, text=text, occurrence=spot.occurrence,
                               frame=spot.frame)

    def locate(self, spot: Spot, text: str) -> dict[str, tuple[float, float]]:
        """Where to press, to release and to click, on the screen."""
        answer = self.ask_about("locate", spot, text)
        return {name: (self.origin[0] + x, self.origin[1] + y) for name, (x, y) in answer.items()}

    def show(self, case: Case) -> None:
        self.server.ask("clear")
        self.ask_about("show", case.place, case.place.text or case.text)

    def select(self, case: Case) -> None:
        spot: Spot = case.place
        if spot.focus:
            self.server.ask("focus", element=spot.focus)
        text = spot.text or case.text
        places = self.locate(spot, text)
        if spot.how in ("click", "double"):
            desktop.click(places["inside"], 2 if spot.how == "double" else 1)
        elif spot.how == "keys":
            # In a text that is only read, keys extend a selection but make none.
            desktop.drag(places["start"], places["second"])
            desktop.keys(*desktop.times("shift+Right", len(text) - 2))
        else:
            end = self.locate(Spot(spot.until_in), spot.until)["end"] if spot.until else places["end"]
            desktop.drag(places["outside" if spot.how == "outside" else "start"], end)

    def has_selected(self, case: Case) -> bool:
        if case.place.element == "#password":
            return self.server.ask("selectedInField", element="#password") == case.place.text
        return super().has_selected(case)


FIREFOX_SETTINGS = {
    "browser.aboutwelcome.enabled": False,
    "browser.shell.checkDefaultBrowser": False,
    "browser.startup.homepage_override.mstone": "ignore",
    "browser.translations.enable": False,
    "datareporting.policy.dataSubmissionEnabled": False,
    "app.update.auto": False,
    "toolkit.telemetry.enabled": False,
    "network.captive-portal-service.enabled": False,
    "network.connectivity-service.enabled": False,
    # What fades away would be a change of the picture.
    "widget.gtk.overlay-scrollbars.enabled": False,
    "toolkit.legacyUserProfileCustomizations.stylesheets": True,
}
FIREFOX_STYLE = "#statuspanel { display: none; }\n"


class Firefox(Browser):
    name = "Firefox"
    program = "firefox-esr"
    advice = "请安装软件包 firefox-esr"
    window = "firefox"

    def command(self, address: str) -> list[str]:
        profile = os.path.join(self.folder, "firefox")
        os.makedirs(os.path.join(profile, "chrome"))
        with open(os.path.join(profile, "chrome", "userChrome.css"), "w", encoding="utf-8") as file:
            file.write(FIREFOX_STYLE)
        with open(os.path.join(profile, "user.js"), "w", encoding="utf-8") as file:
            for name, value in FIREFOX_SETTINGS.items():
                file.write(f"user_pref({json.dumps(name)}, {json.dumps(value)});\n")
        return ["firefox-esr", "--no-remote", "--profile", profile, "--width", "1200",
                "--height", "720", address]


# Of these cases, where there is only a text to be read.
PLAIN_NAMES = {"文首", "跨行内元素", "链接", "什么也没选", "跨两段", "多个表情符号之后", "中文", "输入框",
               "多行输入框", "密码框", "框架", "可编辑区"}


class Chromium(Browser):
    name = "Chromium"
    program = "chromium"
    advice = "请安装软件包 chromium"
    window = "chromium"
    options = ["--force-renderer-accessibility"]

    def tells_place(self, case: Case) -> bool:
        return not case.place.frame

    def command(self, address: str) -> list[str]:
        # The test type hides the bar that warns of the missing sandbox.
        return ["chromium", "--no-sandbox", "--test-type", "--no-first-run", "--disable-gpu",
                *self.options, "--password-store=basic", "--disable-sync",
                "--disable-background-networking", "--disable-component-update",
                f"--user-data-dir={os.path.join(self.folder, 'chromium')}",
                "--window-size=1200,720", "--window-position=20,20", address]


class PlainChromium(Chromium):
    """As it is mostly started: it describes nothing of its pages."""

    name = "不开辅助功能的 Chromium"
    options: list[str] = []
    is_described = False

    def cases(self) -> list[Case]:
        return without_sentences([case for case in CASES if case.name in PLAIN_NAMES])

    def address(self, case: Case) -> Optional[str]:
        return None

    def get_ready(self) -> None:
        """There are no bounds to wait for."""
