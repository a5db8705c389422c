#!/usr/bin/env python3
"""The same work by the programs of this system and by those for Windows, on the same files: what they leave is equal.

usage: bothsystems.py OWN_BIN WINDOWS_BIN EMULATOR DRIVE_D WORK_FOLDER [STORY...]

Each story runs twice, in a folder of its own on either side; the Windows side stands on drive D. Pictures may differ by
1 of 255 in a value, numbers in texts by one part in a thousand million.
"""
import difflib
import glob
import itertools
import math
import os
import re
import shutil
import signal
import struct
import subprocess
import sys
import time

CHINESE = "影像资料"
IMAGE = CHINESE + "/正射 一.tif"
ORIGIN = (40500000.0, 3512600.0)
NUMBER = re.compile(r"-?\d+\.\d+(?:[eE][-+]?\d+)?|-?\d+[eE][-+]?\d+")
TOLERANCE = 1e-9
SKIP = 77
TIME = 1700000000

POINTS = "\n".join("%d %d %.6f %.6f" % (x, -y, 40500000 + 0.1 * x + 1e-6 * x * y, 3512600 - 0.1 * y + 2e-6 * x * x)
                   for x in (10, 700, 1390) for y in (20, 500, 980)) + "\n"


class Side:
    """One system: how its programs are started, and what the work folder is called there."""

    def __init__(self, own_bin, bin_folder, emulator, folder, called, suffix):
        self.tarnortho = os.path.join(own_bin, "tarnortho")
        self.bin, self.emulator, self.folder, self.called, self.suffix = bin_folder, emulator, folder, called, suffix

    def path(self, name):
        return os.path.join(self.folder, name)

    def name(self, name):
        """The full name that a user of that system types."""
        full = self.called + "/" + name
        return full.replace("/", "\\") if self.emulator else full

    def words(self, program, arguments):
        return self.emulator + [os.path.join(self.bin, program + self.suffix)] + arguments

    def run(self, program, arguments, expected=0):
        done = subprocess.run(self.words(program, arguments), cwd=self.folder, stdin=subprocess.DEVNULL, capture_output=True, timeout=280)
        text = done.stdout.decode("utf-8") + done.stderr.decode("utf-8")
        if done.returncode != expected:
            raise AssertionError("%s ended with %d:\n%s" % (program + self.suffix, done.returncode, text))
        if "\r" in text:
            raise AssertionError("%s writes lines of another system: %r" % (program, text))
        return self.neutral(text)

    def test(self, program, case, folder):
        """One case of a test program, which leaves its files in a folder of the side."""
        os.makedirs(self.path(folder))
        words = self.emulator + [os.path.join(os.path.dirname(self.bin), "tests", program + self.suffix),
                                 "--gtest_brief=1", "--gtest_filter=" + case]
        done = subprocess.run(words, cwd=self.folder, stdin=subprocess.DEVNULL, capture_output=True, timeout=280,
                              env={**os.environ, "TARN_TEST_FOLDER": self.called + "/" + folder})
        text = done.stdout.decode("utf-8") + done.stderr.decode("utf-8")
        if done.returncode != 0 or "PASSED" not in text:
            raise AssertionError("%s, %s:\n%s" % (program, case, text))

    def cadhost(self, arguments, expected=0):
        return self.run("cadhost", ["--headless", "--profile", self.name("profile")] + arguments, expected)

    def neutral(self, text):
        """Without what must differ: the folder's name, the direction of separators, times."""
        text = text.replace("\\\\", "/").replace("\\", "/")
        text = text.replace(self.called, "@").replace(self.folder, "@")
        # A drawing's note of an image begins with a sum over its full name.
        text = re.sub(r"^[0-9a-f]{16} (?=\d+$)", "# ", text, flags=re.MULTILINE)
        # Another library for deflating makes other bytes of the same pixels.
        text = re.sub(r'"bytes":[1-9]\d*', '"bytes":#', text)
        # So does the name under which it keeps an image's place.
        text = re.sub(r"^P[0-9A-F]{16}$", "P#", text, flags=re.MULTILINE)
        return re.sub(r'"(seconds|ms)":[\d.]+', r'"\1":0', text)


