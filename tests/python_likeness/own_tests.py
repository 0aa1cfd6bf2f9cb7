"""Runs some of Python's own tests inside the viewer and with the Python that belongs to it, and compares the results.

usage: own_tests.py VIEWER PYTHON [MODULE...] -- VIEWER_OPTION...

Compared are the numbers of tests that were run and skipped, and the names of those that failed. Tests that fail with
Python itself may fail in the viewer, too: some depend on the system. Some depend on time, so a module whose results differ
is run a second time.
"""
import concurrent.futures
import json
import os
import pathlib
import subprocess
import sys
import tempfile

TIMEOUT = 300
MODULES = """
    test_argparse test_asyncio.test_runners test_asyncio.test_streams test_asyncio.test_subprocess test_atexit test_contextlib
    test_doctest test_exceptions test_faulthandler test_fork1 test_importlib test_inspect test_os test_runpy test_signal
    test_subprocess test_sys test_threading test_traceback test_warnings
""".split()
# The function of the C library that the first test asks counts the viewer's frames.
KNOWN = {"test.test_sys.SysModuleTest.test_setrecursionlimit_recursion_depth", "test.test_sys.SysModuleTest.test_recursionlimit_recovery"}

SCRIPT = '''
import json
import sys
import unittest

suite = unittest.defaultTestLoader.loadTestsFromName("test." + sys.argv[1])
result = unittest.TextTestRunner(verbosity=2).run(suite)
failed = [test.id() for test, _ in result.failures + result.errors]
with open("result.json", "w") as file:
    json.dump({"run": result.testsRun, "skipped": len(result.skipped), "failed": failed}, file)
'''


def results(command, module):
    """Run the tests of a module. Returns their results and what they have written."""
    environment = {name: value for name, value in os.environ.items() if not name.startswith("PYTHON")}
    # Some tests leave folders behind that nobody may enter.
    with tempfile.TemporaryDirectory() as folder:
        script = pathlib.Path(folder, "script.py")
        script.write_text(SCRIPT)
        try:
            # A test that is started in the background would ignore signals that Python's tests send.
            done = subprocess.run(["env", "--default-signal=HUP,INT,QUIT", *command, str(script),
                                   *(["--"] if "run" in command else []), module], cwd=folder, env=environment,
                                  stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                  stderr=subprocess.STDOUT, timeout=TIMEOUT)
            output = done.stdout.decode(errors="backslashreplace")
        except subprocess.TimeoutExpired:
            output = f"not ended after {TIMEOUT} s\n"
        path = pathlib.Path(folder, "result.json")
        result = json.loads(path.read_text()) if path.exists() else {}
    return result, output


def difference(module, viewer, python, options):
    """Return what differs, as a text; empty if nothing does."""
    expected, _ = results([python], module)
    seen, output = results([viewer, "run", "--plain-output", *options], module)
    if not expected:
        return f"-- {module}: Python itself cannot run it\n"
    if seen:
        seen["failed"] = sorted(set(seen["failed"]) - KNOWN)
        expected["failed"] = sorted(set(expected["failed"]) - KNOWN)
        print(f"-- {module}: {seen['run']} run, {seen['skipped']} skipped, {len(seen['failed'])} failed", flush=True)
    return "" if seen == expected else f"-- {module}\npython: {expected}\nviewer: {seen}\n{output}\n"


def main():
    split = sys.argv.index("--")
    viewer, python, *modules = sys.argv[1:split]
    options = sys.argv[split + 1:]
    if subprocess.run([python, "-c", "import test.test_argparse"], stderr=subprocess.DEVNULL).returncode != 0:
        print("the package of Python's own tests is not installed")
        return 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        different = list(filter(None, pool.map(lambda one: difference(one, viewer, python, options)
                                               and difference(one, viewer, python, options), modules or MODULES)))
    sys.stdout.write("".join(different))
    return 1 if different else 0


if __name__ == "__main__":
    sys.exit(main())
