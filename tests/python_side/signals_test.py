import ctypes
import faulthandler
import os
import signal
import sys
import tempfile
import unittest
from unittest import mock

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


class NameDefaults(unittest.TestCase):
    def test_a_handler_of_the_host_is_named_the_default_and_stays(self):
        real, set_handlers = signals._signal.getsignal, []

        def getsignal(number):  # the interpreter tells None for handlers that were there before it
            return None if number == signal.SIGUSR1 and not set_handlers else real(number)

        with tempfile.TemporaryFile() as file:
            faulthandler.register(signal.SIGUSR1, file)  # a handler in C
            with mock.patch("_signal.getsignal", getsignal):
                signals.name_defaults()
                set_handlers.append(signal.SIGUSR1)
                self.assertIs(signal.getsignal(signal.SIGUSR1), signal.SIG_DFL)
            os.kill(os.getpid(), signal.SIGUSR1)
            faulthandler.unregister(signal.SIGUSR1)
            file.seek(0)
            self.assertIn(b"most recent call first", file.read())

    def test_other_handlers_are_left_alone(self):
        before = {number: signal.getsignal(number) for number in signal.valid_signals()}
        signals.name_defaults()
        self.assertEqual({number: signal.getsignal(number) for number in signal.valid_signals()}, before)


if __name__ == "__main__":
    unittest.main()
