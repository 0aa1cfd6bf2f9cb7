"""Runs the commands and the script that README.md shows, from the root of the repository.

usage: readme_commands.py README PRESET

The command that runs every test is not run, because this script is one of the tests; only its presence is checked. Another
test makes the packages.
"""

import contextlib
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time

readme, preset = pathlib.Path(sys.argv[1]), sys.argv[2]
root = readme.parent
text = readme.read_text()
failures = []


@contextlib.contextmanager
def display():
    """Gives the environment of a virtual display, or of none if there is no program for it."""
    if not shutil.which("Xvfb"):
        yield dict(os.environ, QT_QPA_PLATFORM="offscreen")
        return
    read, write = os.pipe()
    server = subprocess.Popen(["Xvfb", "-displayfd", str(write), "-screen", "0", "1100x750x24"], pass_fds=[write],
                              stderr=subprocess.DEVNULL)
    os.close(write)
    try:
        with os.fdopen(read) as number:
            environment = dict(os.environ, DISPLAY=":" + number.readline().strip())
        environment.pop("QT_QPA_PLATFORM", None)
        yield environment
    finally:
        server.terminate()
        server.wait()


def run(command, environment):
    print("--", command, flush=True)
    done = subprocess.run(command.split(), cwd=root, env=environment, stdin=subprocess.DEVNULL, capture_output=True,
                          text=True, timeout=240)
    print(done.stdout + done.stderr, flush=True)
    if done.returncode != 0:
        failures.append(f"{command}: status {done.returncode}")
    return done


def start(command, environment, last_line=None):
    """Starts a command that a person ends. It must stay open after it has printed last_line, and end after the signal to
    terminate."""
    print("--", command, flush=True)
    process = subprocess.Popen(command.split(), cwd=root, env=environment, stdin=subprocess.DEVNULL,
                               stdout=subprocess.PIPE, text=True)
    if last_line:
        lines = iter(process.stdout.readline, "")
        if not any(last_line in line for line in lines):
            failures.append(f"{command}: does not print {last_line}")
    time.sleep(5)  # the time that it must live
    if process.poll() is not None:
        failures.append(f"{command}: ended too early, with status {process.returncode}")
    process.terminate()
    process.communicate(timeout=60)


def block_of(kind):
    blocks = re.findall(rf"^```{kind}\n(.*?)^```", text, flags=re.M | re.S)
    if len(blocks) != 1:
        failures.append(f"{len(blocks)} blocks of {kind}, not 1")
    return blocks[0] if blocks else ""


def check_script(path, environment):
    """The script prints what README.md says, and nothing else."""
    done = run(f"./vantrel run {path}", environment)
    if done.stdout != block_of("text"):
        failures.append(f"the script prints {done.stdout!r}")
    if re.sub(r"^vantrel: .*\n", "", done.stderr, flags=re.M):
        failures.append(f"the run of the script says {done.stderr!r}")


def check_commands(environment, folder):
    environment["VANTREL_PRESET"] = preset
    environment["XDG_RUNTIME_DIR"] = folder
    blocks = re.findall(r"^ {4}(\S.*)$", re.sub(r"^```.*?^```", "", text, flags=re.M | re.S), flags=re.M)
    inline = [command for command in re.findall(r"`([^`\n]+)`", text) if command.startswith("./")]
    tests_all = "./vantrel test"
    if tests_all not in blocks:
        failures.append(f"{tests_all} is not shown")
    if "--show" not in next((command for command in blocks if " run " in command), ""):
        failures.append("the first run does not show the windows")

    calls = re.findall(r"^  ([a-z]+) ", run("./vantrel help", environment).stdout, flags=re.M)
    for command in blocks + inline:
        if command.startswith("./") and (not command.startswith("./vantrel ") or command.split()[1] not in calls):
            failures.append(f"{command}: not a command that ./vantrel help lists")

    name = re.search(r"Save these lines as `([\w.]+)`", text).group(1)
    script = pathlib.Path(folder, name)
    script.write_text(block_of("python"))
    check_script(script, environment)

    for command in dict.fromkeys(command for command in blocks + inline if command.startswith("./vantrel ")):
        if command.startswith("./vantrel view"):
            start(command, environment)
        elif command.endswith(" " + name):
            start(command.replace(" " + name, f" {script}"), environment, block_of("text").splitlines()[-1])
        elif " --show " in command:
            start(command, environment, "scene.tif, read back with the same values: True")
        elif command not in (tests_all, "./vantrel help", "./vantrel package"):
            run(command, environment)


# The files and folders that the text names exist, except those that a command makes.
for name in re.findall(r"`([\w.]+(?:/[\w.]*)+|[\w-]+\.md)`", text):
    if not name.startswith("build/") and not any((folder / name).exists() for folder in (root, root / "docs")):
        failures.append(f"{name} does not exist")

with display() as environment, tempfile.TemporaryDirectory() as folder:
    check_commands(environment, folder)

for failure in failures:
    print(failure, file=sys.stderr)
sys.exit(1 if failures else 0)
