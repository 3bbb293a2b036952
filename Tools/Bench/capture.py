"""Measures captures in a private desktop: capture.py BENCH TOOLS [--captures N] [TARGET…], or with
--soak "BEHAVIOUR [ARGUMENT]" or --clipboard [N] in the place of the targets. Tools/Bench/capture
tells what these are.
"""

import argparse
import json
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile

from targets import TARGETS, WORD, active_title, running, selected_word, wait_until


def measure(name, bench, captures):
    if shutil.which(name) is None:
        print(f"{name}: 没有安装")
        return
    with selected_word(name):
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
