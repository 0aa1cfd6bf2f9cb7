"""Runs the commands that README.md shows, from the root of the repository.

usage: readme_commands.py README PRESET

The command that runs every test is not run, because this script is one of the tests; only its presence is checked.
"""

import os
import pathlib
import re
import subprocess
import sys
import time

readme, preset = pathlib.Path(sys.argv[1]), sys.argv[2]
root = readme.parent
text = readme.read_text()
environment = dict(os.environ, VANTREL_PRESET=preset, QT_QPA_PLATFORM="offscreen")
failures = []


def run(command):
    print("--", command, flush=True)
    done = subprocess.run(command.split(), cwd=root, env=environment, stdin=subprocess.DEVNULL, capture_output=True,
                          text=True, timeout=240)
    print(done.stdout + done.stderr, flush=True)
    if done.returncode != 0:
        failures.append(f"{command}: status {done.returncode}")
    return done.stdout


def start(command, seconds):
    """Starts a command that a person ends. It must run for that time, and end after the signal to terminate."""
    print("--", command, flush=True)
    process = subprocess.Popen(command.split(), cwd=root, env=environment, stdin=subprocess.DEVNULL)
    time.sleep(seconds)  # the time that it must live
    if process.poll() is not None:
        failures.append(f"{command}: ended too early, with status {process.returncode}")
    process.terminate()
    process.wait(60)


blocks = re.findall(r"^ {4}(\S.*)$", text, flags=re.M)
inline = [command for command in re.findall(r"`([^`]+)`", text) if command.startswith("./")]
tests_all = "./vantrel test"
if tests_all not in blocks:
    failures.append(f"{tests_all} is not shown")

calls = re.findall(r"^  ([a-z]+) ", run("./vantrel help"), flags=re.M)
for command in blocks + inline:
    if not command.startswith("./vantrel ") or command.split()[1] not in calls:
        failures.append(f"{command}: not a command that ./vantrel help lists")

for command in dict.fromkeys(blocks + inline):
    if command.startswith("./vantrel view"):
        start(command, 5)
    elif command not in (tests_all, "./vantrel help"):
        run(command)

# The files and folders that the text names exist.
for name in re.findall(r"`([\w.]+(?:/[\w.]*)+|[\w-]+\.md)`", text) + re.findall(r"\]\(([\w/.]+)\)", text):
    if not any((folder / name).exists() for folder in (root, root / "docs")):
        failures.append(f"{name} does not exist")

for failure in failures:
    print(failure, file=sys.stderr)
sys.exit(1 if failures else 0)
