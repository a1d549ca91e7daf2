"""Measures the service against its limits; see docs/performance.md.

Prints tables in Markdown and writes every sample to build/bench/result.json. The exit status tells
lost and wrong replies only, never times.
"""
import argparse
import json
import re
import shutil
import subprocess
import sys
from pathlib import Path

import contenders as who
import machine
import measure
import report
import scenarios
from cell import ROOT, Cell

OUTPUT = ROOT / "build" / "bench"


def parse_arguments():
    parser = argparse.ArgumentParser(prog="scripts/bench", description=__doc__.splitlines()[0])
    parser.add_argument("--quick", action="store_true", help="a minute instead of several")
    parser.add_argument("--runs", type=int, default=1, metavar="N",
                        help="measure all N times, give medians and extremes")
    parser.add_argument("--only", default="", metavar="REGEX",
                        help='only matching parts: a scenario, or "growth", "pipelining", '
                             '"start-up", "memory", "idle", "pieces"')
    parser.add_argument("--realtime", action="store_true",
                        help="keep out the other processes of a busy machine (root only)")
    return parser.parse_args()


class Run:
    """One pass over everything that is asked for."""

    def __init__(self, plan, only):
        self.loads = {}
        self.figures = {}
        self.pieces = {}
        self.errors = []
        self._plan = plan
        self._only = re.compile(only)

    def measure(self):
        for scenario in scenarios.SCENARIOS:
            self._part(scenario.name, lambda files, scenario=scenario: self._load(scenario, files))
        self._part("growth", self._growth)
        self._part("pipelining", self._pipelining)
        self._part("start-up", self._start_up)
        self._part("memory", self._memory)
        self._part("idle", self._idle)
        self._part("pieces", self._pieces)
        return self

    def _part(self, name, measure_part):
        if not self._only.search(name):
            return
        print(f"bench: {name}", file=sys.stderr)
        files = OUTPUT / "files"
        shutil.rmtree(files, ignore_errors=True)
        files.mkdir(parents=True)
        try:
            measure_part(files)
        except who.ReplyError as error:
            self.errors.append(f"{name}: {error}")
        shutil.rmtree(files)

    def _load(self, scenario, files):
        self.loads[scenario.name] = measure.loads(scenario, files, self._plan)

    def _growth(self, files):
        self.figures["growth of a list's time with the number of its reticles, exponent"] = (
            measure.growth(scenarios.GROWTH_BY_NUMBER, lambda s: s.count, files, self._plan))
        self.figures["growth of a list's time with the size of its reticles, exponent"] = (
            measure.growth(scenarios.GROWTH_BY_SIZE, lambda s: s.size, files, self._plan))

    def _pipelining(self, files):
        waits = measure.pipelining(who.SERVICE, files, self._plan)
        self.figures["five requests in one write, first to second reply"] = waits
        self.figures["the same, limit-relay"] = measure.pipelining(who.RELAY, files, self._plan)

    def _start_up(self, files):
        starts = measure.start_up((who.SERVICE, who.RELAY), files, self._plan)
        times = {name: [start.replied_ms for start in samples] for name, samples in starts.items()}
        for limit in measure.DESCRIPTOR_LIMITS:
            ours, relays = times[who.SERVICE, limit], times[who.RELAY, limit]
            self.figures[f"start-up to first reply, {limit} descriptors"] = ours
            self.figures[f"the same / limit-relay, {limit} descriptors"] = report.pairwise(
                ours, relays)
        few, many = measure.DESCRIPTOR_LIMITS
        self.figures[f"start-up, {many} / {few} descriptors"] = report.pairwise(
            times[who.SERVICE, many], times[who.SERVICE, few])

    def _memory(self, files):
        ours = measure.memory(who.SERVICE, files)
        relays = measure.memory(who.RELAY, files)
        peak = measure.peak_memory(who.SERVICE, files)
        limits_peak = measure.peak_memory(who.LIMIT, files)
        self.figures["resident memory at rest"] = [ours.resident_kb]
        self.figures["resident memory for each silent client"] = [ours.client_kb]
        self.figures["the same / limit-relay"] = [ours.client_kb / relays.client_kb]
        self.figures["peak memory of the 50 x 100 KB list"] = [peak]
        self.figures["the same / limit-work"] = [peak / limits_peak]

    def _idle(self, files):
        effort = measure.idle((who.SERVICE,), files, self._plan)[who.SERVICE]
        self.figures["CPU time while idle"] = [effort.cpu_us]
        self.figures["context switches while idle"] = [effort.switches]

    def _pieces(self, files):
        self.pieces = measure.pieces(files, self._plan)


def build():
    subprocess.run([ROOT / "scripts" / "build", "release", "bench"], check=True, stdout=sys.stderr)


def print_tables(runs, conditions):
    print(machine.line(conditions))
    tables = (report.load_table([run.loads for run in runs if run.loads]),
              report.figure_table([run.figures for run in runs]),
              report.piece_table([run.pieces for run in runs if run.pieces]))
    for table in tables:
        if len(table) > report.HEAD_LINES:
            print("", *table, sep="\n")
    print()


def main():
    arguments = parse_arguments()
    build()
    conditions = machine.describe()
    Cell.is_realtime = arguments.realtime
    plan = measure.QUICK if arguments.quick else measure.FULL
    runs = [Run(plan, arguments.only).measure() for _ in range(arguments.runs)]
    print_tables(runs, conditions)
    kept = [{"loads": run.loads, "figures": run.figures, "pieces_ns": run.pieces,
             "errors": run.errors} for run in runs]
    (OUTPUT / "result.json").write_text(
        json.dumps({"arguments": sys.argv[1:], "machine": conditions, "runs": kept}, indent=1))
    errors = [error for run in runs for error in run.errors]
    print("Lost or wrong replies: " + ("; ".join(errors) if errors else "none"))
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main())
