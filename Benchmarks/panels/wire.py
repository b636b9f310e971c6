#!/usr/bin/env python3
"""Counts what one event costs a panel between itself and the X server.
usage: wire.py [--json FILE] NAME=COMMAND ...      (a COMMAND is split by a shell; the word floor alone adds floor.cpp)

The panel talks to the server through a relay that counts its requests, its waits for answers, the bytes and the
events; of the panel's processes it counts how often they fell asleep and how long they ran. Each event has half a
second to itself, or more. Needs what panelbench.py needs, and wmctrl."""

import argparse
import array
import json
import os
import pathlib
import shutil
import signal
import socket
import statistics
import struct
import subprocess
import sys
import tempfile
import threading
import time

import panelbench

REST = 0.6  # seconds, in which everything that an event leads to has happened
REPEATS = 10
SERVER, RELAYED = 60, 61
COUNTS = ("requests", "round trips", "bytes sent", "bytes received", "events")


class Stream:
    """One direction of a connection, taken apart into messages."""

    def __init__(self):
        self.rest = bytearray()

    def messages(self, data, length_of):
        self.rest += data
        while (length := length_of(self.rest)) and len(self.rest) >= length:
            yield bytes(self.rest[:length])
            del self.rest[:length]


class Relayed:
    """A client's connection. Requests are numbered as the server numbers them."""

    def __init__(self, client, counts):
        self.client = client
        self.server = socket.socket(socket.AF_UNIX)
        self.server.connect(f"/tmp/.X11-unix/X{SERVER}")
        self.counts = counts
        self.requests, self.answers = Stream(), Stream()
        self.is_set_up = {"client": False, "server": False}
        self.sent = self.sent_at_answer = 0
        self.order = "<"
        for source, target, seen in ((self.client, self.server, self.from_client),
                                     (self.server, self.client, self.from_server)):
            threading.Thread(target=self.pump, args=(source, target, seen), daemon=True).start()

    def pump(self, source, target, seen):
        try:
            while True:
                data, ancillary, _, _ = source.recvmsg(1 << 16, socket.CMSG_SPACE(64))
                if not data:
                    break
                seen(data)
                files = array.array("i")
                for level, kind, value in ancillary:
                    if (level, kind) == (socket.SOL_SOCKET, socket.SCM_RIGHTS):
                        files.frombytes(value[:len(value) - len(value) % files.itemsize])
                sent = target.sendmsg([data], [(socket.SOL_SOCKET, socket.SCM_RIGHTS, files)] if files else [])
                target.sendall(data[sent:])
                for file in files:
                    os.close(file)
        except OSError:
            pass  # one of the two has ended
        for end in (source, target):
            try:
                end.shutdown(socket.SHUT_RDWR)
            except OSError:
                pass

    def number(self, form, data, at):
        return struct.unpack_from(self.order + form, data, at)[0]

    def request_length(self, data):
        if not self.is_set_up["client"]:
            if len(data) < 12:
                return 0
            self.order = "<" if data[0] == ord("l") else ">"
            name, secret = self.number("H", data, 6), self.number("H", data, 8)
            return 12 + (name + 3 & ~3) + (secret + 3 & ~3)
        if len(data) < 4:
            return 0
        words = self.number("H", data, 2)
        if words == 0:  # a big request
            return 4 * self.number("I", data, 4) if len(data) >= 8 else 0
        return 4 * words

    def answer_length(self, data):
        if not self.is_set_up["server"]:
            return 8 + 4 * self.number("H", data, 6) if len(data) >= 8 else 0
        if len(data) < 32:
            return 0
        return 32 + 4 * self.number("I", data, 4) if data[0] in (1, 35) else 32

    def from_client(self, data):
        self.counts["bytes sent"] += len(data)
        for _ in self.requests.messages(data, self.request_length):
            if not self.is_set_up["client"]:
                self.is_set_up["client"] = True
                continue
            self.sent += 1
            self.counts["requests"] += 1

    def from_server(self, data):
        self.counts["bytes received"] += len(data)
        for message in self.answers.messages(data, self.answer_length):
            if not self.is_set_up["server"]:
                self.is_set_up["server"] = True
            elif message[0] > 1:
                self.counts["events"] += 1
            elif message[0] == 1:
                self.answered(self.number("H", message, 2))

    def answered(self, sequence):
        """A round trip has ended unless the request went out together with one that is answered."""
        if (sequence - self.sent_at_answer) % 65536 not in range(1, 32768):
            return
        self.sent_at_answer = self.sent
        self.counts["round trips"] += 1


def relay(counts):
    path = pathlib.Path(f"/tmp/.X11-unix/X{RELAYED}")
    path.unlink(missing_ok=True)
    listener = socket.socket(socket.AF_UNIX)
    listener.bind(str(path))
    listener.listen(16)

    def accept():
        while True:
            Relayed(listener.accept()[0], counts)

    threading.Thread(target=accept, daemon=True).start()


