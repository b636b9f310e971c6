"""A desktop in memory with the bar on it, for the scripts beside this one."""
import json
import os
import shutil
import subprocess
import sys
import tempfile
import time

APPLICATIONS = {  # class: (name, icon)
    "Mail": ("Mail", "mail-unread"),
    "Files": ("Files", "system-file-manager"),
    "Notes": ("Text Editor", "accessories-text-editor"),
    "Browser": ("Web Browser", "web-browser"),
    "Terminal": ("Terminal", "utilities-terminal"),
    "Music": ("Music", "multimedia-player"),
    "Calculator": ("Calculator", "accessories-calculator"),
}
MORE_APPLICATIONS = {  # for the launcher
    "Archive": ("Archive Manager", "package-x-generic"),
    "Calendar": ("Calendar", "x-office-calendar"),
    "Characters": ("Characters", "accessories-character-map"),
    "Clock": ("Clocks", "preferences-system-time"),
    "Contacts": ("Contacts", "x-office-address-book"),
    "Disks": ("Disk Usage", "drive-harddisk"),
    "Displays": ("Displays", "video-display"),
    "Images": ("Image Viewer", "image-x-generic"),
    "Monitor": ("System Monitor", "utilities-system-monitor"),
    "Network": ("Network", "network-workgroup"),
    "Office": ("Office Writer", "x-office-document"),
    "Printers": ("Printers", "printer"),
    "Settings": ("Settings", "preferences-system"),
    "Sound": ("Sound Recorder", "audio-input-microphone"),
    "Tables": ("Office Spreadsheet", "x-office-spreadsheet"),
    "Video": ("Video Player", "video-x-generic"),
}
WINDOWS = [  # class, title, geometry, text
    ("Browser", "Timetable of the night trains", "84x26+60+60",
     "Vienna   19:42   Berlin     07:10\\nZurich   20:59   Hamburg    08:55\\n"),
    ("Files", "Pictures", "64x18+1060+80", "autumn.png\\nharbour.png\\nnorth-face.png\\n"),
    ("Mail", "Inbox: 3 unread", "76x20+640+330",
     "Ada      The figures for Friday\\nGrace    Re: moths\\nEdsger   On the shape of loops\\n"),
    ("Notes", "shopping.txt", "60x16+1200+470", "bread\\napples\\nlamp oil\\n"),
    ("Notes", "letter to the editor.txt", "60x16+1140+560", "Dear editor,\\n"),
    ("Terminal", "make: src", "70x16+120+640", "$ make\\n[ 38%] compiling\\n"),
]
MORE_WINDOWS = [  # for the list of windows
    ("Calculator", "Calculator", "30x10+300+200", "42\\n"),
    ("Music", "Nocturne in the harbour, with a title that is too long for its row", "60x12+500+700"),
    ("Video", "Trains at night.mkv", "60x12+900+600"),
    ("Office", "Report to Ada.odt", "60x20+200+300", "Report\\n"),
    ("Images", "north-face.png", "50x20+800+200"),
    ("Terminal", "ssh harbour", "70x20+700+500", "$ \\n"),
]
LAUNCHER_ENTRY = """
import sys
from gi.repository import Gio, GLib
bus = Gio.bus_get_sync(Gio.BusType.SESSION)
for name, count, progress in (("Mail", 3, -1.0), ("Files", 0, 0.62)):
    properties = {"count": GLib.Variant("x", count), "count-visible": GLib.Variant("b", count > 0),
                  "progress": GLib.Variant("d", max(progress, 0.0)),
                  "progress-visible": GLib.Variant("b", progress >= 0)}
    bus.emit_signal(None, "/com/canonical/unity/launcherentry/1", "com.canonical.Unity.LauncherEntry",
                    "Update", GLib.Variant("(sa{sv})", (f"application://sample-{name}.desktop", properties)))
bus.flush_sync()
GLib.MainLoop().run()
"""


