#!/usr/bin/env python3
"""Checks that every text of the window has a translation: what stands in words("...") and toSay("...")
in host/window and app, and the names of host/editor/entityvalues.cpp, against host/window/translations.

With --missing prints them, one a line, instead of failing.
"""
import glob
import os
import re
import sys
import xml.etree.ElementTree as tree

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
TEXT = re.compile(r'\b(?:words|toSay)\(\s*((?:"(?:[^"\\]|\\.)*"\s*)+)\)')
PIECE = re.compile(r'"((?:[^"\\]|\\.)*)"')
VALUE_NAME = re.compile(r'\{"([A-Z][A-Za-z ]*)", ?(?=\n|taken|toUtf8|colorText|entity|formatDouble|\[)')


def texts():
    found = set()
    for path in sorted(glob.glob(os.path.join(ROOT, "host/window/*.cpp")) + glob.glob(os.path.join(ROOT, "host/window/*.h"))):
        with open(path, encoding="utf-8") as source:
            for match in TEXT.finditer(source.read()):
                joined = "".join(PIECE.findall(match[1]))
                found.add(joined.replace("\\n", "\n").replace('\\"', '"'))
    with open(os.path.join(ROOT, "host/editor/entityvalues.cpp"), encoding="utf-8") as source:
        found |= set(VALUE_NAME.findall(source.read()))
    return found


def translated():
    root = tree.parse(os.path.join(ROOT, "host/window/translations/window_zh.ts")).getroot()
    return {m.findtext("source"): m.findtext("translation") or "" for m in root.iter("message")}


def main():
    wanted, known = texts(), translated()
    missing = sorted(text for text in wanted if not known.get(text))
    if "--missing" in sys.argv:
        print("\n".join(repr(text) for text in missing))
        return 0
    for text in missing:
        print(f"no translation of {text!r}")
    for text in sorted(set(known) - wanted):
        print(f"a translation of {text!r}, which nobody says")
    if len(wanted) < 50:
        print("the texts were not found")
    return 1 if missing or set(known) - wanted or len(wanted) < 50 else 0


if __name__ == "__main__":
    sys.exit(main())
