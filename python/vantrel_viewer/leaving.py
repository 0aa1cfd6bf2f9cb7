"""The ends of the process that only Python sees: `os._exit`, and the processes that a script forks."""
from __future__ import annotations

import atexit
import ctypes
import io
import os
import sys
import warnings

from . import TYPE_CHECKING, signals

if TYPE_CHECKING:
    from typing import Any, Callable

__all__ = ["is_child", "leave_child", "prepare"]

_collector: Any = None  # the type of the object that collects what a script writes to sys.stderr
_is_child = False


def prepare(copy_errors: int, write_errors: int) -> None:
    """Let nothing that a script has written to sys.stderr be lost.

    To be called once, while sys.stderr is redirected. The arguments are addresses of C functions of the viewer. The
    first takes a type and keeps a copy of what is written to sys.stderr, if that is an object of this type. The second
    writes the copy to the process's standard error.
    """
    global _collector
    _collector = type(sys.stderr)
    ctypes.PYFUNCTYPE(None, ctypes.py_object)(copy_errors)(_collector)
    os._exit = _writing_before(os._exit, ctypes.CFUNCTYPE(None)(write_errors))  # type: ignore[assignment]
    os.register_at_fork(after_in_child=_begin_child)
    signals.name_defaults()
    if sys.version_info >= (3, 12):
        # The threads are the viewer's own, and hold no lock that a child needs.
        warnings.filterwarnings("ignore", r"This process \(pid=\d+\) is multi-threaded", DeprecationWarning)


def is_child() -> bool:
    """Whether this is a process that a script has forked."""
    return _is_child


def leave_child(status: int) -> None:
    """End a forked child as the interpreter would at the end of a script. Does not return."""
    threading = sys.modules.get("threading")
    if threading:
        threading._shutdown()  # waits for threads
    atexit._run_exitfuncs()
    for stream in {sys.stdout, sys.stderr, sys.__stdout__, sys.__stderr__}:
        if stream is not None:
            stream.flush()
    os._exit(status & 0xFF)


def _writing_before(leave: Callable[[int], None], write: Callable[[], None]) -> Callable[[int], None]:
    def _exit(status: int) -> None:
        if isinstance(status, int):  # otherwise the process goes on
            write()
        leave(status)

    _exit.__doc__ = leave.__doc__
    return _exit


def _begin_child() -> None:
    """In a forked child nobody reads what is collected, so the text goes to the process's standard error at once."""
    global _is_child
    _is_child = True
    if type(sys.stderr) is _collector:
        raw = io.FileIO(2, "w", closefd=False)
        sys.stderr = io.TextIOWrapper(raw, "utf-8", "backslashreplace", newline="", write_through=True)