def cloud():
    """A small LAS file: version 1.2, points of form 2."""
    points = [(i * 37 % 2000, i * 91 % 1500, i % 300) for i in range(4000)]
    head = bytearray(227)
    head[0:4] = b"LASF"
    head[24:26] = bytes((1, 2))
    struct.pack_into("<HII", head, 94, 227, 227, 0)
    head[104] = 2
    struct.pack_into("<HI", head, 105, 26, len(points))
    struct.pack_into("<6d", head, 131, 0.05, 0.05, 0.05, ORIGIN[0], ORIGIN[1] - 75, 0)
    struct.pack_into("<6d", head, 179, ORIGIN[0] + 100, ORIGIN[0], ORIGIN[1], ORIGIN[1] - 75, 15, 0)
    body = b"".join(struct.pack("<iiiHBBBBHHHH", x, y, z, 0, 0, 0, 0, 0, 0, x * 30, y * 40, z * 200) for x, y, z in points)
    return bytes(head) + body


def prepare(side):
    shutil.rmtree(side.folder, ignore_errors=True)
    os.makedirs(side.path(CHINESE))
    os.makedirs(side.path("tifimage"))
    subprocess.run([side.tarnortho, side.path(IMAGE), "1400", "1000", "0.1"], check=True, stdout=subprocess.DEVNULL)
    subprocess.run([side.tarnortho, side.path("tifimage/image.tif"), "900", "700", "0.1"], check=True, stdout=subprocess.DEVNULL)
    for name in (IMAGE, "tifimage/image.tif"):
        # A pyramid remembers when its image was written.
        os.utime(side.path(name), (TIME, TIME))
    with open(side.path("点云.las"), "wb") as out:
        out.write(cloud())
    with open(side.path("control.txt"), "w", encoding="utf-8") as out:
        out.write(POINTS)


def view(x, y, height, twist=0):
    return ["--size", "640x400", "--view", "%r,%r,%r,%r" % (ORIGIN[0] + x, ORIGIN[1] + y, height, twist)]


def script(side, lines):
    with open(side.path("日程.scr"), "w", encoding="utf-8", newline="\n") as out:
        out.write("\n".join(lines) + "\n")
    return ["--script", side.name("日程.scr")]


def view_to_pixels(side):
    """Every reduction, turned and not; the pyramid is built at the first of them."""
    texts = []
    for number, (x, y, height, twist) in enumerate(((70, -50, 110, 0), (40, -30, 20, 0), (90, -60, 37.3, 30),
                                                    (20, -80, 3, -75), (70, -50, 400, 180))):
        texts.append(side.cadhost(view(x, y, height, twist) + ["--picture", side.name("view%d.png" % number), side.name(IMAGE)]))
    return texts


def drawing_by_script(side):
    """Commands of every kind around an image in a folder with a Chinese name; saved, opened, saved again. Letters stand
    outside the pictures: each system draws its own."""
    lines = ["LAYER M 地块 C 1 地块", "", "LINE %r,%r %r,%r" % (ORIGIN[0] + 5, ORIGIN[1] - 5, ORIGIN[0] + 130, ORIGIN[1] - 90), "",
             "addImage", side.name(IMAGE), "", "CIRCLE %r,%r 22.5" % (ORIGIN[0] + 60, ORIGIN[1] - 40),
             "SetImageClarityRatio", "2", "TEXT %r,%r 6 15 说明 text" % (ORIGIN[0] - 900, ORIGIN[1] - 900),
             "COPY L", "", "0,0 30,-10", "", "UNDO 1", "EraseInvalidImage", "REGEN", "SAVEAS", side.name("图纸.dxf")]
    first = side.cadhost(view(70, -50, 110) + script(side, lines) + ["--picture", side.name("saved.png")])
    again = side.cadhost(view(50, -40, 60, 20) + ["--picture", side.name("opened.png"), "--save", side.name("again.dxf"),
                                                  side.name("图纸.dxf")])
    return [first, again]


