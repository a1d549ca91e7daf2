"""Cells: private network, file and process namespaces in which one contender runs unseen."""
import os
import subprocess
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
PATIENCE_S = 10

# Clients, RTOS and contender share one core. On two, every hand-over wakes a sleeping core, which
# costs more than all the work of a small command and varies with the machine's mood; on one, a
# request takes the time of its own path, and no contender gains by overlapping with its clients.
CORE = max(os.sched_getaffinity(0))


def poll_until(condition):
    """Waits until `condition()` is true and returns its value."""
    deadline = time.monotonic() + PATIENCE_S
    while time.monotonic() < deadline:
        if value := condition():
            return value
        time.sleep(0.001)
    raise TimeoutError("nothing happened within %d s" % PATIENCE_S)


class Cell:
    """Namespaces of their own with loopback up and a storage of their own at /tmp/FL0.

    Leaving the `with` block ends every process inside, daemons included.
    """

    is_realtime = False  # keeps the other processes of a busy machine out; needs root

    # /tmp/FL0 itself is no mount point: whoever removed it outside would take the mount along.
    _INIT = """set -e
        ip link set lo up
        mount -t tmpfs tmpfs /mnt
        cp -r "$1" /mnt/FL0
        case "$2" in /tmp/*)
            mkdir -p "/mnt/${2#/tmp/}"
            mount --bind "$2" "/mnt/${2#/tmp/}" ;;
        esac
        mount --rbind /mnt /tmp
        echo ready
        exec sleep infinity"""

    def __init__(self, storage):
        is_root = os.geteuid() == 0
        user = [] if is_root else ["--user", "--map-root-user"]
        self._holder = subprocess.Popen(
            ["unshare", *user, "--net", "--mount", "--pid", "--fork", "--kill-child",
             "sh", "-c", self._INIT, "cell", str(storage), str(ROOT)], stdout=subprocess.PIPE, text=True)
        if self._holder.stdout.readline() != "ready\n":
            raise RuntimeError("no namespaces: root or user namespaces are needed")
        pid = self._holder.pid
        self._init = Path(f"/proc/{pid}/task/{pid}/children").read_text().split()[0]
        user = [] if is_root else ["--user", "--preserve-credentials"]
        self._enter = ["nsenter", "--target", self._init, *user, "--net", "--mount", "--pid"]

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._holder.kill()
        self._holder.wait()

    def start(self, command, **options):
        """Starts a program inside, pinned to the one core."""
        priority = ["chrt", "--fifo", "1"] if self.is_realtime else []
        return subprocess.Popen(
            [*self._enter, *priority, "taskset", "--cpu-list", str(CORE), *command],
            text=True, **options)

    def find(self, name):
        """The process called `name` inside, seen from outside: of a daemon, the one that stays."""
        return poll_until(lambda: self._look_for(name))

    def _look_for(self, name):
        space = os.readlink(f"/proc/{self._init}/ns/pid")
        found = []
        for path in Path("/proc").glob("[0-9]*"):
            try:
                os.readlink(path / "exe")  # fails for those that have ended and wait to be reaped
                if os.readlink(path / "ns/pid") == space and (path / "comm").read_text() == name + "\n":
                    found.append(path)
            except OSError:
                continue  # gone meanwhile
        # A daemon's parents start before it, and may not have ended yet.
        return Process(max(found, key=lambda path: int(path.name))) if found else None


class Process:
    """What the system knows of a running process."""

    def __init__(self, path):
        self._path = path

    def memory_kb(self, field):
        return self._number(self._path / "status", field)

    def private_kb(self):
        """What would be free without this process: its pages that no other process has mapped."""
        return sum(self._number(self._path / "smaps_rollup", field)
                   for field in ("Private_Clean", "Private_Dirty"))

    def threads(self):
        return len(list((self._path / "task").iterdir()))

    def context_switches(self):
        fields = ("voluntary_ctxt_switches", "nonvoluntary_ctxt_switches")
        return sum(self._number(task / "status", field)
                   for task in (self._path / "task").iterdir() for field in fields)

    def cpu_ns(self):
        return sum(int((task / "schedstat").read_text().split()[0])
                   for task in (self._path / "task").iterdir())

    @staticmethod
    def _number(path, field):
        for line in path.read_text().splitlines():
            name, _, value = line.partition(":")
            if name == field:
                return int(value.split()[0])
        raise KeyError(field)
