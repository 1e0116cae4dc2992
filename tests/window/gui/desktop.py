# SPDX-License-Identifier: MIT
"""Uses the program as a person does who sees the screen: finds what is there in the accessibility tree, and works it
with real key presses, clicks and drags."""

import contextlib
import ctypes
import json
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import time

import pyatspi

PATIENCE = 90  # seconds; the machine may be busy
MAIN_WINDOW = "Ostrel Timecode Tool"


def wait_for(condition, what):
    """Calls condition until it gives something; fails with what was waited for."""
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        with contextlib.suppress(Exception):  # the tree changes while it is read
            found = condition()
            if found:
                return found
        time.sleep(0.05)
    raise AssertionError(f"waited in vain for {what}")


def xdotool(*arguments):
    subprocess.run(["xdotool", *map(str, arguments)], check=True, timeout=PATIENCE)


def press(*keys):
    xdotool("key", "--clearmodifiers", *keys)


def extents(node):
    return node.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)


def settled_extents(node):
    """The window manager moves a window after it has opened; this returns its final place."""
    before = extents(node)
    time.sleep(0.3)
    after = extents(node)
    still = (before.x, before.y, before.width, before.height) == (after.x, after.y, after.width, after.height)
    return after if still and after.width > 0 else None


def click(node):
    box = wait_for(lambda: settled_extents(node), f"{node} to stand still")
    xdotool("mousemove", box.x + box.width // 2, box.y + box.height // 2, "click", 1)


def click_close_box(window):
    """Clicks the close box of the window's frame: the window manager draws it at the right end of the title bar."""
    box = wait_for(lambda: settled_extents(window), "the window to stand still")
    title_bar = 20  # pixels
    xdotool("mousemove", box.x + box.width - title_bar // 2, box.y - title_bar // 2, "click", 1)


def descendants(node):
    for child in node:
        if child is not None:
            yield child
            yield from descendants(child)


def role_of(node):
    """The name of the element's role; since at-spi 2.53 a push button is just a button."""
    role = node.getRoleName()
    return "push button" if role == "button" else role


def is_showing(node):
    return node.getState().contains(pyatspi.STATE_SHOWING)


def is_active(window):
    return window.getState().contains(pyatspi.STATE_ACTIVE)


def labels_of(node):
    """The texts of the labels that stand for the element, as a combo box gives only its choice by its own name."""
    return [relation.getTarget(index).name
            for relation in node.getRelationSet() if relation.getRelationType() == pyatspi.RELATION_LABELLED_BY
            for index in range(relation.getNTargets())]


class Pointer:
    """What the mouse pointer looks like on the screen."""

    class Cookie(ctypes.Structure):
        _fields_ = [("sequence", ctypes.c_uint)]

    def __init__(self):
        self.xcb = ctypes.CDLL("libxcb.so.1")
        self.xfixes = ctypes.CDLL("libxcb-xfixes.so.0")
        self.libc = ctypes.CDLL(None)
        self.libc.free.argtypes = [ctypes.c_void_p]
        self.xcb.xcb_connect.restype = ctypes.c_void_p
        self.connection = ctypes.c_void_p(self.xcb.xcb_connect(None, None))
        self.ask("query_version", ctypes.c_uint32(4), ctypes.c_uint32(0))

    def ask(self, question, *arguments, extra=lambda reply: 0):
        """Asks the display; returns the 32 bytes of its reply and as many behind them as extra says."""
        request = getattr(self.xfixes, f"xcb_xfixes_{question}")
        request.restype = self.Cookie
        wait = getattr(self.xfixes, f"xcb_xfixes_{question}_reply")
        wait.restype = ctypes.c_void_p
        wait.argtypes = [ctypes.c_void_p, self.Cookie, ctypes.c_void_p]
        reply = wait(self.connection, request(self.connection, *arguments), None)
        if not reply:
            raise AssertionError(f"the display does not answer {question}")
        size = 32
        found = ctypes.string_at(reply, size)
        found += ctypes.string_at(reply + size, extra(found))
        self.libc.free(reply)
        return found

    def shape(self):
        """The picture of the pointer, with its size and its hot spot, but without its place."""
        reply = self.ask("get_cursor_image", extra=lambda head: 4 * int.from_bytes(head[4:8], sys.byteorder))
        width_height_hot_spot = reply[12:20]
        return width_height_hot_spot + reply[32:]

    def end(self):
        self.xcb.xcb_disconnect(self.connection)


class Tools:
    """The plans and calls of the fake tools; testkit/faketools/README.md says what they do."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder)

    def plan(self, name, **jobs):
        (self.folder / f"{name}.fake.json").write_text(json.dumps(jobs), encoding="utf-8")

    def open_gate(self, name="gate"):
        (self.folder / name).touch()

    def calls(self, name, job):
        path = self.folder / f"{name}.calls"
        lines = path.read_text(encoding="utf-8").splitlines() if path.exists() else []
        return [call for call in map(json.loads, lines) if call["job"] == job]


class Program:
    """The running program and its windows."""

    def __init__(self, executable, environment=None):
        # A program that starts before the accessibility bus does stays unseen.
        wait_for(lambda: pyatspi.Registry.getDesktop(0).getRoleName(), "the accessibility bus")
        self.process = subprocess.Popen([executable], env={**os.environ, **(environment or {})})
        self.window = wait_for(lambda: self.find_window(MAIN_WINDOW, "frame"), "the main window")
        wait_for(self.active_window, "a window in front")  # a message may have come up before the main window

    def application(self):
        desktop = pyatspi.Registry.getDesktop(0)
        desktop.clear_cache()
        for application in desktop:
            if application is not None and application.get_process_id() == self.process.pid:
                application.clear_cache()
                return application
        return None

    def windows(self):
        return [window for window in self.application() if window is not None and is_showing(window)]

    def find_window(self, title, role=None):
        for window in self.windows():
            if window.name == title and role in (None, role_of(window)):
                return window
        return None

    def active_window(self):
        return next((window for window in self.windows() if is_active(window)), None)

    def wait_window(self, title, role=None):
        window = wait_for(lambda: self.find_window(title, role), f"the window {title}")
        wait_for(lambda: is_active(window), f"the active window {title}")
        return window

    def find(self, role, name=None, within=None):
        start = within or self.window
        self.application()
        for node in descendants(start):
            if role_of(node) == role and is_showing(node) and (name is None or node.name == name):
                return node
        return None

    def get(self, role, name=None, within=None):
        return wait_for(lambda: self.find(role, name, within), f"{role} {name}")

    def status(self):
        self.application()
        for node in descendants(self.window):
            if role_of(node) == "label" and node.name.startswith("Status:"):
                return node.name
        return None

    def wait_status(self, text):
        try:
            wait_for(lambda: self.status() == text, f'the status "{text}"')
        except AssertionError as error:
            raise AssertionError(f'{error}; it is "{self.status()}"') from None

    def table(self):
        self.application()
        return self.find("table", "Imported files").queryTable()

    def rows(self):
        table = self.table()
        return [[table.getAccessibleAt(row, column).name for column in range(table.nColumns)]
                for row in range(table.nRows)]

    def click_row(self, row):
        click(self.table().getAccessibleAt(row, 0))

    def menu(self, mnemonic, *keys):
        press(f"alt+{mnemonic}")
        wait_for(lambda: self.find("popup menu"), "an open menu")
        press(*keys)

    def export_all(self, target):
        """Has all files exported to the folder target, otherwise as the dialog offers it."""
        self.menu("f", "Return")
        dialog = self.wait_window("Export all files")
        click(self.get("text", "Export directory", dialog))
        press("ctrl+a")
        xdotool("type", "--delay", 20, str(target))
        press("Return")
        wait_for(lambda: self.find_window("Export all files") is None, "the end of the dialog")

    def box_text(self, box):
        return [node.name for node in descendants(box) if role_of(node) == "label" and node.name]

    def answer(self, title, button):
        """Clicks a button of the message box; returns what the box said."""
        box = self.wait_window(title)
        text = "\n".join(self.box_text(box))
        click(wait_for(lambda: self.find_button(button, box), f"the button {button}"))
        wait_for(lambda: self.is_gone(title), f"the end of the box {title}")
        return text

    def choose(self, dialog, label, choice):
        """Clicks the combo box behind the label, and then the choice in the list that opens."""
        combo = wait_for(lambda: next(node for node in descendants(dialog)
                                      if role_of(node) == "combo box" and label in labels_of(node)),
                         f"the choice box {label}")
        click(combo)
        items = combo[0]
        wait_for(lambda: extents(items).height, f"the choices of {label}")
        click(next(item for item in items if item.name == choice))
        wait_for(lambda: self.application() and combo.name == choice, f"{choice} to be chosen")

    def is_gone(self, title):
        return self.process.poll() is not None or self.find_window(title) is None

    def find_button(self, name, within):
        for node in descendants(within):
            if role_of(node) == "push button" and node.name.replace("&", "") == name and is_showing(node):
                return node
        return None

    def wait_end(self):
        return self.process.wait(timeout=PATIENCE)

    def end(self):
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGKILL)
            self.process.wait()


class Drag:
    """Drags files out of another program and drops them on target. That program has to stay until the files have been
    taken; end() ends it."""

    def __init__(self, source_program, paths, target):
        self.output = tempfile.TemporaryFile("w+")
        self.source = subprocess.Popen([source_program, *map(str, paths)], stdout=self.output)
        wait_for(lambda: subprocess.run(["xdotool", "search", "--onlyvisible", "--name", "dragsource"],
                                        capture_output=True, check=False).stdout, "the drag source")
        box = wait_for(lambda: settled_extents(target), f"{target} to stand still")
        x, y = box.x + box.width // 2, box.y + box.height // 2
        xdotool("mousemove", 40, 30, "sleep", 0.2, "mousedown", 1, "sleep", 0.1)
        for step in range(1, 11):
            xdotool("mousemove", 40 + (x - 40) * step // 10, 30 + (y - 30) * step // 10, "sleep", 0.05)
        wait_for(lambda: xdotool("mousemove_relative", "--", 1, 0, "mousemove_relative", "--", -1, 0)
                 or "welcome" in self.drag_events(), "the drag to be welcome")
        xdotool("mouseup", 1)
        wait_for(lambda: self.drag_events()[-1] in ("accepted", "refused"), "the end of the drag")
        self.accepted = self.drag_events()[-1] == "accepted"

    def drag_events(self):
        self.output.seek(0)
        return self.output.read().split()

    def end(self):
        self.source.kill()
        self.source.wait()
        self.output.close()
