#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Lists which tests were skipped, wholly or in part, and why. Usage: skipped_tests.py REPORT [MORE...]
(REPORT = what "ctest --output-junit" wrote; MORE = lines about what was left out besides the tests of ctest)"""

import re
import sys
import xml.etree.ElementTree

# "SKIP   : TestX::name(row) reason" of QtTest, "test_name (module.TestX) ... skipped 'reason'" of unittest
IN_PART = re.compile(r"^SKIP\s*: (?P<qt>\S.*)|^\s*(?P<python>\S.*) \.\.\. skipped (?P<reason>.*)")


def skips(report):
    """The lines about one report, given as a parsed tree."""
    lines = []
    for test in report.iter("testcase"):
        name = test.get("name")
        skipped = test.find("skipped")
        output = test.findtext("system-out", "")
        if skipped is not None:
            lines.append(f"{name}: {skipped.get('message')}: {output.strip()}")
        elif test.get("status") == "disabled":
            lines.append(f"{name}: disabled")
        for part in filter(None, map(IN_PART.match, output.splitlines())):
            lines.append(f"{name}: {part['qt'] or part['python'] + ': ' + part['reason']}")
    return lines


def summary(lines):
    if not lines:
        return "no test was skipped"
    return "\n".join(["skipped, wholly or in part:"] + [f"  {line}" for line in lines])


if __name__ == "__main__":
    if len(sys.argv) < 2 or sys.argv[1].startswith("-"):
        sys.exit(__doc__)
    try:
        found = skips(xml.etree.ElementTree.parse(sys.argv[1]))
    except (OSError, xml.etree.ElementTree.ParseError) as error:
        sys.exit(f"skipped_tests: {sys.argv[1]}: {error}")
    print(summary(found + sys.argv[2:]))
