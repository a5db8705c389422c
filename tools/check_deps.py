#!/usr/bin/env python3
"""Checks every #include of the repository against tools/deps.txt, and that what differs from one
operating system to another stays in the folders made for it.

Prints one line a fault and exits 1 when there is any. Files under _image/ that stand in no folder
belong to one of two rooms: the entity files (the entity and what it needs) and the shell files.
"""
import os
import re
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
ENTITY_FILES = ("cadimage", "adskdmgr", "docdata", "displaysettings", "moduleglobals", "settarnprogress",
                "hostcommand", "updateimagethread")
LIBRARIES = (
    (re.compile(r"^(gdal|cpl_|ogr|gdal_)"), "GDAL"),
    (re.compile(r"^(jpeglib|jerror|jmorecfg|turbojpeg)"), "JPEG"),
    (re.compile(r"^sqlite3"), "SQLite"),
    (re.compile(r"^Eigen/"), "Eigen"),
    (re.compile(r"^curl/"), "libcurl"),
    (re.compile(r"^zlib"), "zlib"),
    (re.compile(r"^(QtSvg/|QSvg)"), "QtSvg"),
    (re.compile(r"^(elfutils|dwarf|libelf)"), "libdw"),
)
QT_WIDGETS = re.compile(
    r"^(QtWidgets/|Q(Application|Widget|MainWindow|Dialog|DockWidget|Label|LineEdit|PlainTextEdit|"
    r"StatusBar|MenuBar|Menu|Action|ToolBar|TreeWidget|FileDialog|MessageBox|PushButton|CheckBox|"
    r"ComboBox|TableWidget|ProgressBar|Layout|VBoxLayout|HBoxLayout|GridLayout|Splitter|Completer)$)")
QT_GUI = re.compile(
    r"^(QtGui/|Q(GuiApplication|Painter|PainterPath|Image|Pixmap|Color|Font|FontMetrics|FontMetricsF|"
    r"FontDatabase|Pen|Brush|Transform|Polygon|PolygonF|PdfWriter|TextDocument|TextBlock|Icon|Screen|Window|"
    r"KeyEvent|MouseEvent|WheelEvent|DropEvent|DragEnterEvent|Cursor|KeySequence)$)")
# Where systems may be told apart and called.
SYSTEM_ROOMS = ("base", "host", "commoncode/crashreport")
CONDITION = re.compile(r"^\s*#\s*(if|ifdef|ifndef|elif)\b")
SYSTEM_MACROS = re.compile(
    r".*\b(_WIN32|_WIN64|WIN32|__linux__|linux|__unix__|unix|__APPLE__|"
    r"__MINGW32__|__CYGWIN__|_MSC_VER|Q_OS_\w+|Q_CC_\w+)\b")
SYSTEM_HEADERS = re.compile(
    r"^((sys|arpa|netinet|linux)/.*|(unistd|fcntl|dlfcn|dirent|poll|pthread|semaphore|pwd|signal|spawn|termios|"
    r"execinfo|link|windows|winsock2|ws2tcpip|shlobj|shellapi|io|direct|process|dbghelp|aclapi|tlhelp32|psapi)\.h)$",
    re.IGNORECASE)


CMAKE_SYSTEMS = re.compile(r"^[^#]*\b(WIN32|MINGW|UNIX|MSVC|APPLE|CMAKE_SYSTEM_NAME)\b")


def read_rules():
    rules, order = {}, []
    with open(os.path.join(ROOT, "tools", "deps.txt"), encoding="utf-8") as text:
        for line in text:
            line = line.split("#")[0].strip()
            if not line:
                continue
            room, rest = line.split(":", 1)
            bracket = re.search(r"\[(.*)\]", rest)
            libraries = bracket.group(1).split() if bracket else []
            named = re.sub(r"\[.*\]", "", rest).split()
            for name in named:
                if name not in order and not any(o.startswith(name + "/") for o in order):
                    if os.path.isdir(os.path.join(ROOT, name)):
                        sys.exit(f"tools/deps.txt: {room} names {name}, which does not stand above it")
            rules[room] = (set(named), libraries)
            order.append(room)
    return rules


def room_of(path, rules):
    if path.startswith("_image/") and path.count("/") == 1:
        name = path.split("/")[1]
        return "_image/entity" if name.startswith(ENTITY_FILES) else "_image/shell"
    found = ""
    for room in rules:
        if path.startswith(room + "/") and len(room) > len(found):
            found = room
    return found


def resolve(name, includer):
    """The repository path of an included file, or None for one from outside."""
    for base in ("", "host/inc", os.path.dirname(includer)):
        candidate = os.path.normpath(os.path.join(base, name))
        if os.path.isfile(os.path.join(ROOT, candidate)):
            return candidate
    return None


def library_fault(name, libraries):
    bare = os.path.basename(name) if name.endswith(".h") else name
    for pattern, library in LIBRARIES:
        if pattern.match(name) or pattern.match(bare):
            return None if library in libraries else library
    if QT_WIDGETS.match(name):
        return None if "QtWidgets" in libraries else "Qt Widgets"
    if QT_GUI.match(name):
        return None if {"QtGui", "QtWidgets"} & set(libraries) else "Qt Gui"
    if re.match(r"^(Qt[A-Z]|Q[A-Z])", name) and "no" in libraries:
        return "Qt"
    return None


def faults_of(path, rules):
    room = room_of(path, rules)
    if not room:
        yield f"{path}: stands in no room of tools/deps.txt"
        return
    allowed, libraries = rules[room]
    may_know_system = room.startswith(SYSTEM_ROOMS)
    with open(os.path.join(ROOT, path), encoding="utf-8") as text:
        is_condition = False
        for number, line in enumerate(text, 1):
            is_condition = bool(CONDITION.match(line)) or (is_condition and continued)
            continued = line.endswith("\\\n")
            system = SYSTEM_MACROS.match(line) if is_condition and not may_know_system else None
            if system:
                yield f"{path}:{number}: {room} may not ask for the system ({system.group(1)})"
            match = re.match(r'\s*#\s*include\s*[<"]([^>"]+)[>"]', line)
            if not match:
                continue
            name = match.group(1)
            target = resolve(name, path)
            if target is None:
                if not may_know_system and SYSTEM_HEADERS.match(name):
                    yield f"{path}:{number}: {room} may not call the system ({name})"
                library = library_fault(name, libraries)
                if library:
                    yield f"{path}:{number}: {room} may not use {library} ({name})"
                continue
            other = room_of(target, rules)
            if other != room and not any(other == a or other.startswith(a + "/") for a in allowed):
                yield f"{path}:{number}: {room} may not include {other or 'a file in no room'} ({name})"


def build_faults(path):
    """Sources must not be chosen by the system elsewhere either."""
    if path.startswith(tuple(room + "/" for room in SYSTEM_ROOMS)):
        return
    with open(os.path.join(ROOT, path), encoding="utf-8") as text:
        for number, line in enumerate(text, 1):
            system = CMAKE_SYSTEMS.match(line)
            if system:
                yield f"{path}:{number}: this folder may not ask for the system ({system.group(1)})"


def main():
    rules = read_rules()
    faults = []
    for top in sorted({room.split("/")[0] for room in rules}):
        for folder, _, files in os.walk(os.path.join(ROOT, top)):
            for name in sorted(files):
                path = os.path.relpath(os.path.join(folder, name), ROOT).replace(os.sep, "/")
                if name.endswith((".h", ".cpp")):
                    faults.extend(faults_of(path, rules))
                elif name == "CMakeLists.txt":
                    faults.extend(build_faults(path))
    print("\n".join(faults) if faults else "dependencies as written down")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
