"""Scenes of what the bar tells: names, marks, attention, and what a drag or a menu would do."""
import os
import sys
import time

from desktop import LAUNCHER_ENTRY, Desktop, wait_for
from scene import part, picture, stack


def hold(desktop, frame, target):
    """Takes what is in the frame to the middle of the target, and keeps it in the hand."""
    desktop.point_at(frame)
    desktop.run("xdotool", "mousedown", "1")
    x, y, width, height = frame
    to_x, to_y = target[0] + target[2] / 2, target[1] + target[3] / 2
    for step in range(1, 21):
        desktop.pointer(x + width / 2 + (to_x - x - width / 2) * step / 20,
                        y + height / 2 + (to_y - y - height / 2) * step / 20)
    time.sleep(0.5)


@picture
def tooltips(options):
    title = "The night train from Vienna to Berlin, by way of Breslau, with a title that is cut"
    parts = []
    with Desktop(options, size="1280x720", pins=("Music", "Calculator"),
                 settings={"groupWindowsByApp": False, "more": {"windowPreviews": False}}) as desktop:
        desktop.open("Browser", title, "84x26+60+60")
        desktop.open("Mail", "Inbox: 3 unread", "76x20+440+130")
        desktop.start_bar(2)
        panel = desktop.panel()
        for frame in (panel["pins"][0]["frame"], panel["spaceCells"][2]["frame"], desktop.chip("Vienna")):
            desktop.point_at(frame)
            time.sleep(1)
            parts.append(part(options, len(parts)))
            desktop.picture(parts[-1], 90)
            desktop.pointer(600, 100)
            time.sleep(1)
    stack(options, "tooltips.png", parts)


@picture
def pins(options):
    """Mail and the files have windows on the second desktop, the text editor calls from there."""
    with Desktop(options, size="1280x720", pins=("Mail", "Files", "Notes", "Music")) as desktop:
        desktop.open("Mail", "Inbox: 3 unread", "76x20+640+330")
        desktop.open("Files", "Pictures", "64x18+60+80")
        desktop.open("Notes", "shopping.txt", "60x16+100+470")
        desktop.open("Browser", "Timetable of the night trains", "84x26+60+60")
        for title in ("Inbox: 3 unread", "Pictures", "shopping.txt"):
            desktop.send_to_desktop(title, 2)
        desktop.start_bar(4)
        desktop.start(sys.executable, "-c", LAUNCHER_ENTRY)
        desktop.call_for_attention("shopping.txt")
        wait_for(lambda: '"badge":"3"' in desktop.output(desktop.program, "--state").replace(" ", ""),
                 "the badge")
        time.sleep(0.55)
        desktop.picture(os.path.join(options.folder, "pins.png"))


@picture
def arrow(options):
    with Desktop(options, size="1280x720", settings={"groupWindowsByApp": False}) as desktop:
        kinds = ("Mail", "Files", "Notes", "Browser", "Terminal", "Music", "Calculator")
        for number in range(40):
            desktop.open(kinds[number % len(kinds)], f"Window {number + 1}", "20x4+100+100")
        desktop.start_bar(40)
        desktop.activate("Window 1")
        time.sleep(1)
        desktop.call_for_attention("Window 39")
        time.sleep(1)
        desktop.picture(os.path.join(options.folder, "arrow.png"))


@picture
def menu_desktops(options):
    with Desktop(options, size="1280x720", settings={"groupWindowsByApp": False}) as desktop:
        desktop.open("Browser", "Timetable of the night trains", "84x26+60+60")
        desktop.open("Mail", "Inbox: 3 unread", "76x20+440+130")
        desktop.start_bar(2)
        desktop.point_at(desktop.chip("Inbox"))
        desktop.click(3)
        desktop.point_at_entry("Move to Desktop")
        desktop.point_at_entry("On All Desktops")
        desktop.picture(os.path.join(options.folder, "menu-desktops.png"), 360)


