"""Calls that the command answers without installing or building anything."""

import re
import subprocess
import unittest

import checkout


class Calls(checkout.CheckoutTest):
    def setUp(self):
        super().setUp()
        self.uninstall()  # any step further would install packages

    def test_wrong_calls_are_refused(self):
        self.write("folder/file", "")
        for arguments, words in [
            (["fly"], ["fly", "did you mean"]),
            (["buidl"], ["./vantrel build"]),
            (["run"], ["No script given"]),
            (["run", "--show"], ["No script given"]),
            (["run", "missing.py"], ["missing.py", "no such file"]),
            (["run", "script.py", "missing.py"], ["missing.py"]),
            (["run", "--", "script.py"], ["No script given"]),
            (["run", "folder"], ["folder", "it is a folder"]),
            (["run", "--fast", "script.py"], ["fast", "./vantrel run --help"]),
            (["run", "-x", "script.py"], ["x"]),
            (["run", "--show=yes", "script.py"], ["show"]),
            (["run", "script.py", "--answer"], ["Missing value", "answer"]),
            (["run", "--sim-cameras", "5", "script.py"], ["0 to 4", "'5'"]),
            (["run", "--sim-cameras=x", "script.py"], ["'x'"]),
            (["run", "--workdir", "missing", "script.py"], ["missing", "not a folder"]),
            (["run", "--workdir", "", "script.py"], ["--workdir needs a value"]),
            (["run", "--python-home", "missing", "script.py"], ["missing", "not a folder"]),
            (["run", "--venv", "missing", "script.py"], ["missing", "not a folder"]),
            (["run", "--log", "missing/log.txt", "script.py"], ["missing/log.txt"]),
            (["run", "--open", "missing.png", "script.py"], ["missing.png"]),
            (["run", "--image", "dark", "script.py"], ["NAME=FILE"]),
            (["run", "--image", "1a=script.py", "script.py"], ["NAME=FILE"]),
            (["run", "--image", "dark=missing.png", "script.py"], ["missing.png"]),
            (["view", "--fast"], ["fast", "./vantrel view --help"]),
            (["test", "a", "b"], ["at most one"]),
            (["build", "all"], ["build", "all"]),
            (["bench", "crop", "add"], ["at most one filter"]),
            (["bench", "--fast"], ["--fast"]),
            (["bench", "--json"], ["--json", "name of a file"]),
            (["bench", "--json", "missing/figures.json"], ["missing/figures.json"]),
            (["pictures", "x"], ["x"]),
            (["package", "x"], ["x"]),
            (["fuzz"], ["seconds"]),
            (["fuzz", "ten"], ["seconds"]),
            (["fuzz", "10", "20"], ["20"]),
            (["soak", "ten"], ["number"]),
            (["soak", "10", "20"], ["20"]),
        ]:
            with self.subTest(arguments):
                self.assert_refused(self.call(*arguments), *words)
        self.assertFalse((self.checkout / "build").exists())

    def test_right_calls_are_not_refused(self):
        self.write("a=b.png", "")
        for arguments in [
            ["run", "script.py"],
            ["run", "--show", "--worker", "--sim-cameras", "4", "script.py"],
            ["run", "--answer", "--fast", "--answer=", "--answer", "", "script.py"],
            ["run", "script.py", "--image", "ä=a=b.png", "--open=script.py", "--log", "log.txt", "--workdir", "."],
            ["run", "script.py", "--", "missing.png", "--fast", "--help"],
            ["run", "--plain-output", "--venv", ".", "script.py"],
            ["view"],
            ["view", "missing.png"],
            ["bench", "crop"],
            ["bench", "crop", "--json", "figures.json"],
            ["bench", "--json=figures.json"],
        ]:
            with self.subTest(arguments):
                self.set("unknown")  # stops the call after its arguments were accepted
                self.assert_says(self.call(*arguments), "missing packages")

    def test_help_is_printed(self):
        for arguments in ([], ["help"], ["--help"], ["-h"]):
            outcome = self.call(*arguments)
            self.assertEqual((outcome.status, outcome.errors), (0, ""), outcome)
            self.assertTrue(outcome.output.startswith("Usage: ./vantrel COMMAND"), outcome)
            self.assertIn("./vantrel run --show examples/first_light.py", outcome.output)
        self.assert_nothing_done()

    def test_the_help_of_run_and_view_needs_no_program(self):
        for arguments in (["run", "--help"], ["run", "-h"], ["run", "missing.py", "--help"], ["view", "--help"]):
            outcome = self.call(*arguments)
            self.assertEqual((outcome.status, outcome.errors), (0, ""), outcome)
            self.assertTrue(outcome.output.startswith(f"Usage: vantrel {arguments[0]} "), outcome)
            self.assertNotIn('R"', outcome.output)
        run = self.call("run", "--help").output
        for option in ("--open FILE", "--image NAME=FILE", "--show  ", "--worker  ", "--log FILE"):
            self.assertIn(option, run)
        self.assertIn("Exit status", run)
        self.assert_nothing_done()

    def test_the_version_is_that_of_the_project(self):
        outcome = self.call("--version")
        self.assertEqual((outcome.status, outcome.output, outcome.errors), (0, "vantrel 7.8.9\n", ""))
        self.assert_nothing_done()

    def test_a_mistyped_preset_is_refused_with_the_presets_there_are(self):
        for command in (["run", "script.py"], ["build"], ["test"], ["view"]):
            outcome = self.call(*command, VANTREL_PRESET="relaese")
            self.assert_refused(outcome, '"relaese"', "release", "debug", "asan")
        self.assertFalse((self.checkout / "build-relaese").exists())

    def test_windows_without_a_display_are_refused_with_a_hint(self):
        del self.environment["QT_QPA_PLATFORM"]
        for name in ("DISPLAY", "WAYLAND_DISPLAY"):
            self.environment.pop(name, None)
        for arguments in (["view"], ["run", "--show", "script.py"], ["run", "script.py", "--show"]):
            self.assert_refused(self.call(*arguments), "no display", "ssh -X", "xvfb-run")
        self.set("unknown")
        for arguments, variables in [(["view"], {"DISPLAY": ":0"}), (["view"], {"WAYLAND_DISPLAY": "w"}),
                                     (["view"], {"QT_QPA_PLATFORM": "offscreen"}), (["run", "script.py"], {})]:
            self.assert_says(self.call(*arguments, **variables), "missing packages")

    def test_another_system_is_refused(self):
        # A PATH with everything but dpkg-query.
        for name in ("bash", "sed", "grep", "paste", "sort", "tr", "find", "readlink", "env"):
            (self.bin / name).symlink_to(subprocess.check_output(["which", name], text=True).strip())
        (self.bin / "dpkg-query").unlink()
        self.assert_refused(self.call("run", "script.py", PATH=str(self.bin)), "not a Debian system", "Qt 6.4", "CMake")

    def test_the_texts_of_the_help_and_the_checks_know_the_same_options(self):
        """Each option of the program that takes a value is asked for it."""
        usage = self.call("run", "--help").output
        options = re.findall(r"^  --([a-z-]+) ([A-Z=]*)", usage, flags=re.M)
        self.assertGreater(len(options), 8)
        self.set("unknown")
        for name, value in options:
            outcome = self.call("run", "script.py", f"--{name}")
            if value:
                self.assert_refused(outcome, "Missing value", name)
            else:
                self.assert_says(outcome, "missing packages")


