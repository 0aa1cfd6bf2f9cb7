"""The viewer's own Python side. The viewer imports it before it runs the first script; it is not for scripts."""
import atexit
import ctypes
import io
import os
import signal
import sys
import warnings

__all__ = ["end_child", "handle_pulses", "prepare"]

_handlers = {}
_collector = None  # the type of the object that collects what a script writes to sys.stderr
_raise_again = None  # whether the viewer raises an interrupt again
_is_child = False
_has_failed = False  # a forked child, by an error that no code has caught


def prepare(copy_errors: int, write_errors: int) -> None:
    """Let nothing that a script has written to sys.stderr be lost, and no SystemExit end the viewer.

    To be called once, while sys.stderr is redirected. The arguments are addresses of C functions of the viewer. The
    first takes a type and keeps a copy of what is written to sys.stderr, if that is an object of this type. The second
    writes the copy to the process's standard error.
    """
    global _collector
    _collector = type(sys.stderr)
    ctypes.PYFUNCTYPE(None, ctypes.py_object)(copy_errors)(_collector)
    os._exit = _writing_before(os._exit, ctypes.CFUNCTYPE(None)(write_errors))
    os.register_at_fork(after_in_child=_begin_child)
    sys.excepthook = report_error
    if sys.version_info >= (3, 12):
        # The threads are the viewer's own, and hold no lock that a child needs.
        warnings.filterwarnings("ignore", r"This process \(pid=\d+\) is multi-threaded", DeprecationWarning)


def report_error(kind, error, trace):
    """Report an error that leaves a script, as sys.excepthook.

    SystemExit arrives here only where it ends a script and not the process.
    """
    global _has_failed
    # A function of the script that an event loop has called: the interrupt is for the code that runs the loop.
    if issubclass(kind, KeyboardInterrupt) and _raise_again and _raise_again():
        return
    if not issubclass(kind, SystemExit):
        _has_failed = True
        sys.__excepthook__(kind, error, trace)
        return
    code = getattr(error, "code", error)
    is_status = code is None or isinstance(code, int)
    status = (code or 0) if is_status else 1
    if not is_status:
        print(code, file=sys.stderr)
    if _is_child:
        _leave_child(status)
    if is_status:
        print(f"The script has ended with exit status {int(status)}.", file=sys.stderr if status else sys.stdout)


def end_child() -> None:
    """End a forked child that has come to the end of its script, as the interpreter would."""
    _leave_child(1 if _has_failed else 0)


def handle_pulses(number: int, address: int, again: int) -> None:
    """Let the C function at an address handle a signal.

    The function takes the signal's number and the current frame. It may set an error, which the interpreter then
    raises in the code that the signal has interrupted. A C function has no frame, so tracebacks do not show it.
    The C function at the address again tells whether an interrupt that no code has caught is raised once more.
    """
    global _raise_again
    _raise_again = ctypes.PYFUNCTYPE(ctypes.c_bool)(again)
    if number not in _handlers:  # the interpreter may call the object at any time from now on, so it is kept
        _handlers[number] = ctypes.PYFUNCTYPE(None, ctypes.c_int, ctypes.py_object)(address)
    signal.signal(number, _handlers[number])


def _writing_before(leave, write):
    def _exit(status):
        if isinstance(status, int):  # otherwise the process goes on
            write()
        leave(status)

    _exit.__doc__ = leave.__doc__
    return _exit


def _begin_child():
    """In a forked child nobody reads what is collected, so the text goes to the process's standard error at once."""
    global _is_child, _has_failed
    _is_child = True
    _has_failed = False
    if type(sys.stderr) is _collector:
        raw = io.FileIO(2, "w", closefd=False)
        sys.stderr = io.TextIOWrapper(raw, "utf-8", "backslashreplace", newline="", write_through=True)


def _leave_child(status):
    threading = sys.modules.get("threading")
    if threading:
        threading._shutdown()  # waits for threads, as the end of the interpreter does
    atexit._run_exitfuncs()
    for stream in {sys.stdout, sys.stderr, sys.__stdout__, sys.__stderr__} - {None}:
        stream.flush()
    os._exit(status & 0xFF)
