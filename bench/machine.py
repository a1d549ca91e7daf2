"""What figures depend on besides the programs."""
import os
import platform
import re
import subprocess
from pathlib import Path

from cell import CORE, ROOT


def describe():
    model = re.search(r"model name\s*: (.*)", Path("/proc/cpuinfo").read_text())
    commit = subprocess.run(["git", "-C", ROOT, "describe", "--always", "--dirty"],
                            capture_output=True, text=True, check=False).stdout.strip()
    return {"cpu": model.group(1) if model else platform.machine(), "cores": os.cpu_count(),
            "pinned_to": CORE, "kernel": platform.release(), "python": platform.python_version(),
            "commit": commit, "load_before": os.getloadavg()[0]}


def line(machine):
    """A line for the reader of the tables."""
    return ("Machine: {cpu}, {cores} cores, all pinned to core {pinned_to}, Linux {kernel}, "
            "Python {python}, commit {commit}, load {load_before:.1f}".format(**machine))
