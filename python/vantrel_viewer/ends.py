"""What the output says when a script fails, or ends itself where the viewer stays."""
from __future__ import annotations

import sys

from . import TYPE_CHECKING, errors, leaving, nested, signals

if TYPE_CHECKING:
    from types import TracebackType
    from typing import Any, Optional, Type

__all__ = ["leave", "report"]


def report(kind: Type[BaseException], error: BaseException, trace: Optional[TracebackType],
           write_error: Any = None) -> None:
    """Report an uncaught error, as `sys.excepthook`, and say which script it came from.

    `write_error` writes it, instead of the interpreter's own hook. A SystemExit of a nested script arrives here, too; it
    ends that script.
    """
    if isinstance(error, SystemExit):
        leave(error)
        return
    if isinstance(error, KeyboardInterrupt) and signals.is_raised_again():
        return  # in the code that runs the event loop
    (write_error or sys.__excepthook__)(kind, error, trace)
    script = nested.current()
    if script and not isinstance(error, KeyboardInterrupt):
        errors.write(f"The error is in the script {script}.\n")


def leave(error: SystemExit) -> None:
    """Say that a script has ended itself; in a forked child, end the process."""
    code = 0 if error.code is None else error.code
    if not isinstance(code, int):
        errors.write_exit_text(code)
        if leaving.is_child():
            leaving.leave_child(1)
        return  # the text tells why
    if leaving.is_child():
        leaving.leave_child(code)
    text = f"The script has ended with exit status {int(code)}.\n"
    if code:
        errors.write(text)
    else:
        print(text, end="")
