"""Scripts that a script runs with `vantrel.run_script`. The plugin evaluates them as texts without a name.

A stop treats the functions of this file like those of a script: they stand in the middle of the stack.
"""
from __future__ import annotations

from functools import wraps

from . import TYPE_CHECKING

if TYPE_CHECKING:
    from typing import Any, List

__all__ = ["FILE", "current", "forget", "prepare"]

FILE = __file__

_running: List[str] = []


def prepare() -> None:
    """Note from now on which script `vantrel.run_script` runs."""
    import vantrel

    original = vantrel.run_script

    @wraps(original)
    def run_script(*arguments: Any) -> Any:
        _running.append(str(arguments[0]) if arguments else "")
        try:
            return original(*arguments)
        finally:
            _running.pop()

    vantrel.run_script = run_script


def current() -> str:
    """Return the path of the innermost script, as the script that runs it has given it; empty outside of such scripts."""
    return _running[-1] if _running else ""


def forget() -> None:
    """Forget the scripts of a run that was interrupted."""
    _running.clear()
