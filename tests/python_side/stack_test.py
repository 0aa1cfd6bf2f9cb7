import inspect
import subprocess
import sys
import traceback
import unittest

from vantrel_viewer import stack


class WalkStack(unittest.TestCase):
    def test_it_counts_frames_like_the_interpreters_own(self):
        def walk(function):
            return [frame.f_code.co_name for frame, _ in function(None)]

        self.assertEqual(walk(traceback.walk_stack), walk(traceback.walk_stack.__wrapped__))

    def test_it_looks_like_the_interpreters_own(self):
        self.assertEqual(traceback.walk_stack.__module__, "traceback")
        self.assertEqual(inspect.signature(traceback.walk_stack), inspect.signature(traceback.walk_stack.__wrapped__))

    def test_it_stops_at_the_viewers_frames(self):
        imports = "import traceback\n", "from vantrel_viewer import stack\n"
        for order in (imports, imports[::-1]):
            self.assert_it_stops("".join(order))

    def assert_it_stops(self, imports):
        program = (imports +
                   "own = compile('script()', stack.__file__, 'exec')\n"
                   "def script():\n"
                   "    print([frame.name for frame in traceback.extract_stack()])\n"
                   "exec(own)\n")
        done = subprocess.run([sys.executable, "-B", "-c", program], stdout=subprocess.PIPE, timeout=60)
        self.assertEqual(done.stdout, b"['script']\n")


class Strip(unittest.TestCase):
    def test_frames_of_the_viewer_are_taken_out_wherever_they_stand(self):
        import vantrel_qt
        program = compile("def call(function): function()", vantrel_qt.__file__, "exec")
        names = {}
        exec(program, names)
        try:
            names["call"](lambda: 1 // 0)
        except ZeroDivisionError as error:
            stack.strip(error)
            self.assertEqual([frame.name for frame in traceback.extract_tb(error.__traceback__)],
                             ["test_frames_of_the_viewer_are_taken_out_wherever_they_stand", "<lambda>"])


if __name__ == "__main__":
    unittest.main()
