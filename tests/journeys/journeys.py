#!/usr/bin/env python3
"""Journeys of a user through the window. usage: journeys.py NAME --bin FOLDER --keep FOLDER"""
import argparse
import os
import re
import shutil
import subprocess
import sys
import time

import rectifying
import serving
from desk import CANVAS, Desk, Failure, Picture, View, check, wait_until
from ground import (BACKGROUND, COLORS, EAST, MIDDLE, NORTH, QUARTERS, SOUTH, UNIT, WEST, WIDE, add_image_by_command,
                    answer_dialog, content, dialog, expect_quarters, make_drawing, make_image, near, save)
from imagelist import image_list, image_list_many

def add_image(desk):
    """Open a drawing, add an image by command, zoom and pan by wheel and middle button."""
    image, drawing = make_image(desk), make_drawing(desk)
    desk.start()
    desk.skip()
    desk.key("ctrl+o")
    answer_dialog(desk, "Open drawing", drawing)
    check("base.dxf" in desk.title() and "*" not in desk.title(), desk.title())
    desk.enter("APPLOAD", None)
    answer_dialog(desk, "Load a module", os.path.join(desk.bin, "watchprobe.arx"))
    add_image_by_command(desk, image)
    check(desk.title().endswith("base.dxf*"), "unsaved changes are not shown: " + desk.title())
    desk.skip()
    desk.key("alt+v", "e")
    desk.wait_prompt("Command:")
    view = desk.view()
    expect_quarters(desk, view)
    desk.shot("extents")

    # The wheel: watchers hear of it before the view changes, and one redraw follows.
    hand = tuple(round(v) for v in view.pixel(QUARTERS[0]))
    at = view.ground(hand)
    desk.skip()
    desk.wheel(hand, 3)
    for notch in range(3):
        size = float(desk.wait_line(r"message 020a size (\S+) centre \S+")[1])
        check(abs(size / (view.unit * CANVAS[1]) - 0.8 ** notch) < 1e-9, f"size {size} at notch {notch}")
    desk.wait_redraw()
    zoomed = desk.view()
    check(abs(zoomed.unit / view.unit - 0.8 ** 3) < 1e-9, "three notches zoom by 1.25 each")
    check(near(zoomed.pixel(at), view.pixel(at), 0.1),
          f"the ground under the cursor stays: {view.pixel(at)} {zoomed.pixel(at)}")
    desk.wait_colors([(zoomed.pixel(at), COLORS[0])])

    # The middle button: down, up, one redraw, and the ground follows the hand.
    goal = (hand[0] + 210, hand[1] + 90)
    begin = desk.skip()
    desk.drag(hand, goal, button=2)
    down = desk.wait_line(r"message 0207 size \S+ centre (\S+),(\S+)")
    check(near((float(down[1]), float(down[2])), zoomed.center, 1e-6), "the press comes before the view moves")
    desk.wait_line(r"message 0208 size \S+ centre \S+")
    desk.wait_prompt("Command:")
    panned = desk.view()
    check(desk.redraws(begin) == 1, f"{desk.redraws(begin)} redraws after a pan")
    check(near(panned.ground(goal), at, 0.1 * panned.unit), "the ground follows the hand")
    desk.wait_colors([(panned.pixel(at), COLORS[0])])
    desk.shot("panned")


def line_ends(path):
    return [((e.dxf.start.x, e.dxf.start.y), (e.dxf.end.x, e.dxf.end.y))
            for e in content(path).modelspace().query("LINE")]