def wait_for(condition, what, limit=20):
    deadline = time.monotonic() + limit
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > deadline:
            sys.exit(f"screenshots: {what} did not come")
        time.sleep(0.05)


class Desktop:
    """An X server, a session bus, a window manager and the bar, all of which end with it."""

    def __init__(self, options, *, size="1920x1080", dpi=96, environment=None, settings=None,
                 pins=(), launcher_pins=(), desktops=4):
        self.program = options.program
        self.folder = tempfile.mkdtemp()
        self.started = []
        self.environment = dict(os.environ, LC_ALL="C.UTF-8", GTK_THEME="Adwaita:dark",
                                LANGUAGE=options.language)
        for name in ("WAYLAND_DISPLAY", "XAUTHORITY", "DBUS_SESSION_BUS_ADDRESS"):
            self.environment.pop(name, None)
        for name in ("HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"):
            self.environment[name] = os.path.join(self.folder, name)
            os.mkdir(self.environment[name], 0o700)
        self.environment.update(environment or {})
        self.install_applications()
        self.write_settings(settings or {}, pins, launcher_pins)
        self.start_server(size)
        self.start_bus()
        self.run("xsetroot", "-solid", "#39586b")
        self.run("xrdb", "-merge", "-", text=f"Xft.dpi: {dpi}\n")
        self.start(options.window_manager)
        wait_for(lambda: "window id" in self.output("xprop", "-root", "_NET_SUPPORTING_WM_CHECK"),
                 "the window manager")
        self.run("wmctrl", "-n", str(desktops))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        for process in reversed(self.started):
            process.terminate()
            process.wait()
        shutil.rmtree(self.folder, ignore_errors=True)

    def install_applications(self):
        # The icons of the machine, but not its applications.
        data = os.path.join(self.folder, "data")
        os.mkdir(data)
        for name in ("icons", "pixmaps", "themes", "mime"):
            os.symlink(os.path.join("/usr/share", name), os.path.join(data, name))
        self.environment["XDG_DATA_DIRS"] = data
        folder = os.path.join(self.environment["XDG_DATA_HOME"], "applications")
        os.mkdir(folder)
        for kind, (name, icon) in {**APPLICATIONS, **MORE_APPLICATIONS}.items():
            with open(os.path.join(folder, f"sample-{kind}.desktop"), "w") as file:
                file.write(f"[Desktop Entry]\nType=Application\nName={name}\nIcon={icon}\n"
                           f"Exec=true\nStartupWMClass={kind}\n")

    def write_settings(self, settings, pins, launcher_pins):
        folder = os.path.join(self.environment["XDG_CONFIG_HOME"], "Quorvel")
        os.mkdir(folder)
        record = {"barSize": "medium", "groupWindowsByApp": True, "showChipTitles": True,
                  "showWindowNamesInChips": True, "settingsVersion": 1,
                  "pinnedApps": [{"id": f"sample-{kind}", "d": 1} for kind in pins]
                  + [{"id": f"sample-{kind}", "d": 2} for kind in launcher_pins]}
        record.update(settings)
        with open(os.path.join(folder, "settings.json"), "w") as file:
            json.dump(record, file)

    def start_server(self, size):
        read, write = os.pipe()
        self.start("Xvfb", "-displayfd", str(write), "-screen", "0", f"{size}x24", "-nolisten",
                   "tcp", "-noreset", pass_fds=(write,))
        os.close(write)
        with os.fdopen(read) as pipe:
            self.environment["DISPLAY"] = ":" + pipe.readline().strip()

    def start_bus(self):
        process = self.start("dbus-daemon", "--session", "--nofork", "--print-address",
                             stdout=subprocess.PIPE, text=True)
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = process.stdout.readline().strip()

    def start(self, *command, **options):
        options.setdefault("stdout", subprocess.DEVNULL)
        process = subprocess.Popen(command, env=self.environment, stderr=subprocess.DEVNULL, **options)
        self.started.append(process)
        return process

    def run(self, *command, text=None):
        subprocess.run(command, env=self.environment, input=text, text=True, check=True,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def output(self, *command):
        return subprocess.run(command, env=self.environment, capture_output=True, text=True).stdout

    # Windows

    def open(self, kind, title, geometry, text="", *options):
        def count():
            return self.output("xprop", "-root", "_NET_CLIENT_LIST").count("0x")
        before = count()
        self.start("xterm", "-class", kind, "-name", kind, "-title", title, "-geometry", geometry,
                   "-bg", "#fbfbf8", "-fg", "#2b2b2b", *options,
                   "-e", "bash", "-c", 'printf "%b" "$1"; exec sleep 3600', "_", text)
        wait_for(lambda: count() > before, "a window")

    def open_samples(self):
        for window in WINDOWS:
            self.open(*window)

    # The bar

    def start_bar(self, windows, environment=None):
        process = subprocess.Popen([self.program], env=dict(self.environment, **(environment or {})),
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.started.append(process)
        wait_for(lambda: len(self.state().get("windows", [])) >= windows, "the bar")
        self.pointer(900, 500)
        time.sleep(1)

    def state(self):
        try:
            return json.loads(self.output(self.program, "--state"))
        except json.JSONDecodeError:
            return {}

    def panel(self):
        return next(panel for panel in self.state()["panels"] if panel["visible"])

    def pointer(self, x, y):
        self.run("xdotool", "mousemove", str(int(x)), str(int(y)))

    def point_at(self, frame):
        x, y, width, height = frame
        self.pointer(x + width / 2, y + height / 2)
        self.run("xdotool", "mousemove_relative", "--", "1", "0")

    def chip(self, text):
        """The frame of the chip whose item has the text somewhere."""
        state = self.state()
        panel = next(panel for panel in state["panels"] if panel["visible"])
        space = next(space for space in state["spaces"] if space["id"] == panel["space"])
        item = next(item for item in space["items"] if text in json.dumps(item))
        return next(chip["frame"] for chip in panel["chips"] if chip["id"] == item["id"])

    def window(self, title):
        return self.output("xdotool", "search", "--name", f"^{title}$").split()[0]

    def send_to_desktop(self, title, desktop):
        """Of the numbers that people count with, from 1."""
        self.run("wmctrl", "-r", title, "-t", str(desktop - 1))

    def call_for_attention(self, title):
        self.run("xdotool", "set_window", "--urgency", "1", self.window(title))

    def activate(self, title):
        self.run("xdotool", "windowactivate", "--sync", self.window(title))

    def open_long_menu(self):
        """Where the pointer is, with what Alt adds; the window manager keeps clicks with Alt alone."""
        self.run("xdotool", "keydown", "alt", "keydown", "shift", "click", "3",
                 "keyup", "shift", "keyup", "alt")
        wait_for(lambda: self.state()["menu"], "the menu")

    def point_at_entry(self, title):
        """In the open menu or its submenu."""
        def frame():
            return next((entry["frame"] for entry in self.state()["menu"] if entry["title"] == title),
                        None)
        self.point_at(wait_for(frame, f"the entry {title}"))

    def open_launcher(self):
        self.run(self.program, "--launcher")
        return wait_for(lambda: self.state().get("launcher"), "the launcher")

    def type(self, text):
        self.run("xdotool", "type", "--delay", "20", text)
        wait_for(lambda: self.state()["launcher"]["query"] == text, "the query")

    def click(self, button=1):
        self.run("xdotool", "click", str(button))

    def picture(self, path, height=None, whole=False):
        """The lower end of the screen, with this many pixels, or all of it."""
        time.sleep(0.3)
        crop = []
        if not whole:
            crop = ["-gravity", "South", "-crop", f"x{height or 60}+0+0", "+repage"]
        self.run("import", "-window", "root", *crop, "-strip", path)
