"""The measurements. Each takes a directory for its files."""
import json
import math
import os
import statistics
import subprocess
import time
from contextlib import ExitStack
from dataclasses import dataclass

import contenders as who
import scenarios
from cell import PATIENCE_S, poll_until

PIPELINED_REQUESTS = 5
DESCRIPTOR_LIMITS = (1024, 1048576)
SILENT_CLIENTS = 200
CLIENTS_AT_ONCE = 5  # below what the service lets wait: who is turned away tries again after a second
PEAK_LISTS = 5


@dataclass(frozen=True)
class Plan:
    """How long to measure."""

    rounds: int  # of every contender, in turn
    round_s: float
    starts: int
    bursts: int
    idle_s: float
    pieces_s: float  # for each benchmark of a piece


FULL = Plan(rounds=21, round_s=0.04, starts=21, bursts=20, idle_s=10, pieces_s=0.2)
QUICK = Plan(rounds=3, round_s=0.01, starts=3, bursts=5, idle_s=2, pieces_s=0.01)


def alternate(loads, connections, plan):
    """Puts every one of `loads` under load in turn, back and forth, round after round."""
    requests = {name: _requests_for(load, connections, plan.round_s)
                for name, load in loads.items()}
    times = {name: [] for name in loads}
    for number in range(plan.rounds):
        names = list(loads) if number % 2 == 0 else list(reversed(loads))
        for name in names:
            times[name].append(loads[name].run(connections, requests[name]))
    return times


def _requests_for(load, connections, seconds):
    """As many requests as fit in `seconds`, a whole number for each connection; warms up, too."""
    load.run(connections, connections)
    nanoseconds = load.run(connections, connections)
    return max(1, round(seconds * 1e9 / nanoseconds / connections)) * connections


def loads(scenario, files, plan):
    """Nanoseconds for a request of `scenario`, by number of connections and contender."""
    scenario.write(files)
    names = who.CONTENDERS
    if scenario == scenarios.ADD_LARGE:
        names = (*names, who.LIMIT_PARSES)
    with ExitStack() as stack:
        running = {name: stack.enter_context(who.started(name, files))[0] for name in names}
        return {str(connections): alternate(running, connections, plan)
                for connections in scenarios.CONNECTIONS}


def growth(series, quantity, files, plan):
    """The exponent by which a list's time grows with `quantity` along `series`; 1 is linear."""
    with ExitStack() as stack:
        running = {}
        for scenario in series:
            scenario.write(files / scenario.name)
            started = who.started(who.SERVICE, files / scenario.name)
            running[scenario] = stack.enter_context(started)[0]
        times = alternate(running, 1, plan)
    logarithms = [math.log(quantity(scenario)) for scenario in series]
    return [_slope(logarithms, [math.log(times[scenario][number]) for scenario in series])
            for number in range(plan.rounds)]


def _slope(x, y):
    return statistics.linear_regression(x, y).slope


def pipelining(contender, files, plan):
    """Milliseconds from the first to the second reply to five requests in one write."""
    scenarios.ACTIVATE.write(files)
    with who.started(contender, files) as (load, _):
        load.run(1, 100)  # the kernel delays acknowledgements only on connections it knows
        return [_first_wait(load.burst(PIPELINED_REQUESTS)) for _ in range(plan.bursts)]


def _first_wait(arrivals):
    return (arrivals[1] - arrivals[0]) / 1e6


@dataclass(frozen=True)
class Start:
    """How long after the start of a program something had happened."""

    accepted_ms: float  # its first connection
    replied_ms: float


def start_up(contenders, files, plan):
    """Each `Start`, by contender and descriptor limit."""
    scenarios.ACTIVATE.write(files)
    names = [(name, limit) for name in contenders for limit in DESCRIPTOR_LIMITS]
    times = {name: [] for name in names}
    for number in range(plan.starts):
        for name in names if number % 2 == 0 else reversed(names):
            times[name].append(_start_up_once(*name, files))
    return times


def _start_up_once(contender, limit, files):
    command = who.command_of(contender, files)
    if contender == who.RELAY:
        command.insert(1, "--daemon")
    with who.started_rtos(files) as cell:
        starter = [str(who.PROGRAMS / "bench-start"), str(files / "request"), str(files / "reply")]
        prefix, environment = _with_descriptor_limit(limit)
        process = cell.start([*prefix, *starter, *command], stdout=subprocess.PIPE,
                             env={**os.environ, **environment})
        output = process.stdout.readline()
        if process.wait() != 0:
            raise who.ReplyError(f"{contender} started with a wrong reply, or none")
        return Start(*(int(word) / 1e6 for word in output.split()))


