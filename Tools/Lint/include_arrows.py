#!/usr/bin/env python3
"""Checks which rooms of Sources/ include which, and where system headers are included.

A room is a directory of sources. Its row names the rooms whose headers it may include; these and
all that their own rows name are allowed, nothing else. "Room(records)" allows the headers that end
in Records.h and those of their JSON form, that end in JSON.h, and of the rooms behind it those
headers only. Every room may include Base and itself.
"""

import re
import sys
import tempfile
from pathlib import Path

ROOMS = """
Text          ->
Learning      ->
Storage       ->
Dictionary    -> Storage Text
Explanation   -> Text Dictionary(records)
Vocabulary    -> Storage Text Learning Dictionary(records) Explanation(records)
Lookup        -> Vocabulary Dictionary Explanation Text

Ports         ->
Settings      -> Explanation Learning Ports
HotKey        -> Settings Ports
Reminders     -> Learning Settings Ports
Capture       -> Text Vocabulary(records) Ports
Environment   -> Lookup Vocabulary Dictionary Settings Capture Reminders Ports
UI/Widgets    ->
UI/Popup      -> Environment UI/Widgets
UI/Review     -> Environment UI/Widgets
UI/Video      -> Environment UI/Widgets
UI/Quick      -> Environment UI/Widgets UI/Popup
UI/Hover      -> Environment UI/Widgets UI/Popup
UI/Settings   -> Environment UI/Widgets HotKey
UI/Onboarding -> Environment UI/Widgets HotKey
UI/Browser    -> Environment UI/Widgets HotKey UI/Review
UI/*          -> Environment UI/Widgets
Shell         -> UI/* Environment HotKey
Platform/Linux/AtSpi -> Ports Platform/Linux/DBus
Platform/Linux/DBus -> Ports Platform/Linux/Keys
Platform/Linux/X11 -> Ports Platform/Linux/Keys
Platform/Linux/Keys ->
Platform/*    -> Ports
Main          -> *

TavikTerminal -> Text
TavikCLI      -> Text Learning Storage Dictionary Explanation Vocabulary Lookup TavikTerminal
TavikDict     -> Text Storage Dictionary TavikTerminal
TavikVideo    -> UI/Video UI/Widgets Lookup
"""

# System headers, the only places below Sources/ that may include them, and what to say elsewhere.
SYSTEM_HEADERS = [
    (r"sqlite3\.h", ["TavikCore/Storage/"], "只有 Storage 可以用 SQLite"),
    (
        r"unicode/.*",
        ["TavikCore/Text/", "TavikCore/Base/Calendar."],
        "只有 Text 和 Base/Calendar 可以用 ICU",
    ),
    (r"curl/.*", ["TavikCore/Explanation/"], "只有 Explanation 可以用 libcurl"),
    (r"uriparser/.*", ["TavikCore/Text/"], "只有 Text 可以用 uriparser"),
    (
        r"Q\w+(/.*)?",
        [
            "Tavik/UI/",
            "Tavik/Shell/",
            "Tavik/Main/",
            "Tavik/Platform/Qt/",
            "Tavik/Platform/Linux/Process/",
            "Tavik/Platform/Linux/X11/",
            "TavikVideo/",
        ],
        "只有窗口、外壳、Main 和几个适配器可以用 Qt",
    ),
    (r"X11/.*|xcb/.*", ["Tavik/Platform/Linux/X11/"], "只有 Platform/Linux/X11 可以用 X11"),
    (
        r"glib.*|gio/.*|dbus/.*",
        [
            "Tavik/Platform/Linux/DBus/",
            "Tavik/Platform/Linux/AtSpi/",
            "Tavik/Platform/Linux/Secrets/",
            "Tavik/Platform/Linux/Speech/",
            "Tavik/Platform/Linux/Xdg/",
        ],
        "只有几个适配器可以用 GLib",
    ),
    (r"libsecret/.*", ["Tavik/Platform/Linux/Secrets/"], "只有 Secrets 可以用 libsecret"),
    (r"(.*/)?libspeechd.*", ["Tavik/Platform/Linux/Speech/"], "只有 Speech 可以用 libspeechd"),
]

# Where the path of an #include may begin, and whose subdirectories are the rooms.
HALLS = ["TavikCore", "Tavik"]

INCLUDE = re.compile(r'\s*#\s*include\s*(?:"([^"]*)"|<([^>]*)>)')


