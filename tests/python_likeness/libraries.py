"""Runs scripts that use large libraries inside the viewer, where these are installed. The viewer must work on after each.

usage: libraries.py VIEWER PYTHON COLLECTION [NAME...] -- VIEWER_OPTION...

COLLECTION is a file of scripts, each of which follows a line "#### NAME needs MODULE... [with OPTION...]".
"""
import pathlib
import re
import subprocess
import sys
import tempfile

HEADING = re.compile(r"^#### (\w+) needs ([\w ]+?)(?: with (--.+))?\n", re.M)

# A window of a script must leave the viewer's own ones alone, and its application object.
AFTER = """
import vantrel
image = vantrel.Image()
image.alloc(8, 8, 1, 8)
if {windows}:
    view = vantrel.new_view_with_image(image, "after")
    camera = vantrel.Camera()
    camera.open_device(0)
    live = camera.start_acquisition()
    assert vantrel.wait_for_next_frame(20.0, live)
    camera.stop_acquisition()
    vantrel.close_view(view)
print("the viewer works on")
raise SystemExit(0)  # also with --show
"""


def is_installed(python, module):
    run = subprocess.run([python, "-c", f"import {module}"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    return run.returncode == 0


def main():
    split = sys.argv.index("--")
    viewer, python, collection, *names = sys.argv[1:split]
    options = sys.argv[split + 1:]
    parts = HEADING.split(pathlib.Path(collection).read_text())
    failed, known = 0, {}
    for name, modules, own, source in zip(parts[1::4], parts[2::4], parts[3::4], parts[4::4]):
        if names and name not in names:
            continue
        for module in modules.split():
            known.setdefault(module, is_installed(python, module))
        missing = [module for module in modules.split() if not known[module]]
        if missing:
            print(f"-- {name}: skipped, {missing[0]} is not installed")
            continue
        with tempfile.TemporaryDirectory() as folder:
            script, after = pathlib.Path(folder, "script.py"), pathlib.Path(folder, "after.py")
            script.write_text(source)
            after.write_text(AFTER.format(windows=own != "--worker"))
            try:
                run = subprocess.run([viewer, "run", *options, *(own or "").split(), str(script), str(after)], cwd=folder,
                                     stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=120)
                status, output, errors = run.returncode, run.stdout, run.stderr
            except subprocess.TimeoutExpired as error:
                status, output, errors = "none, it did not end", str(error.stdout), str(error.stderr)
        if status == 0 and "the viewer works on" in output:
            print(f"-- {name}: ran")
        else:
            failed += 1
            print(f"-- {name}: status {status}\n{output}{errors}")
    return 1 if failed or not known else 0


if __name__ == "__main__":
    sys.exit(main())
