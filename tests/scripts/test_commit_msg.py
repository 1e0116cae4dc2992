#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Which messages of commits the hook accepts."""

import os
import subprocess
import tempfile
import unittest

HOOK = os.path.join(os.path.dirname(__file__), "../../scripts/commit-msg")
SUBJECT = "adapter: keep the notes"
BODY = "\n\nEditors look for them."


class CommitMessage(unittest.TestCase):
    def run_hook(self, message):
        with tempfile.NamedTemporaryFile("w", suffix=".txt") as file:
            file.write(message + "\n")
            file.flush()
            return subprocess.run([HOOK, file.name], capture_output=True, text=True, check=False)

    def test_accepted(self):
        for message in (SUBJECT + BODY,
                        "Control, FileList: count once" + BODY,
                        SUBJECT + ":".ljust(72 - len(SUBJECT), "x") + BODY,
                        "Merge branch 'fields'",
                        SUBJECT + BODY + "\n# On branch main"):
            with self.subTest(message=message):
                done = self.run_hook(message)
                self.assertEqual((done.returncode, done.stderr), (0, ""))

    def test_refused(self):
        for message, reason in (("", "area"),
                                ("Keep the notes" + BODY, "area"),
                                ("adapter:keep the notes" + BODY, "area"),
                                (SUBJECT + ":".ljust(73 - len(SUBJECT), "x") + BODY, "73 characters"),
                                (SUBJECT + "." + BODY, "full stop"),
                                (SUBJECT + "\nEditors look for them.", "not blank"),
                                (SUBJECT, "reason"),
                                (SUBJECT + "\n\n# On branch main", "reason")):
            with self.subTest(message=message):
                done = self.run_hook(message)
                self.assertEqual(done.returncode, 1)
                self.assertIn(reason, done.stderr)
                self.assertEqual(done.stderr.count("\n"), 1)


if __name__ == "__main__":
    unittest.main()
