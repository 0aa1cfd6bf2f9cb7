"""Tests of python/vantrel_viewer by itself, without a viewer. Argument: the folder python/."""
import contextlib
import ctypes
import io
import os
import signal
import sys
import unittest


@ctypes.PYFUNCTYPE(None, ctypes.c_int, ctypes.py_object)
def count(number, frame):
    calls.append((number, frame))


@ctypes.PYFUNCTYPE(ctypes.c_bool)
def again():
    return answer


calls = []
answer = False


def address(function):
    return ctypes.cast(function, ctypes.c_void_p).value


class HandlePulses(unittest.TestCase):
    def setUp(self):
        vantrel_viewer._handlers.clear()
        calls.clear()

    def tearDown(self):
        vantrel_viewer._raise_again = None

    def test_the_function_gets_the_number_and_the_frame(self):
        vantrel_viewer.handle_pulses(signal.SIGURG, address(count), address(again))
        os.kill(os.getpid(), signal.SIGURG)
        number, frame = calls[0]
        self.assertEqual(number, signal.SIGURG)
        self.assertIs(frame.f_code, sys._getframe().f_code)

    def test_a_second_call_puts_the_same_handler_back(self):
        vantrel_viewer.handle_pulses(signal.SIGURG, address(count), address(again))
        first = signal.getsignal(signal.SIGURG)
        signal.signal(signal.SIGURG, signal.SIG_IGN)
        vantrel_viewer.handle_pulses(signal.SIGURG, address(count), address(again))
        self.assertIs(signal.getsignal(signal.SIGURG), first)


class ReportError(unittest.TestCase):
    def report(self, error):
        """What the report writes to sys.stdout and sys.stderr."""
        out, errors = io.StringIO(), io.StringIO()
        with contextlib.redirect_stdout(out), contextlib.redirect_stderr(errors):
            vantrel_viewer.report_error(type(error), error, None)
        return out.getvalue(), errors.getvalue()

    def test_a_status_or_a_text_is_said(self):
        self.assertEqual(self.report(SystemExit()), ("The script has ended with exit status 0.\n", ""))
        self.assertEqual(self.report(SystemExit(0)), ("The script has ended with exit status 0.\n", ""))
        self.assertEqual(self.report(SystemExit(3)), ("", "The script has ended with exit status 3.\n"))
        self.assertEqual(self.report(SystemExit("a text")), ("", "a text\n"))
        self.assertEqual(self.report(SystemExit("")), ("", "\n"))

    def test_an_interrupt_is_said_unless_it_is_raised_again(self):
        global answer
        vantrel_viewer.handle_pulses(signal.SIGURG, address(count), address(again))
        self.assertEqual(self.report(KeyboardInterrupt()), ("", "KeyboardInterrupt\n"))
        answer = True
        self.assertEqual(self.report(KeyboardInterrupt()), ("", ""))
        vantrel_viewer._raise_again = None

    def test_other_errors_look_as_always(self):
        self.assertEqual(self.report(ValueError("no")), ("", "ValueError: no\n"))


if __name__ == "__main__":
    sys.path.insert(0, sys.argv.pop(1))
    import vantrel_viewer

    unittest.main()
