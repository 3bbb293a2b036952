"""Measures captures in a private desktop: capture.py BENCH TOOLS [--captures N] [TARGET…], or with
--soak "BEHAVIOUR [ARGUMENT]" or --clipboard [N] in the place of the targets. Tools/Bench/capture
tells what these are.

Accessibility is on before a program starts, for browsers read only then whether it is.
"""

import argparse
import contextlib
import json
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


# Its toolkit knows nothing of accessibility, and what is selected goes nowhere without a copy.
TEXT_WINDOW = f"""wm title . {WORD}
text .text -exportselection 0
.text insert end "The quick brown fox has an {WORD} idea."
.text tag add sel 1.27 1.{27 + len(WORD)}
pack .text
focus -force .text
"""


def holdings(program):
    folder = pathlib.Path("/proc", str(program.pid))
    memory = re.search(r"VmRSS:\s*(.*)", (folder / "status").read_text())[1]
    return (f"{len(list((folder / 'fd').iterdir()))} descriptors, "
            f"{len(list((folder / 'task').iterdir()))} threads, {memory} resident")


def ask(program):
    program.stdin.write("\n")
    program.stdin.flush()
    return program.stdout.readline().strip()


def print_times(what, times):
    times.sort()
    print(f"{what}: median {times[len(times) // 2]:7.1f}   p90 {times[len(times) * 9 // 10]:7.1f}   "
          f"worst {times[-1]:7.1f} ms")


def soak_clipboard(programs, captures):
    pipes = {"stdin": subprocess.PIPE, "stdout": subprocess.PIPE, "text": True}
    # What another program has put on the clipboard is saved; what Tavik has put back is known.
    times = {"saved": [], "known": []}

    def capture(tavik, kind):
        answer = json.loads(ask(tavik))
        if (answer.get("text"), answer.get("method")) != (WORD, "clipboard"):
            sys.exit(f"得到 {answer}")
        times[kind].append(answer["ms"])

    with tempfile.TemporaryDirectory() as folder:
        script = pathlib.Path(folder, "window.tcl")
        script.write_text(TEXT_WINDOW)
        with running(["wish", script]), running([programs / "tavik-capture"], **pipes) as tavik:
            wait_until(lambda: WORD in active_title(), "窗口")
            wait_until(lambda: json.loads(ask(tavik)).get("text") == WORD, "选中的文字")
            for turn in range(-(-captures // 4)):
                with running([programs / "tavik-bench-clipboard"], **pipes) as holder:
                    digest = holder.stdout.readline().strip()
                    for kind in ("saved", "known", "known", "known"):
                        capture(tavik, kind)
                        # It is put back a moment after the answer.
                        wait_until(lambda: ask(holder) == digest, "原来的剪贴板")
                if turn == 0:
                    # It keeps from now on what it has saved.
                    print("before:", holdings(tavik), flush=True)
            print("after: ", holdings(tavik))
    for kind, milliseconds in times.items():
        print_times(kind, milliseconds)
    print(f"{sum(map(len, times.values()))} times the clipboard was unchanged")


def main():
    parser = argparse.ArgumentParser(add_help=False)
    parser.add_argument("bench")
    parser.add_argument("tools")
    parser.add_argument("--captures", type=int)
    parser.add_argument("--soak", type=shlex.split)
    parser.add_argument("--clipboard", type=int, nargs="?", const=200)
    parser.add_argument("targets", nargs="*", choices=[*TARGETS, []])
    chosen = parser.parse_intermixed_args()
    if chosen.soak:
        soak(chosen.soak, chosen.bench, chosen.tools, chosen.captures or 1000)
        return
    if chosen.clipboard:
        soak_clipboard(pathlib.Path(chosen.bench).resolve().parent, chosen.clipboard)
        return
    for name in chosen.targets or TARGETS:
        measure(name, chosen.bench, chosen.captures or 100)


main()
