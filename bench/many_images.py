#!/usr/bin/env python3
"""Many images in one drawing. usage: many_images.py BIN FOLDER [COUNT]

Makes COUNT (1,000) georeferenced images of 600 x 600 pixels in a grid, with their pyramids, and prints the time to add
them, to build the panel's list anew in the window (bench_panel, painted; needs Xvfb), and the quickest redraw of a view
that shows four of them beside the same with only these four in the drawing.
"""
import json
import os
import re
import shutil
import subprocess
import sys
import time

ACROSS, SIDE, LEFT, TOP = 40, 60, 40500000, 3512600
REDRAWS = 61


def run(bin_folder, folder, lines, *options):
    begin = time.monotonic()
    done = subprocess.run([os.path.join(bin_folder, "cadhost"), "--headless", "--profile", os.path.join(folder, "profile"),
                           "--size", "1920x1080", *options, "--script", "-"], input="\n".join(lines) + "\n",
                          capture_output=True, text=True, check=True)
    return time.monotonic() - begin, done.stdout


def make_images(bin_folder, folder, count):
    paths = [os.path.join(folder, f"{i}.tif") for i in range(count)]
    os.makedirs(folder, exist_ok=True)
    if not os.path.exists(paths[0]):
        subprocess.run([os.path.join(bin_folder, "tarnortho"), paths[0], "600", "600"], check=True, stdout=subprocess.DEVNULL)
    for i, path in enumerate(paths[1:], 1):
        if not os.path.exists(path):
            shutil.copy(paths[0], path)
        with open(path[:-3] + "tfw", "w", encoding="ascii") as world:
            world.write(f"0.1\n0\n0\n-0.1\n{LEFT + i % ACROSS * SIDE + 0.05}\n{TOP - i // ACROSS * SIDE - 0.05}\n")
    return paths


def adding(paths):
    return ["OpenImageList", "UICLICK 1131 DRop", *paths, ""]


def redraw(bin_folder, folder, paths):
    view = f"ZOOM C {LEFT + SIDE},{TOP - SIDE} {SIDE}"
    _, output = run(bin_folder, folder, [*adding(paths), view, *["REGEN"] * REDRAWS], "--stats")
    stats = [json.loads(line) for line in re.findall(r"^\{.*\}$", output, re.M)][-REDRAWS:]
    return min(s["ms"] for s in stats), stats[-1]["images"]


def panel(bin_folder, folder, paths):
    """The list in the real window."""
    environment = dict(os.environ, TARN_PROFILE=os.path.join(folder, "profile"), QT_QPA_PLATFORM="xcb", QT_SCALE_FACTOR="1")
    subprocess.run(["xvfb-run", "-a", "-s", "-screen 0 1920x1080x24 -nolisten tcp",
                    os.path.join(os.path.dirname(os.path.abspath(bin_folder)), "bench", "bench_panel"), *paths],
                   env=environment, check=True)


def main():
    bin_folder, folder = sys.argv[1:3]
    count = int(sys.argv[3]) if len(sys.argv) > 3 else 1000
    paths = make_images(bin_folder, folder, count)
    four = [paths[i] for i in (0, 1, ACROSS, ACROSS + 1)]
    run(bin_folder, folder, adding(paths))  # builds pyramids

    def least(lines):
        return min(run(bin_folder, folder, lines)[0] for _ in range(3))
    start, added = least(["OpenImageList"]), least(adding(paths))
    print(f"adding {count}: {added - start:.2f} s", flush=True)
    panel(bin_folder, folder, paths)
    pairs = [(redraw(bin_folder, folder, paths), redraw(bin_folder, folder, four)) for _ in range(3)]
    for (many, seen), (few, _) in pairs:
        print(f"redraw of {seen} images: {many:.2f} ms of {count}, {few:.2f} ms of 4, ratio {many / few:.2f}")


main()
