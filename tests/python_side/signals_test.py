import ctypes
import os
import signal
import sys
import unittest

from vantrel_viewer import signals


@ctypes.PYFUNCTYPE(None, ctypes.c_int, ctypes.py_object)
def count(number, frame):
    calls.append((number, frame))


calls = []


def address(function):
    return ctypes.cast(function, ctypes.c_void_p).value


class HandlePulses(unittest.TestCase):
    def setUp(self):
        signals._handlers.clear()
        calls.clear()

    def test_the_function_gets_the_number_and_the_frame(self):
        signals.handle_pulses(signal.SIGURG, address(count))
        os.kill(os.getpid(), signal.SIGURG)
        number, frame = calls[0]
        self.assertEqual(number, signal.SIGURG)
        self.assertIs(frame.f_code, sys._getframe().f_code)

    def test_a_second_call_puts_the_same_handler_back(self):
        signals.handle_pulses(signal.SIGURG, address(count))
        first = signal.getsignal(signal.SIGURG)
        signal.signal(signal.SIGURG, signal.SIG_IGN)
        signals.handle_pulses(signal.SIGURG, address(count))
        self.assertIs(signal.getsignal(signal.SIGURG), first)


if __name__ == "__main__":
    unittest.main()
