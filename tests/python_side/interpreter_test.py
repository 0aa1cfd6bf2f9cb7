import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

import vantrel_viewer
from vantrel_viewer import interpreter

VERSION = "{}.{}".format(*sys.version_info)


class Interpreter(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.prefix = folder.name
        for name in ("path", "prefix", "exec_prefix", "executable", "_base_executable"):
            value = getattr(sys, name)
            self.addCleanup(setattr, sys, name, list(value) if isinstance(value, list) else value)

    def make(self, name, mode=0o755):
        file = pathlib.Path(self.prefix, "bin", name)
        file.parent.mkdir(exist_ok=True)
        file.write_text("#!/bin/sh\n")
        file.chmod(mode)
        return str(file)

    def test_the_most_exact_name_wins(self):
        self.assertEqual(os.path.basename(interpreter.find(self.prefix)), "no-interpreter")
        for name in ("python", "python3", f"python{VERSION}"):
            file = self.make(name)
            self.assertEqual(interpreter.find(self.prefix), file)

    def test_what_cannot_be_executed_does_not_count(self):
        pathlib.Path(self.prefix, "bin", "python3").mkdir(parents=True)
        if os.getuid() != 0:
            self.make(f"python{VERSION}", 0o644)
        self.assertEqual(os.path.basename(interpreter.find(self.prefix)), "no-interpreter")

    def test_the_program_that_stands_for_none_says_so(self):
        done = subprocess.run([interpreter.find(self.prefix), "-c", "pass"], stderr=subprocess.PIPE)
        self.assertEqual(done.returncode, 127)
        self.assertIn(b"there is no interpreter for the Python of this viewer", done.stderr)

    def test_the_packages_of_an_environment_stand_before_those_of_the_system(self):
        packages = os.path.join(self.prefix, "lib", f"python{VERSION}", "site-packages")
        linked = os.path.join(self.prefix, "linked")
        os.makedirs(packages)
        os.mkdir(linked)
        pathlib.Path(packages, "more.pth").write_text(linked + "\n")
        sys.path[:] = ["/first", "/usr/lib/python", "/usr/lib/python/site-packages"]
        interpreter.use_environment(self.prefix)
        self.assertEqual(sys.path, ["/first", "/usr/lib/python", packages, linked, "/usr/lib/python/site-packages"])
        self.assertEqual((sys.prefix, sys.exec_prefix), (self.prefix, self.prefix))

    def test_the_interpreter_of_an_environment_is_used_if_it_is_the_same_one(self):
        sys._base_executable = interpreter.find(sys.base_prefix)
        os.makedirs(os.path.join(self.prefix, "bin"))
        link = os.path.join(self.prefix, "bin", "python3")
        os.symlink(sys._base_executable, link)
        interpreter.use_environment(self.prefix)
        self.assertEqual(sys.executable, link)

    def test_the_interpreter_of_another_build_is_not_used(self):
        sys.executable = sys._base_executable = interpreter.find(sys.base_prefix)
        self.make("python3")
        interpreter.use_environment(self.prefix)
        self.assertEqual(sys.executable, sys._base_executable)

    def test_children_find_a_module_that_says_why_it_cannot_be_used(self):
        interpreter.prepare("")
        source = "import vantrel\ntry:\n    vantrel.wait(1)\nexcept RuntimeError as error:\n    print(error)\n"
        done = subprocess.run([sys.executable, "-c", source], stdout=subprocess.PIPE, check=True,
                              env={**os.environ, "PYTHONPATH": os.pathsep.join(sys.path)})
        self.assertEqual(done.stdout.decode(), "vantrel.wait can be used only by a script in the viewer, not in a process that a "
                         "script has started\n")

    def test_children_can_name_types_but_not_use_them(self):
        interpreter.prepare("")
        source = ("from typing import Optional\n"
                  "import vantrel\n"
                  "def measure(image: vantrel.Image, camera: Optional[vantrel.Camera] = None) -> vantrel.Graph: pass\n"
                  "print(hasattr(vantrel.Image, '__length_hint__'))\n"
                  "for use in (vantrel.Image, lambda: vantrel.Camera(1), lambda: vantrel.Graph.add_series):\n"
                  "    try:\n"
                  "        use()\n"
                  "    except RuntimeError as error:\n"
                  "        print(str(error).split()[0])\n")
        done = subprocess.run([sys.executable, "-c", source], stdout=subprocess.PIPE, check=True,
                              env={**os.environ, "PYTHONPATH": os.pathsep.join(sys.path)})
        self.assertEqual(done.stdout.decode(), "False\nvantrel.Image\nvantrel.Camera\nvantrel.Graph.add_series\n")

    def test_the_modules_stand_in_one_folder(self):
        self.assertEqual(os.path.dirname(interpreter.__file__), os.path.dirname(vantrel_viewer.__file__))


if __name__ == "__main__":
    unittest.main()
