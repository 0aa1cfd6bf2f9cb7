#!/usr/bin/env python3
"""Runs the benchmarks of a built tree and prints one table.

Each row compares a task with a peer: another library that does the same, or a limit. The ratio is the median of
several turns; a ratio below 1 means that vantrel is faster. The exit status is 0 even if goals are missed: figures
depend on the machine, and what else it does.
"""

import argparse
import datetime
import json
import os
import pathlib
import platform
import re
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
DISTRIBUTION_PYTHON = "/usr/bin/python3"
LIBRARIES = ("numpy", "opencv", "pillow", "matplotlib")
COLUMNS = "{task:52} {ours:>10}   {peer:36} {peers:>10} {ratio:>7} {span:>13} {goal:>6}  {verdict}"


def cached(build, name):
    """A variable of the configured build."""
    text = (build / "CMakeCache.txt").read_text()
    return re.search("^%s:[A-Z]+=(.*)$" % name, text, re.MULTILINE).group(1)


def commands(build, wanted):
    """The commands that print rows."""
    viewer = build / "bin" / "vantrel"
    for script in sorted((HERE / "scripts").glob("*_rows.py")):
        yield [viewer, "run", "--sim-cameras", "1", script, "--", wanted]
    for program in sorted((HERE / "programs").glob("*_rows.py")):
        yield [DISTRIBUTION_PYTHON, program, wanted, viewer]
    yield [build / "bench" / "runs_bench", "--plugin=%s" % (build / "plugins" / "libvantrel_python.so"),
           "--python-home=%s" % cached(build, "VANTREL_PYTHON_ROOT"), "--filter=" + wanted]
    yield [build / "bench" / "answer_bench", "--filter=" + wanted]


def is_wanted(row, wanted):
    return wanted in row["task"].lower() or wanted in row["group"].lower()


def readable(amount, unit):
    if amount is None:
        return ""
    if unit == "s":
        for size, name in ((1, "s"), (1e-3, "ms"), (1e-6, "us")):
            if amount >= size:
                return "%.2f %s" % (amount / size, name)
        return "%.0f ns" % (amount * 1e9)
    return "%.4g %s" % (amount, unit)


def verdict(row):
    if row["goal"] is None:
        return ""
    return "met" if row["ratio"] <= row["goal"] else "missed"


def print_row(row):
    print(COLUMNS.format(
        task=row["task"], ours=readable(row["ours"], row["unit"]), peer=row["peer"],
        peers=readable(row["peers"], row["unit"]), ratio="%.2f" % row["ratio"],
        span="%.2f - %.2f" % (row["least"], row["most"]) if row["least"] != row["most"] else "",
        goal="" if row["goal"] is None else "%.2f" % row["goal"], verdict=verdict(row)).rstrip(), flush=True)


def run(command, wanted, rows):
    """Print the rows of a command as they come, and add them to `rows`. Returns whether the command succeeded."""
    with subprocess.Popen(command, stdout=subprocess.PIPE, text=True, cwd=HERE) as process:
        for line in process.stdout:
            if not line.startswith("ROW\t"):
                sys.stderr.write(line)
                continue
            row = json.loads(line[4:])
            if not is_wanted(row, wanted):
                continue
            if not rows or rows[-1]["group"] != row["group"]:
                print("\n" + COLUMNS.format(task=row["group"], ours="vantrel", peer="peer", peers="", ratio="ratio",
                                            span="least - most", goal="goal", verdict="").rstrip())
            rows.append(row)
            print_row(row)
    if process.returncode:
        print("%s ended with status %d" % (pathlib.Path(command[0]).name, process.returncode), file=sys.stderr)
    return process.returncode == 0


def versions(build):
    """What was compared, on which machine."""
    script = "import json, %s\nprint(json.dumps([%s]))"
    modules = {"numpy": "numpy", "opencv": "cv2", "pillow": "PIL", "matplotlib": "matplotlib"}
    found = {"vantrel": subprocess.run([build / "bin" / "vantrel", "--version"], stdout=subprocess.PIPE, text=True,
                                       check=True).stdout.strip().split()[-1],
             "python": cached(build, "VANTREL_PYTHON_ROOT"), "system": platform.freedesktop_os_release()["PRETTY_NAME"],
             "processors": os.cpu_count(), "processor": processor()}
    for library in LIBRARIES:
        asked = subprocess.run([DISTRIBUTION_PYTHON, "-c", script % (modules[library], modules[library] + ".__version__")],
                               stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True, check=False)
        found[library] = json.loads(asked.stdout)[0] if asked.returncode == 0 else None
    return found


def processor():
    lines = pathlib.Path("/proc/cpuinfo").read_text().splitlines()
    return next((line.split(":", 1)[1].strip() for line in lines if line.startswith("model name")), "unknown")


def main():
    parser = argparse.ArgumentParser(prog="vantrel bench", description="Run the benchmarks and print one table.")
    parser.add_argument("build", type=pathlib.Path, help=argparse.SUPPRESS)
    parser.add_argument("filter", nargs="?", default="", metavar="FILTER",
                        help="run only tasks whose name, or the name of their group, contains this text")
    parser.add_argument("--json", type=pathlib.Path, metavar="FILE", help="also write the figures to a file")
    options = parser.parse_args()
    build = options.build.resolve()
    wanted = options.filter.lower()
    os.environ.setdefault("QT_QPA_PLATFORM", "offscreen")

    rows = []
    complete = all([run(command, wanted, rows) for command in commands(build, wanted)])
    counted = [row for row in rows if row["goal"] is not None]
    print("\n%d rows, %d of %d goals met" %
          (len(rows), sum(verdict(row) == "met" for row in counted), len(counted)))
    if options.json:
        options.json.write_text(json.dumps({
            "date": datetime.date.today().isoformat(), "versions": versions(build), "rows": rows}, indent=1) + "\n")
    if not rows:
        print("no task matches \"%s\"" % options.filter, file=sys.stderr)
    return 0 if complete and rows else 1


if __name__ == "__main__":
    sys.exit(main())
