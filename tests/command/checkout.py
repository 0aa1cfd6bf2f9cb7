"""A small checkout with the real command in it, and stand-ins for the programs that it calls.

The stand-ins come first in PATH. They keep their state in files below the folder `state`: packages that are installed,
what apt-get is to do, and a line for each call.
"""

import os
import pathlib
import pty
import select
import shutil
import signal
import stat
import subprocess
import tempfile
import time
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
NAMES = ("dpkg-query", "dpkg", "apt-get", "apt-cache", "sudo", "cmake")

DPKG_QUERY = """
echo "dpkg-query" >>"$STATE/calls"
case "$2" in
*db:Status-Status*) shift 2; for package; do grep -qx "$package" "$STATE/installed" && echo "installed $package"; done; exit 0 ;;
*) cat "$STATE/qt-version" ;;
esac
"""

DPKG = """
echo "dpkg $*" >>"$STATE/calls"
case "$1" in
--compare-versions) [ "$(printf '%s\\n%s\\n' "$2" "$4" | sort -V | tail -n 1)" = "$2" ] ;;
--configure) rm -f "$STATE/interrupted" ;;
esac
"""

APT_CACHE = """
case "$2" in
qt6-base-dev) echo "  Candidate: $(cat "$STATE/qt-version")" ;;
python3-dev) echo "  Candidate: $(cat "$STATE/python-version")" ;;
esac
"""

# The failures of apt-get are chosen by files: their names say what happens.
APT_GET = """
echo "apt-get $*" >>"$STATE/calls"
case " $* " in
*" --version "*) exit 0 ;;
*" download small "*)
    if [ -f "$STATE/no-network" ]; then
        for i in $(seq 5000); do echo "E: Failed to fetch http://mirror/small.deb  Temporary failure resolving 'mirror'" >&2; done
        exit 100
    fi
    exit 0 ;;
*" update "*)
    if [ -f "$STATE/no-network" ]; then
        echo "W: Failed to fetch http://mirror/InRelease  Temporary failure resolving 'mirror'"
        exit 0
    fi
    touch "$STATE/lists"; exit 0 ;;
esac
if [ ! -f "$STATE/lists" ] || [ -f "$STATE/unknown" ]; then
    echo "E: Unable to locate package qt6-base-dev" >&2; exit 100
fi
case " $* " in
*" --print-uris "*)
    echo "'http://mirror/large.deb' large_1.0_amd64.deb 99000 SHA256:0"
    echo "'http://mirror/small.deb' small_1.0_all.deb 1000 SHA256:0"
    echo "0 upgraded, 154 newly installed, 0 to remove and 3 not upgraded."
    echo "Need to get 322 MB of archives."
    echo "After this operation, 1,240 MB of additional disk space will be used."
    exit 0 ;;
esac
if [ -f "$STATE/interrupted" ]; then
    echo "E: dpkg was interrupted, you must manually run 'dpkg --configure -a' to correct the problem."; exit 100
fi
if [ -f "$STATE/no-network" ]; then
    echo "E: Failed to fetch http://mirror/a.deb  Temporary failure resolving 'mirror'"; exit 100
fi
if [ -f "$STATE/disk-full" ]; then
    echo "E: You don't have enough free space in /var/cache/apt/archives/."; exit 100
fi
if [ -f "$STATE/held" ]; then
    echo "E: Unable to correct problems, you have held broken packages."; exit 100
fi
if [ -f "$STATE/stale" ]; then
    rm "$STATE/stale"; echo "E: Failed to fetch http://mirror/a.deb  404  Not Found"; exit 100
fi
for percent in 0 25 50 75 100; do echo "dlstatus:1:$percent.0000:Retrieving file 3 of 154"; done
if [ -f "$STATE/slow" ]; then trap '' INT; echo started >"$STATE/started"; sleep 20; fi
for percent in 0 50 100; do echo "(Reading database ... pmstatus:libqt6core6:$percent.0000:Unpacking libqt6core6"; done
cat "$STATE/needed" >>"$STATE/installed"
"""