def edit(desk):
    """Twist the view, choose by click and window, move a grip, undo and redo."""
    drawing = make_drawing(desk)
    desk.start(drawing, make_image(desk))
    desk.enter("TWIST 30")
    desk.enter("ZOOM E")
    desk.enter("ZOOM 0.8x")
    view = desk.view()
    check(abs(view.twist - 0.5235987755982988) < 1e-12, f"twist {view.twist}")
    expect_quarters(desk, view)

    ends = [[view.pixel((east, NORTH + north)) for east in (WEST, EAST)] for north in (20, 40)]
    desk.click_pixel(tuple((a + b) / 2 for a, b in zip(*ends[1])))
    grip = tuple(round(v) for v in ends[1][0])
    wait_until("grip", lambda: desk.picture().at(*grip) == (0, 127, 255))
    desk.shot("twisted-grips")
    desk.key("Escape")
    wait_until("no grip", lambda: desk.picture().at(*grip) != (0, 127, 255))
    places = ends[0] + ends[1]
    box = [f(p[i] for p in places) for f in (min, max) for i in (0, 1)]
    desk.drag((box[0] - 12, box[1] - 12), (box[2] + 12, box[3] + 12))
    desk.enter("LIST")
    listed = desk.seen()
    check(listed.count("LINE  layer") == 2 and "CADIMAGE" not in listed, "a window takes what lies inside: " + listed)

    # A grip dragged, taken back and done again: the saved drawing says so each time.
    desk.key("Escape")
    before = line_ends(drawing)
    desk.click_pixel(tuple((a + b) / 2 for a, b in zip(*ends[1])))
    wait_until("grip", lambda: desk.picture().at(*grip) == (0, 127, 255))
    goal = (grip[0] + 60, grip[1] - 25)
    desk.skip()
    desk.drag(grip, goal)
    desk.wait_prompt("Command:")
    desk.shot("grip-moved")
    wanted = view.ground(goal)
    for keys, expected in ((None, wanted), ("ctrl+z", before[1][0]), ("ctrl+y", wanted)):
        if keys:
            desk.skip()
            desk.key("Escape")
            desk.key(keys)
            desk.wait_prompt("Command:")
        save(desk)
        now = line_ends(drawing)
        check(now[0] == before[0] and now[1][1] == before[1][1], f"{keys}: only the grip moves: {now}")
        check(near(now[1][0], expected, 1e-6), f"{keys}: {now[1][0]} instead of {expected}")
        check("*" not in desk.title(), desk.title())

    # A watched command: no redraw of images during it whatever the mouse does, exactly one at its end.
    desk.enter("MOVE", "Select objects")
    begin = desk.skip()
    middle = tuple(round(v) for v in view.pixel(MIDDLE))
    desk.wheel(middle, 2)
    desk.drag(middle, (middle[0] + 80, middle[1]), button=2)
    desk.wheel(middle, -2)
    desk.enter("L", "Select objects")
    check(desk.redraws(begin) == 0, f"{desk.redraws(begin)} redraws during the command")
    desk.key("Escape")
    desk.wait_prompt("Command:")
    desk.view()
    check(desk.redraws(begin) == 1, f"{desk.redraws(begin)} redraws for a watched command")


def keep(desk):
    """Save, close and open again by menus and keys: the image is back, once."""
    image = make_image(desk)
    drawing = desk.path("kept.dxf")
    desk.start(image)
    desk.skip()
    desk.key("ctrl+s")
    answer_dialog(desk, "Save drawing as", drawing)
    wait_until("title", lambda: desk.title().endswith("kept.dxf"))
    for _ in range(2):
        desk.skip()
        desk.key("ctrl+w")
        desk.wait_prompt("Command:")
        wait_until("title", lambda: "kept" not in desk.title())
        desk.wait_colors([(desk.middle, BACKGROUND)])
        desk.skip()
        desk.key("alt+f", "o")
        answer_dialog(desk, "Open drawing", drawing)
        expect_quarters(desk, desk.view())
        desk.enter("REGEN")
        save(desk)
    desk.shot("opened-again")
    saved = content(drawing)
    kinds = [entity.dxftype() for entity in saved.modelspace()]
    paths = [tag.value for tag in saved.rootdict["ImagePath"]["ImagePath"].tags if tag.code == 1]
    check(kinds == ["CADIMAGE"], f"entities {kinds}")
    check(paths == [image], f"stored paths {paths}")

    # Unsaved changes are asked about before a drawing goes; Escape keeps it.
    desk.enter("LINE 0,0 1,1", "Next point")
    desk.enter("")
    wait_until("asterisk", lambda: desk.title().endswith("kept.dxf*"))
    desk.skip()
    desk.key("ctrl+w")
    box = dialog(desk, "Tarn Image")
    desk.run(["xdotool", "windowactivate", "--sync", box])
    desk.shot("question")
    desk.key("Escape")
    desk.wait_prompt("Command:")
    check(desk.title().endswith("kept.dxf*"), desk.title())
    save(desk)
    desk.key("ctrl+q")
    check(desk.wait_exit() == 0, f"exit code {desk.program.returncode}")


