# SPDX-License-Identifier: MIT
"""What the tests of job spreaders share: six cards, a job that is killed in the middle of an export, and what has to be
there at the end. The environment names the program that makes the cards in OSTREL_CARDS and has ostrel-batch in PATH."""

import json
import os
import pathlib
import signal
import subprocess
import tempfile
import time

PROJECT = pathlib.Path(__file__).resolve().parents[2]
DOCS = PROJECT / "docs"
PATIENCE = 120  # seconds, on a busy machine


def wait_until(what, condition):
    """Returns what condition() returns as soon as that is true."""
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        found = condition()
        if found:
            return found
        time.sleep(0.02)
    raise AssertionError(f"waited in vain: {what}")


class Farm:
    """A folder with six cards, and one for the exports and reports."""

    def __init__(self):
        self.folder = tempfile.TemporaryDirectory()
        root = pathlib.Path(self.folder.name)
        self.shoot, self.edit, self.reports = root / "shoot", root / "edit", root / "reports"
        for folder in (self.shoot, self.edit, self.reports):
            folder.mkdir()
        subprocess.run([os.environ["OSTREL_CARDS"], self.shoot], check=True)
        self.expected = json.loads((self.shoot / "expected.json").read_text(encoding="utf-8"))
        # What the examples in docs/ take their paths from. Pictures are coded again, so that exports take a while.
        self.environment = dict(os.environ, SHOOT=str(self.shoot), EDIT=str(self.edit), REPORTS=str(self.reports),
                                TYPE="mov-dnxhd-36")

    def end(self):
        self.folder.cleanup()

    def half_done(self, source):
        """Whether a job is writing the export of source now."""
        for path in (self.edit / ".ostrel-batch").glob("*.json"):
            try:
                note = json.loads(path.read_text(encoding="utf-8"))
                written = self.edit / note["export"]
                if note["source"] == str(source) and "exportSize" not in note and written.stat().st_size > 0:
                    return True
            except (OSError, ValueError, KeyError):
                continue  # it comes or goes just now
        return False

    @staticmethod
    def jobs_of(card):
        """Process ids of the jobs that have begun with card."""
        found = []
        for process in pathlib.Path("/proc").glob("[0-9]*"):
            try:
                words = (process / "cmdline").read_bytes().split(b"\0")
            except OSError:
                continue
            if words[0].endswith(b"ostrel-batch") and os.fsencode(card) in words:
                found.append(int(process.name))
        return found

    def wait_for_export(self, card, spreader):
        """Waits until the job of card is writing its picture; fails when the process spreader has ended before."""
        wait_until(f"an export of {card}", lambda: spreader.poll() is not None or self.half_done(card / "A001.mov"))
        if spreader.poll() is not None:
            raise AssertionError(f"ended with {spreader.returncode} before an export of {card}")

    def kill_in_mid_export(self, card, spreader):
        """Kills the job of card while its picture is being written."""
        self.wait_for_export(card, spreader)
        job, = self.jobs_of(card)
        os.kill(job, signal.SIGSTOP)  # what is half done stays so
        half_done = self.half_done(card / "A001.mov")
        os.kill(job, signal.SIGKILL)
        if not half_done:
            raise AssertionError(f"the export of {card} has ended too soon")

    def join(self):
        """The records of all cards, by ostrel-batch join."""
        joined = self.edit.parent / "all.json"
        subprocess.run(["ostrel-batch", "join", "--report", joined, *sorted(self.reports.glob("*.json"))], check=True)
        return json.loads(joined.read_text(encoding="utf-8"))["files"]

    def check(self, test):
        """Every export is there exactly once, starts right and was verified; the joined report is complete."""
        records = {record["path"]: record for record in self.join()}
        test.assertEqual(sorted(records), sorted(str(self.shoot / file["path"]) for file in self.expected))
        for file in self.expected:
            record = records[str(self.shoot / file["path"])]
            test.assertEqual(record["exportResult"], "verified", record)
            test.assertEqual(record["exportStart"], file["start"], record)
            test.assertEqual(start_of(record["exportPath"]), file["start"], record)
        written = sorted(str(path) for path in self.edit.iterdir() if path.is_file())
        test.assertEqual(written, sorted(record["exportPath"] for record in records.values()))
        test.assertEqual(len(written), 18)


def start_of(path):
    """Where a written file starts, by the probe tool: a timecode, or the number of a sample."""
    probe = subprocess.run(["ffprobe", "-v", "error", "-of", "json", "-show_format", "-show_streams", path],
                           check=True, capture_output=True)
    content = json.loads(probe.stdout)
    tags = {}
    for part in [content["format"], *content["streams"]]:
        tags.update(part.get("tags", {}))
    return tags.get("time_reference") or tags.get("timecode")
