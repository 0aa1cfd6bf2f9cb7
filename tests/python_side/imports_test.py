import subprocess
import sys
import unittest

START = """
import sys
before = set(sys.modules)
import vantrel_viewer.interpreter, vantrel_viewer.leaving, vantrel_viewer.nested, vantrel_viewer.running
import vantrel_viewer.signals
print(*(set(sys.modules) - before))
"""

CHANGED = """
import sys
import vantrel_imports
if sys.argv[1] == "before":
    import colorsys
vantrel_imports.when_imported("colorsys", lambda module: setattr(module, "ONE_THIRD", module.ONE_THIRD * 2))
import colorsys
print(colorsys.ONE_THIRD * 3, colorsys.__name__, colorsys.hls_to_rgb(0, 0.5, 0))
"""


def output(program, *arguments):
    done = subprocess.run([sys.executable, "-B", "-c", program, *arguments], stdout=subprocess.PIPE, timeout=60,
                          universal_newlines=True, check=True)
    return done.stdout.strip()


class Start(unittest.TestCase):
    def test_a_start_imports_no_module_that_takes_long(self):
        imported = set(output(START).split())
        self.assertIn("vantrel_viewer.running", imported)
        self.assertFalse(imported & {"enum", "inspect", "linecache", "re", "signal", "tokenize", "traceback", "typing"})


class WhenImported(unittest.TestCase):
    def test_a_module_is_changed_once_whether_it_is_imported_before_or_after(self):
        for time in ("before", "after"):
            self.assertEqual(output(CHANGED, time), "2.0 colorsys (0.5, 0.5, 0.5)")


if __name__ == "__main__":
    unittest.main()
