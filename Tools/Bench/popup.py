"""Measures popups in a private desktop: popup.py TRIAL [--lookups N] [TARGET…], or with --soak N in the
place of the targets. Tools/Bench/popup tells what these are.
"""

import argparse
import collections
import math
import os
import shutil
import time

from popup_trial import Trial
from targets import TARGETS, WORD, selected_word, wait_until

MEDIAN_BUDGET_MS = 40
P99_BUDGET_MS = 100
MEMORY_BUDGET_MB = 60

# For a window that is active to have the keyboard, too.
SETTLE_SECONDS = 1
PAUSE_SECONDS = 0.1

WARM_UP = 200
STAGES = ("key", "capture", "lookup", "paint", "total")
HOLDINGS = ("resident", "heap", "descriptors", "threads", "windows", "resources")
# One made-up popup takes a few milliseconds.
SOAK_SECONDS_EACH = 0.2


def quantile(values, share):
    """The least value that this share of all do not exceed."""
    return sorted(values)[max(math.ceil(share * len(values)) - 1, 0)]


def verdict(value, budget):
    return f"{'within' if value <= budget else 'ABOVE'} {budget}"


def close(trial, focus):
    """Returns when the popup is gone, no key is held, and the keyboard is back where it was."""
    trial.ask("close")
    # A key that goes down in the millisecond in which it came up counts as repeated.
    time.sleep(PAUSE_SECONDS)

    def is_as_before():
        state = trial.state()
        return state["focus"] == focus and not state["visible"] and not state["keyRelease"]

    wait_until(is_as_before, "原来的窗口")


def await_word(trial, focus):
    """A word that was selected just now is told by its program in its own time."""
    def is_captured():
        answer = trial.ask("lookup")
        close(trial, focus)
        return answer.get("text") == WORD

    wait_until(is_captured, "选中的单词")


def look_up(trial, focus):
    answer = trial.ask("lookup")
    close(trial, focus)
    return answer


def print_stages(lookups):
    print(f"  {'ms':<8}{'median':>8}{'p90':>8}{'p99':>8}{'worst':>8}")
    for stage in STAGES:
        times = [each[stage] for each in lookups]
        row = "".join(f"{quantile(times, share):8.1f}" for share in (0.5, 0.9, 0.99, 1))
        print(f"  {stage:<8}{row}")
    totals = [each["total"] for each in lookups]
    print(f"  median {verdict(quantile(totals, 0.5), MEDIAN_BUDGET_MS)} ms, "
          f"p99 {verdict(quantile(totals, 0.99), P99_BUDGET_MS)} ms")


def measure(name, program, count):
    if shutil.which(name) is None:
        print(f"{name}: 没有安装")
        return
    with selected_word(name), Trial(program) as trial:
        time.sleep(SETTLE_SECONDS)
        before = trial.ask("holdings")["resident"] / 1024
        focus = trial.state()["focus"]
        first = trial.ask("lookup")
        close(trial, focus)
        await_word(trial, focus)
        lookups = [look_up(trial, focus) for _ in range(count)]
        after = trial.ask("holdings")["resident"] / 1024
    captured = [each for each in lookups if each.get("text") == WORD]
    methods = collections.Counter(each["method"] for each in captured)
    print(f"{name}: {len(captured)} of {count} lookups with the right word, "
          + ", ".join(f"{times} by {method}" for method, times in methods.items()))
    if captured:
        print_stages(captured)
    if "total" in first:
        print(f"  the first one {first['total']:.1f} ms")
    print(f"  resident {before:.1f} MB before, {after:.1f} MB after, "
          f"{verdict(after, MEMORY_BUDGET_MB)} MB", flush=True)


def soak(program, count):
    with Trial(program) as trial:
        print(f"  {'':<22}" + "".join(f"{name:>13}" for name in HOLDINGS))

        def print_holdings(when):
            values = trial.ask("holdings")
            print(f"  {when:<22}" + "".join(f"{values[name]:13}" for name in HOLDINGS), flush=True)

        print_holdings("at the start")
        trial.ask(f"soak {WARM_UP}", WARM_UP * SOAK_SECONDS_EACH)
        print_holdings(f"after {WARM_UP}")
        parts = 4
        for part in range(parts):
            trial.ask(f"soak {count // parts}", count * SOAK_SECONDS_EACH)
            print_holdings(f"after {WARM_UP + (part + 1) * (count // parts)}")


def main():
    parser = argparse.ArgumentParser(add_help=False)
    parser.add_argument("program")
    parser.add_argument("--lookups", type=int, default=200)
    parser.add_argument("--soak", type=int)
    parser.add_argument("targets", nargs="*", choices=[*TARGETS, []])
    chosen = parser.parse_intermixed_args()
    print("load of this machine: " + " ".join(f"{load:.2f}" for load in os.getloadavg()))
    if chosen.soak:
        soak(chosen.program, chosen.soak)
        return
    for name in chosen.targets or ("mousepad", "firefox-esr"):
        measure(name, chosen.program, chosen.lookups)


if __name__ == "__main__":
    main()
