#!/usr/bin/env python3
"""Checks what every source file owes: format, length, a guarded header.

Prints one line a fault and exits 1 when there is any.
"""
import os
import shutil
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
FOLDERS = ("_image", "app", "base", "bench", "commoncode", "components", "fuzz", "host", "imageclient",
           "inc", "kelpie_core", "tests", "tools")
MOST_LINES = 600


def sources():
    for top in FOLDERS:
        for folder, _, files in os.walk(os.path.join(ROOT, top)):
            for name in sorted(files):
                if name.endswith((".h", ".cpp")):
                    yield os.path.relpath(os.path.join(folder, name), ROOT)


def main():
    faults, paths = [], list(sources())
    for path in paths:
        with open(os.path.join(ROOT, path), encoding="utf-8") as text:
            lines = text.read().split("\n")
        if len(lines) > MOST_LINES + 1:
            faults.append(f"{path}: {len(lines) - 1} lines; split it by subject (at most {MOST_LINES})")
        if path.endswith(".h") and "#pragma once" not in lines:
            faults.append(f"{path}: header without #pragma once")
    formatter = shutil.which("clang-format")
    if not formatter:
        sys.exit("clang-format is missing")
    done = subprocess.run([formatter, "--dry-run", "--Werror", *paths], cwd=ROOT, capture_output=True,
                          text=True, check=False)
    faults += [line for line in done.stderr.splitlines() if "error:" in line]
    print("\n".join(faults) if faults else f"{len(paths)} files in order")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
