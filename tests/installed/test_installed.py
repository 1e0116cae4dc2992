#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Tests of the installed program on a screen, with the installed tools: it has to show what the demo showed, and its
files have to start where those of the demo start, which were judged. Usage: test_installed.py DEMO_FOLDER; the
environment is that of test_gui.py."""

import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

import pyatspi

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "window" / "gui"))
import desktop  # noqa: E402
from desktop import Drag, Program, press  # noqa: E402

desktop.PATIENCE = 600  # seconds; real tools read and write here


def report_rows(report):
    """The rows of the demo's table as lists of cells; the ruler under the heading shows where columns begin."""
    lines = report.read_text(encoding="utf-8").splitlines()
    columns = [match.span() for match in re.finditer("-+", lines[1])]
    return [[line[begin:end].rstrip() for begin, end in columns] for line in lines[2:] if line]


def start_of(path):
    """Where a written file starts, in the words of the demo's table."""
    probe = subprocess.run(["ffprobe", "-v", "error", "-of", "json", "-show_format", "-show_streams", path],
                           check=True, capture_output=True)
    content = json.loads(probe.stdout)
    tags = [part.get("tags", {}) for part in [content["format"], *content["streams"]]]
    samples = next((tag["time_reference"] for tag in tags if "time_reference" in tag), None)
    return f"sample {samples}" if samples else next((tag["timecode"] for tag in tags if "timecode" in tag), "")


class InstalledProgramTest(unittest.TestCase):
    demo = None

    def setUp(self):
        self.expected = report_rows(self.demo / "report.txt")
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.target = pathlib.Path(folder.name)
        pyatspi.Registry.getDesktop(0)  # wakes the accessibility service before the program looks for it
        self.program = Program(os.environ["OSTREL_PROGRAM"])
        self.addCleanup(self.program.end)

    def test_a_day_is_imported_and_exported_as_in_the_demo(self):
        self.import_media()
        shown = {row[0]: [row[2], row[3]] for row in self.program.rows()}
        self.assertEqual(shown, {row[0]: row[1:3] for row in self.expected})
        self.program.export_all(self.target)
        self.program.wait_window("Export Result")
        press("Return")

        expected = {pathlib.Path(row[3]).stem: row[4] for row in self.expected if row[3] != "-"}
        self.assertGreater(len(expected), 10)
        self.assertEqual({path.stem: start_of(path) for path in self.target.iterdir()}, expected)

        press("alt+F4")
        self.assertEqual(self.program.wait_end(), 0)

    def import_media(self):
        drag = Drag(os.environ["OSTREL_DRAG_SOURCE"], [self.demo / "media"],
                    self.program.get("table", "Imported files"))
        self.addCleanup(drag.end)
        self.assertTrue(drag.accepted, "the drop is accepted")
        self.program.wait_status("Status: import ready")
        drag.end()  # it holds the mouse until then


if __name__ == "__main__":
    InstalledProgramTest.demo = pathlib.Path(sys.argv.pop(1))
    unittest.main(verbosity=2, warnings="ignore")