def drive_and_separators(side):
    """One file by each of its names, from drive D as from any folder."""
    names = [side.name("tifimage/image.tif"), "tifimage/image.tif", side.called + "/tifimage/image.tif"]
    if side.emulator:
        names += ["tifimage\\image.tif", side.called.lower() + "\\tifimage/image.tif"]
    for number, name in enumerate(names):
        picture = "named%d.png" % number
        side.cadhost(view(45, -35, 75) + ["--picture", picture, name])
        if number > 0:
            same_picture(side.path("named0.png"), side.path(picture))
            os.remove(side.path(picture))
    return []


def conversion(side):
    """Each format, by command line; what is there already is known again."""
    texts = []
    for kind in ("geotiff", "cog", "img", "jpeg"):
        texts.append(side.run("tarnconvert", ["--format", kind, "--out", side.name("转换/" + kind), side.name(CHINESE)]))
        texts.append(side.run("tarnconvert", ["--format", kind, "--out", side.name("转换/" + kind), side.name(CHINESE)]))
    return texts


def control_points(side):
    texts = [side.run("tarnpoints", ["--fit", method, "control.txt", "--at", "700,-500"])
             for method in ("affine", "helmert", "linear", "quadratic")]
    texts.append(side.run("tarnpoints", [side.name("control.txt"), side.name("控制.points")]))
    return texts


def plot(side, device, name):
    return ["PLOT", "Yes", "Model", device, "A4", "Millimeters", "Landscape", "0", "Extents", "Fit", "Center", "100",
            side.name(name), "No", "Yes"]


def working_day(side):
    """Images from a folder with a Chinese name, both settings, the list, a drawing kept and opened, plots, conversion."""
    images = [side.name("资料/%s.tif" % name) for name in ("甲 乙", "丙é")]
    os.makedirs(side.path("资料"))
    for number, image in enumerate(("资料/甲 乙.tif", "资料/丙é.tif")):
        subprocess.run([side.tarnortho, side.path(image), str(1400 - 500 * number), "800", "0.1"], check=True,
                       stdout=subprocess.DEVNULL)
        os.utime(side.path(image), (TIME, TIME))
    panel = ["UICLICK 1131 Click 119 " + images[1], "UICLICK 1131 COmmand 32784", "UICLICK 1131 Tip 119 " + images[0],
             "UICLICK 1131 CHeck 119 " + images[0], "UICLICK 1131 List 119"]
    lines = ["SETVAR LOCALE CHS", "addImage", *images, "", "SetImageClarityRatio", "2", "SetImageOffsetRatio", "0.5",
             "ZOOM E", "OpenImageList", *panel, "LIST ALL", "", "SAVEAS", side.name("日.dxf"), "CLOSE",
             "OPEN", side.name("日.dxf"), "UICLICK 1131 List 119", "ZOOM E", "SetImageClarityRatio", "",
             *plot(side, "PNG", "日.png"), *plot(side, "PDF", "日.pdf"),
             "ImageConversion", side.name("资料"), "", *[""] * 8, side.name("成果")]
    text = side.cadhost(view(70, -50, 110) + script(side, lines) + ["--picture", side.name("day.png")])
    # Until it is chosen it is the system's.
    return [text.replace('LOCALE <"CHS">', 'LOCALE <"ENU">')]


def rectification(side):
    """Nine points from a file, in the real dialog: the image takes its place, is exported and kept in a drawing, which
    is opened and saved again."""
    side.test("rectify_dialog_test", "WholeWay.*", "纠正")
    return [side.cadhost(["--save", side.name("rectified.dxf"), side.name("纠正/纠正.dxf")])]


def point_cloud(side):
    lines = ["-POINTCLOUDATTACH", side.name("点云.las"), "0,0", "1", "0", "REGEN"]
    return [side.cadhost(view(50, -37, 90) + script(side, lines) + ["--picture", side.name("cloud.png"), "--save",
                                                                    side.name("cloud.dxf")])]


