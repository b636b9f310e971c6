"""What the scenes have in common: their register, and pictures that are made of several."""
import os
import subprocess
import time

from desktop import Desktop, wait_for

SCRIPTS = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
ARABIC = {"LANGUAGE": "ar"}
PINS = ("Browser", "Mail", "Terminal")
PICTURES = {}


def picture(function):
    PICTURES[function.__name__.replace("_", "-")] = function
    return function


FEW_COLOURS = ("+dither", "-colors", "256")  # a third of the size, where there are no gradients


def stack(options, name, parts, *more):
    path = os.path.join(options.folder, name)
    subprocess.run(["convert", *parts, "-background", "#39586b", "-splice", "0x4", "-append", *more,
                    "-strip", path], check=True)
    for part in parts:
        os.remove(part)


def part(options, number):
    return os.path.join(options.folder, f".part-{number}.png")


def beside(options, name, parts, *more):
    """The launcher's part of each screen, side by side."""
    path = os.path.join(options.folder, name)
    subprocess.run(["convert", *parts, "-background", "#39586b", "-splice", "4x0", "+append", *more,
                    "-strip", path], check=True)
    for item in parts:
        os.remove(item)


def launcher_part(desktop, options, number, is_right=False, scale=1):
    path = part(options, number)
    time.sleep(1.2)  # until icons are there and the scroller has gone
    desktop.run("import", "-window", "root", "-gravity", "SouthEast" if is_right else "SouthWest",
                "-crop", f"{320 * scale}x{460 * scale}+0+0", "+repage", "-strip", path)
    return path


def make_pseudo(options):
    """The catalogues of the languages that nobody speaks, beside the program's own."""
    subprocess.run([os.path.join(SCRIPTS, "texts/make-pseudo"),
                    os.path.join(os.path.dirname(options.program), "share/locale")], check=True)


def picture_at_rest(desktop, window, path):
    """Of a window that draws itself in its own time: once it has stood still for two seconds."""
    seen, since = None, time.monotonic()
    while time.monotonic() < since + 2:
        desktop.run("import", "-window", window, "-strip", path)
        with open(path, "rb") as file:
            now = file.read()
        if now != seen:
            seen, since = now, time.monotonic()
        time.sleep(0.3)


def settings_part(desktop, options, number, page, width=None, scale=1):
    """The window with the settings, at a page by its number from 0, with its title bar."""
    desktop.run(desktop.program, "--settings")
    search = ("xdotool", "search", "--onlyvisible", "--class", "quorvel-settings")
    window = wait_for(lambda: desktop.output(*search).split(), "the window")[0]
    if width:
        desktop.run("xdotool", "windowsize", "--sync", window, str(width * scale), str(560 * scale))
    desktop.run("xdotool", "windowactivate", "--sync", window)
    path = part(options, number)
    picture_at_rest(desktop, window, path)
    for _ in range(page):
        desktop.run("xdotool", "key", "ctrl+Next")
        time.sleep(0.5)
    picture_at_rest(desktop, window, path)
    desktop.run("xdotool", "key", "Escape")
    wait_for(lambda: not desktop.output(*search), "the end of the window")
    return path


def settings_desktop(options, look, language=None, **more):
    environment = {"GTK_THEME": look, "GSK_RENDERER": "cairo", "GSETTINGS_BACKEND": "memory",
                   "LANGUAGE": language or options.language}
    return Desktop(options, environment=environment, pins=("Music", "Calculator"), **more)
