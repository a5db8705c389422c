"""Journeys through the image list panel, by mouse."""
import os
import re
import subprocess

from desk import View, check, wait_until
from ground import (BACKGROUND, COLORS, EAST, MIDDLE, NORTH, QUARTERS, SOUTH, UNIT, WIDE, answer_dialog, content,
                    expect_quarters, make_image, near, save)

SECOND = tuple((x + WIDE * UNIT, y) for x, y in QUARTERS)


class Panel:
    """The panel of a desk whose program runs."""

    def __init__(self, desk):
        self.desk = desk
        desk.enter("OpenImageList")

    def item(self, text, part):
        """Where a part of an item is, "box" or "label"; "#1", "#2" ... are rows."""
        desk = self.desk
        desk.enter("UICLICK 1131 Where 119", "Item:")
        desk.type(text, "Return")
        found = desk.wait_line(r"box (\d+),(\d+) label (\d+),(\d+)")
        desk.wait_prompt("Command:")
        return tuple(int(v) for v in (found[1:3] if part == "box" else found[3:5]))

    def menu(self, text, *keys, shot="menu"):
        """The right button on an item (its text, or where it is), then keys in its menu."""
        desk = self.desk
        at = self.item(text, "label") if isinstance(text, str) else text
        beside = (at[0] + 40, at[1] + 12)
        before = desk.picture().at(*beside)
        desk.skip()
        desk.click_pixel(at, button=3)
        wait_until("menu", lambda: desk.picture().at(*beside) != before)
        desk.key(*keys)
        desk.shot(shot)
        desk.key("Return")

    def check_box(self, text):
        box = self.item(text, "box")
        self.desk.skip()
        self.desk.click_pixel(box)
        self.desk.wait_prompt("Command:")

    def rows(self):
        """The panel's own list: (checked, text) of each image."""
        desk = self.desk
        desk.enter("UICLICK 1131 List 119")
        return [(mark == "x", text.rstrip(" *")) for mark, text in re.findall(r"^  \[(.)\] (.*?)\r?$", desk.seen(), re.M)]


def make_second(desk, first, name="second.tif"):
    """The same picture to the right of the first."""
    path = desk.path(name)
    subprocess.run(["gdal_translate", "-q", "-a_ullr", str(EAST), str(NORTH), str(EAST + WIDE * UNIT), str(SOUTH),
                    first, path], check=True)
    return path


