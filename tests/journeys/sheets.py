"""A journey through sheets: erase and bring back, a viewport, the plot of a sheet by its dialog."""
import os
import subprocess

from desk import Picture, View, check, wait_until
from ground import (BACKGROUND, COLORS, EAST, MIDDLE, NORTH, QUARTERS, SOUTH, UNIT, WEST, WIDE, dialog, expect_quarters,
                    make_image, near)


def sheets(desk):
    """Erase the image and take that back; a sheet, a viewport, a zoom inside it; a plot."""
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
    plot_model(desk)
    expect_quarters(desk, desk.view())


def plot_model(desk):
    """All of the model into a PDF by the dialog, at 100 dots an inch: what is on the paper is what is in the drawing."""
    paper = desk.path("plan.pdf")
    desk.enter("ZOOM E")
    desk.skip()
    desk.key("ctrl+p")
    box = dialog(desk, "Plot")
    desk.run(["xdotool", "windowactivate", "--sync", box])
    desk.key("alt+m", "Tab", "ctrl+a")
    desk.type("100")
    desk.key("alt+e", "ctrl+a")
    desk.type(paper)
    desk.shot("plot")
    desk.key("Return")
    desk.wait_prompt("Command:")
    check(os.path.exists(paper), "no plot")
    data = subprocess.run(["pdftoppm", "-r", "20", paper], capture_output=True, check=True).stdout
    picture = Picture(data)
    whole = (0, 0, picture.width, picture.height)
    for color in COLORS:
        share = picture.count(whole, lambda *c, want=color: max(abs(x - y) for x, y in zip(c, want)) < 8)
        # The lines above the image and the margins leave each quarter about a tenth of the sheet.
        check(share > picture.width * picture.height / 12, f"{color}: {share} of {picture.width}x{picture.height}")
