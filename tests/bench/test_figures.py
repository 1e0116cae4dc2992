#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""What bench/figures.py makes of lines that benchmarks print."""

import json
import pathlib
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree as xml

SCRIPT = pathlib.Path(__file__).resolve().parents[2] / "bench/figures.py"
RUN = {"kind": "run", "program": "a-benchmark", "command": "a-benchmark --fast", "date": "2026-01-02",
       "machine": "a fast one"}


def answer(verdict, **figures):
    return {"verdict": verdict, "rate": True, "count": True, "channel": True} | figures


def curve(name, shares, graded=True):
    """Four readings for each grade 0, 1, 2...: so many of them are right."""
    refused = {"verdict": "refused"}
    return [{"kind": "reading", "section": "Noise", "curve": name, "unit": "dB", "graded": graded, "grade": grade,
             "case": "", "readers": {"LTCReader": answer("right", error=file) if file < right else refused}}
            for grade, right in enumerate(shares) for file in range(4)]


def odd(verdict, confidence=0.5, too_noisy=False, behaviour="held"):
    return {"kind": "odd", "case": "1/1", "behaviour": behaviour, "disturbance": "hum", "grade": 2, "value": 1.5,
            "seconds": 0.2, "rate": "25", "verdict": verdict, "confidence": confidence, "too_noisy": too_noisy,
            "likely_right": verdict == "right", "reason": ""}


def step(rows, cpu_s, block_ms=1.0, name="find", shoot="ordinary shoot"):
    return {"kind": "step", "shoot": shoot, "rows": rows, "step": name, "time_s": 1.0, "cpu_s": cpu_s,
            "block_ms": block_ms}


def usage(time_s, own_cpu_s):
    return {"time_s": time_s, "own_cpu_s": own_cpu_s, "tools_cpu_s": 10.0, "peak_mib": 50.0,
            "processes": [[0.0, 1], [0.1, 3]]}


def work_round(program, floor=10.0, batch=None):
    figures = {"kind": "round", "work": "import", "files": 50, "program": usage(program, 0.2),
               "floor": usage(floor, 0.01), "block_ms": 7.0}
    return figures | ({"batch": usage(batch, 0.3)} if batch else {})