SUDO = """
echo "sudo $*" >>"$STATE/calls"
if [ -f "$STATE/wrong-password" ]; then echo "sudo: 3 incorrect password attempts" >&2; exit 1; fi
exec "$@"
"""

CMAKE = """
echo "cmake $*" >>"$STATE/calls"
exec "$REAL_CMAKE" "$@"
"""

CMAKE_LISTS = """
cmake_minimum_required(VERSION 3.25)
project(Small VERSION 7.8.9 LANGUAGES CXX)
set(VANTREL_PYTHON_ROOT "/usr" CACHE PATH "")
include(CTest)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
add_executable(vantrel viewer/program.cxx)
add_library(vantrel_python MODULE viewer/plugin.cxx)
set_target_properties(vantrel_python PROPERTIES LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/plugins")
add_custom_target(product DEPENDS vantrel vantrel_python)
file(WRITE "${CMAKE_BINARY_DIR}/pythons.txt" "3.11\\n")
if(BUILD_TESTING)
    add_test(NAME small.passes COMMAND true)
    add_test(NAME small.waits COMMAND sleep 20)
endif()
"""

PROGRAM = """
#include <cstdio>
#include <cstring>
int main(int count, char** words)
{
    for (int i = 1; i < count; ++i)
        std::printf("[%s]", words[i]);
    std::printf(" TEXT\\n");
    return 0;
}
"""


class Outcome:
    def __init__(self, status, output, errors, seconds):
        self.status, self.output, self.errors, self.seconds = status, output, errors, seconds

    def __repr__(self):
        return f"status {self.status} after {self.seconds:.1f} s\n{self.output}\n{self.errors}"


