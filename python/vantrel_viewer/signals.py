"""Connects a signal of the process with the viewer."""
import ctypes
import signal
from typing import Any, Dict

__all__ = ["handle_pulses"]

_handlers: Dict[int, Any] = {}


def handle_pulses(number: int, address: int) -> None:
    """Let the C function at an address handle a signal.

    The function takes the signal's number and the current frame. It may set an error, which the interpreter then
    raises in the code that the signal has interrupted. A C function has no frame, so tracebacks do not show it.
    """
    if number not in _handlers:  # the interpreter may call the object at any time from now on, so it is kept
        _handlers[number] = ctypes.PYFUNCTYPE(None, ctypes.c_int, ctypes.py_object)(address)
    signal.signal(number, _handlers[number])
