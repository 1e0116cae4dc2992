#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""docs/parallel-day.sh with GNU parallel on three hosts, all of which are this machine. One job is killed in the middle of
an export. The environment is that of farm.py."""

import pathlib
import shutil
import subprocess
import unittest

from farm import DOCS, PATIENCE, Farm


@unittest.skipUnless(shutil.which("parallel"), "GNU parallel is not installed")
class ParallelTest(unittest.TestCase):
    def setUp(self):
        self.farm = Farm()
        self.addCleanup(self.farm.end)
        home = self.farm.edit.parent / "home"
        (home / ".parallel").mkdir(parents=True)
        (home / ".parallel" / "will-cite").touch()  # it asks for it at its first start
        neighbour = pathlib.Path(__file__).resolve().parent / "neighbour"
        self.farm.environment.update(HOME=str(home), PARALLEL_SSH=str(neighbour), HOSTS="1/host1,1/host2,1/host3")

    def test_a_killed_job_is_started_again(self):
        run = subprocess.Popen([DOCS / "parallel-day.sh"], env=self.farm.environment, cwd=self.farm.edit.parent)
        self.addCleanup(run.kill)
        self.farm.kill_in_mid_export(self.farm.shoot / "CARD3", run)
        self.assertEqual(run.wait(PATIENCE), 0)
        self.farm.check(self)
        self.assertTrue((self.farm.edit.parent / "edit.html").is_file())

        jobs = (self.farm.edit.parent / "cards.log").read_text(encoding="utf-8").splitlines()[1:]
        self.assertEqual(len(jobs), 6, jobs)
        self.assertEqual({job.split("\t")[1] for job in jobs}, {"host1", "host2", "host3"})


if __name__ == "__main__":
    unittest.main(verbosity=2)
