#!/usr/bin/env python3
"""Makes the pictures under docs/images anew, from the running program on a screen of its own.

usage: tools/pictures.py [--bin FOLDER] [NAME...]   (build/release/bin; all of them)
"""
import argparse
import os
import shutil
import subprocess
import sys
import tempfile
import time

TOP = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
sys.path.insert(0, os.path.join(TOP, "tests", "journeys"))
import desk as desks  # noqa: E402
import ground  # noqa: E402
import rectifying  # noqa: E402
from imagelist import Panel, seen_view  # noqa: E402

CANVAS = (1060, 620)
WEST, NORTH, UNIT, SIDE = 40500000.0, 3512600.0, 0.1, 4000  # of the made-up photograph


class Photographer(desks.Desk):
    def __init__(self, bin_folder, name, keep):
        super().__init__(bin_folder, name, keep)
        os.rmdir(self.folder)
        # What is seen in titles and lists.
        self.folder = os.path.join(tempfile.gettempdir(), "survey")
        os.mkdir(self.folder, 0o700)
        self.log_path = self.path("log.txt")
        self.options = []

    def take(self, name, window=None):
        """The program's window with what lies over it, or a dialog, when nothing changes any more."""
        window = window or self.window
        path = os.path.join(TOP, "docs", "images", name + ".png")

        def still():
            before = self.picture().bytes
            time.sleep(0.5)
            return before == self.picture().bytes
        desks.wait_until("still picture", still)
        self.run(["import", "-screen", "-window", window, "-strip", "-define", "png:compression-level=9", "PNG24:" + path])
        print("docs/images/" + name + ".png", flush=True)

    def photo(self, name):
        path = self.path(name)
        if not os.path.exists(path):
            subprocess.run([os.path.join(self.bin, "tarnortho"), path, str(SIDE), str(SIDE), str(UNIT)], check=True)
        return path

    def settle(self):
        """The command line has nothing but this."""
        for _ in range(4):
            self.enter("REGEN")


def window(desk):
    """A parcel drawn over the photograph, with its properties and the layers."""
    desk.start(desk.photo("orthophoto.tif"))
    desk.enter("ZOOM 0.9x")
    desk.enter("LAYER M Parcels", "Option")
    desk.enter("")
    places = [tuple(m + CANVAS[i] * part[i] for i, m in enumerate(desk.middle))
              for part in ((-0.2, -0.06), (-0.02, -0.16), (0.1, 0.03), (-0.06, 0.2))]
    desk.enter("PLINE", "First point:")
    for place in places:
        desk.click_pixel(place)
        desk.wait_prompt("Next point")
    desk.enter("C")
    edge = desk.view().ground(tuple((a + b) / 2 for a, b in zip(*places[:2])))
    desk.key("ctrl+1", "ctrl+2")
    place = seen_view(desk, (3, 5)).pixel(edge)
    desk.settle()
    desk.click_pixel(place)
    grip = tuple(round(v) for v in place)
    desks.wait_until("choice", lambda: desk.picture().at(*grip)[2] > 200)
    desk.take("window")


def panel(desk, name="panel", language="ENU"):
    """The list of images with its menu."""
    first = desk.photo("orthophoto.tif")
    second = desk.path("relief.tif")
    subprocess.run(["gdal_translate", "-q", "-b", "2", "-a_ullr", str(WEST + SIDE * UNIT), str(NORTH), str(WEST + 2 * SIDE * UNIT),
                    str(NORTH - SIDE * UNIT), first, second], check=True)
    desk.start(first, second)
    desk.enter("SETVAR LOCALE " + language)
    list_of_images = Panel(desk)
    label = list_of_images.item(first, "label")
    desk.enter("ZOOM E")
    desk.settle()
    desk.click_pixel(label, button=3)
    desks.wait_until("menu", lambda: desk.picture().at(label[0] + 40, label[1] + 12) != (30, 33, 39))
    desk.key("Down", "Down", "Down", "Down", "Right")
    desk.take(name)
    desk.key("Escape", "Escape", "Escape")


def chinese(desk):
    panel(desk, "chinese", "CHS")


def rectify(desk):
    """Control points with their residuals."""
    image = desk.photo("orthophoto.tif")
    desk.start(image)
    desk.enter("ZOOM 0.8x")
    view = desk.view()
    desk.enter("rectifyImage")
    rectifying.wait_dialog(desk)
    rectifying.tab(desk, 4)
    shifts = ((3.02, -1.98), (2.97, -2.03), (3.04, -2.01), (2.99, -1.96), (3.01, -2.02))
    for part, shift in zip(((0.15, 0.2), (0.8, 0.15), (0.85, 0.8), (0.2, 0.85), (0.5, 0.45)), shifts):
        source = (WEST + SIDE * UNIT * part[0], NORTH - SIDE * UNIT * part[1])
        rectifying.add_pair(desk, view.pixel(source), tuple(round(a + b, 3) for a, b in zip(source, shift)))
    rectifying.tab(desk, 4)
    desk.key("End", "Up")  # affine
    rectifying.tab(desk, 1)
    desk.key("space")
    desk.take("rectify", rectifying.wait_dialog(desk))
    desk.key("Escape")


def convert(desk):
    """The form of a conversion."""
    desk.start()
    desk.enter("ImageConversion", None)
    form = ground.dialog(desk, "Image conversion")
    desk.run(["xdotool", "windowactivate", "--sync", form])
    desk.key("Tab", "space")
    names = [desk.photo("orthophoto.tif"), desk.photo("valley.tif")]
    ground.answer_dialog(desk, "Add files", " ".join(f'"{name}"' for name in names), None)
    desk.run(["xdotool", "windowactivate", "--sync", form])
    desk.key("Tab", "Tab", "Tab", "Down")
    desk.key(*["Tab"] * 8)
    desk.type("/data/converted")
    desk.take("convert", form)
    desk.key("Escape")


def plot(desk):
    """The dialog of a plot with its preview."""
    desk.start(desk.photo("orthophoto.tif"))
    desk.skip()
    desk.key("ctrl+p")
    box = ground.dialog(desk, "Plot")
    desk.run(["xdotool", "windowactivate", "--sync", box])
    desk.key("alt+e", "ctrl+a")
    desk.type("/data/parcels.pdf")
    desk.take("plot", box)
    desk.key("Escape")


SCENES = {one.__name__: one for one in (window, panel, chinese, rectify, convert, plot)}


def main():
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument("names", nargs="*", choices=[[], *SCENES])
    parser.add_argument("--bin", default=os.path.join(TOP, "build", "release", "bin"))
    options = parser.parse_args()
    desks.CANVAS = CANVAS
    for name in options.names or SCENES:
        keep = tempfile.mkdtemp()
        try:
            with Photographer(options.bin, name, keep) as desk:
                SCENES[name](desk)
        finally:
            shutil.rmtree(keep)


if __name__ == "__main__":
    main()
