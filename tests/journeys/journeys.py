#!/usr/bin/env python3
"""Journeys of a user through the window. usage: journeys.py NAME --bin FOLDER --keep FOLDER"""
import argparse
import os
import shutil
import sys
import time

from converting import convert
from desk import Desk, Failure
from drawing import add_image, draw, edit
from handling import bad_input, keyboard
from imagelist import image_list
from keeping import keep
from rectifying import rectify
from serving import image_server
from sheets import sheets
from starting import first_start

JOURNEYS = {one.__name__: one for one in (first_start, add_image, image_list, image_server, draw, edit, sheets, rectify,
                                          convert, keep, keyboard, bad_input)}


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("name", choices=sorted(JOURNEYS))
    parser.add_argument("--bin", required=True)
    parser.add_argument("--keep", required=True)
    options = parser.parse_args()
    missing = [tool for tool in ("Xvfb", "openbox", "xdotool", "import", "gdal_translate", "pdftoppm") if not shutil.which(tool)]
    if options.name == "image_server" and not os.path.exists("/usr/sbin/nginx"):
        missing.append("nginx")
    if missing:
        print("skipped: there is no " + ", ".join(missing))
        return 77
    begun = time.monotonic()
    try:
        with Desk(options.bin, options.name, options.keep) as desk:
            JOURNEYS[options.name](desk)
    except Failure as fault:
        print(f"{options.name}: {fault}")
        return 1
    print(f"{options.name}: {time.monotonic() - begun:.1f} s")
    return 0


if __name__ == "__main__":
    sys.exit(main())
