"""A desk with one screen: an X server, a window manager, the program in its window, and a hand on mouse and keys.

Nothing here sleeps for a fixed time: every wait is for a line of the program's log, a file or a pixel.
Ground is in drawing units (y up), places on the screen are pixels (y down).
"""
import math
import os
import re
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import time

LONGEST = 60  # seconds until a wait is given up; sanitizers are slow
SCREEN = (1920, 1080)
CANVAS = (1280, 700)
PROBE = ((0.3, 0.3), (0.7, 0.7))  # of the window's width and height: surely on the canvas


class Failure(Exception):
    """What was waited for did not come, or a check does not hold."""


def wait_until(what, test, longest=LONGEST):
    """The first true answer of `test`."""
    end = time.monotonic() + longest
    while True:
        answer = test()
        if answer:
            return answer
        if time.monotonic() > end:
            raise Failure(f"{what}: not within {longest} s")
        time.sleep(0.01)


def check(holds, text):
    if not holds:
        raise Failure(text)


class Picture:
    """Pixels, of a portable pixmap or of the file that the X server keeps its screen in."""

    def __init__(self, data):
        header = re.match(rb"P6\s+(\d+)\s+(\d+)\s+255\s", data[:99])
        if header:
            self.width, self.height = int(header[1]), int(header[2])
            self.start, self.line, self.step, self.red_first = header.end(), self.width * 3, 3, True
        else:
            words = struct.unpack(">25I", data[:100])
            self.width, self.height, self.line = words[4], words[5], words[12]
            check(words[11] == 32, f"{words[11]} bits a pixel")
            self.start, self.step, self.red_first = words[0] + 12 * words[19], 4, False
        self.bytes = data

    def at(self, x, y):
        start = self.start + int(y) * self.line + int(x) * self.step
        color = tuple(self.bytes[start:start + 3])
        return color if self.red_first else color[::-1]

    def count(self, box, test):
        """Pixels inside (left, top, right, bottom) whose colour passes."""
        left, top, right, bottom = (int(v) for v in box)
        return sum(test(*self.at(x, y)) for y in range(top, bottom) for x in range(left, right))


class View:
    """What the canvas shows: its place on the screen, centre, units a pixel, twist in radians."""

    def __init__(self, middle, center, unit, twist):
        self.middle, self.center, self.unit, self.twist = middle, center, unit, twist

    def pixel(self, ground):
        east, north = ground[0] - self.center[0], ground[1] - self.center[1]
        c, s = math.cos(self.twist), math.sin(self.twist)
        return (self.middle[0] + (east * c - north * s) / self.unit,
                self.middle[1] - (east * s + north * c) / self.unit)

    def ground(self, pixel):
        """Of the middle of a pixel."""
        right, up = (pixel[0] + 0.5 - self.middle[0]) * self.unit, (self.middle[1] - pixel[1] - 0.5) * self.unit
        c, s = math.cos(self.twist), math.sin(self.twist)
        return (self.center[0] + right * c + up * s, self.center[1] - right * s + up * c)