def parse_rooms(text):
    return {
        room.strip(): allowed.split()
        for room, arrow, allowed in (line.partition("->") for line in text.splitlines())
        if arrow
    }


ROWS = {"Base": []} | parse_rooms(ROOMS)


def room_of(path):
    """The room of a file, whose path is relative to Sources/."""
    first, *rest = path.parts[:-1] or ("",)
    if first not in HALLS:
        return first
    if not rest:
        return "Main" if first == "Tavik" else first
    depth = {"UI": 2, "Platform": 3}.get(rest[0], 1)
    return "/".join(rest[:depth])


def row_of(room):
    """The name of the row that holds for a room, or None."""
    if room in ROWS:
        return room
    row = room.partition("/")[0] + "/*"
    return row if "/" in room and row in ROWS else None


def expand(name):
    """The rows that a name in a row stands for, and whether their records only."""
    whole = name.removesuffix("(records)")
    if whole.endswith("*"):
        return [row for row in ROWS if row.startswith(whole[:-1])], False
    return [whole], whole != name


def reach(row):
    """Maps each row that `row` may include to whether its records only."""
    reached = {"Base": False}
    waiting = [(name, False) for name in ROWS[row]]
    while waiting:
        name, behind_records = waiting.pop()
        rows, records = expand(name)
        records = records or behind_records
        for target in rows:
            if reached.get(target, True) and reached.get(target) != records:
                reached[target] = records
                waiting += [(following, records) for following in ROWS[target]]
    return reached


REACH = {row: reach(row) for row in ROWS}


def resolve(sources, include):
    """The file that an #include means, relative to Sources/, or None."""
    for hall in [*HALLS, ""]:
        path = Path(hall, include)
        if ".." not in path.parts and (sources / path).is_file():
            return path
    return None


def arrow_fault(path, target):
    """What is wrong with the file `path` including the file `target`, or None."""
    here, there = room_of(path), room_of(target)
    if here == there:
        return None
    records_only = REACH[row_of(here)].get(row_of(there))
    if records_only is None:
        return f"{here} 不可以引用 {there}"
    if records_only and not target.name.endswith(("Records.h", "JSON.h")):
        return f"{here} 只可以引用 {there} 的 *Records.h 和 *JSON.h"
    return None


def system_header_fault(path, header):
    for pattern, places, message in SYSTEM_HEADERS:
        if re.fullmatch(pattern, header) and not path.as_posix().startswith(tuple(places)):
            return message
    return None


def include_fault(sources, path, quoted, angled):
    if angled is not None:
        if resolve(sources, angled):
            return "自己的头文件要用引号引用"
        return system_header_fault(path, angled)
    target = resolve(sources, quoted)
    if target is None:
        return "找不到这个头文件（路径从 Sources/TavikCore、Sources/Tavik 或 Sources 写起）"
    return arrow_fault(path, target)


def file_faults(sources, path):
    """Yields (line number, message) for each fault of a file."""
    lines = (sources / path).read_text(encoding="utf-8").splitlines()
    if path.suffix == ".h" and lines[:1] != ["#pragma once"]:
        yield 1, "头文件的第一行应是 #pragma once"
    if row_of(room_of(path)) is None:
        yield 1, f"规则里没有 {room_of(path)} 这个房间"
        return
    for number, line in enumerate(lines, start=1):
        if match := INCLUDE.match(line):
            if fault := include_fault(sources, path, *match.groups()):
                yield number, f"{line.strip()}：{fault}"


def faults(sources):
    """The faults of all files, each as "file:line: message"."""
    files = sorted(file for kind in ("*.h", "*.cpp") for file in sources.rglob(kind))
    return [
        f"Sources/{path.as_posix()}:{number}: {message}"
        for path in (file.relative_to(sources) for file in files)
        for number, message in file_faults(sources, path)
    ]


