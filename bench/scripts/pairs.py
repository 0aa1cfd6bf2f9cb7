"""Measures a task beside its peer, both in one run, and reports one row of the table of benchmarks.

Each row is a task, a peer that does the same with another library, and a goal for the ratio of their times. A ratio
below 1 means that vantrel is faster. Task and peer take turns, so that other work of the machine affects both alike.
A turn is as short as the clock allows, and its ratio comes from two neighbouring times.

A script of rows calls `compare` for each of them, and is run with `vantrel run SCRIPT -- [FILTER]`. Only tasks whose
name, or the name of their group, contains FILTER are prepared and measured.
"""

import gc
import json
import statistics
import sys
import time

FILTER = sys.argv[1].lower() if len(sys.argv) > 1 else ""
TURNS = 25
TURN_SECONDS = 0.01

_group = ""


def group(name):
    """Name the group that the next rows belong to."""
    global _group
    _group = name


def wanted(task):
    """Whether the filter lets a task through."""
    return FILTER in task.lower() or FILTER in _group.lower()


def report(task, peer, goal, ratios, ours=None, peers=None, unit="s"):
    """Report a row.

    ratios: the ratio of each turn; a single one where a task can be measured only once
    goal: the largest ratio that is good enough; None if there is no goal
    ours, peers: what was measured, in `unit`
    """
    ratios = sorted(ratios)
    print("ROW\t" + json.dumps({
        "group": _group, "task": task, "peer": peer, "goal": goal, "ratio": statistics.median(ratios),
        "least": ratios[0], "most": ratios[-1], "ours": ours, "peers": peers, "unit": unit}), flush=True)


def compare(task, peer, goal, prepare, turns=TURNS, clock=time.thread_time, turn_seconds=TURN_SECONDS):
    """Measure a task and its peer in turns and report the row.

    peer: what the task is compared with
    goal: the largest ratio that is good enough; None if there is no goal
    prepare: returns two functions, the task and the peer's; runs only if the filter lets the task through
    clock: the processor time of this thread, unless both use several threads; then time.perf_counter
    """
    if not wanted(task):
        return
    functions = prepare()
    counts = [_count(function, clock, turn_seconds) for function in functions]
    times = ([], [])
    was_enabled = gc.isenabled()
    gc.disable()
    for turn in range(turns):
        order = (0, 1) if turn % 2 == 0 else (1, 0)
        for i in order:
            times[i].append(_seconds(functions[i], counts[i], clock))
    if was_enabled:
        gc.enable()
    ratios = [a / b for a, b in zip(*times)]
    report(task, peer, goal, ratios, *(statistics.median(column) for column in times))


def _seconds(function, count, clock):
    """The time of one call, on average over `count` calls."""
    repeats = range(count)
    start = clock()
    for _ in repeats:
        function()
    return (clock() - start) / count


def _count(function, clock, turn_seconds):
    """How many calls fill a turn."""
    function()
    return max(1, int(turn_seconds / max(_seconds(function, 1, clock), 1e-8)))
