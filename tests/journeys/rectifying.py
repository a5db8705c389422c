"""The rectification dialog by mouse and keys: picks with a snap, a cancelled pick, the result in the drawing."""
import json
import os
import re

from desk import check, wait_until
from ground import (COLORS, EAST, NORTH, QUARTERS, SOUTH, UNIT, WEST, answer_dialog, dialog, expect_quarters, make_image,
                    near)

DIALOG = "影像纠正"
LAST_BUTTON = (50, 24)  # of "确定", from the dialog's lower right corner
EXPORT_BUTTON = (60, 24)  # of "导出纠正影像", from its lower left corner


def window(desk):
    """The dialog's window; none while it is hidden."""
    return desk.run(["xdotool", "search", "--onlyvisible", "--name", "^" + DIALOG + "$"]).split()


def wait_dialog(desk):
    found = wait_until("the dialog", lambda: window(desk))[0]
    desk.run(["xdotool", "windowactivate", "--sync", found])
    return found


def press(desk, right, bottom):
    """A button of the dialog, by its place from the lower right corner; a negative one is from the left."""
    found = wait_dialog(desk)
    shape = dict(re.findall(r"(\w+)=(-?\d+)", desk.run(["xdotool", "getwindowgeometry", "--shell", found])))
    desk.run(["xdotool", "mousemove", "--window", found, str(int(shape["WIDTH"]) - right if right > 0 else -right),
              str(int(shape["HEIGHT"]) - bottom), "click", "1"])


def export(desk, path):
    """The rectified image as a file; the dialog is there again afterwards."""
    press(desk, -EXPORT_BUTTON[0], EXPORT_BUTTON[1])
    answer_dialog(desk, "导出影像", path, None)
    for title in ("导出提示", "提示"):
        box = dialog(desk, title)
        desk.run(["xdotool", "windowactivate", "--sync", box])
        desk.key("Return")
    wait_dialog(desk)


def tab(desk, times):
    desk.key(*(["Tab"] * times if times > 0 else ["shift+Tab"] * -times))


def pick(desk, pixel):
    """Presses the button that has the focus and clicks in the drawing, or Escape for no place."""
    desk.key("space")
    wait_until("the dialog to hide", lambda: not window(desk))
    if pixel:
        desk.click_pixel(pixel)
    else:
        desk.key("Escape")
    wait_dialog(desk)


def add_pair(desk, source, target):
    """From the button that picks a source, back to it: the source near a corner, the target by keys."""
    pick(desk, source)
    tab(desk, 1)
    for value in target:
        desk.key("ctrl+a")
        desk.type(repr(value))
        tab(desk, 1)
    # The button behind the target's edits; Escape leaves them as they are.
    pick(desk, None)
    tab(desk, 4)
    desk.key("space")
    tab(desk, -7)


def place(desk, image, corners, targets, exported):
    """Opens the dialog, puts the image where its corners belong and exports it; gives the lines of the record file."""
    view = desk.view()
    desk.enter("OSMODE", None)
    desk.enter("1")
    desk.enter("rectifyImage")
    wait_dialog(desk)
    desk.shot("dialog")
    tab(desk, 4)
    for corner, target in zip(corners, targets):
        near = view.pixel(corner)
        add_pair(desk, (near[0] + 3, near[1] + 3), target)
    tab(desk, 4)
    desk.key("End")  # the last method, Helmert
    desk.shot("points")
    press(desk, *LAST_BUTTON)
    record = os.path.splitext(image)[0] + ".FTWx"
    wait_until("the record file", lambda: os.path.exists(record))
    desk.shot("applied")
    with open(record, encoding="utf-8") as text:
        lines = text.read().split("\n")
    export(desk, exported)
    desk.key("Escape")
    wait_until("the dialog to go", lambda: not window(desk))
    check(lines[0] == "4", f"the method is {lines[0]}")
    return lines


def rectify(desk):
    """Two corners of the image, picked with a snap, get another place; exported; undo, redo."""
    image = make_image(desk)
    desk.start(image)
    desk.enter("ZOOM", "Corner")
    desk.enter("0.6x")
    view = desk.view()
    expect_quarters(desk, view)
    move = (40.0, -25.0)
    corners = ((WEST, NORTH), (EAST, SOUTH))
    targets = tuple((x + move[0], y + move[1]) for x, y in corners)
    exported = desk.path("exported.tif")
    lines = place(desk, image, corners, targets, exported)
    found = json.loads(desk.run(["gdalinfo", "-json", exported]))["geoTransform"]
    check(near(found, (WEST + move[0], UNIT, 0, NORTH + move[1], 0, -UNIT), 1e-6), f"exported at {found}")
    points = [f"{i},o,{x:f},{y:f}" for i, (x, y) in enumerate(corners)]
    points += [f"{i},n,{x:f},{y:f}" for i, (x, y) in enumerate(targets)]
    check(lines[1:] == points + [""], f"the record file says {lines}")
    moved = [((x + move[0], y + move[1]), color) for (x, y), color in zip(QUARTERS, COLORS)]
    desk.wait_colors([(view.pixel(at), color) for at, color in moved])
    desk.enter("U")
    expect_quarters(desk, view)
    desk.enter("REDO")
    desk.wait_colors([(view.pixel(at), color) for at, color in moved])