@picture
def drag_to_desktop(options):
    with Desktop(options, size="1280x720", settings={"groupWindowsByApp": False}) as desktop:
        desktop.open("Browser", "Timetable of the night trains", "84x26+60+60")
        desktop.open("Mail", "Inbox: 3 unread", "76x20+440+130")
        desktop.open("Notes", "shopping.txt", "60x16+100+370")
        desktop.start_bar(3)
        hold(desktop, desktop.chip("Inbox"), desktop.panel()["spaceCells"][2]["frame"])
        desktop.picture(os.path.join(options.folder, "drag-to-desktop.png"), 100)
        desktop.run("xdotool", "key", "Escape", "mouseup", "1")


@picture
def about_window(options):
    with Desktop(options, size="1280x720", settings={"groupWindowsByApp": False}) as desktop:
        desktop.open("Browser", "Timetable of the night trains", "84x26+60+60")
        desktop.open("Mail", "Inbox: 3 unread", "76x20+440+130")
        desktop.start_bar(2)
        desktop.point_at(desktop.chip("Inbox"))
        desktop.open_long_menu()
        desktop.point_at_entry("About This Window")
        desktop.point_at_entry("Belongs To")
        time.sleep(0.5)
        desktop.picture(os.path.join(options.folder, "about-window.png"), 420)


@picture
def title_news(options):
    with Desktop(options, size="1280x720",
                 settings={"groupWindowsByApp": False, "more": {"markTitleNews": True}}) as desktop:
        desktop.open("Terminal", "make: src", "70x16+120+340")
        desktop.open("Browser", "Timetable of the night trains", "84x26+60+60")
        desktop.open("Mail", "Inbox", "76x20+440+130")
        desktop.start_bar(3)
        for title in ("make: src", "Inbox"):
            desktop.activate(title)
            time.sleep(0.5)
        desktop.run("wmctrl", "-r", "make: src", "-N", "finished, 2 warnings")
        time.sleep(1)
        desktop.picture(os.path.join(options.folder, "title-news.png"))


@picture
def cards(options):
    parts = []
    for look in ("Adwaita:dark", "Adwaita"):
        with Desktop(options, size="1280x720", environment={"GTK_THEME": look}) as desktop:
            desktop.open("Notes", "shopping.txt", "60x16+100+70", "bread\\napples\\nlamp oil\\n")
            desktop.open("Notes", "letter to the editor.txt", "60x16+440+160", "Dear editor,\\n")
            desktop.open("Notes", "to do.txt", "60x16+240+260", "oil the hinges\\n")
            desktop.start_bar(3)
            desktop.activate("letter to the editor.txt")
            desktop.call_for_attention("to do.txt")
            desktop.point_at(desktop.chip("Notes"))
            wait_for(lambda: desktop.panel()["popup"], "the popup")
            time.sleep(1)
            parts.append(part(options, len(parts)))
            desktop.picture(parts[-1], 260)
    stack(options, "cards.png", parts)


@picture
def minimised(options):
    parts = []
    for look in ("Adwaita:dark", "Adwaita"):
        with Desktop(options, size="1280x720", environment={"GTK_THEME": look},
                     settings={"groupWindowsByApp": False}) as desktop:
            desktop.open("Browser", "Timetable of the night trains", "84x26+60+60")
            desktop.open("Mail", "Inbox: 3 unread", "76x20+440+130")
            desktop.open("Notes", "shopping.txt", "60x16+100+370")
            desktop.open("Files", "Pictures", "64x18+360+80")
            desktop.start_bar(4)
            for title in ("Inbox: 3 unread", "shopping.txt"):
                desktop.run("xdotool", "windowminimize", "--sync", desktop.window(title))
            desktop.activate("Pictures")
            time.sleep(1)
            parts.append(part(options, len(parts)))
            desktop.picture(parts[-1], desktop.panel()["frame"][3])
    stack(options, "minimised.png", parts)
