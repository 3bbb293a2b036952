"""Measures the start of tavik in a private desktop: from exec to the icon in the tray, and the memory
it holds when it idles. Medians of ten runs.
"""

import json
import os
import statistics
import subprocess
import sys
import time

RUNS = 10
IDLE_SECONDS = 3
START_BUDGET_MS = 150
MEMORY_BUDGET_MB = 45


def wait_for_event(watcher, name):
    """Returns when the tray has told of such an event."""
    for line in watcher.stdout:
        if json.loads(line)["event"] == name:
            return time.monotonic()
    sys.exit("托盘意外结束")


def memory(pid):
    """Resident and proportional memory, in MB."""
    with open(f"/proc/{pid}/smaps_rollup", encoding="ascii") as file:
        sizes = dict(line.split(":") for line in file if ":" in line.split(" ")[0])
    return [int(sizes[name].split()[0]) / 1024 for name in ("Rss", "Pss")]


def cpu_seconds(pid):
    with open(f"/proc/{pid}/stat", encoding="utf-8") as file:
        fields = file.read().rpartition(")")[2].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def measure(program, watcher, idle_seconds):
    began = time.monotonic()
    tavik = subprocess.Popen([program])
    start = (wait_for_event(watcher, "registered") - began) * 1000
    # The first instant after the start is no idling.
    time.sleep(IDLE_SECONDS)
    before = cpu_seconds(tavik.pid)
    time.sleep(idle_seconds)
    share = (cpu_seconds(tavik.pid) - before) / idle_seconds * 100 if idle_seconds else None
    resident, proportional = memory(tavik.pid)
    tavik.terminate()
    tavik.wait()
    wait_for_event(watcher, "unregistered")
    return start, resident, proportional, share


def report(name, values, unit, budget=None):
    median = statistics.median(values)
    verdict = ""
    if budget is not None:
        verdict = f"  {'within' if median <= budget else 'ABOVE'} {budget}"
    print(f"{name:<28}{median:8.1f} {unit}  ({min(values):.1f} to {max(values):.1f}){verdict}")


def main():
    program, tools = sys.argv[1:]
    watcher = subprocess.Popen(
        [f"{tools}/daemon", "tray-watcher"], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True
    )
    try:
        subprocess.run([f"{tools}/wait-for", "tray-watcher"], check=True)
        # The first one makes the book and warms the disk's cache.
        measure(program, watcher, 0)
        runs = [measure(program, watcher, 0) for _ in range(RUNS)]
        idle_share = measure(program, watcher, 30)[3]
    finally:
        watcher.terminate()
    starts, resident, proportional, _ = zip(*runs)
    report("exec to icon in the tray", starts, "ms", START_BUDGET_MS)
    report("resident when idle", resident, "MB", MEMORY_BUDGET_MB)
    report("proportional when idle", proportional, "MB")
    print(f"{'processor when idle, 30 s':<28}{idle_share:8.2f} %")


main()
