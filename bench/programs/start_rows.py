"""How long the program takes to start, beside Python itself. usage: start_rows.py FILTER PROGRAM

Runs outside the viewer, with the system's Python. The peer is that Python with an empty script. Both work in turns, and
each process tells its own processor time; the wall time is from outside.
"""

import os
import resource
import statistics
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "scripts"))
import pairs  # noqa: E402

PROGRAM = sys.argv[2]
TURNS = 21
PEER = "/usr/bin/python3 -c pass"
FIRST_LINE = "import time; print(time.process_time(), time.time())\n"


def processor_time_of_children():
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    return used.ru_utime + used.ru_stime


def run(command):
    """The processor seconds and the wall seconds of a process, and its output."""
    began, wall = processor_time_of_children(), time.perf_counter()
    output = subprocess.run(command, stdout=subprocess.PIPE, check=True).stdout
    return processor_time_of_children() - began, time.perf_counter() - wall, output


def whole(command):
    """A measurement: the whole life of a process."""
    return lambda: run(command)[:2]


def until_first_line(script):
    """A measurement: from the start of the program to the first line of a script."""
    def measure():
        began = time.time()
        used, reached = map(float, run([PROGRAM, "run", script])[2].split())
        return used, reached - began

    return measure


def in_turns(task, goal, measure):
    """Report the rows of a task: its processor time and its wall time."""
    if not pairs.wanted(task):
        return
    peer = whole(PEER.split())
    both = [(measure(), peer()) for _ in range(TURNS)]
    for clock, name in enumerate(("", ", wall time")):
        ours, theirs = ([turn[side][clock] for turn in both] for side in range(2))
        pairs.report(task + name, PEER, None if clock else goal, [a / b for a, b in zip(ours, theirs)],
                     statistics.median(ours), statistics.median(theirs))


def main():
    os.environ.setdefault("QT_QPA_PLATFORM", "offscreen")
    pairs.group("Start")
    with tempfile.TemporaryDirectory() as folder:
        script = os.path.join(folder, "first_line.py")
        with open(script, "w", encoding="utf-8") as file:
            file.write(FIRST_LINE)
        run([PROGRAM, "run", script])  # reads the libraries into memory
        in_turns("process start to the first line of a script", 5, until_first_line(script))
        in_turns("process start to the end of a script", None, whole([PROGRAM, "run", script]))
    in_turns("vantrel --version", None, whole([PROGRAM, "--version"]))


main()
