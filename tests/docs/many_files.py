"""Measures several files with the commands of the guide's chapter "Many files": with GNU parallel, and as tasks of a batch.

usage: many_files.py PROGRAM GUIDE PICTURE [OPTION...]; every run gets the options.
"""

import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile

program, guide, picture, *options = sys.argv[1:]
chapter = re.search(r"^## Many files\n(.*?)^## ", pathlib.Path(guide).read_text(), flags=re.M | re.S).group(1)
commands = re.findall(r"^    (\S.*)$", chapter, flags=re.M)
NAMES = ["a.tif", "b.tif", "broken.tif", "two words.tif"]
failures = []


def block(language):
    return re.search(rf"^```{language}\n(.*?)^```", chapter, flags=re.M | re.S).group(1)


def command(start):
    return next(line for line in commands if line.startswith(start))


def run(line, folder, **variables):
    environment = {**os.environ, "PATH": f"{folder}/bin:{os.environ['PATH']}", "HOME": folder, **variables}
    return subprocess.run(["sh", "-c", line], cwd=folder, env=environment, stdin=subprocess.DEVNULL, capture_output=True,
                          text=True, timeout=200)


def check(what, seen, expected):
    if seen != expected:
        failures.append(f"{what}: {seen!r} instead of {expected!r}")


def measured(folder):
    """The files with a result, in the order of the alphabet."""
    lines = pathlib.Path(folder, "results.txt").read_text().splitlines()
    for line in lines:
        check(line, line.split("\t")[1:], ["1446.479", "547.56"])
    return sorted(line.split("\t")[0] for line in lines)


def prepare(folder):
    pathlib.Path(folder, "measure.py").write_text(block("python"))
    pathlib.Path(folder, "measure.sh").write_text(block("sh"))
    for name in NAMES:
        shutil.copy(picture, pathlib.Path(folder, name))
    pathlib.Path(folder, "broken.tif").write_bytes(b"not a picture")
    pathlib.Path(folder, "bin").mkdir()
    start = pathlib.Path(folder, "bin", "vantrel")
    start.write_text(f'#!/bin/sh\nshift\nexec {shlex.join([program, "run", *options])} "$@"\n')
    start.chmod(0o755)


def on_all_cores(folder):
    check("the status of parallel, which is the number of failed calls", run(command("parallel"), folder).returncode, 1)
    check("measured", measured(folder), [name for name in NAMES if name != "broken.tif"])
    failed = run(command("awk"), folder).stdout.splitlines()
    check("the list of failed calls", [line.endswith("broken.tif") for line in failed], [True])
    shutil.copy(picture, pathlib.Path(folder, "broken.tif"))
    check("the status of the repetition", run(command("parallel --retry-failed"), folder).returncode, 0)
    check("measured at last", measured(folder), NAMES)


def as_tasks(folder):
    run(command("ls"), folder)
    pathlib.Path(folder, "broken.tif").write_bytes(b"not a picture")
    for number, name in enumerate(NAMES, 1):
        task = run("sh measure.sh", folder, SLURM_ARRAY_TASK_ID=str(number))
        check(f"the status for {name}", task.returncode, 1 if name == "broken.tif" else 0)
        check(f"the result for {name}", task.stdout.split("\t")[0], "" if name == "broken.tif" else name)


with tempfile.TemporaryDirectory() as folder:
    prepare(folder)
    if shutil.which("parallel"):
        on_all_cores(folder)
    as_tasks(folder)
for failure in failures:
    print(failure, file=sys.stderr)
if not failures and not shutil.which("parallel"):
    print("parallel is not installed")
sys.exit(1 if failures else 0)