def _with_descriptor_limit(limit):
    """What to put before a command, and into its environment, so that it sees this limit."""
    prefix = ["prlimit", f"--nofile={limit}:{limit}"]
    if subprocess.run([*prefix, "true"], stderr=subprocess.DEVNULL, check=False).returncode == 0:
        return prefix, {}
    preloaded = str(who.PROGRAMS / "descriptor-limit.so")
    return [], {"LD_PRELOAD": preloaded, "OPEN_MAX": str(limit)}


@dataclass(frozen=True)
class Memory:
    """Of a contender at rest, in the kernel's KB of 1024 bytes."""

    resident_kb: int
    private_kb: int
    client_kb: float  # resident, for each silent client


def memory(contender, files, connections=who.MOST_CONNECTIONS):
    """The memory after one request, with this many clients connected."""
    scenarios.ACTIVATE.write(files)
    with who.started(contender, files, connections) as (load, process):
        load.run(1, 1)
        rest, private = process.memory_kb("VmRSS"), process.private_kb()
        threads = process.threads()
        for expected in range(threads, threads + SILENT_CLIENTS, CLIENTS_AT_ONCE):
            load.add_silent(CLIENTS_AT_ONCE)
            poll_until(lambda at_least=expected + CLIENTS_AT_ONCE: process.threads() >= at_least)
        return Memory(rest, private, (process.memory_kb("VmRSS") - rest) / SILENT_CLIENTS)


def peak_memory(contender, files):
    """The most KB ever resident while a few of the largest lists were made."""
    scenarios.LARGEST_LIST.write(files)
    with who.started(contender, files) as (load, process):
        load.run(1, PEAK_LISTS)
        return process.memory_kb("VmHWM")


def check_replies(contender, files):
    """Has every command answered once.

    Raises ReplyError where a reply is lost or differs from the expected bytes.
    """
    for scenario in scenarios.SCENARIOS:
        scenario.write(files / scenario.name)
        with who.started(contender, files / scenario.name, 1) as (load, _):
            load.run(1, 1)


def check_failing_start(foreground, files):
    """Starts the service in the foreground where its port is taken.

    Raises ReplyError where it does not end with status 0.
    """
    scenarios.ACTIVATE.write(files)
    with who.started_rtos(files) as cell:
        cell.start(who.command_of(who.RELAY, files), stdin=subprocess.DEVNULL,
                   stdout=subprocess.DEVNULL)
        who.Load(who.RELAY, cell, files, 1)
        service = cell.start([str(foreground)], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        if status := service.wait(PATIENCE_S):
            raise who.ReplyError(f"{foreground}, its port taken, ended with status {status}")


@dataclass(frozen=True)
class Effort:
    """Of a process, since its start or between two moments."""

    cpu_us: float
    switches: int

    @classmethod
    def of(cls, process):
        return cls(process.cpu_ns() / 1e3, process.context_switches())

    def since(self, before):
        return Effort(self.cpu_us - before.cpu_us, self.switches - before.switches)


def idle(contenders, files, plan):
    """The effort of each contender, all at the same time, while its clients are silent."""
    scenarios.ACTIVATE.write(files)
    with ExitStack() as stack:
        processes = {}
        for name in contenders:
            load, processes[name] = stack.enter_context(who.started(name, files))
            load.run(who.MOST_CONNECTIONS, who.MOST_CONNECTIONS)
        poll_until(lambda: all(_is_at_rest(process) for process in processes.values()))
        before = {name: Effort.of(process) for name, process in processes.items()}
        time.sleep(plan.idle_s)  # the measurement itself
        return {name: Effort.of(process).since(before[name]) for name, process in processes.items()}


def _is_at_rest(process):
    before = process.context_switches()
    time.sleep(0.01)
    return process.context_switches() == before


def pieces(files, plan):
    """Nanoseconds of each piece of the service by itself."""
    scenarios.LARGEST_LIST.write(files)
    output = files / "pieces.json"
    with who.started_rtos(files) as cell:
        process = cell.start(
            [str(who.PROGRAMS / "bench-pieces"), f"--benchmark_min_time={plan.pieces_s}",
             f"--benchmark_out={output}"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        if process.wait() != 0:
            raise RuntimeError("bench-pieces has failed")
    return {piece["name"]: piece["real_time"] for piece in json.loads(output.read_text())["benchmarks"]}
