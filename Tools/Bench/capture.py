"""Measures captures in a private desktop: capture.py BENCH TOOLS [--captures N] [TARGET…], or with
--soak "BEHAVIOUR [ARGUMENT]" in the place of the targets. Tools/Bench/capture tells what these are.

Accessibility is on before a program starts, for browsers read only then whether it is.
"""

import argparse
import contextlib
import os
import pathlib
import re
import shlex
import shutil
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


def measure(name, bench, captures):
    if shutil.which(name) is None:
        print(f"{name}: 没有安装")
        return
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as folder:
        command, find_place = TARGETS[name](pathlib.Path(folder))
        with running(command, stdout=subprocess.DEVNULL):
            x, y = find_place()
            subprocess.run(["xdotool", "mousemove", str(x), str(y), "sleep", "0.2",
                            "click", "--repeat", "2", "--delay", "80", "1"], check=True)
            print(f"{name}:", flush=True)
            subprocess.run([bench, "--captures", str(captures), "--await", WORD])


def soak(behaviour, bench, tools, captures):
    command = ["/usr/bin/python3", os.path.join(tools, "hostile_application.py"), *behaviour]
    with running(command, stdout=subprocess.PIPE, text=True) as program:
        if not program.stdout.readline().startswith("ready"):
            sys.exit("这个程序没有启动成功")
        subprocess.run([bench, "--captures", str(captures), "--process", str(program.pid), "--soak"])


def main():
    parser = argparse.ArgumentParser(add_help=False)
    parser.add_argument("bench")
    parser.add_argument("tools")
    parser.add_argument("--captures", type=int)
    parser.add_argument("--soak", type=shlex.split)
    parser.add_argument("targets", nargs="*", choices=[*TARGETS, []])
    chosen = parser.parse_intermixed_args()
    if chosen.soak:
        soak(chosen.soak, chosen.bench, chosen.tools, chosen.captures or 1000)
        return
    for name in chosen.targets or TARGETS:
        measure(name, chosen.bench, chosen.captures or 100)


main()