class CheckoutTest(unittest.TestCase):
    """Each test has a checkout with all packages installed, and is an ordinary user with sudo or root."""

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="vantrel-command-"))
        self.addCleanup(self.remove_folder)
        self.folder.chmod(0o755)
        self.checkout = self.folder / "checkout"
        self.state = self.folder / "state"
        self.bin = self.folder / "bin"
        for folder in (self.checkout, self.state, self.bin):
            folder.mkdir()
        for name in ("vantrel", "tools/command", "CMakePresets.json", "cmake/VantrelPython.cmake",
                     "viewer/CommandLine.cpp", "viewer/main.cpp"):
            source, target = ROOT / name, self.checkout / name
            target.parent.mkdir(parents=True, exist_ok=True)
            (shutil.copytree if source.is_dir() else shutil.copy)(source, target)
        self.write("CMakeLists.txt", CMAKE_LISTS)
        self.write("viewer/program.cxx", PROGRAM)
        self.write("viewer/plugin.cxx", "int plugin() { return 1; }\n")
        self.write("script.py", "print(1)\n")
        texts = (DPKG_QUERY, DPKG, APT_GET, APT_CACHE, SUDO, CMAKE)
        for name, text in zip(("dpkg-query", "dpkg", "apt-get", "apt-cache", "sudo", "cmake"), texts):
            self.stand_in(name, text)
        self.environment = {name: value for name, value in os.environ.items()
                            if not name.startswith(("VANTREL_", "CMAKE_"))}
        self.environment.update(PATH=f"{self.bin}:/usr/bin:/bin", STATE=str(self.state), HOME=str(self.folder),
                                REAL_CMAKE=shutil.which("cmake") or "", LC_ALL="C.UTF-8", TERM="xterm",
                                QT_QPA_PLATFORM="offscreen")
        self.all_packages = self.listed_packages()
        self.set("needed", "\n".join(self.all_packages) + "\n")
        self.set("installed", "\n".join(self.all_packages) + "\n")
        self.set("qt-version", "6.4.2+dfsg-10\n")
        self.set("python-version", "3.11.2-1\n")
        self.set("lists")
        self.set("calls")

    def listed_packages(self):
        script = (f". '{ROOT}/tools/command/packages.sh'; printf '%s\\n' ${{compiler_packages[@]}} "
                  "${python_packages[@]} ${test_packages[@]} ${picture_packages[@]} ${bench_packages[@]}")
        return sorted(set(subprocess.check_output(["bash", "-c", script], text=True).split()))

    def remove_folder(self):
        subprocess.run(["chmod", "-R", "u+rwX", self.folder], check=False)
        shutil.rmtree(self.folder, ignore_errors=True)

    # ---- the checkout and its surroundings ----

    def write(self, name, text):
        path = self.checkout / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)
        return path

    def stand_in(self, name, text):
        path = self.bin / name
        path.write_text("#!/bin/bash\n" + text.lstrip("\n"))
        path.chmod(path.stat().st_mode | stat.S_IXUSR | stat.S_IXGRP | stat.S_IXOTH)

    def set(self, name, text=""):
        (self.state / name).write_text(text)

    def clear(self, name):
        (self.state / name).unlink(missing_ok=True)

    def uninstall(self, *packages):
        self.set("installed", "".join(f"{name}\n" for name in self.all_packages if packages and name not in packages))

    def calls(self, beginning=""):
        """The calls of the stand-ins since the last look."""
        lines = [line for line in (self.state / "calls").read_text().splitlines() if line.startswith(beginning)]
        self.set("calls")
        return lines

    def python(self, version, folder, library=True):
        """A folder that looks like the root of a Python."""
        root = self.folder / folder
        (root / f"include/python{version}").mkdir(parents=True)
        (root / f"include/python{version}/Python.h").touch()
        (root / "lib").mkdir()
        if library:
            (root / f"lib/libpython{version}.so").touch()
        return root

    # ---- calling the command ----

    def start(self, *arguments, user=None, before=(), **variables):
        command = [*before, "./vantrel", *map(str, arguments)]
        extra = {"user": user, "group": user, "extra_groups": []} if user else {}
        return subprocess.Popen(command, cwd=self.checkout, env={**self.environment, **variables},
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                                start_new_session=True, **extra)

    def finish(self, process, begun=None, seconds=100):
        begun = begun or time.monotonic()
        output, errors = process.communicate(timeout=seconds)
        return Outcome(process.returncode, output, errors, time.monotonic() - begun)

    def call(self, *arguments, **options):
        return self.finish(self.start(*arguments, **options))

    def call_on_terminal(self, *arguments, **variables):
        """The same with a terminal. Returns the status and all that appears there."""
        process, terminal = pty.fork()
        if process == 0:
            os.chdir(self.checkout)
            os.execve("./vantrel", ["./vantrel", *arguments], {**self.environment, **variables})
        shown = b""
        while select.select([terminal], [], [], 100)[0]:
            try:
                piece = os.read(terminal, 65536)
            except OSError:
                break
            if not piece:
                break
            shown += piece
        status = os.waitstatus_to_exitcode(os.waitpid(process, 0)[1])
        os.close(terminal)
        return status, shown.decode()

    def wait_for(self, condition, seconds=30):
        end = time.monotonic() + seconds
        while not condition():
            self.assertLess(time.monotonic(), end, "waited in vain")
            time.sleep(0.02)

    def interrupt(self, process):
        """Sends what Ctrl-C sends: the signal to the whole process group."""
        begun = time.monotonic()
        os.killpg(process.pid, signal.SIGINT)
        return self.finish(process, begun)

    def build(self):
        outcome = self.call("run", "script.py")
        self.assertEqual(outcome.status, 0, outcome)
        self.assertEqual(outcome.output, "[run][script.py] TEXT\n")
        self.calls()

    # ---- checks ----

    def assert_refused(self, outcome, *words):
        """Status 2, one sentence, and nothing was installed or built."""
        self.assertEqual(outcome.status, 2, outcome)
        self.assertEqual(outcome.output, "", outcome)
        self.assertEqual(len(outcome.errors.splitlines()), 1, outcome)
        self.assert_says(outcome, *words)
        self.assert_nothing_done()

    def assert_says(self, outcome, *words):
        for word in words:
            self.assertIn(word, outcome.errors, outcome)

    def assert_nothing_done(self):
        done = [line for line in self.calls() if " install " in line and "--print-uris" not in line or line.startswith("cmake")]
        self.assertEqual(done, [])
        self.assertFalse((self.checkout / "build/CMakeCache.txt").exists())