def modules(side):
    """Both modules leave and come back, twice, and what they did goes on."""
    image, adapter = os.path.join(side.bin, "image.arx"), os.path.join(side.bin, "adapter_autocad.arx")
    if side.emulator:
        image, adapter = ("Z:" + image).replace("/", "\\"), "Z:" + adapter
    lines = ["ARX U image.arx", "ARX U adapter_autocad.arx", "ARX ?", "ARX L", adapter, "ARX L", image, "ARX ?"] * 2
    lines += ["addImage", side.name(IMAGE), "", "ZOOM E", "EraseInvalidImage"]
    text = side.cadhost(view(70, -50, 110) + script(side, lines) + ["--picture", side.name("modules.png")])
    return [text.replace("Z:" + side.bin, "%").replace(side.bin, "%")]


def killed(side):
    """Ended in the middle of a pyramid's build, three times; nothing is left over and the next start is right."""
    subprocess.run([side.tarnortho, side.path("large.tif"), "6000", "4000", "0.1"], check=True, stdout=subprocess.DEVNULL)
    os.utime(side.path("large.tif"), (TIME, TIME))
    work = ["--picture", side.name("large.png")] + view(300, -200, 440) + ["large.tif"]
    start = time.monotonic()
    text = side.cadhost(work)
    whole = time.monotonic() - start
    pyramid = side.path("large.tif.ovr")
    stopped = 0
    for part in (0.3, 0.6, 0.9):
        os.remove(pyramid)
        # A group of its own: whatever starts the program ends with it.
        program = subprocess.Popen(side.words("cadhost", ["--headless", "--profile", side.name("profile")] + work),
                                   cwd=side.folder, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.STDOUT, start_new_session=True)
        time.sleep(part * whole)
        if program.poll() is None:
            os.killpg(program.pid, signal.SIGKILL)
            stopped += 1
        program.wait()
        again = side.cadhost(work)
        if "large.tif done" not in again and not os.path.exists(pyramid):
            raise AssertionError("no pyramid after the program was ended:\n" + again)
    if stopped == 0:
        raise AssertionError("the program was done before it could be ended")
    return [text]


def bad_input(side):
    """What is missing or no image is named in a sentence, and the program goes on."""
    with open(side.path("坏.tif"), "wb") as out:
        out.write(b"II*\0 no image")
    texts = [side.cadhost(view(0, 0, 10) + [side.name("没有.tif"), side.name("坏.tif")], expected=1),
             side.run("tarnconvert", [side.name("坏.tif")], expected=1),
             side.run("tarnpoints", ["--fit", "affine", side.name("没有.txt")], expected=1)]
    # The system's own words for a missing file.
    return [re.sub(r"(没有\.txt: cannot open: ).*", r"\1", text) for text in texts]


STORIES = [view_to_pixels, drawing_by_script, drive_and_separators, conversion, control_points, point_cloud, modules,
           working_day, rectification, bad_input, killed]


def frames(path):
    done = subprocess.run(["identify", "-quiet", "-format", "%n\n", path], capture_output=True, text=True, check=True)
    return int(done.stdout.split()[0])


def same_picture(own, other):
    """Level by level."""
    if frames(own) != frames(other):
        raise AssertionError("%s and %s have not as many levels" % (own, other))
    for level in range(frames(own)):
        names = ["%s[%d]" % (name, level) for name in (own, other)]
        done = subprocess.run(["compare", "-quiet", "-metric", "PAE"] + names + ["null:"], capture_output=True, text=True)
        worst = re.match(r"[\d.e+]+ \(([\d.e+-]+)\)", done.stderr)
        if done.returncode > 1 or not worst or float(worst.group(1)) > 1.001 / 255:
            raise AssertionError("%s and %s differ: %s" % (*names, done.stderr.strip()))