class Desk:
    """Use it as a context. `name` is where a failed journey leaves its screen and log."""

    def __init__(self, bin_folder, name, keep):
        self.bin, self.name, self.keep = os.path.abspath(bin_folder), name, keep
        self.folder = tempfile.mkdtemp(prefix="tarn-journey-")
        self.log_path = self.path("log.txt")
        self.mark = self.began = 0
        self.children = []
        self.program = None
        self.middle = None
        self.shots = 0
        self.away = False  # a dialog has had the focus
        self.options = ["--stats"]

    def path(self, *names):
        return os.path.join(self.folder, *names)

    def words(self, program):
        """What starts one of the programs."""
        return [os.path.join(self.bin, program)]

    def called(self, path):
        """A path as the program knows it."""
        return path

    # ---- Screen and program ---------------------------------------------------------------------
    def __enter__(self):
        read_end, write_end = os.pipe()
        self.children.append(subprocess.Popen(
            ["Xvfb", "-displayfd", str(write_end), "-screen", "0", f"{SCREEN[0]}x{SCREEN[1]}x24",
             "-fbdir", self.folder, "-nolisten", "tcp", "-noreset", "-r"], pass_fds=[write_end], stderr=subprocess.DEVNULL))
        os.close(write_end)
        with os.fdopen(read_end) as pipe:
            number = pipe.readline().strip()
        check(number, "no X server")
        self.environment = dict(os.environ, DISPLAY=":" + number, QT_QPA_PLATFORM="xcb", LANG="C.UTF-8",
                                HOME=self.folder, XDG_RUNTIME_DIR=self.folder, QT_SCALE_FACTOR="1")
        for name in ("WAYLAND_DISPLAY", "LC_ALL", "LC_MESSAGES", "LANGUAGE"):
            self.environment.pop(name, None)
        self.children.append(subprocess.Popen(["openbox", "--sm-disable"], env=self.environment,
                                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL))
        try:
            wait_until("window manager", lambda: self.run(["xdotool", "get_num_desktops"]).strip())
        except Failure:
            self.__exit__(None, None, None)
            raise
        return self

    def __exit__(self, kind, fault, trace):
        if kind and self.program:
            self.leave_traces()
        for child in reversed(self.children):
            if child.poll() is None:
                child.send_signal(signal.SIGTERM)
                try:
                    child.wait(10)
                except subprocess.TimeoutExpired:
                    child.kill()
                    child.wait()
        shutil.rmtree(self.folder, ignore_errors=True)

    def leave_traces(self):
        os.makedirs(self.keep, exist_ok=True)
        self.run(["import", "-window", "root", os.path.join(self.keep, self.name + ".png")])
        shutil.copy(self.log_path, os.path.join(self.keep, self.name + ".log"))
        print(f"screen and log: {self.keep}/{self.name}.*", file=sys.stderr)

    def run(self, words, data=False):
        done = subprocess.run(words, env=self.environment, capture_output=True, check=False)
        return done.stdout if data else done.stdout.decode("utf-8", "replace")

    def start(self, *files):
        """Starts the program and waits until it awaits a command; measures where its canvas is."""
        self.launch(*files)
        self.wait_prompt("Command:")
        self.run(["xdotool", "windowactivate", "--sync", self.window])
        if self.middle is None:
            self.calibrate()

    def launch(self, *files):
        """Starts the program and waits for its window."""
        open(self.log_path, "ab").close()
        self.mark = os.path.getsize(self.log_path)
        self.program = subprocess.Popen(
            [*self.words("cadhost"), "--profile", self.called(self.path("profile")), "--log",
             self.called(self.log_path), *self.options, "--size", f"{CANVAS[0]}x{CANVAS[1]}", *files],
            env=self.environment, cwd=self.folder)
        self.children.append(self.program)
        self.window = self.wait_window()

    def wait_window(self):
        """The first start reads all the fonts of the machine; whoever ended before is named."""
        def look():
            ended = [f"{child.args[0]} ({child.returncode})" for child in self.children[:2] if child.poll() is not None]
            check(not ended, "ended: " + ", ".join(ended))
            check(self.program.poll() is None, f"the program ended with {self.program.returncode}")
            return self.run(["xdotool", "search", "--onlyvisible", "--name", "^Tarn Image"]).split()
        try:
            return wait_until("window", look, 3 * LONGEST)[0]
        except Failure as fault:
            hidden = self.run(["xdotool", "search", "--name", "^Tarn Image"]).split()
            raise Failure(f"{fault}; windows that are not shown: {hidden}; the log says:\n"
                          + self.log().decode("utf-8", "replace")[-1500:]) from None

    def calibrate(self):
        """Where the canvas stands: the program itself names the ground under two places."""
        shape = dict(re.findall(r"(\w+)=(\d+)", self.run(
            ["xdotool", "getwindowgeometry", "--shell", self.window])))
        pixels, grounds = [], []
        for part in PROBE:
            pixel = (int(shape["X"]) + int(int(shape["WIDTH"]) * part[0]),
                     int(shape["Y"]) + int(int(shape["HEIGHT"]) * part[1]))
            self.enter("ID", "Point:")
            self.click_pixel(pixel)
            found = self.wait_line(r"X = (\S+)  Y = (\S+)  Z = 0")
            pixels.append(pixel)
            grounds.append((float(found[1]), float(found[2])))
            self.wait_prompt("Command:")
        unit = (grounds[1][0] - grounds[0][0]) / (pixels[1][0] - pixels[0][0])
        center = self.point_variable("VIEWCTR")
        size = self.point_variable("SCREENSIZE")
        check(size == CANVAS, f"the canvas has {size} pixels")
        self.middle = (pixels[0][0] + 0.5 + (center[0] - grounds[0][0]) / unit,
                       pixels[0][1] + 0.5 - (center[1] - grounds[0][1]) / unit)

    def title(self):
        return self.run(["xdotool", "getwindowname", self.window]).strip()

    def wait_exit(self):
        wait_until("end of the program", lambda: self.program.poll() is not None)
        return self.program.returncode

    # ---- Log ------------------------------------------------------------------------------------
    def log(self):
        """What came since the last line that was waited for."""
        with open(self.log_path, "rb") as text:
            text.seek(self.mark)
            return text.read()

    def wait_line(self, pattern):
        """Waits for a whole line; what comes after it is looked at next."""
        regular = re.compile(rb"^(?:" + pattern.encode() + rb")\r?\n", re.M)

        def look():
            found = regular.search(self.log())
            if found:
                self.mark += found.end()
            return found
        try:
            found = wait_until(f"line {pattern!r}", look)
        except Failure as fault:
            raise Failure(f"{fault}; the log ends:\n" + self.log().decode("utf-8", "replace")[-1500:]) from None
        return [group.decode() if group is not None else None for group in (found[0], *found.groups())]

    def wait_prompt(self, text):
        self.wait_line("> " + re.escape(text) + ".*")

    def wait_redraw(self):
        return self.wait_line(r'\{"ms":.*\}')

    def redraws(self, since):
        """Regenerations and redraws of single entities since that mark."""
        with open(self.log_path, "rb") as text:
            text.seek(since)
            return len(re.findall(rb'^\{"ms":', text.read(), re.M))

    def seen(self):
        """What came since the last enter()."""
        with open(self.log_path, "rb") as text:
            text.seek(self.began)
            return text.read().decode("utf-8", "replace")

    def skip(self):
        """Forgets what came until now; gives the mark."""
        self.mark += len(self.log())
        return self.mark

    # ---- Keys -----------------------------------------------------------------------------------
    def type(self, text, *keys):
        """Types, then presses keys."""
        words = ["xdotool", "type", "--delay", "1", "--args", "1", "--", text] if text else ["xdotool"]
        self.run(words + (["key", "--delay", "1", *keys] if keys else []))

    def key(self, *names):
        self.run(["xdotool", "key", "--delay", "1", *names])

    def enter(self, line, prompt="Command:"):
        """Types a line and waits for the prompt that follows."""
        if self.away:
            # Keys between the end of a dialog and the return of the focus go astray.
            wait_until("focus", lambda: self.run(["xdotool", "getactivewindow"]).strip() == self.window)
            self.away = False
        self.began = self.skip()
        self.type(line, "Return")
        if prompt is not None:
            self.wait_prompt(prompt)

    def read_only(self, name):
        self.skip()
        self.type("SETVAR " + name, "Return")
        found = self.wait_line(name + r" = (.*) \(read only\)")
        self.wait_prompt("Command:")
        return found[1]

    def point_variable(self, name):
        return tuple(float(v) for v in self.read_only(name).split(",")[:2])

    # ---- Mouse ----------------------------------------------------------------------------------
    def view(self):
        """The view of now; asks the program, so no command may wait."""
        return View(self.middle, self.point_variable("VIEWCTR"),
                    float(self.read_only("VIEWSIZE")) / CANVAS[1], float(self.read_only("VIEWTWIST")))

    def move(self, pixel):
        self.run(["xdotool", "mousemove", str(round(pixel[0])), str(round(pixel[1]))])

    def click_pixel(self, pixel, button=1, times=1):
        self.run(["xdotool", "mousemove", str(round(pixel[0])), str(round(pixel[1])), "click", "--repeat",
                  str(times), "--delay", "40", str(button)])

    def drag(self, start, end, button=1, steps=6):
        words = ["xdotool", "mousemove", str(round(start[0])), str(round(start[1])), "mousedown", str(button)]
        for i in range(1, steps + 1):
            words += ["mousemove", str(round(start[0] + (end[0] - start[0]) * i / steps)),
                      str(round(start[1] + (end[1] - start[1]) * i / steps))]
        self.run(words + ["mouseup", str(button)])

    def wheel(self, pixel, notches):
        """Up zooms in."""
        self.move(pixel)
        self.run(["xdotool", "click", "--repeat", str(abs(notches)), "--delay", "5", "4" if notches > 0 else "5"])

    # ---- Pictures -------------------------------------------------------------------------------
    def picture(self):
        """The screen at this moment."""
        with open(self.path("Xvfb_screen0"), "rb") as screen:
            return Picture(screen.read())

    def wait_colors(self, places):
        """Waits until the screen has these colours: (place, (r, g, b)) each, within a few levels."""
        def compare():
            picture = self.picture()
            return [(place, wanted, picture.at(*place)) for place, wanted in places
                    if max(abs(a - b) for a, b in zip(picture.at(*place), wanted)) > 6]
        last = []

        def good():
            last[:] = compare()
            return not last
        try:
            wait_until("colours", good, 10)
        except Failure:
            raise Failure(f"colours (place, wanted, there): {last}") from None

    def shot(self, text):
        """Keeps the screen for a human to look at, when asked to by JOURNEY_PICTURES."""
        folder = os.environ.get("JOURNEY_PICTURES")
        if folder:
            self.shots += 1
            self.run(["import", "-window", "root", os.path.join(folder, f"{self.name}-{self.shots}-{text}.png")])
