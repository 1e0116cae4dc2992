#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""docs/slurm-day.sh as an array job of Slurm: a controller and two nodes, all on this machine, which this test starts and
ends. One task is killed in the middle of an export and one is taken off its node; both are requeued. The environment is
that of farm.py."""

import getpass
import os
import pathlib
import shutil
import socket
import subprocess
import tempfile
import unittest

from farm import DOCS, PATIENCE, Farm, wait_until

TOOLS = ["munged", "slurmctld", "slurmd", "sbatch", "scontrol"]
PATH = os.environ["PATH"] + ":/usr/sbin:/sbin"

# Nodes say that they have four processors each, as the example asks for so many.
CONFIGURATION = """\
ClusterName=farm
SlurmctldHost={host}(127.0.0.1)
SlurmctldPort={ports[0]}
SlurmUser={user}
SlurmdUser={user}
AuthType=auth/munge
AuthInfo=socket={folder}/munge.socket,cred_expire=5
StateSaveLocation={folder}/state
SlurmdSpoolDir={folder}/%n
SlurmctldPidFile={folder}/slurmctld.pid
SlurmdPidFile={folder}/%n.pid
SlurmctldLogFile={folder}/slurmctld.log
SlurmdLogFile={folder}/%n.log
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
JobAcctGatherType=jobacct_gather/none
SlurmdParameters=config_overrides
SchedulerParameters=sched_interval=2,bf_interval=2
KillWait=15
ReturnToService=2
NodeName=node1 NodeHostname={host} NodeAddr=127.0.0.1 Port={ports[1]} CPUs=4
NodeName=node2 NodeHostname={host} NodeAddr=127.0.0.1 Port={ports[2]} CPUs=4
PartitionName=all Nodes=ALL Default=YES State=UP
"""


def free_ports(count):
    sockets = [socket.socket() for _ in range(count)]
    for each in sockets:
        each.bind(("127.0.0.1", 0))
    ports = [each.getsockname()[1] for each in sockets]
    for each in sockets:
        each.close()
    return ports


class Cluster:
    """The daemons. They stay in the foreground, as children of this test."""

    def __init__(self):
        self.place = tempfile.TemporaryDirectory(prefix="farm")  # sockets need a short path
        self.folder = pathlib.Path(self.place.name)
        self.folder.chmod(0o755)
        (self.folder / "state").mkdir()
        self.environment = dict(os.environ, PATH=PATH, SLURM_CONF=str(self.folder / "slurm.conf"))
        self.daemons = []
        (self.folder / "slurm.conf").write_text(CONFIGURATION.format(
            host=socket.gethostname().split(".")[0], folder=self.folder, ports=free_ports(3), user=getpass.getuser()),
            encoding="utf-8")
        (self.folder / "cgroup.conf").write_text("CgroupPlugin=cgroup/v1\nCgroupAutomount=no\n", encoding="utf-8")

    def start(self):
        key = self.folder / "munge.key"
        key.write_bytes(os.urandom(1024))
        key.chmod(0o600)
        self._start("munged", "--foreground", "--force", *(f"--{what}-file={self.folder}/munge.{what}"
                                                           for what in ("key", "pid", "log", "seed")),
                    f"--socket={self.folder}/munge.socket")
        wait_until("munged", (self.folder / "munge.socket").exists)
        self._start("slurmctld", "-D", "-c")
        self._start("slurmd", "-D", "-N", "node1")
        self._start("slurmd", "-D", "-N", "node2")
        wait_until("two idle nodes", lambda: self.call("sinfo", "-h", "-N", "-o", "%T").split() == ["idle", "idle"])

    def _start(self, *command):
        with (self.folder / "daemons.log").open("ab") as output:
            self.daemons.append(subprocess.Popen(command, env=self.environment, stdout=output, stderr=output))

    def end(self):
        for daemon in reversed(self.daemons):
            daemon.terminate()
            daemon.wait(PATIENCE)
        self.place.cleanup()

    def poll(self):
        """None while all daemons run, as of a process."""
        return next((daemon.returncode for daemon in self.daemons if daemon.poll() is not None), None)

    @property
    def returncode(self):
        return self.poll()

    def call(self, *command, environment=None, folder=None):
        run = subprocess.run(command, env={**self.environment, **(environment or {})}, cwd=folder,
                             stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        return run.stdout.strip()

    def fact(self, task, name):
        """What scontrol says of a task under name."""
        words = self.call("scontrol", "--oneliner", "show", "job", task).split()
        return next((word.partition("=")[2] for word in words if word.startswith(name + "=")), "")

    def state(self, task):
        return self.fact(task, "JobState")


@unittest.skipUnless(all(shutil.which(tool, path=PATH) for tool in TOOLS), "Slurm or MUNGE is not installed")
class SlurmTest(unittest.TestCase):
    def setUp(self):
        self.farm = Farm()
        self.addCleanup(self.farm.end)
        self.cluster = Cluster()
        self.addCleanup(self.cluster.end)
        self.cluster.start()

    def test_killed_and_requeued_tasks_end_well(self):
        job = self.cluster.call("sbatch", "--parsable", "--array=0-5", str(DOCS / "slurm-day.sh"),
                                environment=self.farm.environment, folder=self.farm.edit.parent)
        self.assertTrue(job.isdigit(), job)

        self.farm.kill_in_mid_export(self.farm.shoot / "CARD3", self.cluster)
        wait_until("the end of the killed task", lambda: self.cluster.state(f"{job}_2") == "FAILED")
        self.cluster.call("scontrol", "requeue", f"{job}_2")

        self.farm.wait_for_export(self.farm.shoot / "CARD6", self.cluster)
        self.cluster.call("scontrol", "requeue", f"{job}_5")  # as when another job needs the node

        tasks = [f"{job}_{task}" for task in range(6)]
        wait_until("the end of all tasks", lambda: {self.cluster.state(task) for task in tasks} == {"COMPLETED"})
        self.assertEqual([self.cluster.fact(task, "Restarts") for task in tasks], ["0", "0", "1", "0", "0", "1"])
        self.assertEqual({self.cluster.fact(task, "NodeList") for task in tasks}, {"node1", "node2"})
        self.farm.check(self)


if __name__ == "__main__":
    unittest.main(verbosity=2)