def same_pages(own, other):
    """Page by page, as poppler draws them."""
    drawn = []
    for path in (own, other):
        subprocess.run(["pdftoppm", "-r", "100", "-png", path, path + "-page"], check=True)
        drawn.append(sorted(glob.glob(glob.escape(path) + "-page*.png")))
    if len(drawn[0]) != len(drawn[1]):
        raise AssertionError("%s and %s have not as many pages" % (own, other))
    for pages in zip(*drawn):
        same_picture(*pages)
    for path in sum(drawn, []):
        os.remove(path)


def same_text(what, own, other):
    """Words equal, numbers nearly."""
    if NUMBER.sub("#", own) != NUMBER.sub("#", other):
        lines = difflib.unified_diff(own.split("\n"), other.split("\n"), "here", "there", n=2, lineterm="")
        raise AssertionError("%s differs:\n%s" % (what, "\n".join(itertools.islice(lines, 60))))
    for a, b in zip(NUMBER.findall(own), NUMBER.findall(other)):
        if not math.isclose(float(a), float(b), rel_tol=TOLERANCE, abs_tol=TOLERANCE):
            raise AssertionError("%s: %s here, %s there" % (what, a, b))


def files_of(side):
    found = set()
    for folder, _, names in os.walk(side.folder):
        for name in names:
            path = os.path.relpath(os.path.join(folder, name), side.folder)
            if not path.startswith("profile") and not path.endswith(".scr"):
                found.add(path)
    return found


def same_file(name, own, other):
    """By bytes, else as pictures or texts; true when by bytes."""
    with open(own.path(name), "rb") as a, open(other.path(name), "rb") as b:
        ours, theirs = a.read(), b.read()
    if ours == theirs:
        return True
    if name.endswith((".png", ".tif", ".ovr", ".jpg")):
        same_picture(own.path(name), other.path(name))
    elif name.endswith((".dxf", ".points", ".txt", ".json", ".prj", ".tfw", ".jgw", ".igw", ".FTWx", ".xml")):
        same_text(name, own.neutral(ours.decode("utf-8")), other.neutral(theirs.decode("utf-8")))
    elif name.endswith(".pdf"):
        same_pages(own.path(name), other.path(name))
    elif name.endswith(".img"):
        for side in (own, other):
            subprocess.run(["gdal_translate", "-q", side.path(name), side.path(name) + ".tif"], check=True)
        same_picture(own.path(name) + ".tif", other.path(name) + ".tif")
        for side in (own, other):
            os.remove(side.path(name) + ".tif")
    else:
        raise AssertionError("%s differs" % name)
    return False


def compare(own, other, seen):
    names = files_of(own)
    missing = names ^ files_of(other)
    if missing:
        raise AssertionError("on one side only: " + ", ".join(sorted(missing)))
    new = sorted(names - seen)
    equal = sum(same_file(name, own, other) for name in new)
    return len(new), equal, names


def main(own_bin, windows_bin, emulator, drive, work, *names):
    if not os.path.exists(os.path.join(own_bin, "cadhost")):
        print("no programs of this system in %s: nothing to compare with" % own_bin)
        return SKIP
    # The Windows of the tests is a Chinese one, and programs speak their system's language.
    os.environ.update(LC_ALL="C.UTF-8", LANGUAGE="zh_CN")
    own = Side(own_bin, own_bin, [], os.path.join(work, "own"), os.path.join(work, "own"), "")
    other = Side(own_bin, windows_bin, [emulator], os.path.join(drive, "own"), "D:/own", ".exe")
    for side in (own, other):
        prepare(side)
    failed, seen = 0, set()
    for story in [each for each in STORIES if not names or each.__name__ in names]:
        try:
            for number, (a, b) in enumerate(zip(story(own), story(other))):
                same_text("%s, text %d" % (story.__name__, number), a, b)
            count, equal, seen = compare(own, other, seen)
            print("%s: as here (%d new files, %d of them byte for byte)" % (story.__name__, count, equal), flush=True)
        except (AssertionError, UnicodeDecodeError, OSError, subprocess.SubprocessError) as reason:
            failed += 1
            print("%s: %s" % (story.__name__, reason), flush=True)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