class Figures(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def figures(self, lines, *options, head=(RUN,), exit_code=0):
        done = subprocess.run([SCRIPT, *options], input="\n".join(map(json.dumps, [*head, *lines])),
                              capture_output=True, text=True, check=False)
        self.assertEqual(done.returncode, exit_code, done.stderr)
        self.assertEqual(done.stderr.count("\n"), 1 if exit_code == 2 else 0, done.stderr)
        return done.stdout if exit_code != 2 else done.stderr

    def row(self, text, *cells):
        """Whether `text` has a table row of `cells`."""
        self.assertIn(cells, [tuple(part.strip() for part in line.split("  ") if part.strip())
                              for line in text.splitlines()])

    def test_half_points(self):
        for shares, point in (([4, 4, 2, 0], "2"), ([4, 3, 1, 0], "1.5"), ([4, 4, 4], "beyond 2"), ([1, 0], "none")):
            with self.subTest(shares=shares):
                self.row(self.figures(curve("hiss", shares)), "hiss", "Noise", "dB", point, "-", "-")

    def test_libltc_that_reaches_farther(self):
        lines = curve("hiss", [4, 0, 0])
        for line in lines:
            line["readers"]["libltc"] = answer("right")
        self.assertIn("libltc reaches farther: hiss", self.figures(lines))
        self.assertIn("libltc reaches farther on no curve", self.figures(curve("hiss", [4, 0, 0])))

    def test_a_page_has_grades_only_of_curves_without_a_half_point(self):
        page = self.figures(curve("hiss", [4, 0]) + curve("sizes", [4, 2], graded=False), "--markdown")
        self.assertIn("| 1 | 50 / 0 / 50 | - | - | 0, 1 |", page)
        self.assertIn("## Noise: sizes (dB)", page)
        self.assertNotIn("## Noise: hiss", page)
        self.assertIn("Measured on 2026-01-02, a fast one:\n\n    a-benchmark --fast\n", page)

    def test_readings_of_several_runs_are_one_curve(self):
        file = self.folder / "other.jsonl"
        file.write_text("\n".join(map(json.dumps, [RUN, *curve("hiss", [0, 0])])))
        self.row(self.figures(curve("hiss", [4, 4]), "-", file), "LTCReader", "16", "8", "0", "8", "0")

    def test_details(self):
        wrong = curve("clean", [4], graded=False)
        wrong[0]["readers"]["LTCReader"] = answer("wrong", rate=False, channel=False)
        text = self.figures(wrong)
        self.assertIn("LTCReader's 4 answers: rate class right in 75.00 %, drop-frame flag in 100.00 %, channel in "
                      "75.00 %", text)
        self.assertIn("Position, clean: median and largest error 2, 3 samples (3 files)", text)
        self.row(text, "LTCReader", "4", "3", "1", "0", "1")

    def test_sounds_and_costs(self):
        sounds = [{"kind": "sound", "curve": "hiss", "case": "", "readers": {"LTCReader": {"verdict": verdict}}}
                  for verdict in ("refused", "wrong")]
        self.row(self.figures(sounds), "hiss", "2", "1", "-", "-")
        costs = [{"kind": "cost", "curve": "cost of clean", "LTCReader": value, "libltc": 0.25} for value in (1.0, 2.0)]
        self.row(self.figures(costs), "clean", "1.500", "0.250")

    def test_odd_recordings_count_each_verdict(self):
        text = self.figures([odd(verdict) for verdict in ("right", "right", "refused", "wrong", "broken")])
        for name in ("held", "hum, at the edge", "0.2", "all"):
            self.row(text, name, "5", "4", "2", "1", "1", "1")

    def test_confidence_is_compared_with_what_is_wrong(self):
        text = self.figures([odd("right", 0.995), odd("wrong", 0.997), odd("refused", 0.995), odd("wrong", 1.0),
                             odd("refused", 0.95, too_noisy=True)])
        self.row(text, "1e-1 to 1e-2", "1", "1", "1", "0.05")
        self.row(text, "1e-2 to 1e-3", "2", "1", "0.5", "0.004")
        self.row(text, "1e-6 and less", "1", "1", "1", "1e-12")

    def test_limits_are_kept_up_to_themselves(self):
        for block, exit_code in ((50.0, 0), (50.1, 1)):
            text = self.figures([step(1000, 1.0, block)], exit_code=exit_code)
            begin = "MISSED: " if exit_code else "kept:   "
            self.assertIn(begin + "ordinary shoot, find, 1000 rows: longest block", text)

    def test_a_row_may_cost_little_more_in_a_long_table(self):
        fewest = step(1000, 0.001)
        self.assertIn("MISSED: ordinary shoot, find, 20000 rows: cost per row to that at 1000: 2 (at most 1.5)",
                      self.figures([fewest, step(20_000, 0.04, 400)], exit_code=1))
        every_row = {"name": "read", "shoot": "all of one moment"}
        self.assertIn("kept:   all of one moment, read, 1000 rows: CPU time of a timecode [ms]: 0.200",
                      self.figures([step(1000, 0.1, **every_row), step(20_000, 400.0, **every_row)]))

    def test_memory_and_foreign_files(self):
        self.figures([{"kind": "memory", "shoot": "a", "rows": 10, "bytes": 7 * 1024, "json_bytes": 1024}], exit_code=1)
        self.figures([{"kind": "foreign", "files": 9, "answer_ms": 101.0, "block_ms": 1.0, "quit_s": 0.5}], exit_code=1)

    def test_rounds_are_compared_by_their_median(self):
        text = self.figures([work_round(10.0, batch=10.1), work_round(12.0, batch=12.0), work_round(10.2, batch=10.2)],
                            exit_code=1)
        self.assertIn("kept:   import of 50 files: time to that of the floor: 1.020 (at most 1.05)", text)
        self.assertIn("kept:   import of 50 files: our CPU time [% of the child processes']: 2 (at most 3)", text)
        self.assertIn("MISSED: import of 50 files: CPU time of ostrel-batch [% of its child processes']: 3 (at most 2)",
                      text)
        self.row(text, "50", "50", "3", "2", "2", "7")
        self.assertNotIn("ostrel-batch", self.figures([work_round(10.0)]))

    def test_the_reader_is_compared_with_opening_a_file(self):
        lines = [{"kind": "reader", "channels": 1, "reader_ms": value, "opener_ms": 2.0} for value in (3.0, 5.0, 90.0)]
        self.row(self.figures(lines), "1", "5", "2", "3")

    def test_two_runs_side_by_side(self):
        file = self.folder / "before.jsonl"
        file.write_text("\n".join(map(json.dumps, [RUN, step(1000, 0.001), step(2000, 0.001)])))
        text = self.figures([step(1000, 0.002), step(3000, 0.003)], "--before", file)
        self.row(text, "1000", "1 > 2")
        self.row(text, "3000", "1")

    def test_pictures_are_well_formed(self):
        kinds = {"ltc-noise": curve("a < b", [4, 0]), "ltc-confidence": [odd("right"), odd("wrong", 0.9)],
                 "speed-window": [step(20, 1.0), step(2000, 1.0)], "speed-import": [work_round(1.0)],
                 "speed-reader": [{"kind": "reader", "channels": 1, "reader_ms": 3.0, "opener_ms": 2.0}]}
        page = self.figures(sum(kinds.values(), []), "--markdown", "--pictures", self.folder / "images")
        for name in kinds:
            self.assertIn(f"](images/{name}.svg)", page)
            self.assertTrue(xml.parse(self.folder / f"images/{name}.svg").getroot().tag.endswith("svg"))
        self.assertIn("a &lt; b", (self.folder / "images/ltc-noise.svg").read_text())

    def test_what_is_no_figures_is_refused(self):
        for lines, reason in (([], "nothing was measured"),
                              ([{"kind": "curves"}], "-:2: no figures"),
                              (["text"], "-:2: no figures"),
                              ([{"kind": "odd", "behaviour": "held"}], "a line of kind \"odd\" is not as expected: Key"),
                              ([odd("right") | {"confidence": "high"}], "a line of kind \"odd\" is not as expected")):
            with self.subTest(lines=lines):
                self.assertIn(reason, self.figures(lines, exit_code=2))
        self.assertIn("nothing was measured", self.figures([odd("right")], head=(), exit_code=2))


if __name__ == "__main__":
    unittest.main()
