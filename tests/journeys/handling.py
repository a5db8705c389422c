"""Journeys of the hand: Escape everywhere and nonsense; a drawing made by the keyboard alone, in Chinese."""
from desk import check, wait_until
from ground import EAST, NORTH, SOUTH, WEST, answer_dialog, content, dialog, expect_quarters, make_drawing, make_image
from imagelist import Panel


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


def keyboard(desk):
    """A drawing in Chinese, by keys alone: opened, an image added, drawn in, arranged, plotted, saved."""
    image, drawing = make_image(desk), make_drawing(desk)
    desk.start()
    desk.enter("SETVAR LOCALE CHS")
    desk.skip()
    desk.key("alt+f", "o")
    answer_dialog(desk, "打开图形", drawing)
    desk.skip()
    desk.key("ctrl+i")
    answer_dialog(desk, "添加影像", image)
    desk.enter("ZOOM E")
    expect_quarters(desk, desk.view())
    desk.shot("added")
    desk.enter("LAYER M Parcels", "Option")
    desk.enter("")
    # The corners of a parcel: from the origin, from the last point, by distance and angle; then a name in it.
    desk.enter(f"PLINE {WEST + 100},{SOUTH + 100} @100,0 @100<90 @-100,0 C")
    desk.enter(f"TEXT {WEST + 120},{SOUTH + 140} 10 0 Lot 1")
    desk.enter("PL", "First point:")
    desk.enter(f"{EAST},{NORTH}", "Next point")
    desk.key("Escape")
    desk.wait_prompt("Command:")
    desk.skip()
    desk.key("ctrl+l")
    desk.wait_prompt("Command:")
    panel = Panel(desk)
    panel.item("#2", "label")
    # From the command line to the text above it and on to the list; who types a command is back.
    for shown in (False, True):
        desk.key("F6", "F6", "Down", "space")
        wait_until("the box to be switched", lambda wanted=shown: panel.rows() == [(wanted, image)])
    desk.key("ctrl+1")
    desk.shot("drawn")
    desk.skip()
    desk.key("ctrl+s")
    desk.wait_prompt("Command:")
    wait_until("saved", lambda: "*" not in desk.title())
    saved = content(drawing).modelspace()
    parcel = saved.query("LWPOLYLINE POLYLINE").first
    check(parcel.dxf.layer == "Parcels" and saved.query("TEXT").first.dxf.text == "Lot 1", "what was drawn is saved")
    desk.skip()
    desk.key("alt+F4")
    check(desk.wait_exit() == 0, f"exit code {desk.program.returncode}")
