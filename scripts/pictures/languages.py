"""Scenes in other languages, and in those that nobody speaks."""
import time

from desktop import Desktop, wait_for
from scene import (FEW_COLOURS, PINS, beside, launcher_part, make_pseudo, part, picture,
                   settings_desktop, settings_part, stack)

PSEUDO = ("en_XA", "ar_XB")


@picture
def pseudo_bar(options):
    """The menu of the bar, and what the menu of a window tells of it."""
    make_pseudo(options)
    parts = []
    for language, inwards in zip(PSEUDO, ("Right", "Left")):
        with Desktop(options, size="1280x720", environment={"LANGUAGE": language}, pins=("Music",),
                     settings={"groupWindowsByApp": False}) as desktop:
            desktop.open("Browser", "Timetable of the night trains", "20x4+60+60")
            desktop.open("Files", "Pictures", "20x4+260+60")
            desktop.start_bar(2)
            desktop.point_at(desktop.panel()["menuButton"])
            desktop.click(3)
            wait_for(lambda: desktop.state()["menu"], "the menu")
            desktop.run("xdotool", "key", "Down")
            parts.append(part(options, len(parts)))
            desktop.picture(parts[-1], 150)
            desktop.run("xdotool", "key", "Escape")
            desktop.point_at(desktop.chip("Pictures"))
            desktop.open_long_menu()
            desktop.run("xdotool", "key", "Up", inwards, "Up", inwards)
            time.sleep(0.5)
            parts.append(part(options, len(parts)))
            desktop.picture(parts[-1], 380)
            desktop.run("xdotool", "key", "Escape")
    stack(options, "pseudo-bar.png", parts, *FEW_COLOURS)


@picture
def pseudo_launcher(options):
    make_pseudo(options)
    parts = []
    for language in PSEUDO:
        with Desktop(options, size="1280x720", environment={"LANGUAGE": language},
                     launcher_pins=PINS) as desktop:
            desktop.open_samples()
            desktop.start_bar(6)
            rows = desktop.open_launcher()["rows"]
            parts.append(launcher_part(desktop, options, len(parts), language == "ar_XB"))
            desktop.type("zzz")
            parts.append(launcher_part(desktop, options, len(parts), language == "ar_XB"))
            desktop.run("xdotool", "key", "Escape")
            desktop.point_at(rows[3]["frame"])
            desktop.click(3)
            wait_for(lambda: desktop.state()["menu"], "the menu")
            parts.append(launcher_part(desktop, options, len(parts), language == "ar_XB"))
    beside(options, "pseudo-launcher.png", parts, *FEW_COLOURS)


@picture
def pseudo_settings(options):
    make_pseudo(options)
    parts = []
    for language in PSEUDO:
        for page in (0, 1):
            with settings_desktop(options, "Adwaita", language) as desktop:
                desktop.start_bar(0)
                parts.append(settings_part(desktop, options, len(parts), page, 400))
    beside(options, "pseudo-settings.png", parts, *FEW_COLOURS)


@picture
def east_asian(options):
    """In Japanese and in Chinese."""
    parts = []
    for language, title in (("ja", "夜行列車の時刻表"), ("zh_CN", "夜行列车时刻表")):
        with Desktop(options, environment={"LANGUAGE": language}, size="1000x720",
                     launcher_pins=PINS) as desktop:
            desktop.open("Browser", title, "84x26+60+60")
            desktop.open("Mail", "Inbox", "76x20+240+130")
            desktop.start_bar(2)
            desktop.open_launcher()
            parts.append(launcher_part(desktop, options, len(parts)))
            desktop.run("xdotool", "key", "Escape")
            desktop.point_at(desktop.chip("Inbox"))
            desktop.click(3)
            wait_for(lambda: desktop.state()["menu"], "the menu")
            time.sleep(0.5)
            parts.append(part(options, len(parts)))
            desktop.run("import", "-window", "root", "-gravity", "SouthWest", "-crop", "480x460+0+0",
                        "+repage", "-strip", parts[-1])
            desktop.run("xdotool", "key", "Escape")
    beside(options, "east-asian.png", parts, *FEW_COLOURS)
