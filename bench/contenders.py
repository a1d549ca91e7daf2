"""The service, its limits and its peer, each started in a cell and put under load.

A contender is one of the names below, or the path of a service program from another build.
"""
import subprocess
import sys
from contextlib import contextmanager
from pathlib import Path

from cell import ROOT, Cell

PROGRAMS = ROOT / "build" / "release"
MOST_CONNECTIONS = 8

SERVICE = "service"
LIMIT = "limit-work"
LIMIT_THREADS = "limit-work --threads"
COPY = "limit-copy"
LIMIT_PARSES = "limit-work --threads --parses 3"  # isJson, the director and the builder
RELAY = "limit-relay"
PEER = "asyncio"
CONTENDERS = (SERVICE, LIMIT, COPY, LIMIT_THREADS, RELAY, PEER)


class ReplyError(Exception):
    """A reply was lost or differed from the expected bytes."""


def command_of(contender, files):
    """The command line of a contender; `files` is where its scenario was written."""
    if isinstance(contender, Path):
        return [str(contender)]
    if contender == SERVICE:
        return [str(PROGRAMS / "reticled")]
    if contender == PEER:
        return [sys.executable, str(ROOT / "bench" / "peer-asyncio.py")]
    program, *options = contender.split()
    if contender == RELAY:
        options = [str(files / "reply"), *map(str, sorted(files.glob("exchange*")))]
    return [str(PROGRAMS / program), *options]


def process_name(contender):
    return Path(command_of(contender, Path())[0]).name


class Load:
    """The load generator of one contender, with this many connections."""

    def __init__(self, contender, cell, files, connections):
        self._contender = contender
        self._process = cell.start(
            [str(PROGRAMS / "bench-load"), str(files / "request"), str(files / "reply"),
             str(connections)], stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self._read()

    def run(self, connections, requests):
        """Returns the nanoseconds for each request."""
        elapsed, wrong, lost = map(int, self._ask(f"run {connections} {requests}"))
        if wrong or lost:
            raise ReplyError(f"{self._contender}: {wrong} wrong, {lost} lost")
        return elapsed / requests

    def burst(self, count):
        """Returns the nanoseconds after which each reply to `count` requests in one write came."""
        arrivals = [int(word) for word in self._ask(f"burst {count}")]
        if len(arrivals) != count:
            raise ReplyError(f"{self._contender}: {count - len(arrivals)} lost or wrong")
        return arrivals

    def add_silent(self, count):
        self._ask(f"silent {count}")

    def _ask(self, line):
        self._process.stdin.write(line + "\n")
        self._process.stdin.flush()
        return self._read()

    def _read(self):
        line = self._process.stdout.readline()
        if not line:
            raise ReplyError(f"{self._contender}: its load generator has ended")
        return line.split()


@contextmanager
def started_rtos(files):
    """A cell with the scenario's storage and the RTOS."""
    with Cell(files / "storage") as cell:
        rtos = cell.start([str(PROGRAMS / "instant-rtos")], stdout=subprocess.PIPE)
        rtos.stdout.readline()
        yield cell


@contextmanager
def started(contender, files, connections=MOST_CONNECTIONS):
    """A contender in a cell of its own. Yields the load generator and the contender's process."""
    with started_rtos(files) as cell:
        cell.start(command_of(contender, files), stdout=subprocess.DEVNULL,
                   stdin=subprocess.DEVNULL)
        yield Load(contender, cell, files, connections), cell.find(process_name(contender))
