#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Tests of skipped_tests.py, with reports as ctest writes them. Run by ctest."""

import unittest
import xml.etree.ElementTree

from skipped_tests import skips, summary


def report(inside, status="run"):
    return xml.etree.ElementTree.fromstring(
        f'<testsuite><testcase name="tst_x" status="{status}">{inside}</testcase></testsuite>')


class SkippedTestsTest(unittest.TestCase):
    def test_what_is_skipped_is_told_with_its_reason(self):
        output = "<system-out>{}</system-out>".format
        for case, tree, lines in (
                ("nothing", report(output("PASS   : TestX::a()\nTotals: 1 passed, 0 failed, 0 skipped")), []),
                ("a row of a QtTest", report(output("PASS   : TestX::a()\nSKIP   : TestX::b(a row) only root\n   Loc: [x]")),
                 ["tst_x: TestX::b(a row) only root"]),
                ("two functions", report(output("SKIP   : TestX::a() one\nSKIP   : TestX::b() two")),
                 ["tst_x: TestX::a() one", "tst_x: TestX::b() two"]),
                ("a Python test", report(output("test_a (x.T) ... skipped 'no screen'\nOK (skipped=1)")),
                 ["tst_x: test_a (x.T): 'no screen'"]),
                ("a subtest", report(output("test_a (x.T) ... \n  test_a (x.T) [1] ... skipped 'half'")),
                 ["tst_x: test_a (x.T) [1]: 'half'"]),
                ("a whole program", report('<skipped message="SKIP_RETURN_CODE=77"/>' + output("no disk\n"), "notrun"),
                 ["tst_x: SKIP_RETURN_CODE=77: no disk"]),
                ("a disabled one", report(output("Disabled"), "disabled"), ["tst_x: disabled"])):
            with self.subTest(case):
                self.assertEqual(skips(tree), lines)

    def test_the_summary_is_there_where_nothing_was_skipped_too(self):
        self.assertEqual(summary([]), "no test was skipped")
        self.assertEqual(summary(["a: b", "c: d"]), "skipped, wholly or in part:\n  a: b\n  c: d")


if __name__ == "__main__":
    unittest.main(verbosity=2)
