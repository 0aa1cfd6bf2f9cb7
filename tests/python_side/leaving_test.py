"""The ends of processes. Each case runs in a program of its own, since it ends one."""
import subprocess
import sys
import unittest

PREPARED = """
import atexit, ctypes, os, sys, threading, time
from vantrel_viewer import leaving

class Collector:
    def __init__(self): self.text = ""
    def write(self, text): self.text += text
    def flush(self): pass

@ctypes.PYFUNCTYPE(None, ctypes.py_object)
def copy_errors(kind): print("collector", kind.__name__, flush=True)

@ctypes.CFUNCTYPE(None)
def write_errors(): os.write(1, b"written\\n")

def address(function): return ctypes.cast(function, ctypes.c_void_p).value

sys.stderr = Collector()
leaving.prepare(address(copy_errors), address(write_errors))
"""


def run(source):
    """Run a program. Returns its output, its errors and its status."""
    done = subprocess.run([sys.executable, "-B", "-c", PREPARED + source], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                          timeout=60)
    return done.stdout.decode(), done.stderr.decode(), done.returncode


class Leaving(unittest.TestCase):
    def test_os_exit_writes_what_is_collected(self):
        self.assertEqual(run("os._exit(3)\n"), ("collector Collector\nwritten\n", "", 3))

    def test_a_refused_os_exit_writes_nothing(self):
        out, _, status = run("try:\n    os._exit('no')\nexcept TypeError:\n    pass\n")
        self.assertEqual((out, status), ("collector Collector\n", 0))

    def test_a_child_writes_its_errors_at_once(self):
        out, errors, _ = run("child = os.fork()\n"
                             "print(leaving.is_child(), file=sys.stderr)\n"
                             "if child:\n    os.waitpid(child, 0)\n    os.write(1, sys.stderr.text.encode())\n"
                             "else:\n    leaving.leave_child(0)\n")
        self.assertEqual((out, errors), ("collector Collector\nwritten\nFalse\n", "True\n"))

    def test_a_stream_of_the_scripts_own_stays(self):
        out, errors, _ = run("import io\nsys.stderr = io.StringIO()\n"
                             "child = os.fork()\nprint('kept', file=sys.stderr)\n"
                             "if child:\n    os.waitpid(child, 0)\nelse:\n    leaving.leave_child(0)\n")
        self.assertEqual(errors, "")

    def test_leaving_a_child_waits_for_threads_and_calls_exit_functions(self):
        out, _, _ = run("child = os.fork()\n"
                        "if child:\n    print('status', os.waitpid(child, 0)[1] >> 8)\n"
                        "else:\n"
                        "    atexit.register(os.write, 1, b'at exit\\n')\n"
                        "    threading.Timer(0.2, os.write, (1, b'thread\\n')).start()\n"
                        "    leaving.leave_child(300)\n")
        self.assertEqual(out, "collector Collector\nthread\nat exit\nwritten\nstatus 44\n")


if __name__ == "__main__":
    unittest.main()