def draw(desk):
    """Lines and circles with object snaps at the image's corners, a pan inside, Escape, undo."""
    drawing = make_drawing(desk)
    desk.start(drawing, make_image(desk))
    desk.enter("APPLOAD", None)
    answer_dialog(desk, "Load a module", os.path.join(desk.bin, "watchprobe.arx"))
    desk.enter("ZOOM E")
    desk.enter("ZOOM 0.8x")
    view = desk.view()

    def off(corner, seen):
        place = seen.pixel(corner)
        return place[0] + 3, place[1] - 2

    desk.enter("LINE", "First point:")
    desk.enter("END", None)
    desk.move(off((WEST, NORTH), view))
    desk.click_pixel(off((WEST, NORTH), view))
    desk.wait_prompt("Next point")
    # The hand moves the view while the line waits; the other end is taken where it is then.
    desk.enter("'PAN", "Base point")
    desk.skip()
    desk.drag(desk.middle, (desk.middle[0] - 150, desk.middle[1] - 60))
    desk.wait_line("message 0202 .*")
    desk.key("Return")
    desk.wait_prompt("Next point")
    moved = View(view.middle, view.ground((desk.middle[0] + 149.5, desk.middle[1] + 59.5)), view.unit, 0)
    expect_quarters(desk, moved)
    desk.enter("END", None)
    desk.move(off((EAST, SOUTH), moved))
    desk.shot("snap")
    desk.click_pixel(off((EAST, SOUTH), moved))
    desk.wait_prompt("Next point")
    desk.key("Return")
    desk.wait_prompt("Command:")
    desk.enter("CIRCLE", "Center point:")
    desk.enter("END", None)
    desk.click_pixel(off((EAST, NORTH), moved))
    desk.wait_prompt("Radius")
    desk.enter("25")
    desk.shot("drawn")
    desk.enter("LINE", "First point:")
    desk.click_pixel(desk.middle)
    desk.wait_prompt("Next point")
    desk.key("Escape")
    desk.wait_line(".*Cancel.*")
    desk.wait_prompt("Command:")
    for undo, circles in ((None, 1), ("U", 0), ("REDO", 1)):
        if undo:
            desk.enter(undo)
        save(desk)
        saved = content(drawing).modelspace()
        lines, round_ones = line_ends(drawing), saved.query("CIRCLE")
        check(lines[2:] == [((WEST, NORTH), (EAST, SOUTH))], f"{undo}: lines {lines}")
        found = [((c.dxf.center.x, c.dxf.center.y), c.dxf.radius) for c in round_ones]
        check(found == [((EAST, NORTH), 25.0)] * circles, f"{undo}: circles {found}")

    # The command PAN: the watchers hear of the left button with the view still being dragged.
    desk.enter("PAN", "Base point")
    begin = desk.skip()
    desk.drag(desk.middle, (desk.middle[0] + 100, desk.middle[1]))
    desk.wait_line("message 0202 .*")
    wait_until("redraw", lambda: desk.redraws(begin) == 1)
    desk.key("Escape")
    desk.wait_prompt("Command:")


def erase_and_sheets(desk):
    """Erase the image and take that back; a sheet, a viewport, a zoom inside it."""
    desk.start(make_image(desk))
    view = desk.view()
    expect_quarters(desk, view)
    desk.shot("image")
    gone = [(view.pixel(at), BACKGROUND) for at in QUARTERS]
    # Chosen by a window, erased by the key, back by OOPS; then by a command and Ctrl+Z.
    corners = view.pixel((WEST, NORTH)), view.pixel((EAST, SOUTH))
    desk.drag(corners[1], (corners[0][0] + 5, corners[0][1] + 5))
    desk.shot("image-chosen")
    desk.skip()
    desk.key("Delete")
    desk.wait_prompt("Command:")
    desk.wait_colors(gone)
    desk.enter("OOPS")
    expect_quarters(desk, view)
    desk.enter("ERASE", "Select objects")
    desk.enter("ALL", "Select objects")
    desk.enter("")
    desk.wait_colors(gone)
    desk.skip()
    desk.key("ctrl+z")
    desk.wait_prompt("Command:")
    expect_quarters(desk, view)

    # A new viewport on an empty sheet shows all of the model.
    desk.enter("LAYOUT S Layout1")
    sheet = desk.view()
    desk.shot("sheet")
    desk.enter("ERASE", "Select objects")
    desk.enter("ALL", "Select objects")
    desk.enter("")
    box = (desk.middle[0] - 240, desk.middle[1] - 180, desk.middle[0] + 240, desk.middle[1] + 180)
    desk.enter("MVIEW", "Corner of the viewport")
    desk.click_pixel(box[:2])
    desk.wait_prompt("Opposite corner")
    desk.click_pixel(box[2:])
    desk.wait_prompt("Command:")
    inside = View(desk.middle, MIDDLE, WIDE * UNIT / 480, 0)
    expect_quarters(desk, inside)
    desk.shot("viewport")

    desk.skip()
    desk.click_pixel(desk.middle, times=2)
    wait_until("model space", lambda: near(desk.point_variable("VIEWCTR"), MIDDLE, 1))
    size = float(desk.read_only("VIEWSIZE"))
    hand = inside.pixel(QUARTERS[2])
    begin = desk.skip()
    desk.wheel(hand, 4)
    wait_until("redraw", lambda: desk.redraws(begin))
    check(abs(float(desk.read_only("VIEWSIZE")) / size - 0.8 ** 4) < 1e-6, "four notches zoom the viewport")
    # Only the quarter under the hand is seen in the viewport now, and nothing moved around it.
    desk.wait_colors([((box[0] + 30, box[1] + 60), COLORS[2]), (hand, COLORS[2])])
    desk.shot("viewport-zoomed")
    outside = (box[0] - 60, desk.middle[1])
    desk.click_pixel(outside, times=2)
    wait_until("paper", lambda: near(desk.point_variable("VIEWCTR"), sheet.center, 1e-6))
    check(abs(desk.view().unit - sheet.unit) < 1e-9, "the sheet stays as it was")
    desk.enter("LAYOUT S Model")
    expect_quarters(desk, view)


