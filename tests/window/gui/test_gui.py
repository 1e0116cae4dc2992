#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Tests of the whole program on a screen, with fake tools. Run by ctest, which sets the environment."""

import http.server
import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import threading
import unittest

import desktop
from desktop import (MAIN_WINDOW, Drag, Pointer, Program, Tools, click, click_close_box, descendants, labels_of, press,
                     role_of, settled_extents, wait_for)

PROGRAM = os.environ["OSTREL_PROGRAM"]
DRAG_SOURCE = os.environ["OSTREL_DRAG_SOURCE"]
FOUND = "10:00:00:00@25.00 on ch. 1"
INTERACTIVE = {"push button", "combo box", "check box", "text", "table", "table cell", "table column header", "list",
               "list item", "menu bar", "menu item", "popup menu", "progress bar"}


class GuiTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.media = pathlib.Path(folder.name) / "media"
        self.target = pathlib.Path(folder.name) / "target"
        self.media.mkdir()
        self.target.mkdir()
        self.tools = Tools(self.media)
        self.program = None

    def start(self, **environment):
        self.program = Program(PROGRAM, environment)
        self.addCleanup(self.program.end)

    def import_files(self, *names):
        for name in names:
            (self.media / name).touch()
        self.drop()
        self.program.wait_status("Status: import ready")

    def drop(self):
        drag = Drag(DRAG_SOURCE, [self.media], self.program.get("table", "Imported files"))
        self.addCleanup(drag.end)
        self.assertTrue(drag.accepted, "the drop is accepted")

    def start_hanging_export(self):
        self.tools.plan("a.mov", export={"hang": True})
        self.import_files("a.mov")
        self.program.export_all(self.target)
        self.program.get("push button", "Cancel")
        wait_for(lambda: self.tools.calls("a.mov", "export"), "the export")

    def assert_export_wound_up(self):
        process = self.tools.calls("a.mov", "export")[0]["processId"]
        wait_for(lambda: not alive(process), "the end of the tool")
        wait_for(lambda: not any(self.target.iterdir()), "the removal of the unfinished file")

    # -- import and table

    def test_files_are_imported_by_a_drop(self):
        self.start()
        self.assertEqual(self.program.rows()[0][0], "Drop files here...")
        self.import_files("a.mov", "b.wav")
        rows = sorted(self.program.rows())
        self.assertEqual([row[0] for row in rows], ["a.mov", "b.wav"])
        for row in rows:
            self.assertEqual(row[1], "00:00:10")
            self.assertEqual(row[3], FOUND)
        table = self.program.table()
        headers = [table.getColumnHeader(column).name for column in range(table.nColumns)]
        self.assertEqual(headers, ["File name", "Duration", "File TC", "Audio TC"])

    def test_rows_are_deleted_by_key_but_not_during_an_import(self):
        self.start()
        self.tools.plan("a.mov", read={"waitFor": "gate"})
        (self.media / "a.mov").touch()
        self.drop()
        wait_for(lambda: self.tools.calls("a.mov", "read"), "the reader")
        self.program.click_row(0)
        press("Delete")
        self.program.wait_status("Status: ")
        self.assertEqual(len(self.program.rows()), 1)
        self.tools.open_gate()
        self.program.wait_status("Status: import ready")
        self.program.click_row(0)
        streams = self.program.get("list", "Streams of the clicked file")
        wait_for(lambda: streams.childCount > 0, "the list of streams")
        press("ctrl+a", "Delete")
        wait_for(lambda: self.program.table().nRows == 0, "the empty table")
        self.program.wait_status("Status: ")
        self.assertEqual(streams.childCount, 0)
        press("Delete")
        self.assertEqual(self.program.table().nRows, 0)

    # -- the pointer, which shows whether an import or a reading is under way

    def pointer_over_the_table(self):
        """The pointer, and what it looks like over the table while nothing is under way."""
        pointer = Pointer()
        self.addCleanup(pointer.end)
        self.move_over_the_table()
        return pointer, pointer.shape()

    def move_over_the_table(self):
        table = self.program.get("table", "Imported files")
        box = wait_for(lambda: settled_extents(table), "the table to stand still")
        desktop.xdotool("mousemove", box.x + box.width // 2, box.y + box.height // 2, "sleep", 0.2)

    def test_the_pointer_is_busy_until_a_silent_end(self):
        self.start()
        pointer, idle = self.pointer_over_the_table()
        self.tools.plan("silent.mov", probe={"json": {}})
        self.tools.plan("good.mov", probe={"waitFor": "failed"}, read={"waitFor": "gate"})
        for name in ("silent.mov", "good.mov"):
            (self.media / name).touch()
        self.drop()
        wait_for(lambda: pointer.shape() != idle, "the busy pointer")
        wait_for(lambda: "couldn't read file data" in [row[3] for row in self.program.rows()], "the failed probe")
        self.tools.open_gate("failed")
        wait_for(lambda: self.tools.calls("good.mov", "read"), "the reader")
        self.program.wait_status("Status: prepare files for reading...")
        self.assertNotEqual(pointer.shape(), idle)
        self.tools.open_gate()
        wait_for(lambda: pointer.shape() == idle, "the usual pointer")
        self.assertEqual(self.program.status(), "Status: reading audio TC...")
        self.assertIn(FOUND, [row[3] for row in self.program.rows()])

    def test_the_pointer_is_busy_while_files_are_read_again(self):
        self.start()
        self.import_files("a.mov")
        pointer, idle = self.pointer_over_the_table()
        self.tools.plan("a.mov", read={"waitFor": "gate"})
        self.program.menu("e", "Return")
        dialog = self.program.wait_window("Read audio timecode")
        self.program.choose(dialog, "Read files:", "all files")
        click(self.program.find_button("Read audio TC", dialog))
        wait_for(lambda: len(self.tools.calls("a.mov", "read")) == 2, "the reader")
        self.move_over_the_table()
        wait_for(lambda: pointer.shape() != idle, "the busy pointer")
        self.tools.open_gate()
        wait_for(lambda: pointer.shape() == idle, "the usual pointer")
        self.program.wait_status("Status: read finished")

    def test_a_click_shows_the_streams(self):
        self.start()
        self.import_files("a.mov")
        self.program.click_row(0)
        streams = self.program.get("list", "Streams of the clicked file")
        wait_for(lambda: [item.name for item in streams][:1] == [" Streams:"], "the list of streams")

    # -- reading again

    def test_the_reading_dialog_reads_with_what_was_chosen(self):
        self.start()
        self.import_files("a.mov")
        self.program.menu("e", "Return")
        dialog = self.program.wait_window("Read audio timecode")
        for label, choice in (("Read files:", "all files"), ("Select reading algorithm:", "HIGH"),
                              ("Select timecode channel:", "channel 4"), ("Select frame rate:", "29.97 FPS")):
            self.program.choose(dialog, label, choice)
        click(self.program.find_button("Read audio TC", dialog))
        self.program.wait_status("Status: read finished")
        self.assertEqual(self.tools.calls("a.mov", "read")[-1]["arguments"][1:], ["-c3", "-f29.97", "-aHIGH"])
        self.assertIsNone(self.program.find_window("Read audio timecode"))

    # -- export

    def test_an_export_with_failures_names_them(self):
        self.start()
        self.tools.plan("b.mov", export={"exitCode": 1})
        self.import_files("a.mov", "b.mov")
        self.program.export_all(self.target)
        text = self.program.answer("Export Result", "OK")
        self.assertIn("Export finished.\nErrors occured with the folliwing files:\nb.mov", text)
        self.program.wait_status("Status:")

    def test_an_export_without_failures_is_told(self):
        self.start()
        self.import_files("a.mov")
        self.program.export_all(self.target)
        self.assertIn("Ostrel did the job!", self.program.answer("Export Result", "OK"))
        self.assertEqual(len(list(self.target.iterdir())), 1)

    def test_an_export_to_a_missing_directory_is_refused_in_words(self):
        self.start()
        self.program.menu("f", "Return")
        dialog = self.program.wait_window("Export all files")
        click(self.program.get("text", "Export directory", dialog))
        press("ctrl+a")
        desktop.xdotool("type", str(self.target / "missing"))
        press("Return")
        self.program.get("label", "Selected directory doesn't exists", dialog)
        press("Escape")
        wait_for(lambda: self.program.find_window("Export all files") is None, "the end of the dialog")

    def test_cancelling_is_asked_for(self):
        self.start()
        self.start_hanging_export()
        click(self.program.get("push button", "Cancel"))
        self.assertIn("Are you sure you want to cancel?", self.program.answer("Cancel Export", "No"))
        click(self.program.get("push button", "Cancel"))
        self.program.answer("Cancel Export", "Yes")
        self.program.wait_status("Status: export cancelled")
        self.assert_export_wound_up()

    # -- the end

    def test_quitting_by_menu_during_an_export_is_asked_for(self):
        self.quit_during_an_export(lambda: self.program.menu("f", "Up", "Return"))

    def test_quitting_by_the_close_box_during_an_export_is_asked_for(self):
        self.quit_during_an_export(lambda: click_close_box(self.program.window))

    def quit_during_an_export(self, ask_to_quit):
        self.start()
        self.start_hanging_export()
        ask_to_quit()
        self.assertIn("Are you sure you want to quit", self.program.answer("Quit Application", "No"))
        self.assertTrue(alive(self.tools.calls("a.mov", "export")[0]["processId"]))
        ask_to_quit()
        self.program.answer("Quit Application", "Yes")
        self.assertEqual(self.program.wait_end(), 0)
        self.assert_export_wound_up()

    def test_a_termination_during_an_export_winds_it_up(self):
        self.start()
        self.start_hanging_export()
        self.program.process.send_signal(signal.SIGTERM)
        self.assertEqual(self.program.wait_end(), 0)
        self.assert_export_wound_up()

    def test_a_hang_up_ends_the_program_unless_it_was_started_to_stay(self):
        stays = pathlib.Path(self.target) / "stays"
        stays.write_text(f'#!/bin/sh\nexec nohup "{PROGRAM}" >/dev/null\n', encoding="utf-8")
        stays.chmod(0o755)
        self.program = Program(str(stays))
        self.addCleanup(self.program.end)
        self.program.process.send_signal(signal.SIGHUP)
        self.import_files("a.mov")
        self.program.process.send_signal(signal.SIGTERM)
        self.assertEqual(self.program.wait_end(), 0)
        self.start()
        self.program.process.send_signal(signal.SIGHUP)
        self.assertEqual(self.program.wait_end(), 0)

    def test_the_window_closes_at_once_when_nothing_runs(self):
        self.start()
        click_close_box(self.program.window)
        self.assertEqual(self.program.wait_end(), 0)

    def test_the_menu_ends_the_program_at_once_when_nothing_runs(self):
        self.start()
        self.program.menu("f", "Up", "Return")
        self.assertEqual(self.program.wait_end(), 0)

    # -- messages

    def test_the_about_box_has_selectable_text_and_a_link(self):
        opened = self.media / "opened"
        opener = self.media / "xdg-open"
        opener.write_text(f'#!/bin/sh\necho "$1" > "{opened}"\n', encoding="utf-8")
        opener.chmod(0o755)
        self.start(PATH=f"{self.media}:{os.environ['PATH']}")
        self.program.menu("a", "Return")
        box = self.program.wait_window("About")
        label = next(node for node in descendants(box) if "V1.00" in node.name)
        place = wait_for(lambda: settled_extents(label), "the box to stand still")
        lines = 3  # title, web page, the empty line behind it
        first = place.y + place.height // (2 * lines)
        second = place.y + place.height // 2
        desktop.xdotool("mousemove", place.x + 3, first, "mousedown", 1, "mousemove", place.x + 90, first + 1,
                        "mousemove", place.x + 120, first + 1)
        selected = wait_for(lambda: subprocess.run([DRAG_SOURCE, "--print-selection"], capture_output=True, text=True,
                                                   check=True).stdout.strip() if released() else None,
                            "a selection")
        self.assertTrue("Ostrel Timecode Tool".startswith(selected[:6]), selected)
        desktop.xdotool("mousemove", place.x + 110, second, "sleep", 0.2, "click", 1)
        wait_for(opened.exists, "the opened link")
        wait_for(lambda: opened.read_text(encoding="utf-8").startswith("http"), "the address of the web page")
        self.assertIn("Webpage: ", self.program.answer("About", "OK"))

    def test_a_newer_version_is_announced(self):
        with descriptor_server("2", "0", "Reads everything.") as server:
            self.start(http_proxy=server.address())
            text = self.program.answer("New Version Available", "OK")
        self.assertIn("There is a new software version available!", text)
        self.assertIn("http://host.invalid/a.zip", text)
        self.assertIn("Reads everything.", text)
        self.assertEqual(len(server.user_agents), 1)
        self.assertTrue(server.user_agents[0].startswith("Ostrel Timecode Tool V1.0 "), server.user_agents[0])

    def test_the_same_version_is_not_announced(self):
        with descriptor_server("1", "0", "Reads everything.") as server:
            self.start(http_proxy=server.address())
            wait_for(lambda: server.user_agents, "the request")
            self.import_files("a.mov")
        self.assertEqual([window.name for window in self.program.windows()], [MAIN_WINDOW])

    def test_missing_tools_are_named_and_do_not_block(self):
        copy = self.media / "program"
        shutil.copy(PROGRAM, copy)
        self.program = Program(str(copy), {"PATH": "/nowhere"})
        self.addCleanup(self.program.end)
        box = wait_for(lambda: self.program.find_window(MAIN_WINDOW, "alert"), "the message")
        text = " ".join(self.program.box_text(box))
        for tool in ("ffprobe.exe", "ffmpeg.exe", "LTCReader.exe"):
            self.assertIn(tool, text)
        click(self.program.get("list", "Streams of the clicked file"))
        self.program.wait_window(MAIN_WINDOW, "frame")
        self.program.menu("a", "Return")
        self.program.answer("About", "OK")
        click(self.program.find_button("OK", box))
        wait_for(lambda: self.program.find_window(MAIN_WINDOW, "alert") is None, "the end of the message")

    # -- accessibility

    def test_every_interactive_element_has_a_name(self):
        self.start()
        self.import_files("a.mov")
        self.program.click_row(0)
        self.assert_named(self.program.window, {"menu item", "table", "table cell", "list", "push button"})
        for mnemonic, title in (("f", "Export all files"), ("e", "Read audio timecode")):
            self.program.menu(mnemonic, "Return")
            dialog = self.program.wait_window(title, "dialog")
            self.assert_named(dialog, {"combo box", "list", "push button"})
            press("Escape")
            wait_for(lambda name=title: self.program.find_window(name) is None, "the end of the dialog")

    def assert_named(self, window, expected):
        """Everything that can be worked with says a name of its own; expected are roles that must be there."""
        found = [node for node in descendants(window) if role_of(node) in INTERACTIVE]
        nameless = [role_of(node) for node in found if not node.name]
        self.assertEqual(nameless, [], f"in {window.name}")
        self.assertLessEqual(expected, {role_of(node) for node in found})
        for combo in (node for node in found if role_of(node) == "combo box"):
            self.assertTrue(labels_of(combo), f"a label names the choice {combo.name}")


def alive(process):
    try:
        with open(f"/proc/{process}/stat", encoding="utf-8") as stat:
            return stat.read().rsplit(")", 1)[1].split()[0] != "Z"
    except FileNotFoundError:
        return False
    except ProcessLookupError:
        return False


def released():
    desktop.xdotool("mouseup", 1, "sleep", 0.1)
    return True


class descriptor_server:
    """A web server on a free port that gives the version descriptor to every request."""

    def __init__(self, major, minor, description):
        body = (f"<a><MAJORVERSION>{major}</MAJORVERSION><MINORVERSION>{minor}</MINORVERSION>"
                f"<OSTRELAPP url='http://host.invalid/a.zip'/><DESCRIPTION>{description}</DESCRIPTION></a>").encode()
        user_agents = self.user_agents = []  # of the requests so far

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_GET(self):
                user_agents.append(self.headers["User-Agent"])
                self.send_response(200)
                self.send_header("Content-Length", str(len(body)))
                self.end_headers()
                self.wfile.write(body)

            def log_message(self, *_):
                pass

        self.server = http.server.HTTPServer(("127.0.0.1", 0), Handler)

    def address(self):
        return f"http://127.0.0.1:{self.server.server_address[1]}"

    def __enter__(self):
        threading.Thread(target=self.server.serve_forever, daemon=True).start()
        return self

    def __exit__(self, *_):
        self.server.shutdown()
        self.server.server_close()


if __name__ == "__main__":
    unittest.main(verbosity=2, warnings="ignore")
