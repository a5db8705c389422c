"""What journeys stand on: an image of four colours, a drawing, file dialogs."""
import subprocess

from desk import Failure, wait_until

WEST, NORTH, UNIT = 40500000.0, 3512600.0, 0.5
WIDE, HIGH = 800, 600  # pixels
EAST, SOUTH = WEST + WIDE * UNIT, NORTH - HIGH * UNIT
MIDDLE = ((WEST + EAST) / 2, (NORTH + SOUTH) / 2)
COLORS = ((220, 40, 40), (40, 180, 60), (50, 80, 210), (230, 200, 40))  # upper left, upper right, lower left, lower right
BACKGROUND = (33, 40, 48)
QUARTERS = tuple((WEST + WIDE * UNIT * x, NORTH - HIGH * UNIT * y)
                 for y in (0.3, 0.8) for x in (0.3, 0.8))


def make_image(desk, name="ortho.tif"):
    """Four coloured quarters with a position on the ground."""
    half = WIDE // 2
    rows = [bytes(COLORS[0]) * half + bytes(COLORS[1]) * half, bytes(COLORS[2]) * half + bytes(COLORS[3]) * half]
    plain, path = desk.path("plain.ppm"), desk.path(name)
    with open(plain, "wb") as out:
        out.write(b"P6 %d %d 255\n" % (WIDE, HIGH) + rows[0] * (HIGH // 2) + rows[1] * (HIGH // 2))
    subprocess.run(["gdal_translate", "-q", "-a_ullr", *(str(v) for v in (WEST, NORTH, EAST, SOUTH)), plain, path],
                   check=True)
    return path


def make_drawing(desk, name="base.dxf"):
    """Two lines beside the image."""
    import ezdxf
    drawing = ezdxf.new("R2010")
    for north in (NORTH + 20, NORTH + 40):
        drawing.modelspace().add_line((WEST, north), (EAST, north))
    drawing.saveas(desk.path(name))
    return desk.path(name)


def content(path):
    import ezdxf
    return ezdxf.readfile(path)


def dialog(desk, title):
    desk.away = True
    return wait_until(f"dialog {title!r}", lambda: desk.run(
        ["xdotool", "search", "--onlyvisible", "--name", "^" + title + "$"]).split())[0]


def answer_dialog(desk, title, text, prompt="Command:"):
    """Waits for a file dialog, types the name and Enter.

    The dialog completes what is typed; on a busy machine its list may come just before Enter and put a folder in the
    place of the name. Then the name is typed once more.
    """
    def visible():
        return desk.run(["xdotool", "search", "--onlyvisible", "--name", "^" + title + "$"]).split()

    for attempt in range(5):
        window = dialog(desk, title)
        desk.run(["xdotool", "windowactivate", "--sync", window])
        desk.key("ctrl+a")
        desk.type(text)
        desk.key("Return")
        try:
            wait_until(f"end of {title!r}", lambda closing=window: closing not in visible(), 8)
            break
        except Failure:
            if attempt == 4:
                raise
    if prompt:
        desk.wait_prompt(prompt)


def add_image_by_command(desk, path):
    desk.enter("addImage", None)
    answer_dialog(desk, "Open", path)


def expect_quarters(desk, view):
    desk.wait_colors([(view.pixel(at), color) for at, color in zip(QUARTERS, COLORS)])


def near(a, b, tolerance):
    return all(abs(x - y) <= tolerance for x, y in zip(a, b))


def save(desk):
    desk.enter("SAVE", None)
    desk.wait_line(".*saved.*")
    desk.wait_prompt("Command:")
