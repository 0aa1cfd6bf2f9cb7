"""Starts and prints of whole processes, beside Python itself. usage: start_rows.py FILTER PROGRAM

Runs outside the viewer, with the system's Python. Both processes of a pair work in turns. Times are processor times;
those of starts are reported as wall times, too.
"""

import os
import resource
import statistics
import subprocess
import sys
import tempfile
import threading
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "scripts"))
import pairs  # noqa: E402

PROGRAM = sys.argv[2]
TURNS = 21
PEER = "/usr/bin/python3 -c pass"
PRINTS = """
import sys, time
start = time.process_time()
for i in range(100000):
    print("a line of output")
sys.stdout.flush()
sys.stderr.write(f"SECONDS {time.process_time() - start}\\n")
"""
ERRORS = """
import sys, time, vantrel
for i in range(2000):
    vantrel.print_to_error_log("the window and its fonts appear")
vantrel.wait(0.5)
start = time.process_time()
for i in range(100000):
    vantrel.print_to_error_log("a line of the log")
seconds = time.process_time() - start
sys.stderr.write(f"SECONDS {seconds}\\n")
vantrel.wait(0.1)
raise SystemExit
"""
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


def told(command):
    """The processor seconds that a script tells on standard error; both its streams are pipes."""
    with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE) as process:
        reader = threading.Thread(target=process.stdout.read)
        reader.start()
        errors = process.stderr.read()
        reader.join()
    return float(errors.rsplit(b"SECONDS", 1)[1].split()[0])


def two_scripts(task, peer, goal, ours, theirs):
    """Report the row of two processes that tell their own times."""
    if not pairs.wanted(task):
        return
    both = [(told(ours), told(theirs)) for _ in range(TURNS // 3)]
    pairs.report(task, peer, goal, [a / b for a, b in both], *(statistics.median(column) for column in zip(*both)))


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
        for name, text in (("prints.py", PRINTS), ("errors.py", ERRORS)):
            with open(os.path.join(folder, name), "w", encoding="utf-8") as file:
                file.write(text)
        prints, errors = os.path.join(folder, "prints.py"), os.path.join(folder, "errors.py")
        two_scripts("100,000 prints into a pipe", "/usr/bin/python3", 1.3, [PROGRAM, "run", prints],
                    ["/usr/bin/python3", prints])
        two_scripts("print_to_error_log with a window", "the same without a window", 1.5,
                    [PROGRAM, "run", "--show", errors], [PROGRAM, "run", errors])
    in_turns("vantrel --version", None, whole([PROGRAM, "--version"]))


main()
