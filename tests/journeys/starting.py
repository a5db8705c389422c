"""The first start: the demonstration with its first steps, tried one after another, then closed for good."""
import re
import subprocess

from desk import CANVAS, check, wait_until
from ground import (BACKGROUND, COLORS, MIDDLE, QUARTERS, answer_dialog, content, dialog, expect_quarters, make_image, near)
from imagelist import Panel, drag_onto, seen_view

BOX = (22, 122)  # of "Do not show this again", from the lower right corner that the canvas had at the start


def width(desk):
    return int(re.search(r"WIDTH=(\d+)", desk.run(["xdotool", "getwindowgeometry", "--shell", desk.window]))[1])


def try_all(desk, image):
    """The five things, as the first steps tell them."""
    view = desk.view()
    hand = view.pixel(QUARTERS[0])
    begin = desk.skip()
    desk.wheel(hand, 3)
    desk.wait_colors([((hand[0] + 60, hand[1] + 60), COLORS[0])])
    desk.drag(hand, (hand[0] + 120, hand[1] + 60), button=2)
    wait_until("redraw", lambda: desk.redraws(begin))
    desk.click_pixel(desk.middle, button=2, times=2)
    wait_until("all of it", lambda: near(desk.point_variable("VIEWCTR"), MIDDLE, 0.5))
    expect_quarters(desk, desk.view())

    desk.skip()
    desk.key("ctrl+l")
    desk.wait_prompt("Command:")
    panel = Panel(desk)
    view = seen_view(desk)
    for color in (BACKGROUND, COLORS[3]):
        panel.check_box(image)
        desk.wait_colors([(view.pixel(QUARTERS[3]), color)])

    start, end = view.pixel(QUARTERS[0]), view.pixel(QUARTERS[3])
    desk.skip()
    desk.type("L", "Return")
    desk.wait_prompt("First point:")
    for place in (start, end):
        desk.click_pixel(place)
        desk.wait_prompt("Next point")
    desk.key("Return")
    desk.wait_prompt("Command:")
    desk.key("F3")
    desk.enter("L", "First point:")
    # A few pixels beside the end the mark of the end shows, and a click takes it.
    beside = (end[0] + 4, end[1] - 4)
    desk.move((beside[0] - 40, beside[1]))
    desk.move(beside)
    box = (end[0] - 14, end[1] - 14, end[0] + 14, end[1] + 14)
    wait_until("mark of the end", lambda: desk.picture().count(box, lambda r, g, b: r > 240 and g > 190 and b < 90) > 20)
    desk.shot("snap")
    desk.click_pixel(beside)
    desk.wait_prompt("Next point")
    desk.key("Escape")
    desk.wait_prompt("Command:")

    middle = tuple((a + b) / 2 for a, b in zip(start, end))
    grip = tuple(round(v) for v in start)
    desk.click_pixel((middle[0] + 60 * (end[0] - start[0]) / 400, middle[1] + 60 * (end[1] - start[1]) / 400))
    wait_until("grip", lambda: desk.picture().at(*grip) == (0, 127, 255))
    desk.skip()
    desk.drag(grip, (grip[0] + 80, grip[1]))
    desk.wait_prompt("Command:")
    desk.skip()
    desk.key("Escape", "ctrl+z")
    desk.wait_prompt("Command:")


def first_start(desk):
    """The five things of the first steps; closed for good; then in Chinese, also after the next start."""
    image = make_image(desk)
    own = desk.path("own.tif")
    subprocess.run(["gdal_translate", "-q", "-a_ullr", "40500500", "3512600", "40500900", "3512300", image, own], check=True)
    desk.start("--guide", image)
    wide = width(desk)
    desk.shot("welcome")
    try_all(desk, image)
    drag_onto(desk, desk.middle, own)
    drawing = desk.path("first.dxf")
    desk.skip()
    desk.key("ctrl+s")
    answer_dialog(desk, "Save drawing as", drawing)
    saved = content(drawing)
    paths = [tag.value for tag in saved.rootdict["ImagePath"]["ImagePath"].tags if tag.code == 1]
    check(paths == [image, own], f"stored {paths}")
    line = saved.modelspace().query("LINE").first
    check(near((line.dxf.start.x, line.dxf.start.y), QUARTERS[0], 1), f"the grip is back: {line.dxf.start}")
    desk.shot("tried")

    # The box counts, however the first steps are left.
    desk.click_pixel(tuple(m + size / 2 + more for m, size, more in zip(desk.middle, CANVAS, BOX)))
    desk.shot("never-again")
    desk.key("ctrl+q")
    check(desk.wait_exit() == 0, f"exit code {desk.program.returncode}")
    desk.middle = None
    desk.start("--guide", drawing)
    check(width(desk) < wide - 200, "the first steps come again")
    desk.enter("SETVAR LOCALE CHS")
    desk.key("ctrl+q")
    check(desk.wait_exit() == 0, f"exit code {desk.program.returncode}")
    desk.middle = None
    desk.start(drawing)
    view = desk.view()
    desk.wait_colors([(view.pixel(QUARTERS[i]), COLORS[i]) for i in (1, 2)])
    desk.skip()
    desk.key("ctrl+o")
    box = dialog(desk, "打开图形")
    desk.run(["xdotool", "windowactivate", "--sync", box])
    desk.shot("chinese")
    desk.key("Escape")
    desk.wait_prompt("Command:")