# Files of the self-test and the lines of them that must be reported.
SELF_TEST = {
    "TavikCore/Base/Date.h": ("#pragma once\n", []),
    "TavikCore/Text/Words.h": ('#pragma once\n#include "Base/Date.h"\n#include <string>\n', []),
    "TavikCore/Text/Upwards.cpp": ('#include "Storage/DB.h"\n', [1]),
    "TavikCore/Text/Missing.cpp": ('#include "Words.h"\n#include "Text/../Base/Date.h"\n', [1, 2]),
    "TavikCore/Text/Angled.cpp": ("#include <Text/Words.h>\n#include <unicode/uchar.h>\n", [1]),
    "TavikCore/Storage/DB.h": ("#pragma once\n#include <sqlite3.h>\n", []),
    "TavikCore/Storage/ICU.cpp": ("#include <unicode/uchar.h>\n", [1]),
    "TavikCore/Storage/Toolkit.cpp": ("#include <QString>\n#  include <glib.h>\n", [1, 2]),
    "TavikCore/Base/Calendar.cpp": ("#include <unicode/calendar.h>\n", []),
    "TavikCore/Dictionary/EntryJSON.h": ("#pragma once\n", []),
    "TavikCore/Dictionary/EntryRecords.h": ('#pragma once\n#include "Text/Words.h"\n', []),
    "TavikCore/Dictionary/Reader.h": ('#pragma once\n#include "Storage/DB.h"\n', []),
    "TavikCore/Dictionary/Unguarded.h": ("\n#pragma once\n", [1]),
    "TavikCore/Dictionary/Direct.cpp": ("#include <sqlite3.h>\n", [1]),
    "TavikCore/Explanation/Prompt.h": (
        '#pragma once\n#include "Dictionary/EntryRecords.h"\n#include "Dictionary/Reader.h"\n',
        [3],
    ),
    "TavikCore/Explanation/BehindRecords.cpp": (
        '#include "Storage/DB.h"\n#include "Dictionary/EntryJSON.h"\n',
        [1],
    ),
    "TavikCore/Vocabulary/BookRecords.h": ("#pragma once\n", []),
    "TavikCore/Lookup/Through.cpp": (
        '#include "Storage/DB.h"\n#include "Dictionary/Reader.h"\n#include "Ports/Clock.h"\n',
        [3],
    ),
    "TavikCore/Attic/Old.cpp": ("", [1]),
    "TavikCore/Stray.cpp": ("", [1]),
    "Tavik/Ports/Clock.h": ("#pragma once\n", []),
    "Tavik/Capture/Catch.cpp": (
        '#include "Vocabulary/BookRecords.h"\n#include "Dictionary/EntryRecords.h"\n'
        '#include "Dictionary/Reader.h"\n',
        [3],
    ),
    "Tavik/UI/Popup/Popup.h": ('#pragma once\n#include <QWidget>\n#include "Lookup/L.h"\n', [3]),
    "Tavik/UI/Hover/Hover.cpp": ('#include "UI/Popup/Popup.h"\n', []),
    "Tavik/UI/Video/Video.cpp": ('#include "UI/Popup/Popup.h"\n', [1]),
    "Tavik/UI/Novel/Novel.h": ('#pragma once\n#include "UI/Novel/Novel.h"\n', []),
    "Tavik/UI/Loose.cpp": ("", [1]),
    "Tavik/Shell/Shell.h": ('#pragma once\n#include "UI/Novel/Novel.h"\n', []),
    "Tavik/Platform/Linux/DBus/Bus.h": ('#pragma once\n#include "Ports/Clock.h"\n', []),
    "Tavik/Platform/Linux/X11/Keys.cpp": (
        '#include "Platform/Linux/DBus/Bus.h"\n#include "Text/Words.h"\n',
        [1, 2],
    ),
    "Tavik/Settings/Toolkit.cpp": ("#include <QString>\n#include <gio/gio.h>\n", [1, 2]),
    "Tavik/main.cpp": ('#include "Shell/Shell.h"\n#include "Platform/Linux/DBus/Bus.h"\n', []),
    "TavikTerminal/Terminal.h": ('#pragma once\n#include "Text/Words.h"\n', []),
    "TavikDict/Build.cpp": (
        '#include "TavikTerminal/Terminal.h"\n#include "Vocabulary/BookRecords.h"\n',
        [2],
    ),
}


def self_test():
    """The lines on which the checks are wrong about the files of the self-test."""
    with tempfile.TemporaryDirectory() as directory:
        sources = Path(directory, "Sources")
        for name, (text, _) in SELF_TEST.items():
            path = sources / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text, encoding="utf-8")
        found = {":".join(fault.split(":")[:2]) for fault in faults(sources)}
    expected = {f"Sources/{name}:{line}" for name, (_, lines) in SELF_TEST.items() for line in lines}
    return [f"自检：没有发现 {place} 的错误" for place in sorted(expected - found)] + [
        f"自检：误报了 {place}" for place in sorted(found - expected)
    ]


def main():
    if sys.argv[1:] == ["--self-test"]:
        found = self_test()
    else:
        found = faults(Path(__file__).resolve().parents[2] / "Sources")
    for fault in found:
        print(fault)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
