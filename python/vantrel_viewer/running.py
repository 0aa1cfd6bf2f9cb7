"""Runs a script file the way Python itself runs one.

The viewer gives the plugin one line that calls `run_file`. The functions here stand between that line and the script, so
they keep themselves out of what the script and its user see: tracebacks, listings of the stack, the recursion limit.
"""
from __future__ import annotations

import ctypes
import os
import sys

from . import TYPE_CHECKING, ends, errors, modules, nested, stack

if TYPE_CHECKING:
    from types import TracebackType
    from typing import Any, Callable, Dict, List, Optional, Type

__all__ = ["RAN", "FAILED", "INTERRUPTED", "LEFT", "run_file", "run_text"]

# How a script ended. The viewer knows these numbers.
RAN, FAILED, INTERRUPTED, LEFT = range(4)


def run_file(file: str, shown: str, arguments: List[str], stays: bool, outcome: int, namespace: Dict[str, Any]) -> None:
    """Run a script file in the namespace of `__main__`.

    `file` is the absolute path, `shown` the path as the user has given it, and `arguments` follow it in `sys.argv`. If
    `stays`, a SystemExit ends only the script, and its output says so; otherwise the SystemExit leaves this function. An
    error is written to standard error as Python writes it. `outcome` is the address of a C int, which is set to RAN,
    FAILED, INTERRUPTED or LEFT.
    """
    def execute() -> None:
        namespace.update(__file__=file, __cached__=None, __loader__=modules.loader(file))
        with stack.full_depth(sys._getframe()):
            errors.execute(file, namespace)

    ctypes.c_int.from_address(outcome).value = _run(execute, file, [shown, *arguments], ends.report, stays, namespace)


def run_text(text: str, title: str, file: str, stays: bool, outcome: int, namespace: Dict[str, Any]) -> None:
    """Run a text that has no file of its own, as `run_file` runs a file.

    `title` stands for the file in tracebacks. `file` is the absolute path of the file that the text came from, or where
    the script would stand if it had one.
    """
    import linecache
    import traceback

    def execute() -> None:
        namespace.update(__file__=file, __cached__=None)
        with stack.full_depth(sys._getframe()):
            exec(compile(text, title, "exec", dont_inherit=True), namespace)

    # The interpreter's own hook reads the lines of a traceback from files; this one asks linecache.
    linecache.cache[title] = len(text), None, text.splitlines(True), title

    def report(kind: Type[BaseException], error: BaseException, trace: Optional[TracebackType]) -> None:
        ends.report(kind, error, trace, traceback.print_exception)

    ctypes.c_int.from_address(outcome).value = _run(execute, file, [title], report, stays, namespace)


def _run(execute: Callable[[], None], file: str, arguments: List[str], report: Any, stays: bool,
         namespace: Dict[str, Any]) -> int:
    folder = os.path.dirname(os.path.realpath(file))
    kept = sys.argv, sys.excepthook, namespace.get("__loader__")
    modules.forget_changed(folder)
    nested.forget()
    sys.argv = arguments
    sys.excepthook = report
    sys.path.insert(0, folder)
    raised = None
    try:
        try:
            execute()
        except BaseException as error:  # everything that a script may raise
            raised = error
        # The error is not being handled any more: what its report raises has no context.
        outcome = RAN if raised is None else _report(raised, stays)
    finally:
        raised = None
        sys.argv, sys.excepthook, namespace["__loader__"] = kept
        if folder in sys.path:
            sys.path.remove(folder)
        modules.remember(folder)
    return outcome


def _report(error: BaseException, stays: bool) -> int:
    stack.strip(error)
    if isinstance(error, SystemExit):
        return _leave(error, stays)
    try:
        errors.show(error)
    except SystemExit as exit:  # of the script's own excepthook
        return _leave(exit, stays)
    return INTERRUPTED if isinstance(error, KeyboardInterrupt) else FAILED


def _leave(error: SystemExit, stays: bool) -> int:
    if stays:
        ends.leave(error)
        return LEFT
    code = 0 if error.code is None else error.code
    if not isinstance(code, int):
        errors.write_exit_text(code)
        code = 1
    raise SystemExit(code)
