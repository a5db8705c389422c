"""A journey of conversion: two images become cloud-optimised ones by the form; one of them comes into the drawing."""
import json
import os
import subprocess

from desk import check, wait_until
from ground import QUARTERS, COLORS, answer_dialog, dialog, make_image

SIZE = (3000, 2400)


def convert(desk):
    """The form by keys: a reason why not, then a folder; the report; a pyramid made at the first opening."""
    image, photo, target = make_image(desk), desk.path("photo.tif"), desk.path("converted")
    subprocess.run([os.path.join(desk.bin, "tarnortho"), photo, *(str(n) for n in SIZE), "0.1"], check=True)
    os.mkdir(target)
    desk.start()
    desk.enter("ImageConversion", None)
    form = dialog(desk, "Image conversion")
    desk.run(["xdotool", "windowactivate", "--sync", form])
    desk.key("Tab", "space")
    answer_dialog(desk, "Add files", f'"{image}" "{photo}"', None)
    desk.run(["xdotool", "windowactivate", "--sync", form])
    # Behind the button: folder, removal, the format, whose second is cloud-optimised.
    desk.key("Tab", "Tab", "Tab", "Down", "Return")
    desk.shot("reason")
    check(not os.path.exists(desk.path("ortho.tif.ovr")), "nothing has begun")
    desk.key(*["Tab"] * 8)
    desk.type(target, "Return")
    outputs = [os.path.join(target, name) for name in ("ortho.tif", "photo.tif")]
    wait_until("outputs", lambda: all(os.path.exists(path) for path in outputs))
    desk.wait_line(r'\{.*"progress":"Image conversion","reached":1,.*\}')
    desk.shot("report")
    desk.key("Escape")
    desk.wait_prompt("Command:")
    for path, source in zip(outputs, (image, photo)):
        found, wanted = (json.loads(desk.run(["gdalinfo", "-json", "-checksum", name])) for name in (path, source))
        check(found["metadata"]["IMAGE_STRUCTURE"]["LAYOUT"] == "COG", f"{path}: no cloud-optimised file")
        for key in ("size", "geoTransform"):
            check(found[key] == wanted[key], f"{path}: {key} {found[key]}, not {wanted[key]}")
        check([band["checksum"] for band in found["bands"]] == [band["checksum"] for band in wanted["bands"]],
              f"{path}: other pixels")

    # What was converted needs no pyramid; the photo has one made beside it, of its reduced levels.
    desk.enter("addImage", None)
    answer_dialog(desk, "Open", outputs[0])
    desk.enter("ZOOM E")
    view = desk.view()
    desk.wait_colors([(view.pixel(at), color) for at, color in zip(QUARTERS, COLORS)])
    desk.enter("addImage", None)
    answer_dialog(desk, "Open", photo)
    check(len(os.listdir(target)) == 2, f"beside the conversions: {os.listdir(target)}")
    levels = json.loads(desk.run(["gdalinfo", "-json", photo]))["bands"][0]["overviews"]
    check([level["size"] for level in levels][:1] == [[SIZE[0] // 2, SIZE[1] // 2]], f"levels {levels}")
    desk.shot("added")
