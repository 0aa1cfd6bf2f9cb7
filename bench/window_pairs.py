"""What the shown window costs a script: each script runs with the window and without it, in turn.

usage: window_pairs.py PROGRAM [PAIRS]

Compares the processor time of the script's thread, which includes what the viewer does there, and beside it the time on
the clock, which depends on what else the machine does. The table has the medians.
"""

import os
import statistics
import subprocess
import sys
import tempfile

SCRIPTS = {
    "busy loop": ("5 % more", """
        def work():
            x = 0
            for i in range(40_000_000):
                x += i
        """),
    "print in a loop": ("1.5 times", """
        def work():
            for i in range(300_000):
                print("line", i)
        """),
    "print_to_error_log in a loop": ("1.5 times", """
        import vantrel
        def work():
            for i in range(100_000):
                vantrel.print_to_error_log("line")
        """),
}

MEASURE = """
import os, time
clock, thread = time.perf_counter(), time.thread_time()
work()
with open({result!r}, "w") as file:
    file.write(f"{{time.thread_time() - thread}} {{time.perf_counter() - clock}}")
os._exit(0)
"""


def seconds(program, script, folder, *options):
    """The processor time and the time on the clock that a script takes."""
    result = os.path.join(folder, "seconds")
    path = os.path.join(folder, "script.py")
    lines = [line[8:] for line in script.splitlines()]
    with open(path, "w") as file:
        file.write("\n".join(lines) + MEASURE.format(result=result))
    subprocess.run([program, "run", *options, path], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True,
                   timeout=600)
    with open(result) as file:
        return [float(word) for word in file.read().split()]


def main():
    program = sys.argv[1]
    pairs = int(sys.argv[2]) if len(sys.argv) > 2 else 5
    print(f"{'with the window / without it':30} {'processor':>10} {'clock':>8}   {'goal: at most':14}")
    with tempfile.TemporaryDirectory() as folder:
        for name, (goal, script) in SCRIPTS.items():
            ratios = []
            for _ in range(pairs):
                shown = seconds(program, script, folder, "--show")
                hidden = seconds(program, script, folder)
                ratios.append([a / b for a, b in zip(shown, hidden)])
            processor, clock = (statistics.median(column) for column in zip(*ratios))
            print(f"{name:30} {processor:10.3f} {clock:8.3f}   {goal}", flush=True)


if __name__ == "__main__":
    main()
