#!/usr/bin/env python3
"""The window on Windows, by a hand on mouse and keys, in a folder with a Chinese name on drive D: images and a drawing,
modules that leave and come back, a file dialog of that system, a drawing dropped from another program, closing with
changes that are not saved.

usage: window.py BIN EMULATOR DRIVE_D KEEP     (inside tools/win32/session, whose screen it uses)
"""
import os
import re
import shutil
import subprocess
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../journeys"))
from desk import Desk, Failure, Picture, check, wait_until
from ground import dialog, expect_quarters, make_drawing, make_image
from imagelist import Panel, colors_of, drag_onto, make_second, seen_view

FOLDER = "窗口 旅程"
IMAGE, SECOND, DRAWING = "影像 一.tif", "second.tif", "图纸.dxf"


class WindowsDesk(Desk):
    """The session's screen and the programs for Windows; files stand on drive D."""

    def __init__(self, bin_folder, emulator, drive, keep):
        super().__init__(bin_folder, "window", keep)
        os.rmdir(self.folder)
        self.emulator, self.drive = emulator, drive
        self.folder = os.path.join(drive, FOLDER)
        shutil.rmtree(self.folder, ignore_errors=True)
        os.makedirs(self.folder)
        self.log_path = self.path("log.txt")

    def __enter__(self):
        self.environment = dict(os.environ, TARN_WINDOWS="windows")
        return self

    def words(self, program):
        return [self.emulator, os.path.join(self.bin, program + ".exe")]

    def called(self, path):
        if path.startswith(self.drive):
            return "D:" + path[len(self.drive):].replace("/", "\\")
        return "Z:" + path

    def start(self, *files):
        """Wine's screen is small until its desktop stands: a window that was faster did not get its size."""
        try:
            super().start(*files)
        except Failure as fault:
            if "the canvas has" not in str(fault):
                raise
            self.program.kill()
            self.program.wait()
            super().start(*files)

    def picture(self):
        return Picture(self.run(["import", "-silent", "-window", "root", "-depth", "8", "ppm:-"], data=True))


def expect_listed(desk, panel, *names):
    wanted = [(True, desk.called(desk.path(name))) for name in names]
    wait_until(f"the list {wanted}", lambda: panel.rows() == wanted)


def said(desk, line, *answers):
    """A command and the lines that it has to print."""
    desk.enter(line, None)
    for answer in answers:
        desk.wait_line(answer)
    desk.wait_prompt("Command:")


def reload_modules(desk):
    """Both leave and come back; what they did goes on."""
    names = ("adapter_autocad.arx", "image.arx")
    desk.enter("SETVAR FILEDIA 0")
    for _ in range(2):
        for name in reversed(names):
            said(desk, "ARX U " + name, name + " unloaded.")
        said(desk, "ARX ?", "No module is loaded; APPLOAD loads one.")
        for name in names:
            said(desk, "ARX L " + desk.called(os.path.join(desk.bin, name)), ".*" + name + " loaded.")
        said(desk, "ARX ?", *names)
    desk.enter("SETVAR FILEDIA 1")


def open_second(desk, second):
    """Through the system's own dialog."""
    desk.skip()
    desk.key("ctrl+i")
    box = dialog(desk, "Add images")
    desk.run(["xdotool", "windowactivate", "--sync", box])
    desk.shot("dialog")
    desk.type(second, "Return")
    desk.wait_line(r".*Command: .*regen.*")
    desk.wait_prompt("Command:")
    # Wine does not give the focus back after a dialog of its own.
    desk.run(["xdotool", "windowactivate", "--sync", desk.window])


def questions(desk):
    return set(desk.run(["xdotool", "search", "--onlyvisible", "--name", "^Tarn Image$"]).split())


def answer(desk, key, before=()):
    """Clicks on the box that asks about a drawing, then presses a key; again when it went astray, for Wine does not always
    hear of the focus that the window manager gives. `before` are boxes that may just be going."""
    desk.away = True
    box = wait_until("question", lambda: questions(desk) - set(before)).pop()
    desk.shot("question")
    for _ in range(10):
        found = desk.run(["xdotool", "getwindowgeometry", "--shell", box])
        shape = {name: int(value) for name, value in re.findall(r"(\w+)=(\d+)", found)}
        if not shape:
            return box
        desk.click_pixel((shape["X"] + 8, shape["Y"] + shape["HEIGHT"] - 8))
        desk.key(key)
        try:
            wait_until("the box to go", lambda: box not in questions(desk), 5)
            return box
        except Failure:
            continue
    raise Failure(f"{key} does not answer the question")


def close(desk):
    """Escape keeps the window and the changes of both drawings; Discard, twice, ends everything."""
    desk.enter("LINE 0,0 1,1", "Next point")
    desk.enter("")
    wait_until("asterisk", lambda: desk.title().endswith(DRAWING + "*"))
    desk.skip()
    desk.key("alt+F4")
    answer(desk, "Escape")
    check(desk.title().endswith("*"), desk.title())
    desk.run(["xdotool", "windowactivate", "--sync", desk.window])
    desk.enter("REGEN")
    desk.key("alt+F4")
    first = answer(desk, "alt+d")
    answer(desk, "alt+d", [first])
    check(desk.wait_exit() == 0, f"exit code {desk.program.returncode}")


def walk(desk):
    image, drawing = make_image(desk, IMAGE), make_drawing(desk, DRAWING)
    make_second(desk, image, SECOND)
    before = open(drawing, "rb").read()
    desk.start(desk.called(image))
    expect_quarters(desk, desk.view())
    desk.shot("chinese")
    desk.enter("SETVAR LOCALE ENU")
    panel = Panel(desk)
    expect_listed(desk, panel, IMAGE)
    reload_modules(desk)
    panel = Panel(desk)
    open_second(desk, SECOND)
    desk.enter("ZOOM E")
    desk.wait_colors(colors_of(seen_view(desk), True, True))
    expect_listed(desk, panel, IMAGE, SECOND)
    desk.shot("panel")
    drag_onto(desk, tuple(round(v) for v in desk.middle), drawing, until="Command: OPEN")
    wait_until("title", lambda: desk.title().endswith(DRAWING))
    desk.shot("dropped")
    close(desk)
    check(open(drawing, "rb").read() == before, "discarded changes were saved")


def main(bin_folder, emulator, drive, keep):
    missing = [tool for tool in ("xdotool", "import", "gdal_translate") if not shutil.which(tool)]
    if missing or not os.environ.get("DISPLAY"):
        print("skipped: there is no " + ", ".join(missing or ["screen"]))
        return 77
    # Keys go astray under Wine on a busy machine; what is broken fails every time.
    for attempt in range(3):
        try:
            with WindowsDesk(bin_folder, emulator, drive, keep) as desk:
                walk(desk)
            break
        except (Failure, subprocess.SubprocessError) as fault:
            print("window:", fault, flush=True)
    else:
        return 1
    print("window: as a user expects it")
    return 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
