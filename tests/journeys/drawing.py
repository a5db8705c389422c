"""Journeys with a drawing: open it, add an image and points, zoom and pan, draw with snaps, edit."""
import os
import struct

from desk import CANVAS, View, check, wait_until
from ground import (COLORS, EAST, MIDDLE, NORTH, QUARTERS, SOUTH, WEST, add_image_by_command, answer_dialog, content,
                    expect_quarters, make_drawing, make_image, near, save)


def line_ends(path):
    return [((e.dxf.start.x, e.dxf.start.y), (e.dxf.end.x, e.dxf.end.y))
            for e in content(path).modelspace().query("LINE")]


def make_cloud(desk, corner, color):
    """An uncompressed LAS file of 100 by 100 points a unit apart."""
    path = desk.path("points.las")
    points = [(x * 100, y * 100, 0) for y in range(100) for x in range(100)]
    header = bytearray(227)
    header[0:4], header[24:26] = b"LASF", bytes((1, 2))
    struct.pack_into("<HII", header, 94, len(header), len(header), 0)
    struct.pack_into("<BHI", header, 104, 2, 26, len(points))
    struct.pack_into("<12d", header, 131, 0.01, 0.01, 0.01, *corner, 0, corner[0] + 99, corner[0], corner[1] + 99, corner[1], 0, 0)
    with open(path, "wb") as out:
        out.write(header)
        for point in points:
            out.write(struct.pack("<3iHBBbBH3H", *point, 0, 0, 0, 0, 0, 0, *(c * 257 for c in color)))
    return path


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

    # A cloud of points to the right of the image.
    cloud = make_cloud(desk, (EAST + 50, SOUTH), COLORS[1])
    desk.enter("loadCloud", None)
    answer_dialog(desk, "Open", cloud)
    desk.enter("ZOOM E")
    view = desk.view()
    middle = tuple(round(v) for v in view.pixel((EAST + 100, SOUTH + 50)))
    box = (middle[0] - 20, middle[1] - 20, middle[0] + 20, middle[1] + 20)
    wait_until("points", lambda: desk.picture().count(box, lambda *c: c == COLORS[1]) > 300)
    expect_quarters(desk, view)
    desk.shot("cloud")


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
