#!/usr/bin/env python3
"""What the files for Windows are: 32 bits each, and modules that export their two entry points and nothing else.

usage: pefiles.py OBJDUMP MODULE... -- OTHER...
"""
import re
import subprocess
import sys

ENTRIES = ["acrxEntryPoint", "acrxGetApiVersion"]


def described(objdump, path):
    return subprocess.run([objdump, "-p", path], capture_output=True, text=True).stdout


def exports(text):
    table = text.partition("[Ordinal/Name Pointer] Table")[2].partition("\n\n")[0]
    return re.findall(r"^\s*\[\s*\d+\] (?:\+base\[\s*\d+\] +[0-9a-f]+ )?(\S+)$", table, re.MULTILINE)


def main(objdump, *paths):
    modules, others = list(paths[:paths.index("--")]), list(paths[paths.index("--") + 1:])
    faults = []
    for path in modules + others:
        text = described(objdump, path)
        if "file format pei-i386" not in text or "(PE32)" not in text:
            faults.append(path + " is no file for 32-bit Windows")
        if path in modules and exports(text) != ENTRIES:
            faults.append("%s exports %s" % (path, ", ".join(exports(text)) or "nothing"))
    print("\n".join(faults) or "%d files for 32-bit Windows, %d of them modules" % (len(paths) - 1, len(modules)))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
