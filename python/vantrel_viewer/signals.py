"""Connects signals of the process with the viewer."""
from __future__ import annotations

import _signal  # `signal` builds enumerations, which takes long
import ctypes

from . import TYPE_CHECKING

if TYPE_CHECKING:
    from typing import Any, Dict

__all__ = ["handle_pulses", "is_raised_again", "name_defaults"]

_handlers: Dict[int, Any] = {}
_raise_again: Any = None


def handle_pulses(number: int, address: int, again: int) -> None:
    """Let the C function at an address handle a signal.

    The function takes the signal's number and the current frame. It may set an error, which the interpreter then
    raises in the code that the signal has interrupted. A C function has no frame, so tracebacks do not show it.
    The C function at the address `again` tells whether an interrupt that no code has caught is raised once more.
    """
    global _raise_again
    _raise_again = ctypes.PYFUNCTYPE(ctypes.c_bool)(again)
    if number not in _handlers:  # the interpreter may call the object at any time from now on, so it is kept
        _handlers[number] = ctypes.PYFUNCTYPE(None, ctypes.c_int, ctypes.py_object)(address)
    _signal.signal(number, _handlers[number])


def is_raised_again() -> bool:
    """Whether the viewer raises an interrupt once more, because it has left a function that an event loop has called."""
    return bool(_raise_again and _raise_again())


def name_defaults() -> None:
    """Let scripts see the default action of the signals that the viewer handles in C.

    Otherwise `signal.signal` returns None for them, and a script cannot put back what it has replaced. The viewer's
    handlers stay until a script replaces them.
    """
    library = ctypes.CDLL(None)
    for number in _signal.valid_signals():
        if _signal.getsignal(number) is None:
            action = ctypes.create_string_buffer(512)  # more than a struct sigaction
            library.sigaction(int(number), None, action)
            _signal.signal(number, _signal.SIG_DFL)
            library.sigaction(int(number), action, None)
