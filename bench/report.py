"""The tables of a run: service's times against the limits', beside the goals."""
import statistics

import contenders as who

GOALS_SMALL = {who.LIMIT: 1.25, who.LIMIT_THREADS: 1.12, who.RELAY: 2.0, who.PEER: 0.60}
GOALS_SMALL_SHARED = {who.LIMIT: 1.15, who.LIMIT_THREADS: 1.10, who.RELAY: 2.2, who.PEER: 0.60}
GOALS_LIST = {who.LIMIT: 0.75, who.COPY: 1.15, who.PEER: 0.50}
GOALS_LIST_SHARED = {who.LIMIT: 0.80, who.COPY: 1.20, who.PEER: 0.55}
GOALS_LISTS = {"1": GOALS_LIST, "4": GOALS_LIST_SHARED, "8": GOALS_LIST_SHARED}
GOALS_ADD_LARGE = {who.LIMIT_PARSES: 1.03}
GOALS = {
    "activate": {"1": GOALS_SMALL, "4": GOALS_SMALL_SHARED, "8": GOALS_SMALL_SHARED},
    "list 1 x 1 KB": {"1": GOALS_SMALL},
    "list 10 x 10 KB": GOALS_LISTS,
    "list 100 x 10 KB": GOALS_LISTS,
    "list 50 x 100 KB": {**GOALS_LISTS, "1": {who.LIMIT: 0.85, who.COPY: 1.20, who.PEER: 0.55}},
    "list 1000 x 1 KB": {**GOALS_LISTS, "1": {who.LIMIT: 1.00, who.COPY: 1.15, who.PEER: 0.75}},
    "add 1 KB": dict.fromkeys(
        "148", {who.LIMIT: 1.40, who.LIMIT_THREADS: 1.25, who.RELAY: 3.0, who.PEER: 0.70}),
    "add 1 MB": dict.fromkeys("148", GOALS_ADD_LARGE),
    "delete of 10": dict.fromkeys(
        "148", {who.LIMIT: 1.22, who.LIMIT_THREADS: 1.18, who.RELAY: 1.9, who.PEER: 0.70}),
}
OTHERS = (who.LIMIT, who.COPY, who.LIMIT_THREADS, who.RELAY, who.PEER)

# Figure, unit, goal (at most); in the order of the table.
FIGURES = (
    ("growth of a list's time with the number of its reticles, exponent", "", 1.05),
    ("growth of a list's time with the size of its reticles, exponent", "", 1.05),
    ("five requests in one write, first to second reply", "ms", 1),
    ("the same, limit-relay", "ms", None),
    ("start-up to first reply, 1024 descriptors", "ms", None),
    ("the same / limit-relay, 1024 descriptors", "", 1.4),
    ("start-up to first reply, 1048576 descriptors", "ms", None),
    ("the same / limit-relay, 1048576 descriptors", "", 1.4),
    ("start-up, 1048576 / 1024 descriptors", "", 1.05),
    ("resident memory at rest", "KB", None),
    ("resident memory for each silent client", "KB", None),
    ("the same / limit-relay", "", 1.05),
    ("peak memory of the 50 x 100 KB list", "KB", None),
    ("the same / limit-work", "", 0.85),
    ("CPU time while idle", "µs", 0),
    ("context switches while idle", "", 0),
)


HEAD_LINES = 2  # of a table


def pairwise(ours, theirs):
    """The ratio of each pair of samples taken side by side."""
    return [mine / its for mine, its in zip(ours, theirs)]


def merge(samples_of_runs):
    """Value and spread: one run's quartiles, or the extremes of several runs' medians."""
    medians = [statistics.median(samples) for samples in samples_of_runs]
    value = statistics.median(medians)
    if len(medians) > 1:
        return value, min(medians), max(medians)
    samples = samples_of_runs[0]
    low, _, high = statistics.quantiles(samples) if len(samples) > 1 else (value, value, value)
    return value, low, high


def verdict(value, goal):
    if goal is None:
        return ""
    return f" ≤ {goal:g}" if value <= goal else f" **> {goal:g}**"


def cell(runs, other, goal):
    value, low, high = merge([pairwise(times[who.SERVICE], times[other]) for times in runs])
    return f"{value:.2f} ({low:.2f}-{high:.2f}){verdict(value, goal)}"


def load_table(all_loads):
    """The table of ratios. `all_loads`: for each run, scenario, connections, contender, times."""
    lines = ["| scenario | connections | service, µs | / " + " | / ".join(OTHERS) + " |",
             "|---|---|---|" + "---|" * len(OTHERS)]
    for scenario in GOALS:
        runs = [loads[scenario] for loads in all_loads if scenario in loads]
        for connections in runs[0] if runs else ():
            lines += load_rows(scenario, connections, [run[connections] for run in runs])
    return lines


def load_rows(scenario, connections, runs):
    goals = GOALS.get(scenario, {}).get(connections, {})
    time, _, _ = merge([times[who.SERVICE] for times in runs])
    cells = [cell(runs, other, goals.get(other)) for other in OTHERS]
    yield f"| {scenario} | {connections} | {time / 1000:.1f} | " + " | ".join(cells) + " |"
    if who.LIMIT_PARSES in runs[0]:
        parsed = cell(runs, who.LIMIT_PARSES, goals.get(who.LIMIT_PARSES))
        yield f"| the same, limit parses the request 3 times | {connections} | | | {parsed} | | |"


def figure_table(all_figures):
    """The table of single figures. `all_figures`: for each run, samples by name."""
    lines = ["| figure | measured | goal |", "|---|---|---|"]
    for name, unit, goal in FIGURES:
        runs = [figures[name] for figures in all_figures if name in figures]
        if runs:
            value, low, high = merge(runs)
            measured = f"{value:.4g} ({low:.4g}-{high:.4g}) {unit}".strip()
            lines.append(f"| {name} | {measured} |{verdict(value, goal)} |")
    return lines


def piece_table(all_pieces):
    """The table of pieces. `all_pieces`: for each run, nanoseconds by name."""
    lines = ["| piece | time, µs |", "|---|---|"]
    for name in all_pieces[0] if all_pieces else ():
        time = statistics.median(pieces[name] for pieces in all_pieces)
        lines.append(f"| {name} | {time / 1000:.2f} |")
    return lines
