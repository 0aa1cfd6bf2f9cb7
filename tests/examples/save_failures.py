"""Runs the examples that save files in a folder where they cannot save. Each must say so and fail.

usage: save_failures.py PROGRAM EXAMPLES [OPTION...]; every run gets the options.

Each example saves into the current folder. Here a folder with the name of the file, or a file with the name of the
folder, is in the way: that stops every user, root too.
"""

import pathlib
import subprocess
import sys
import tempfile

program, examples, *options = sys.argv[1:]
OUTPUTS = {
    "annotate.py": "annotate/marked.png",
    "first_light.py": "first_light/scene.png",
    "line_profile.py": "line_profile/profile.png",
    "live_chain.py": "live_chain.png",
    "time_lapse.py": "time_lapse/frame_000.png",
}


def block(folder, name):
    path = pathlib.Path(folder, name)
    if "/" in name:
        path.parent.write_text("in the way")
    else:
        path.mkdir()


before = set(pathlib.Path(examples).rglob("*"))
failures = []


def check(condition, text):
    if not condition:
        failures.append(text)


for script in sorted(pathlib.Path(examples).glob("*.py")):
    check(("save_to_file(" in script.read_text()) == (script.name in OUTPUTS), f"{script.name}: not listed here")

for name, output in OUTPUTS.items():
    with tempfile.TemporaryDirectory() as folder:
        block(folder, output)
        run = subprocess.run([program, "run", *options, str(pathlib.Path(examples, name))], cwd=folder,
                             stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=120)
        if "is not installed" in run.stderr:
            print(f"-- {name}: skipped, a library is missing")
            continue
        check(run.returncode == 1, f"{name}: status {run.returncode}\n{run.stdout}{run.stderr}")
        check("cannot save" in run.stderr, f"{name}: does not say that it cannot save\n{run.stderr}")
        check("saved" not in run.stdout and output not in run.stdout, f"{name}: reports a success\n{run.stdout}")
        print(f"-- {name}: ran")

for path in sorted(set(pathlib.Path(examples).rglob("*")) - before):
    check("__pycache__" in str(path), f"{path}: saved among the examples")
for failure in failures:
    print(failure, file=sys.stderr)
sys.exit(1 if failures else 0)
