"""Measures the window of the vocabulary book in a private desktop: browser.py PROGRAM [--rounds N]
[--json] [WORDS…]. Tools/Bench/browser tells what these are.
"""

import argparse
import json
import math
import subprocess
import sys

SEARCH_BUDGET_MS = 20
FRAME_MS = 1000 / 60
HOLDINGS = ("resident", "heap", "descriptors", "threads", "windows", "resources")
# Fonts, styles and the book's pages are in memory after so many openings.
WARM_UP = 6
SHARES = {"median": 0.5, "p90": 0.9, "p99": 0.99, "worst": 1}


def quantile(values, share):
    """The least value that this share of all do not exceed."""
    return sorted(values)[max(math.ceil(share * len(values)) - 1, 0)]


def statistics(values):
    return {"count": len(values),
            **{name: round(quantile(values, share), 2) for name, share in SHARES.items()},
            "overFrame": sum(value > FRAME_MS for value in values)}


def above_items(searches, stage, items="items"):
    return [search[stage] - search[items] for search in searches]


def summary(trial):
    keys, ahead, scroll, opening = (trial[name] for name in ("keys", "ahead", "scroll", "open"))
    search = {name: statistics([key[name] for key in keys])
              for name in ("character", "rows", "settled", "items")}
    search["rows - items"] = statistics(above_items(keys, "rows"))
    search["settled - items"] = statistics(above_items(keys, "settled"))
    search["work - items"] = statistics(above_items(keys, "work", "itemsWork"))
    search["burst"] = statistics([burst["settled"] for burst in ahead])
    search["burst - items"] = statistics(above_items(ahead, "settled"))
    return {
        "words": trial["words"],
        "search": search,
        "searchesPerBurst": sorted({burst["searches"] for burst in ahead}),
        "searchesPerKey": sorted({key["searches"] for key in keys}),
        "seenBeforeSearch": all(each["seenFirst"] for each in keys + ahead),
        "scroll": {f"{name}: {stage}": statistics(times)
                   for name, stages in scroll.items() for stage, times in stages.items()},
        "open": {"first": round(opening["times"][0], 2),
                 "again": statistics(opening["times"][1:])},
        "holdings": {"before": opening["before"], "first": opening["after"][0],
                     f"opening {WARM_UP}": opening["after"][WARM_UP - 1],
                     f"opening {len(opening['after'])}": opening["after"][-1]},
    }


def is_right(result):
    return result["seenBeforeSearch"] and result["searchesPerBurst"] == [1]


def print_row(title, values):
    cells = "".join(f"{values[name]:9.1f}" for name in SHARES)
    print(f"  {title:<18}{values['count']:7}{cells}{values['overFrame']:9}")


def print_result(result):
    print(f"{result['words']} words")
    print(f"  {'ms':<18}{'count':>7}" + "".join(f"{name:>9}" for name in SHARES) + "  > 16.7")
    for title, values in result["search"].items():
        print_row(title, values)
    for title, values in result["scroll"].items():
        print_row(title, values)
    print_row("open again", result["open"]["again"])
    print(f"  the first opening {result['open']['first']:.1f} ms")
    above = result["search"]["rows - items"]["p90"]
    verdict = "within" if above <= SEARCH_BUDGET_MS else "ABOVE"
    print(f"  rows - items: p90 {verdict} {SEARCH_BUDGET_MS} ms")
    print(f"  searches of a burst: {', '.join(map(str, result['searchesPerBurst']))}; characters "
          + ("seen before the search" if result["seenBeforeSearch"] else "NOT SEEN before it"))
    print(f"  {'':<18}" + "".join(f"{name:>12}" for name in HOLDINGS))
    for when, held in result["holdings"].items():
        print(f"  {when:<18}" + "".join(f"{held[name]:12}" for name in HOLDINGS))
    sys.stdout.flush()


def main():
    parser = argparse.ArgumentParser(prog="Tools/Bench/browser")
    parser.add_argument("program")
    parser.add_argument("words", nargs="*", type=int)
    parser.add_argument("--rounds", type=int, default=6)
    parser.add_argument("--json", action="store_true")
    chosen = parser.parse_intermixed_args()
    results = []
    for words in chosen.words or [1000, 10000]:
        answer = subprocess.run([chosen.program, "--words", str(words), "--rounds",
                                 str(chosen.rounds)], stdout=subprocess.PIPE, check=False)
        if answer.returncode:
            return answer.returncode
        results.append(summary(json.loads(answer.stdout)))
        if not chosen.json:
            print_result(results[-1])
    if chosen.json:
        print(json.dumps(results, indent=2))
    return 0 if all(map(is_right, results)) else 1


sys.exit(main())
