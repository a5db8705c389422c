"""Images of a web server: settings and chooser by keys, with a real nginx over a folder of converted images."""
import os
import socket
import subprocess
import urllib.request

from desk import Failure, check, wait_until
from ground import MIDDLE, answer_dialog, content, expect_quarters, make_image

FOLDER, NAME = "east side", "正射 100%.tif"
CONFIGURATION = """daemon off; master_process off; pid {0}/nginx.pid; error_log {0}/error.log;
events {{ }}
http {{
  access_log off; client_body_temp_path {0}/body; proxy_temp_path {0}/proxy; fastcgi_temp_path {0}/fastcgi;
  uwsgi_temp_path {0}/uwsgi; scgi_temp_path {0}/scgi; types {{ application/json json; image/tiff tif; }}
  server {{ listen 127.0.0.1:{1}; root {2}; autoindex on; charset utf-8; }}
}}
"""


def serve(desk, images):
    """Starts the server over converted copies of the images, (source, folder, name) each; its port."""
    root, scratch = desk.path("web"), desk.path("nginx")
    os.makedirs(scratch)
    for source, folder, name in images:
        os.makedirs(os.path.join(root, folder), exist_ok=True)
        named = desk.path(name)
        os.rename(source, named)
        subprocess.run([os.path.join(desk.bin, "tarnconvert"), "--format", "cog", "--out", os.path.join(root, folder),
                        named], check=True, stdout=subprocess.DEVNULL)
    subprocess.run([os.path.join(desk.bin, "tarnconvert"), "--catalog", root], check=True, stdout=subprocess.DEVNULL)
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        port = probe.getsockname()[1]
    with open(os.path.join(scratch, "nginx.conf"), "w", encoding="utf-8") as out:
        out.write(CONFIGURATION.format(scratch, port, root))
    desk.children.append(subprocess.Popen(
        ["/usr/sbin/nginx", "-c", os.path.join(scratch, "nginx.conf"), "-p", scratch, "-e",
         os.path.join(scratch, "error.log")], stderr=subprocess.DEVNULL))

    def answers():
        try:
            return urllib.request.urlopen(f"http://127.0.0.1:{port}/", timeout=5).status == 200
        except OSError:
            return False
    wait_until("the web server", answers)
    return port


def dialog(desk, title):
    desk.away = True
    found = wait_until(f"dialog {title!r}", lambda: desk.run(
        ["xdotool", "search", "--onlyvisible", "--name", "^" + title + "$"]).split())[0]
    desk.run(["xdotool", "windowactivate", "--sync", found])
    return found


def confirm(desk, window, title):
    """Enter until the dialog is gone: a cell that is still being closed swallows one."""
    for _ in range(5):
        desk.key("Return")
        try:
            wait_until(f"end of {title!r}", lambda: window not in desk.run(
                ["xdotool", "search", "--onlyvisible", "--name", "^" + title + "$"]).split(), 5)
            break
        except Failure:
            continue
    desk.wait_prompt("Command:")


def set_server(desk, address):
    """IMAGESERVER by keys: images come from servers, and one of them is listed."""
    desk.enter("IMAGESERVER", None)
    settings = dialog(desk, "Image servers")
    desk.key("Up", "Tab", "Tab", "space")
    desk.type("office")
    desk.key("Tab")
    desk.type(address)
    desk.shot("settings")
    desk.key("Return")
    confirm(desk, settings, "Image servers")


def choose(desk, text):
    """Adding images by its key: looks for a text in all folders and takes the first image found."""
    desk.key("ctrl+i")
    chooser = dialog(desk, "Images on servers")
    desk.type(text)
    desk.key("Return")
    desk.shot("chooser")
    confirm(desk, chooser, "Images on servers")


def stored(drawing):
    tags = content(drawing).rootdict["ImagePath"]["ImagePath"].tags
    return [tag.value for tag in tags if tag.code == 1]


def check_stored(drawing, port):
    check(stored(drawing) == [f"127.0.0.1:{port}/{FOLDER}:{NAME}"], f"stored {stored(drawing)}")


def image_server(desk):
    """An image of a web server: settings, chooser with a search, pan, save, open again."""
    drawing = desk.path("served.dxf")
    port = serve(desk, [(make_image(desk, "plain.tif"), FOLDER, NAME)])
    desk.start()
    set_server(desk, f"127.0.0.1:{port}")
    choose(desk, "100%")
    desk.enter("ZOOM E")
    view = desk.view()
    expect_quarters(desk, view)
    desk.shot("added")
    start = view.pixel(MIDDLE)
    desk.skip()
    desk.drag(start, (start[0] + 60, start[1] - 40), button=2)
    desk.wait_redraw()
    expect_quarters(desk, desk.view())
    desk.key("ctrl+s")
    answer_dialog(desk, "Save drawing as", drawing)
    wait_until("title", lambda: desk.title().endswith("served.dxf"))
    check_stored(drawing, port)
    desk.key("ctrl+q")
    check(desk.wait_exit() == 0, f"exit code {desk.program.returncode}")
    desk.start(drawing)
    desk.enter("ZOOM E")
    expect_quarters(desk, desk.view())
    desk.shot("opened-again")
    desk.key("ctrl+q")
    check(desk.wait_exit() == 0, f"exit code {desk.program.returncode}")
