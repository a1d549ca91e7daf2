"""Measures what the service asks of a device, as the presets release, minimal and static build it.

Prints a table in Markdown, and its result in the last line. The exit status tells missed sizes and
libraries, lost and wrong replies; never times and memory, which are the machine's as well.
"""
import argparse
import shutil
import statistics
import subprocess
import sys
from contextlib import contextmanager
from dataclasses import dataclass, replace

import machine
import measure
import report
from cell import ROOT, Cell

PRESETS = ("release", "minimal", "static")
OUTPUT = ROOT / "build" / "footprint"

FULL = replace(measure.FULL, starts=20)
QUICK = replace(measure.QUICK, starts=5)

KB = 1000  # of the table; the kernel counts memory in 1024 bytes
KERNEL_KB = 1024 / KB

SIZE_GOALS_KB = {"release": 220, "minimal": 150, "static": 1600}
START_UP_GOAL_MS = 5
RESIDENT_GOAL_KB = 4500
PRIVATE_GOAL_KB = 600
CLIENT_GOAL_KB = 20
IDLE_GOAL = 0

EVERYWHERE = {"libc", "libm"}  # in every image
SHARED = EVERYWHERE | {"libgcc_s", "libjsoncpp", "libstdc++"}
PERMITTED_LIBRARIES = {"release": SHARED, "minimal": SHARED, "static": EVERYWHERE | {"libgcc_s"}}


@dataclass(frozen=True)
class Figure:
    """A row of the table: samples and goal (at most; None: there is none) by preset."""

    name: str
    unit: str
    samples: dict
    goals: dict

    def value(self, preset):
        return statistics.median(self.samples[preset])

    def missed(self):
        return [preset for preset in PRESETS
                if self.goals[preset] is not None and self.value(preset) > self.goals[preset]]

    def row(self):
        label = f"{self.name}, {self.unit}" if self.unit else self.name
        return f"| {label} | " + " | ".join(map(self._cell, PRESETS)) + " |"

    def _cell(self, preset):
        value, low, high = report.merge([self.samples[preset]])
        spread = f" ({number(low)}-{number(high)})" if len(self.samples[preset]) > 1 else ""
        return number(value) + spread + report.verdict(value, self.goals[preset])


def number(value):
    """Three digits, and every one before the point."""
    return f"{value:.0f}" if value >= 100 else f"{value:.3g}"


def everywhere(goal):
    return dict.fromkeys(PRESETS, goal)


def single(values):
    """One sample for each preset."""
    return {preset: [value] for preset, value in values.items()}


def build():
    programs = ("reticled", "reticled-foreground")
    peers = ("instant-rtos", "limit-relay", "bench-load", "bench-start", "descriptor-limit")
    for arguments in (("release", *programs, *peers), ("minimal",), ("static",)):
        subprocess.run([ROOT / "scripts" / "build", *arguments], check=True, stdout=sys.stderr)


def strip(preset):
    """Returns a copy of the preset's service as a device would have it."""
    program = OUTPUT / preset / "reticled"
    program.parent.mkdir(parents=True, exist_ok=True)
    subprocess.run(["strip", "-o", program, ROOT / "build" / preset / "reticled"], check=True)
    return program


def needed_libraries(program):
    """The names of the libraries that the loader brings in, without their versions; not its own."""
    output = subprocess.run(["objdump", "-p", program], check=True, capture_output=True, text=True).stdout
    names = [line.split()[1] for line in output.splitlines() if line.split()[:1] == ["NEEDED"]]
    return sorted(name.partition(".so")[0] for name in names if not name.startswith("ld-linux"))


def library_row(libraries):
    cells = [", ".join(name if name in PERMITTED_LIBRARIES[preset] else f"**{name}**"
                       for name in libraries[preset]) for preset in PRESETS]
    return "| needed libraries | " + " | ".join(cells) + " |"


@contextmanager
def scratch():
    """A directory for the files of one measurement."""
    files = OUTPUT / "files"
    shutil.rmtree(files, ignore_errors=True)
    files.mkdir(parents=True)
    yield files
    shutil.rmtree(files)