def escape_walk(desk):
    """Escape at each prompt of each command: (line, answers before Escape)."""
    point = "40500010,3512500"
    waiting = (
        ("LINE", point), ("PLINE", point), ("CIRCLE", point), ("TEXT", point, "2"), ("MOVE", "L", "", point),
        ("COPY", "L", "", point), ("ROTATE", "L", "", point), ("SCALE", "L", "", point), ("ERASE", "L"),
        ("ZOOM", "W", point), ("PAN", point), ("TWIST",), ("DVIEW", "TW"), ("ID",), ("DIST", point), ("LIST", "L"),
        ("LAYER", "N"), ("LAYOUT", "N"), ("UNDO",), ("SETVAR", "OSMODE"), ("ARX", "U"),
        ("-POINTCLOUDATTACH",), ("SetImageClarityRatio",), ("SetImageOffsetRatio",), ("COPYCLIP", "L"),
    )
    for command, *answers in waiting:
        for given in range(len(answers) + 1):
            # One line as far as it goes; an empty answer is an Enter of its own.
            lines = " ".join((command, *(text or "\n" for text in answers[:given]))).split("\n")
            for text in lines:
                desk.skip()
                if text.strip():
                    desk.type(text.strip())
                    desk.key("Return")
                    desk.wait_line("> (?!Command:).*")
                if text is not lines[-1]:
                    desk.key("Return")
                    desk.wait_line("> (?!Command:).*")
            desk.key("Escape")
            desk.wait_prompt("Command:")
    for command, title in (("OPEN", "Open drawing"), ("addImage", "Open"), ("loadCloud", "Open"),
                           ("SAVEAS", "Save drawing as"), ("APPLOAD", "Load a module"), ("SCRIPT", "Script"),
                           ("PNGOUT", "Save picture")):
        desk.enter(command, None)
        desk.run(["xdotool", "windowactivate", "--sync", dialog(desk, title)])
        desk.key("Escape")
        desk.wait_prompt("Command:")


def bad_input(desk):
    """Escape everywhere, commands inside commands, nonsense in a file dialog, closing in the middle."""
    drawing = make_drawing(desk)
    desk.start(drawing)
    escape_walk(desk)
    check(desk.title().endswith("base.dxf"), "the drawing is as it was: " + desk.title())

    # What cannot run inside a command is refused, and the command goes on.
    desk.enter("LINE", "First point:")
    for typed, said in (("CIRCLE", "Point or option keyword required."), ("1,2,x", "Point or option keyword required."),
                        ("'LINE", "LINE cannot run while another command waits."), ("'nosuch", 'Unknown command .*')):
        desk.enter(typed, None)
        desk.wait_line(said)
        desk.wait_prompt("First point:")
    desk.enter("'ZOOM", "Corner of window")
    desk.key("Escape")
    desk.wait_prompt("First point:")
    # A menu entry takes the place of what waits.
    desk.skip()
    desk.key("ctrl+o")
    window = dialog(desk, "Open drawing")
    desk.run(["xdotool", "windowactivate", "--sync", window])
    desk.type("no such drawing.dxf")
    desk.key("Return")
    def open_windows():
        return desk.run(["xdotool", "search", "--onlyvisible", "--name", "^Open drawing$"]).split()

    box = wait_until("message", lambda: set(open_windows()) - {window})
    desk.shot("nonsense")
    for one in (box.pop(), window):
        desk.run(["xdotool", "windowactivate", "--sync", one])
        desk.key("Escape")
        wait_until("closing", lambda gone=one: gone not in open_windows())
    desk.wait_prompt("Command:")
    check(desk.title().endswith("base.dxf"), "nothing was opened: " + desk.title())
    desk.enter("nosuch", None)
    desk.wait_line('Unknown command "NOSUCH".*')
    desk.wait_prompt("Command:")

    # The window is closed while a command waits.
    desk.enter("CIRCLE", "Center point:")
    desk.key("alt+F4")
    check(desk.wait_exit() in (0, 1), f"exit code {desk.program.returncode}")


