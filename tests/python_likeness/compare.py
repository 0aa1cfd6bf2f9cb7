"""Runs scripts with the viewer and with the Python that belongs to it; both must behave alike.

usage: compare.py VIEWER PYTHON COLLECTION [NAME...] -- VIEWER_OPTION...

COLLECTION is a file of scripts, each of which follows a line "#### NAME [for VERSION+] [with OPTION...]". Compared are standard output,
standard error, and the exit status. Addresses of objects and the names of temporary folders do not count.
"""
import concurrent.futures
import os
import pathlib
import re
import subprocess
import sys
import tempfile

TIMEOUT = 120
HEADING = re.compile(rb"^#### (\w+)(?: for 3\.(\d+)\+)?(?: with (--.+))?\n", re.M)


def scripts(collection, minor):
    """Yield the name, the source and the viewer's options of each script that fits a version of Python."""
    parts = HEADING.split(pathlib.Path(collection).read_bytes())
    for name, since, options, source in zip(parts[1::4], parts[2::4], parts[3::4], parts[4::4]):
        if since is None or int(since) <= minor:
            yield name.decode(), unescaped(source), (options or b"").decode().split()


def unescaped(source):
    """Put bytes that a text file cannot hold in place of their marks, for example <<e9>>."""
    return re.sub(rb"<<([0-9a-f]{2})>>", lambda mark: bytes([int(mark[1], 16)]), source)


def run(command, folder):
    environment = {name: value for name, value in os.environ.items() if not name.startswith("PYTHON")}
    done = subprocess.run(command, cwd=folder, env=environment, input=b"first line\nsecond line\n", capture_output=True,
                          timeout=TIMEOUT)
    status = 130 if done.returncode == -2 else done.returncode
    return [f"status {status}"] + ["out: " + line for line in lines(done.stdout)] + ["err: " + line for line in lines(done.stderr)]


def lines(output):
    text = output.decode("utf-8", "backslashreplace")
    return re.sub(r"0x[0-9a-f]{6,}", "0x...", text).split("\n")


def difference(name, source, own_options, viewer, python, options):
    """Return what differs, as a text; empty if nothing does."""
    results = []
    for command in ([python], [viewer, "run", *options, *own_options]):
        with tempfile.TemporaryDirectory() as outer:
            folder = pathlib.Path(outer, "scripts")
            folder.mkdir()
            script = folder / "script.py"
            script.write_bytes(source)
            try:
                result = run([*command, str(script)] + (["--"] if command[0] == viewer else []) + ["one", "two words"], folder)
            except subprocess.TimeoutExpired:
                result = [f"not ended after {TIMEOUT} s"]
            results.append([line.replace(str(folder), "FOLDER") for line in result])
    if results[0] == results[1]:
        return ""
    import difflib
    return f"-- {name}\n" + "\n".join(difflib.unified_diff(*results, "python", "viewer", lineterm="", n=2)) + "\n"


def main():
    split = sys.argv.index("--")
    viewer, python, collection, *names = sys.argv[1:split]
    options = sys.argv[split + 1:]
    minor = int(subprocess.run([python, "-c", "import sys; print(sys.version_info[1])"], capture_output=True).stdout)
    chosen = [one for one in scripts(collection, minor) if not names or one[0] in names]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        different = list(filter(None, pool.map(lambda one: difference(*one, viewer, python, options), chosen)))
    sys.stdout.write("".join(different))
    print(f"{len(chosen) - len(different)} of {len(chosen)} scripts behave alike")
    return 1 if different or not chosen else 0


if __name__ == "__main__":
    sys.exit(main())
