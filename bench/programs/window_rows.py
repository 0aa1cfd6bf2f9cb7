"""What the shown window costs a script: each script runs with the window and without it, in turn.

usage: window_rows.py FILTER PROGRAM

Compares the processor time of the script's thread, which includes what the viewer does there.
"""

import os
import pathlib
import subprocess
import sys
import tempfile
import textwrap

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "scripts"))
from pairs import group, report, wanted  # noqa: E402

TURNS = 5

SCRIPTS = {
    "busy loop": (1.05, """
        def work():
            x = 0
            for i in range(40_000_000):
                x += i
        """),
    "print in a loop": (1.5, """
        def work():
            for i in range(300_000):
                print("line", i)
        """),
    "print_to_error_log in a loop": (1.5, """
        import vantrel
        def work():
            for i in range(100_000):
                vantrel.print_to_error_log("line")
        """),
    "live camera, shown and measured": (None, """
        import vantrel
        def work():
            camera = vantrel.Camera()
            camera.open_device(0)
            view = camera.start_acquisition()
            for i in range(150):
                vantrel.wait_for_next_frame(5.0, view)
                vantrel.get_view_image(view).measure_rect()
            camera.stop_acquisition()
        """),
}

MEASURE = """
import os, time
before = time.thread_time()
work()
with open({result!r}, "w") as file:
    file.write(str(time.thread_time() - before))
os._exit(0)
"""


def seconds(program, script, folder, *options):
    """The processor time that a script takes."""
    result = os.path.join(folder, "seconds")
    path = os.path.join(folder, "script.py")
    with open(path, "w") as file:
        file.write(textwrap.dedent(script) + MEASURE.format(result=result))
    subprocess.run([program, "run", "--sim-cameras", "1", *options, path], stdout=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL, check=True, timeout=600)
    with open(result) as file:
        return float(file.read())


def main():
    program = sys.argv[2]
    group("With the window")
    with tempfile.TemporaryDirectory() as folder:
        for name, (goal, script) in SCRIPTS.items():
            if not wanted(name):
                continue
            turns = [(seconds(program, script, folder, "--show"), seconds(program, script, folder))
                     for _ in range(TURNS)]
            shown, hidden = (sorted(column)[TURNS // 2] for column in zip(*turns))
            report(name, "without the window", goal, [a / b for a, b in turns], shown, hidden)


if __name__ == "__main__":
    main()
