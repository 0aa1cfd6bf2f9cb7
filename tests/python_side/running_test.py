import contextlib
import ctypes
import io
import os
import pathlib
import sys
import tempfile
import unittest

from vantrel_viewer import leaving, running


class RunFile(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name).resolve()
        self.namespace = {"__name__": "__main__", "__loader__": "former"}

    def run_script(self, source, arguments=(), stays=True):
        """Run a script. Returns its outcome and what it has written to sys.stdout and sys.stderr."""
        file = self.folder / "script.py"
        file.write_text(source, "utf-8")
        outcome = ctypes.c_int(-1)
        out, errors = io.StringIO(), io.StringIO()
        with contextlib.redirect_stdout(out), contextlib.redirect_stderr(errors):
            running.run_file(str(file), "shown.py", list(arguments), stays, ctypes.addressof(outcome), self.namespace)
        return outcome.value, out.getvalue(), errors.getvalue()

    def run_text(self, text, stays=True):
        """Run a text without a file. Returns its outcome and what it has written to sys.stdout and sys.stderr."""
        outcome = ctypes.c_int(-1)
        out, errors = io.StringIO(), io.StringIO()
        with contextlib.redirect_stdout(out), contextlib.redirect_stderr(errors):
            running.run_text(text, "Untitled 1", str(self.folder / "origin.py"), stays, ctypes.addressof(outcome),
                             self.namespace)
        return outcome.value, out.getvalue(), errors.getvalue()

    def test_a_text_runs_where_its_origin_stands(self):
        outcome, out, errors = self.run_text("import sys\nprint(__file__, __name__, sys.argv, sys.path[0], sep='\\n')\n")
        self.assertEqual(out.splitlines(),
                         [str(self.folder / "origin.py"), "__main__", "['Untitled 1']", str(self.folder)])
        self.assertEqual((outcome, errors), (running.RAN, ""))

    def test_an_error_of_a_text_shows_its_lines(self):
        outcome, _, errors = self.run_text("def work():\n    raise ValueError('no')\nwork()\n")
        self.assertEqual(outcome, running.FAILED)
        self.assertEqual(errors, "Traceback (most recent call last):\n"
                                 '  File "Untitled 1", line 3, in <module>\n    work()\n'
                                 '  File "Untitled 1", line 2, in work\n    raise ValueError(\'no\')\n'
                                 "ValueError: no\n")
        outcome, _, errors = self.run_text("a = 1\nb = = 2\n")
        self.assertEqual(outcome, running.FAILED)
        self.assertIn('  File "Untitled 1", line 2\n    b = = 2\n', errors)
        self.assertIn("SyntaxError: invalid syntax\n", errors)
        self.assertNotIn("vantrel_viewer", errors)

    def test_a_text_may_end_itself(self):
        self.assertEqual(self.run_text("raise SystemExit(3)\n"),
                         (running.LEFT, "", "The script has ended with exit status 3.\n"))

    def test_a_script_finds_itself_and_its_arguments(self):
        source = "import sys\nprint(__file__, __name__, __cached__, __loader__.path, sys.argv, sys.path[0], sep='\\n')\n"
        file = str(self.folder / "script.py")
        outcome, out, errors = self.run_script(source, ["a", "b c"])
        self.assertEqual(out.splitlines(),
                         [file, "__main__", "None", file, "['shown.py', 'a', 'b c']", str(self.folder)])
        self.assertEqual((outcome, errors), (running.RAN, ""))

    def test_what_a_run_changes_is_put_back(self):
        before = sys.argv, sys.excepthook, list(sys.path)
        self.run_script("import sys\nsys.argv = []\nsys.excepthook = None\n")
        self.assertEqual((sys.argv, sys.excepthook, sys.path), before)
        self.assertEqual(self.namespace["__loader__"], "former")

    def test_a_folder_that_the_script_has_taken_out_is_not_missed(self):
        before = list(sys.path)
        self.assertEqual(self.run_script("import sys\ndel sys.path[0]\n")[0], running.RAN)
        self.assertEqual(sys.path, before)

    def test_an_error_is_written_without_the_frames_of_the_viewer(self):
        outcome, _, errors = self.run_script("def work():\n    raise ValueError('no')\nwork()\n")
        self.assertEqual(outcome, running.FAILED)
        self.assertEqual(errors.splitlines()[0], "Traceback (most recent call last):")
        self.assertNotIn("vantrel_viewer", errors)
        self.assertIn(f'File "{self.folder}/script.py", line 2, in work', errors)

    def test_an_interrupt_is_told_from_an_error(self):
        self.assertEqual(self.run_script("raise KeyboardInterrupt\n")[0], running.INTERRUPTED)

    def test_an_exit_ends_only_the_script_where_the_viewer_stays(self):
        for code, out, errors in [("", "The script has ended with exit status 0.\n", ""),
                                  ("0", "The script has ended with exit status 0.\n", ""),
                                  ("False", "The script has ended with exit status 0.\n", ""),
                                  ("3", "", "The script has ended with exit status 3.\n"),
                                  ("'a text'", "", "a text\n"),
                                  ("''", "", "\n"),
                                  ("[1, 2]", "", "[1, 2]\n")]:
            with self.subTest(code=code):
                self.assertEqual(self.run_script(f"raise SystemExit({code})\n"), (running.LEFT, out, errors))

    def test_an_exit_leaves_where_the_viewer_does_not_stay(self):
        for code, status in [("", 0), ("7", 7), ("'a text'", 1)]:
            with self.subTest(code=code), self.assertRaises(SystemExit) as raised:
                self.run_script(f"raise SystemExit({code})\n", stays=False)
            self.assertEqual(raised.exception.code, status)

    def test_an_exit_in_an_excepthook_counts(self):
        source = "import sys\ndef hook(*_):\n    sys.exit(4)\nsys.excepthook = hook\n1/0\n"
        self.assertEqual(self.run_script(source), (running.LEFT, "", "The script has ended with exit status 4.\n"))

    def test_an_error_in_an_excepthook_is_shown_with_the_first_one(self):
        outcome, _, errors = self.run_script("import sys\nsys.excepthook = lambda *_: 1/0\nraise ValueError('first')\n")
        self.assertEqual(outcome, running.FAILED)
        self.assertTrue(errors.startswith("Error in sys.excepthook:\nTraceback"), errors)
        self.assertIn("\nOriginal exception was:\nTraceback", errors)
        self.assertTrue(errors.endswith("ValueError: first\n"), errors)

    def test_a_stream_that_the_script_has_broken_hurts_nobody(self):
        self.assertEqual(self.run_script("import sys\nsys.stderr = None\nraise SystemExit('text')\n")[0], running.LEFT)

    def test_encodings_are_those_that_the_file_declares(self):
        file = self.folder / "latin.py"
        file.write_bytes("# -*- coding: latin-1 -*-\nprint('é')\n".encode("latin-1"))
        out = io.StringIO()
        with contextlib.redirect_stdout(out):
            running.run_file(str(file), "latin.py", [], True, ctypes.addressof(ctypes.c_int()), self.namespace)
        self.assertEqual(out.getvalue(), "é\n")

    def test_the_recursion_limit_is_that_of_a_script_at_the_bottom(self):
        source = ("import sys\nsys.setrecursionlimit(200)\nprint(sys.getrecursionlimit())\n"
                  "def depth():\n    try:\n        return 1 + depth()\n    except RecursionError:\n        return 1\n"
                  "print(depth())\n")
        before = sys.getrecursionlimit()
        _, out, _ = self.run_script(source)
        limit, depth = map(int, out.split())
        self.assertEqual(limit, 200)
        self.assertGreater(depth, 190)
        self.assertEqual(sys.getrecursionlimit(), before)

    def test_listings_of_the_stack_end_with_the_script(self):
        source = "import traceback\nprint(len(traceback.extract_stack()), len(traceback.format_stack()))\n"
        self.assertEqual(self.run_script(source)[1], "1 1\n")

    def test_a_forked_child_is_left_by_an_exit(self):
        child = os.fork()
        if child == 0:
            leaving._is_child = True
            self.run_script("raise SystemExit(5)\n")
            os._exit(99)
        self.assertEqual(os.waitpid(child, 0)[1] >> 8, 5)


if __name__ == "__main__":
    unittest.main()