class Session:
    """An X server, openbox, ten windows and the panel."""

    def __init__(self, command):
        self.home = tempfile.mkdtemp(prefix="wire-")
        self.env = dict(os.environ, DISPLAY=f":{SERVER}", HOME=self.home, XDG_CONFIG_HOME=f"{self.home}/.config",
                        XDG_RUNTIME_DIR=self.home, XDG_CURRENT_DESKTOP="X", NO_AT_BRIDGE="1")
        settings = pathlib.Path(self.home, ".config/Quorvel/settings.json")
        settings.parent.mkdir(parents=True)
        settings.write_text('{"groupWindowsByApp": false}', encoding="utf-8")
        self.started = []
        self.counts = dict.fromkeys(COUNTS, 0)
        server = self.start(["Xvfb", f":{SERVER}", "-screen", "0", "1920x1080x24", "-nolisten", "tcp"])
        time.sleep(1)
        if server.poll() is not None:
            sys.exit(f"wire.py: there is another server on :{SERVER}")
        bus = self.start(["dbus-daemon", "--session", "--nofork", "--print-address"], stdout=subprocess.PIPE)
        self.env["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().decode().strip()
        self.start(["openbox"])
        time.sleep(1)
        self.load("open", "10", "5")
        time.sleep(1)
        relay(self.counts)
        self.panel = self.start(["sh", "-c", f"exec {command}"], env=dict(self.env, DISPLAY=f":{RELAYED}"))
        time.sleep(3)

    def start(self, command, **options):
        options = {"env": self.env, "stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL} | options
        process = subprocess.Popen(command, start_new_session=True, **options)
        self.started.append(process)
        return process

    def load(self, *arguments):
        return self.start([panelbench.LOAD, *arguments], stdin=subprocess.PIPE, stdout=subprocess.PIPE)

    def manage(self, *arguments):
        return subprocess.run(["wmctrl", *arguments], env=self.env, check=True, capture_output=True, text=True).stdout

    def measure(self, act, rest=REST):
        before, slept, ran = dict(self.counts), panelbench.ctx(self.panel.pid), panelbench.cpu(self.panel.pid)
        act()
        time.sleep(rest)
        result = {name: self.counts[name] - before[name] for name in COUNTS}
        result["wake-ups"] = panelbench.wakeups(slept, panelbench.ctx(self.panel.pid))
        result["CPU, us"] = (panelbench.cpu(self.panel.pid) - ran) * 1e6
        return result

    def end(self):
        for process in reversed(self.started):
            try:
                os.killpg(process.pid, signal.SIGKILL)
            except OSError:
                pass
            process.wait()
        shutil.rmtree(self.home, ignore_errors=True)


def measure_panel(command):
    session = Session(command)
    try:
        results = {}

        def count(event, act):
            results.setdefault(event, []).append(session.measure(act))

        windows = [line.split()[0] for line in session.manage("-l").splitlines() if "Document" in line]
        session.manage("-i", "-a", windows[0])
        time.sleep(REST)
        for i in range(REPEATS):
            count("another window comes to the front", lambda: session.manage("-i", "-a", windows[1 + i % 2]))
        for _ in range(REPEATS):
            window = []
            count("a window opens", lambda: window.append(session.load("open", "1", "1")))
            count("it closes", window[0].stdin.close)
        storm = session.load("storm", "1", "1", str(REPEATS))
        storm.stdout.readline()
        time.sleep(REST)
        # All of them in one row, a second apart.
        titles = session.measure(lambda: (storm.stdin.write(b"x"), storm.stdin.flush(), storm.stdout.readline()))
        results["a title changes"] = [{name: value / REPEATS for name, value in titles.items()}]
        storm.stdin.close()
        time.sleep(REST)
        for _ in range(REPEATS):
            count("an empty space", lambda: session.manage("-s", "1"))
            count("the space with the windows", lambda: session.manage("-s", "0"))
        idle = session.measure(lambda: None, 20)
        results["a second without any"] = [{name: value / 20 for name, value in idle.items()}]
        if session.panel.poll() is not None:
            sys.exit(f"wire.py: {command} has ended with {session.panel.returncode}")
        return {event: {name: statistics.median(one[name] for one in measured) for name in measured[0]}
                for event, measured in results.items()}
    finally:
        session.end()


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--json", type=pathlib.Path)
    parser.add_argument("panels", nargs="+")
    arguments = parser.parse_args()
    measured = {}
    for panel in arguments.panels:
        name, _, command = panel.partition("=")
        measured[name] = measure_panel(command or panelbench.built("floor", "xcb", "cairo-xcb", "pangocairo"))
    for name, events in measured.items():
        for event, figures in events.items():
            print(f"{name:10} {event:36}", *(f"{key} {value:.1f}" for key, value in figures.items()), sep="  ")
    if arguments.json:
        arguments.json.write_text(json.dumps(measured, indent=1), encoding="utf-8")


if __name__ == "__main__":
    main()
