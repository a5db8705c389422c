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


def seen_view(desk, tenths=(5, 8)):
    """The view, found by asking for the ground under two places: the panel takes room from the canvas."""
    shape = dict(re.findall(r"(\w+)=(\d+)", desk.run(["xdotool", "getwindowgeometry", "--shell", desk.window])))
    places = [(int(shape["X"]) + int(shape["WIDTH"]) * p // 10, int(shape["Y"]) + int(shape["HEIGHT"]) * 4 // 10)
              for p in tenths]
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


def drag_onto(desk, place, *files, until=r".*Command: .*regen.*"):
    """Files from another program's window; until a line is there, and then the prompt."""
    source = subprocess.Popen([*desk.words("dragsource"), *(desk.called(file) for file in files)], env=desk.environment)
    desk.children.append(source)
    wait_until("drag source", lambda: desk.run(["xdotool", "search", "--onlyvisible", "--name", "^Drag source$"]).strip())
    desk.skip()
    words = ["xdotool", "mousemove", "60", "40", "mousedown", "1"]
    for step in range(1, 9):
        words += ["mousemove", str(60 + (place[0] - 60) * step // 8), str(40 + (place[1] - 40) * step // 8), "sleep", "0.05"]
    desk.run(words + ["sleep", "0.2", "mouseup", "1"])
    desk.wait_line(until)
    desk.wait_prompt("Command:")
    source.terminate()


def image_list(desk):
    """A day with the panel, in Chinese: added by the menu and by dropping, hidden, shown, zoomed to, stretched, moved, lost, found."""
    first = make_image(desk, "first.tif")
    second = make_second(desk, first)
    drawing = desk.path("list.dxf")
    desk.start()
    desk.enter("SETVAR LOCALE CHS")
    panel = Panel(desk)
    panel.menu("#1", "Down")
    answer_dialog(desk, "打开", first)
    root = panel.item("#1", "label")
    drag_onto(desk, (root[0], root[1] + 120), second)
    check(panel.rows() == [(True, first), (True, second)], f"added: {panel.rows()}")
    desk.enter("ZOOM E")
    view = seen_view(desk)
    desk.wait_colors(colors_of(view, True, True))
    desk.shot("added")
    show_and_hide(desk, panel, view, first)
    zoom_to(desk, panel, second)
    desk.enter("ZOOM P")
    restyle(desk, panel, view)
    coarser(desk)

    desk.skip()
    desk.key("ctrl+s")
    answer_dialog(desk, "图形另存为", drawing)
    wait_until("title", lambda: desk.title().endswith("list.dxf"))
    check(stored(desk, drawing) == [first, second], f"stored {stored(desk, drawing)}")
    panel.menu(second, "Up", "Up")
    desk.wait_redraw()
    desk.wait_prompt("Command:")
    check(stored(desk, drawing) == [second, first], f"moved up: {stored(desk, drawing)}")
    desk.key("ctrl+q")
    check(desk.wait_exit() == 0, f"exit code {desk.program.returncode}")
    lose_and_find(desk, drawing, second, first)


def stored(desk, drawing):
    """The paths that the saved drawing holds."""
    save(desk)
    return [tag.value for tag in content(drawing).rootdict["ImagePath"]["ImagePath"].tags if tag.code == 1]


def show_and_hide(desk, panel, view, first):
    """One box, the root's box, several at once by the menu."""
    for shown in (False, True):
        panel.check_box(first)
        desk.wait_colors(colors_of(view, shown, True))
    for shown in (False, True):
        panel.check_box("#1")
        desk.wait_colors(colors_of(view, shown, shown))
    labels = [panel.item(row, "label") for row in ("#2", "#3")]
    desk.click_pixel(labels[0])
    desk.run(["xdotool", "keydown", "ctrl"])
    desk.click_pixel(labels[1])
    desk.run(["xdotool", "keyup", "ctrl"])
    # Who types means a command, also after a click in the list.
    check([mark for mark, _ in panel.rows()] == [True, True], f"two chosen: {panel.rows()}")
    panel.menu(labels[1], "Up", shot="several")
    desk.wait_prompt("Command:")
    desk.wait_colors(colors_of(view, False, False))
    panel.check_box("#1")
    panel.check_box("#1")
    desk.wait_colors(colors_of(view, True, True))


def zoom_to(desk, panel, second):
    label = panel.item(second, "label")
    desk.skip()
    desk.click_pixel(label, times=2)
    desk.wait_redraw()
    desk.wait_prompt("Command:")
    center = desk.point_variable("VIEWCTR")
    check(near(center, (MIDDLE[0] + WIDE * UNIT, MIDDLE[1]), 1e-6), f"zoomed to {center}")
    desk.shot("zoomed")


def restyle(desk, panel, view):
    """Stretching flat colours moves them to where equal shares of the pixels are; the other image stays."""
    panel.menu("#2", *["Down"] * 4, "Right", shot="stretch")
    desk.wait_prompt("Command:")
    desk.wait_colors(colors_of(view, True, True)[4:])
    place = [round(v) for v in view.pixel(QUARTERS[0])]
    wait_until("stretched", lambda: max(abs(a - b) for a, b in zip(desk.picture().at(*place), COLORS[0])) > 10)
    panel.menu("#2", *["Down"] * 4, "Right", "Up", shot="restore")
    desk.wait_prompt("Command:")
    desk.wait_colors(colors_of(view, True, True))
    for _ in range(2):
        panel.menu("#2", *["Down"] * 3, shot="anti-aliasing")
        desk.wait_prompt("Command:")
    desk.wait_colors(colors_of(view, True, True))


def coarser(desk):
    """The drawing's clarity: a quarter of the pixels each way, and all of them again."""
    def pixels(ratio):
        desk.enter("SetImageClarityRatio", "指定清晰度比率")
        desk.enter(ratio)
        desk.enter("REGEN", None)
        found = int(desk.wait_line(r'\{"ms":.*"pixels":(\d+),.*\}')[1])
        desk.wait_prompt("Command:")
        return found

    coarse, fine = pixels("4"), pixels("1")
    check(10 < fine / coarse < 20, f"{coarse} pixels at a clarity ratio of 4, {fine} at 1")


def lose_and_find(desk, drawing, *images):
    """The files move while the drawing is closed: they are named, found again below a folder, and one is removed."""
    elsewhere = desk.path("archive", "deep")
    os.makedirs(elsewhere)
    for path in images:
        os.rename(path, os.path.join(elsewhere, os.path.basename(path)))
    desk.start(drawing)
    panel = Panel(desk)
    check(panel.rows() == [], f"missing: {panel.rows()}")
    panel.menu("#1", "Up", shot="missing")
    answer_dialog(desk, "选择文件夹", desk.path("archive"), None)
    desk.wait_line(r".*已重新链接2幅影像。.*")
    desk.wait_prompt("Command:")
    moved = [os.path.join(elsewhere, os.path.basename(path)) for path in images]
    check(panel.rows() == [(True, path) for path in moved], f"found again: {panel.rows()}")
    desk.enter("ZOOM E")
    view = seen_view(desk)
    desk.wait_colors(colors_of(view, True, True))
    desk.shot("found-again")
    panel.menu(moved[0], *["Down"] * 5)
    desk.wait_line(".*" + moved[0] + ".*已被删除!")
    desk.wait_prompt("Command:")
    desk.wait_colors(colors_of(view, True, False))
    check(stored(desk, drawing) == moved[1:], f"removed: {stored(desk, drawing)}")
    desk.shot("removed")
    desk.key("ctrl+q")
    check(desk.wait_exit() == 0, f"exit code {desk.program.returncode}")