class PythonRoot(checkout.CheckoutTest):
    def setUp(self):
        super().setUp()
        self.uninstall()

    def test_a_root_that_cannot_be_used_is_refused_before_anything_is_installed(self):
        for root, words in [
            (self.folder / "nowhere", ["nowhere", "not a folder"]),
            (self.state, ["no Python headers"]),
            (self.python("3.7", "old"), ["Python 3.7", "cannot be used"]),
            (self.python("3.99", "new"), ["Python 3.99", "cannot be used"]),
            (self.python("3.8", "static", library=False), ["Python 3.8", "no shared library"]),
        ]:
            for command in (["run", "script.py"], ["test"], ["build"]):
                outcome = self.call(*command, VANTREL_PYTHON_ROOT=str(root))
                self.assert_refused(outcome, "VANTREL_PYTHON_ROOT", "3.8", *words)

    def test_another_root_is_configured_and_needs_no_distribution_python(self):
        root = self.python("3.8", "other")
        outcome = self.call("run", "script.py", VANTREL_PYTHON_ROOT=str(root))
        self.assertEqual(outcome.status, 0, outcome)
        self.assertIn(f"VANTREL_PYTHON_ROOT:PATH={root}\n", (self.checkout / "build/CMakeCache.txt").read_text())
        self.assertNotIn("python3-dev", "".join(self.calls("apt-get")))

    def test_a_build_folder_keeps_its_python_until_another_is_given(self):
        first, second = self.python("3.8", "first"), self.python("3.11", "second")
        cache = self.checkout / "build/CMakeCache.txt"
        for variables, expected in [({"VANTREL_PYTHON_ROOT": str(first)}, first), ({}, first),
                                    ({"VANTREL_PYTHON_ROOT": str(second)}, second), ({}, second)]:
            outcome = self.call("run", "script.py", **variables)
            self.assertEqual(outcome.status, 0, outcome)
            self.assertIn(f"VANTREL_PYTHON_ROOT:PATH={expected}\n", cache.read_text())

    def test_a_distribution_python_that_cannot_be_used_is_refused_before_the_download(self):
        self.set("python-version", "3.99.1-1\n")
        outcome = self.call("run", "script.py")
        self.assertEqual(outcome.status, 2, outcome)
        self.assert_says(outcome, "Python 3.99", "VANTREL_PYTHON_ROOT")
        self.assert_nothing_done()


if __name__ == "__main__":
    unittest.main()
