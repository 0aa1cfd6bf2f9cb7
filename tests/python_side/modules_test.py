import importlib
import os
import pathlib
import sys
import tempfile
import unittest

from vantrel_viewer import modules


class ChangedModules(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name).resolve()
        self.addCleanup(setattr, sys, "path", list(sys.path))
        self.addCleanup(setattr, sys, "dont_write_bytecode", sys.dont_write_bytecode)
        known = set(sys.modules)
        self.addCleanup(lambda: [sys.modules.pop(name) for name in set(sys.modules) - known])
        sys.path.insert(0, str(self.folder))
        sys.dont_write_bytecode = True
        self.time = 1_000_000_000

    def write(self, name, source):
        file = self.folder / name
        file.parent.mkdir(exist_ok=True)
        file.write_text(source)
        self.time += 1
        os.utime(file, (self.time, self.time))
        importlib.invalidate_caches()

    def run_with(self, *names):
        """Import modules in a run. Returns them."""
        modules.forget_changed(str(self.folder))
        found = [importlib.import_module(name) for name in names]
        modules.remember(str(self.folder))
        return found

    def test_a_module_stays_while_its_file_stays(self):
        self.write("helper_a.py", "value = 1\n")
        first, = self.run_with("helper_a")
        self.assertIs(self.run_with("helper_a")[0], first)

    def test_a_changed_module_is_read_again(self):
        self.write("helper_b.py", "value = 1\n")
        self.run_with("helper_b")
        self.write("helper_b.py", "value = 2\n")
        self.assertEqual(self.run_with("helper_b")[0].value, 2)

    def test_a_module_that_changed_while_the_run_lasted_is_read_again(self):
        self.write("helper_c.py", "value = 1\n")
        modules.forget_changed(str(self.folder))
        importlib.import_module("helper_c")
        (self.folder / "helper_c.py").write_text("value = 3\n")
        modules.remember(str(self.folder))
        importlib.invalidate_caches()
        self.assertEqual(self.run_with("helper_c")[0].value, 3)

    def test_modules_that_use_a_changed_one_are_read_again(self):
        self.write("base_d.py", "value = 1\n\ndef give():\n    return value\n")
        self.write("by_module_d.py", "import base_d\n")
        self.write("by_name_d.py", "from base_d import give\n")
        self.write("over_two_d.py", "import by_name_d\n")
        self.write("other_d.py", "")
        names = ["by_module_d", "by_name_d", "over_two_d", "other_d"]
        before = self.run_with(*names)
        self.write("base_d.py", "value = 2\n\ndef give():\n    return value\n")
        after = self.run_with(*names)
        self.assertEqual(after[1].give(), 2)
        self.assertEqual([one is two for one, two in zip(before, after)], [False, False, False, True])

    def test_a_package_is_read_again_as_a_whole(self):
        self.write("parts_e/__init__.py", "from . import one\n")
        self.write("parts_e/one.py", "value = 1\n")
        self.run_with("parts_e")
        self.write("parts_e/one.py", "value = 2\n")
        self.assertEqual(self.run_with("parts_e")[0].one.value, 2)

    def test_a_removed_module_is_forgotten(self):
        self.write("helper_f.py", "")
        self.run_with("helper_f")
        (self.folder / "helper_f.py").unlink()
        importlib.invalidate_caches()
        with self.assertRaises(ImportError):
            self.run_with("helper_f")

    def test_modules_elsewhere_and_installed_ones_stay(self):
        self.write("site-packages/installed_g.py", "value = 1\n")
        sys.path.insert(0, str(self.folder / "site-packages"))
        first, = self.run_with("installed_g")
        self.write("site-packages/installed_g.py", "value = 2\n")
        self.assertIs(self.run_with("installed_g")[0], first)
        self.assertIs(sys.modules["unittest"], unittest)


if __name__ == "__main__":
    unittest.main()