def seen_view(desk):
    """The view, found by asking for the ground under two places: the panel takes room from the canvas."""
    shape = dict(re.findall(r"(\w+)=(\d+)", desk.run(["xdotool", "getwindowgeometry", "--shell", desk.window])))
    places = [(int(shape["X"]) + int(shape["WIDTH"]) * p // 10, int(shape["Y"]) + int(shape["HEIGHT"]) * 4 // 10)
              for p in (5, 8)]
    grounds = []
    for place in places:
        desk.enter("ID", "Point:")
        desk.click_pixel(place)
        found = desk.wait_line(r"X = (\S+)  Y = (\S+)  Z = 0")
        grounds.append((float(found[1]), float(found[2])))
        desk.wait_prompt("Command:")
    unit = (grounds[1][0] - grounds[0][0]) / (places[1][0] - places[0][0])
    return View((places[0][0] + 0.5, places[0][1] + 0.5), grounds[0], unit, 0)


def colors_of(view, first, second):
    """What is to be seen of two images: each shown or not."""
    return [(view.pixel(at), color if shown else BACKGROUND)
            for quarters, shown in ((QUARTERS, first), (SECOND, second)) for at, color in zip(quarters, COLORS)]


def image_list(desk):
    """Add by the menu and the file dialog, hide, show, zoom, move, remove."""
    first = make_image(desk, "first.tif")
    second = make_second(desk, first)
    drawing = desk.path("list.dxf")
    desk.start()
    panel = Panel(desk)

    def stored():
        save(desk)
        return [tag.value for tag in content(drawing).rootdict["ImagePath"]["ImagePath"].tags if tag.code == 1]

    panel.menu("#1", "Down")
    answer_dialog(desk, "Open", f'"{first}" "{second}"')
    desk.enter("ZOOM E")
    view = seen_view(desk)
    expect_quarters(desk, view)
    desk.shot("added")
    for shown in (False, True):
        panel.check_box(first)
        desk.wait_colors(colors_of(view, shown, True))
    label = panel.item(second, "label")
    desk.skip()
    desk.click_pixel(label, times=2)
    desk.wait_redraw()
    desk.wait_prompt("Command:")
    center = desk.point_variable("VIEWCTR")
    check(near(center, (MIDDLE[0] + WIDE * UNIT, MIDDLE[1]), 1e-6), f"zoomed to {center}")
    desk.shot("zoomed")

    desk.skip()
    desk.key("ctrl+s")
    answer_dialog(desk, "Save drawing as", drawing)
    wait_until("title", lambda: desk.title().endswith("list.dxf"))
    check(stored() == [first, second], f"stored {stored()}")
    panel.menu(second, "Up", "Up")
    desk.wait_redraw()
    desk.wait_prompt("Command:")
    check(stored() == [second, first], f"moved up: {stored()}")
    panel.menu(second, *["Down"] * 5)
    desk.wait_line(".*" + second + ".*已被删除!")
    desk.wait_prompt("Command:")
    check(stored() == [first], f"removed: {stored()}")
    desk.key("ctrl+q")
    check(desk.wait_exit() == 0, f"exit code {desk.program.returncode}")


def drag_onto(desk, place, *files):
    """Files from another program's window."""
    source = subprocess.Popen([os.path.join(desk.bin, "dragsource"), *files], env=desk.environment)
    desk.children.append(source)
    wait_until("drag source", lambda: desk.run(["xdotool", "search", "--onlyvisible", "--name", "^Drag source$"]).strip())
    desk.skip()
    words = ["xdotool", "mousemove", "60", "40", "mousedown", "1"]
    for step in range(1, 9):
        words += ["mousemove", str(60 + (place[0] - 60) * step // 8), str(40 + (place[1] - 40) * step // 8), "sleep", "0.05"]
    desk.run(words + ["sleep", "0.2", "mouseup", "1"])
    desk.wait_line(r".*Command: .*regen.*")
    desk.wait_prompt("Command:")
    source.terminate()


def image_list_many(desk):
    """Files dropped on the panel, the root's box, several selected at once, anti-aliasing, stretch, files that moved."""
    first = make_image(desk, "first.tif")
    second = make_second(desk, first)
    drawing = desk.path("list.dxf")
    desk.start()
    panel = Panel(desk)
    root = panel.item("#1", "label")
    drag_onto(desk, (root[0], root[1] + 120), first, second)
    check(panel.rows() == [(True, first), (True, second)], f"dropped: {panel.rows()}")
    desk.enter("ZOOM E")
    view = seen_view(desk)
    for shown in (False, True):
        panel.check_box("#1")
        desk.wait_colors(colors_of(view, shown, shown))

    labels = [panel.item(row, "label") for row in ("#2", "#3")]
    desk.click_pixel(labels[0])
    desk.run(["xdotool", "keydown", "ctrl"])
    desk.click_pixel(labels[1])
    desk.run(["xdotool", "keyup", "ctrl"])
    # Who types means a command, also after a click in the list.
    check(panel.rows() == [(True, first), (True, second)], f"two chosen: {panel.rows()}")
    panel.menu(labels[1], "Up", shot="several")
    desk.wait_prompt("Command:")
    desk.wait_colors(colors_of(view, False, False))
    panel.check_box("#1")
    panel.check_box("#1")
    desk.wait_colors(colors_of(view, True, True))

    # Stretching flat colours moves them to where equal shares of the pixels are; the other image stays.
    panel.menu("#2", *["Down"] * 4, "Right", shot="stretch")
    desk.wait_prompt("Command:")
    desk.wait_colors(colors_of(view, True, True)[4:])
    place = [round(v) for v in view.pixel(QUARTERS[0])]
    wait_until("stretched", lambda: max(abs(a - b) for a, b in zip(desk.picture().at(*place), COLORS[0])) > 10)
    panel.menu("#2", *["Down"] * 4, "Right", "Up", shot="restore")
    desk.wait_prompt("Command:")
    desk.wait_colors(colors_of(view, True, True))
    panel.menu("#2", *["Down"] * 3)
    desk.wait_prompt("Command:")
    panel.menu("#2", *["Down"] * 3, shot="anti-aliasing")
    desk.wait_prompt("Command:")
    desk.wait_colors(colors_of(view, True, True))

    desk.skip()
    desk.key("ctrl+s")
    answer_dialog(desk, "Save drawing as", drawing)
    wait_until("title", lambda: desk.title().endswith("list.dxf"))
    desk.key("ctrl+q")
    check(desk.wait_exit() == 0, f"exit code {desk.program.returncode}")
    elsewhere = desk.path("archive", "deep")
    os.makedirs(elsewhere)
    for path in (first, second):
        os.rename(path, os.path.join(elsewhere, os.path.basename(path)))
    desk.start(drawing)
    panel = Panel(desk)
    check(panel.rows() == [], f"missing: {panel.rows()}")
    panel.menu("#1", "Up", shot="missing")
    answer_dialog(desk, "Choose a folder", desk.path("archive"), None)
    desk.wait_line(r".*已重新链接2幅影像。.*")
    desk.wait_prompt("Command:")
    moved = [(True, os.path.join(elsewhere, os.path.basename(path))) for path in (first, second)]
    check(panel.rows() == moved, f"found again: {panel.rows()}")
    desk.enter("ZOOM E")
    desk.wait_colors(colors_of(view, True, True))
    desk.shot("found-again")
