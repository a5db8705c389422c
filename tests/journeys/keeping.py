"""A journey of keeping: save, close, open again, be asked, lose the program, get the changes back."""
import os
import signal

from desk import check, wait_until
from ground import BACKGROUND, answer_dialog, content, dialog, expect_quarters, make_image, save


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
    desk.enter("SETVAR SAVETIME 1")
    desk.enter("CIRCLE 5,5 2")

    # A minute later there is a copy; the program goes, and the next start has the changes.
    def copies():
        return [name for _, _, names in os.walk(desk.path("profile", "autosave")) for name in names if name.endswith(".facts")]
    wait_until("copy", copies, 100)
    desk.program.send_signal(signal.SIGKILL)
    desk.wait_exit()
    desk.launch()
    box = dialog(desk, "Tarn Image")
    desk.run(["xdotool", "windowactivate", "--sync", box])
    desk.shot("recovery")
    desk.key("Return")
    desk.wait_line("kept.dxf recovered.*")
    desk.wait_prompt("Command:")
    check(desk.title().endswith("kept.dxf*"), desk.title())
    desk.enter("ZOOM E")
    save(desk)
    check(sorted(entity.dxftype() for entity in content(drawing).modelspace()) == ["CADIMAGE", "CIRCLE", "LINE"], "all is back")
    desk.shot("recovered")

    # Changes that are discarded at the end go, and so does the window.
    kept = open(drawing, "rb").read()
    desk.enter("CIRCLE 50,5 2")
    desk.key("ctrl+q")
    desk.run(["xdotool", "windowactivate", "--sync", dialog(desk, "Tarn Image")])
    desk.key("alt+d")
    check(desk.wait_exit() == 0, f"exit code {desk.program.returncode}")
    check(not copies(), f"copies are left: {copies()}")
    check(open(drawing, "rb").read() == kept, "discarded changes were saved")