def plot(desk):
    """Plot all of the drawing into a PDF by the command's questions, while the mouse is at work."""
    desk.start(make_drawing(desk), make_image(desk))
    paper = desk.path("plan.pdf")
    answers = {"Layout name": "Model", "Output device": "PDF", "Plot area": "Extents", "Scale": "Fit",
               "Offset": "Center", "Resolution": "100", "File name": paper, "Detailed": "Yes"}
    desk.enter("SETVAR CMDDIA 0")
    desk.skip()
    desk.type("PLOT")
    desk.key("Return")
    asked = []
    while True:
        prompt = desk.wait_line("> (.*)")[1]
        if prompt.startswith("Command:"):
            break
        asked.append(prompt)
        check(len(asked) < 20, f"PLOT asks without end: {asked}")
        desk.type(next((answer for start, answer in answers.items() if prompt.startswith(start)), ""))
        desk.key("Return")
    check(os.path.exists(paper), f"no plot after {asked}")
    expect_quarters(desk, desk.view())
    data = subprocess.run(["pdftoppm", "-r", "50", paper], capture_output=True, check=True).stdout
    picture = Picture(data)
    whole = (0, 0, picture.width, picture.height)
    for color in COLORS:
        share = picture.count(whole, lambda *c, want=color: max(abs(x - y) for x, y in zip(c, want)) < 8)
        # The lines above the image and the margins leave each quarter about a tenth of the sheet.
        check(share > picture.width * picture.height / 12, f"{color}: {share} of {picture.width}x{picture.height}")


def rectify(desk):
    """Two corners of the image, picked with a snap, get another place; undo, redo."""
    image = make_image(desk)
    desk.start(image)
    desk.enter("ZOOM", "Corner")
    desk.enter("0.6x")
    view = desk.view()
    expect_quarters(desk, view)
    move = (40.0, -25.0)
    corners = ((WEST, NORTH), (EAST, SOUTH))
    targets = tuple((x + move[0], y + move[1]) for x, y in corners)
    lines = rectifying.rectify(desk, image, corners, targets)
    points = [f"{i},o,{x:f},{y:f}" for i, (x, y) in enumerate(corners)]
    points += [f"{i},n,{x:f},{y:f}" for i, (x, y) in enumerate(targets)]
    check(lines[1:] == points + [""], f"the record file says {lines}")
    moved = [((x + move[0], y + move[1]), color) for (x, y), color in zip(QUARTERS, COLORS)]
    desk.wait_colors([(view.pixel(at), color) for at, color in moved])
    desk.enter("U")
    expect_quarters(desk, view)
    desk.enter("REDO")
    desk.wait_colors([(view.pixel(at), color) for at, color in moved])


def image_server(desk):
    """An image of a web server: settings, chooser with a search, pan, save, open again."""
    drawing = desk.path("served.dxf")
    port = serving.serve(desk, [(make_image(desk, "plain.tif"), serving.FOLDER, serving.NAME)])
    desk.start()
    serving.set_server(desk, f"127.0.0.1:{port}")
    serving.choose(desk, "100%")
    desk.enter("ZOOM E")
    view = desk.view()
    expect_quarters(desk, view)
    desk.shot("added")
    start = view.pixel(MIDDLE)
    desk.skip()
    desk.drag(start, (start[0] + 60, start[1] - 40), button=2)
    desk.wait_redraw()
    expect_quarters(desk, desk.view())
    desk.key("ctrl+s")
    answer_dialog(desk, "Save drawing as", drawing)
    wait_until("title", lambda: desk.title().endswith("served.dxf"))
    serving.check_stored(drawing, port)
    desk.key("ctrl+q")
    check(desk.wait_exit() == 0, f"exit code {desk.program.returncode}")
    desk.start(drawing)
    desk.enter("ZOOM E")
    expect_quarters(desk, desk.view())
    desk.shot("opened-again")
    desk.key("ctrl+q")
    check(desk.wait_exit() == 0, f"exit code {desk.program.returncode}")


JOURNEYS = {name: value for name, value in list(globals().items())
            if name in ("add_image", "edit", "keep", "draw", "erase_and_sheets", "bad_input", "plot", "rectify",
                        "image_list", "image_list_many", "image_server")}


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
