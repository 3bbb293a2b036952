"""Programs of others in a private desktop, each with a word in it that a double click selects.

Accessibility is on before a program starts, for browsers read only then whether it is.
"""

import contextlib
import pathlib
import re
import subprocess
import sys
import tempfile
import time

READY_SECONDS = 60
WORD = "ephemeral"
PARAGRAPHS = 3000

# The page tells in its title that it is laid out, and where the word is on the screen. Firefox knows
# where its content begins; the frame of Chromium is as wide at the bottom as at the sides.
PAGE = """<!doctype html><html lang="en"><head><meta charset="utf-8"><title>loading</title></head>
<body><p>The quick brown fox has an <span id="word">{word}</span> idea. Next one.</p>
{paragraphs}
<script>
addEventListener("load", () => setTimeout(() => {{
  const box = document.getElementById("word").getBoundingClientRect();
  const left = window.mozInnerScreenX ?? screenX + (outerWidth - innerWidth) / 2;
  const top = window.mozInnerScreenY ?? screenY + outerHeight - innerHeight;
  document.title = `word at ${{Math.round(left + box.x + box.width / 2)}},` +
    `${{Math.round(top + box.y + box.height / 2)}}.`;
}}, 1000));
</script></body></html>
"""

FIREFOX_SETTINGS = {
    "browser.aboutwelcome.enabled": "false",
    "browser.shell.checkDefaultBrowser": "false",
    "browser.startup.homepage_override.mstone": '"ignore"',
    "datareporting.policy.dataSubmissionEnabled": "false",
    "startup.homepage_welcome_url": '""',
    "toolkit.telemetry.reportingpolicy.firstRun": "false",
}


def output_of(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True).stdout


def wait_until(find, what):
    """The first result of find() that is true."""
    deadline = time.monotonic() + READY_SECONDS
    while time.monotonic() < deadline:
        if found := find():
            return found
        time.sleep(0.1)
    sys.exit(f"{what}没有在 {READY_SECONDS} 秒内就绪")


def active_title():
    return output_of("xdotool", "getactivewindow", "getwindowname")


def write_text(folder):
    """Of nothing but the word, so that it lies under every place at the beginning of a line."""
    path = folder / "text.txt"
    path.write_text((f"{WORD} " * 8 + "\n") * 40)
    return path


def write_page(folder):
    path = folder / "page.html"
    paragraphs = "\n".join(
        f"<p>Paragraph {number} has a <a href='#{number}'>link</a> and two sentences. "
        "This one is <b>rather</b> longer than the other, as sentences are.</p>"
        for number in range(PARAGRAPHS))
    path.write_text(PAGE.format(word=WORD, paragraphs=paragraphs))
    return path


def place_in_editor():
    def find():
        if "text.txt" not in active_title():
            return None
        shell = output_of("xdotool", "getactivewindow", "getwindowgeometry", "--shell")
        return {name: int(value) for name, value in re.findall(r"^(\w+)=(\d+)$", shell, re.M)}

    window = wait_until(find, "mousepad ")
    return window["X"] + 40, window["Y"] + window["HEIGHT"] * 2 // 3


def place_in_page():
    match = wait_until(lambda: re.search(r"word at (\d+),(\d+)\.", active_title()), "网页")
    return match[1], match[2]


def mousepad(folder):
    return ["mousepad", write_text(folder)], place_in_editor


def chromium(folder):
    return ["chromium", "--no-sandbox", "--no-first-run", "--disable-gpu",
            "--force-renderer-accessibility", "--password-store=basic",
            f"--user-data-dir={folder / 'chromium'}", write_page(folder).as_uri()], place_in_page


def firefox(folder):
    profile = folder / "firefox"
    profile.mkdir()
    (profile / "user.js").write_text("".join(
        f'user_pref("{name}", {value});\n' for name, value in FIREFOX_SETTINGS.items()))
    return ["firefox-esr", "--no-remote", "--profile", profile,
            write_page(folder).as_uri()], place_in_page


TARGETS = {"mousepad": mousepad, "chromium": chromium, "firefox-esr": firefox}


@contextlib.contextmanager
def running(command, **options):
    program = subprocess.Popen(command, start_new_session=True, stderr=subprocess.DEVNULL, **options)
    try:
        yield program
    finally:
        program.terminate()
        try:
            program.wait(5)
        except subprocess.TimeoutExpired:
            program.kill()
            program.wait()


def double_click(x, y):
    subprocess.run(["xdotool", "mousemove", str(x), str(y), "sleep", "0.2",
                    "click", "--repeat", "2", "--delay", "80", "1"], check=True)


@contextlib.contextmanager
def selected_word(name):
    """The program runs, its window has the keyboard, and the word is selected in it by a double click:
    in which folder its file lies, and where the click was.
    """
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as folder:
        command, find_place = TARGETS[name](pathlib.Path(folder))
        with running(command, stdout=subprocess.DEVNULL):
            place = find_place()
            double_click(*place)
            yield pathlib.Path(folder), place