def measure_start_up(programs, plan):
    with scratch() as files:
        starts = measure.start_up(programs.values(), files, plan)
    for limit in measure.DESCRIPTOR_LIMITS:
        samples = {preset: [start.accepted_ms for start in starts[program, limit]]
                   for preset, program in programs.items()}
        yield Figure(f"start-up with {limit} descriptors", "ms", samples, everywhere(START_UP_GOAL_MS))


def measure_memory(programs, plan):
    samples = {}
    for preset, program in programs.items():
        # One at a time: pages of a program that runs twice are nobody's own.
        with scratch() as files:
            samples[preset] = [measure.memory(program, files, 1) for _ in range(plan.starts)]
    for name, field, goal in (("resident memory at rest", "resident_kb", RESIDENT_GOAL_KB),
                              ("private memory at rest", "private_kb", PRIVATE_GOAL_KB),
                              ("resident memory for each idle client", "client_kb", CLIENT_GOAL_KB)):
        yield Figure(name, "KB", {preset: [getattr(memory, field) * KERNEL_KB for memory in memories]
                                  for preset, memories in samples.items()}, everywhere(goal))


def measure_peak(programs):
    peaks = {}
    for preset, program in programs.items():
        with scratch() as files:
            peaks[preset] = measure.peak_memory(program, files) * KERNEL_KB
    yield Figure("peak during a list of 50 x 100 KB", "KB", single(peaks), everywhere(None))


def measure_idle(programs, plan):
    with scratch() as files:
        efforts = measure.idle(programs.values(), files, plan)
    for name, unit, field in ("context switches", "", "switches"), ("CPU time", "µs", "cpu_us"):
        values = {preset: getattr(efforts[program], field) for preset, program in programs.items()}
        yield Figure(f"{name} in {plan.idle_s} idle s", unit, single(values), everywhere(IDLE_GOAL))


def check_behaviour(programs):
    """The presets must differ in their figures alone."""
    for preset, program in programs.items():
        with scratch() as files:
            measure.check_replies(program, files)
            measure.check_failing_start(ROOT / "build" / preset / "reticled-foreground", files)


def parse_arguments():
    parser = argparse.ArgumentParser(prog="scripts/footprint", description=__doc__.splitlines()[0])
    parser.add_argument("--quick", action="store_true", help="fewer starts, shorter idleness")
    parser.add_argument("--realtime", action="store_true",
                        help="keep out the other processes of a busy machine (root only)")
    return parser.parse_args()


def main():
    arguments = parse_arguments()
    Cell.is_realtime = arguments.realtime
    plan = QUICK if arguments.quick else FULL
    build()
    print(machine.line(machine.describe()), end="\n\n")
    programs = {preset: strip(preset) for preset in PRESETS}
    check_behaviour(programs)

    sizes = {preset: program.stat().st_size / KB for preset, program in programs.items()}
    size = Figure("stripped size", "KB", single(sizes), SIZE_GOALS_KB)
    libraries = {preset: needed_libraries(program) for preset, program in programs.items()}
    figures = [*measure_start_up(programs, plan), *measure_memory(programs, plan),
               *measure_peak(programs), *measure_idle(programs, plan)]

    print("| | " + " | ".join(PRESETS) + " |", "|---|" + "---|" * len(PRESETS), sep="\n")
    print(size.row(), library_row(libraries), *(figure.row() for figure in figures), sep="\n", end="\n\n")
    return conclude(size, libraries, figures)


def conclude(size, libraries, figures):
    """Prints the result in one line. Returns the exit status."""
    missed = {figure.name: figure.missed() for figure in (size, *figures)}
    missed["needed libraries"] = [preset for preset in PRESETS
                                  if not set(libraries[preset]) <= PERMITTED_LIBRARIES[preset]]
    goals = len(libraries) + sum(goal is not None for figure in (size, *figures)
                                 for goal in figure.goals.values())
    met = goals - sum(map(len, missed.values()))
    named = [f"{name} ({', '.join(presets)})" for name, presets in missed.items() if presets]
    print(f"footprint: {met} of {goals} goals met" + (f"; missed: {'; '.join(named)}" if named else ""))
    return 1 if missed[size.name] or missed["needed libraries"] else 0


if __name__ == "__main__":
    sys.exit(main())
