import ctypes
import os
import signal
import sys
import unittest

from vantrel_viewer import signals


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
        signals._handlers.clear()
        calls.clear()
        self.addCleanup(setattr, signals, "_raise_again", None)

    def test_the_viewer_is_asked_whether_it_raises_an_interrupt_again(self):
        global answer
        self.assertFalse(signals.is_raised_again())
        signals.handle_pulses(signal.SIGURG, address(count), address(again))
        for answer in (False, True):
            self.assertIs(signals.is_raised_again(), answer)

    def test_the_function_gets_the_number_and_the_frame(self):
        signals.handle_pulses(signal.SIGURG, address(count), address(again))
        os.kill(os.getpid(), signal.SIGURG)
        number, frame = calls[0]
        self.assertEqual(number, signal.SIGURG)
        self.assertIs(frame.f_code, sys._getframe().f_code)

    def test_a_second_call_puts_the_same_handler_back(self):
        signals.handle_pulses(signal.SIGURG, address(count), address(again))
        first = signal.getsignal(signal.SIGURG)
        signal.signal(signal.SIGURG, signal.SIG_IGN)
        signals.handle_pulses(signal.SIGURG, address(count), address(again))
        self.assertIs(signal.getsignal(signal.SIGURG), first)


if __name__ == "__main__":
    unittest.main()
