"""Keeps the viewer's own frames, which stand below those of a script, out of what the script sees."""
from __future__ import annotations

import functools
import itertools
import os
import sys

import vantrel_imports
import vantrel_qt

from . import TYPE_CHECKING, nested

if TYPE_CHECKING:
    from types import FrameType, TracebackType
    from typing import Any, Iterator, List, Optional, Tuple

__all__ = ["full_depth", "strip"]

_folder = __file__[: -len("stack.py")]
_hidden = (_folder, *(os.path.join(os.path.dirname(str(other.__file__)), "") for other in (vantrel_imports, vantrel_qt)))
_get_limit, _set_limit = sys.getrecursionlimit, sys.setrecursionlimit


class full_depth:  # noqa: N801 - used like a function
    """While the context lasts, a frame and those below it do not count against the recursion limit."""

    def __init__(self, frame: FrameType) -> None:
        self._own = _depth(frame)

    def __enter__(self) -> None:
        own = self._own

        def getrecursionlimit() -> int:
            return _get_limit() - own

        def setrecursionlimit(limit: int, /) -> None:
            _set_limit(limit + own if isinstance(limit, int) and limit > 0 else limit)

        self._limit = _get_limit()
        _set_limit(self._limit + own)
        sys.getrecursionlimit, sys.setrecursionlimit = getrecursionlimit, setrecursionlimit

    def __exit__(self, *_: Any) -> None:
        sys.getrecursionlimit, sys.setrecursionlimit = _get_limit, _set_limit
        _set_limit(self._limit)


def strip(error: BaseException) -> None:
    """Take the viewer's frames out of an error's traceback, and out of those of the errors that led to it."""
    seen = set()
    waiting: List[Optional[BaseException]] = [error]
    while waiting:
        one = waiting.pop()
        if one is None or id(one) in seen:
            continue
        seen.add(id(one))
        one.__traceback__ = _stripped(one.__traceback__)
        waiting += [one.__cause__, one.__context__]


def _stripped(trace: Optional[TracebackType]) -> Optional[TracebackType]:
    while trace is not None and _is_hidden(trace.tb_frame):
        trace = trace.tb_next
    one = trace
    while one is not None:
        following = one.tb_next
        if following is not None and _is_hidden(following.tb_frame):
            one.tb_next = following.tb_next
        else:
            one = following
    return trace


def _is_hidden(frame: FrameType) -> bool:
    return frame.f_code.co_filename.startswith(_hidden)


def _is_own(frame: FrameType) -> bool:
    return frame.f_code.co_filename.startswith(_folder)


def _is_bottom(frame: FrameType) -> bool:
    """Whether only frames of the viewer and the plugin stand below: none of a script that runs another one."""
    return _is_own(frame) and frame.f_code.co_filename != nested.FILE


def _depth(frame: Optional[FrameType]) -> int:
    """How much of the recursion limit the frames, the one above them and its call of exec() use."""
    depth = 1 if sys.version_info >= (3, 12) else 2  # calls of C functions count no longer
    while frame is not None:
        depth += 1
        frame = frame.f_back
    return depth


def _shorten_listings(traceback: Any) -> None:
    """Let the module `traceback` list the stack without frames of the viewer."""
    walk = traceback.walk_stack

    @functools.wraps(walk)
    def walk_stack(f: Optional[FrameType]) -> Iterator[Tuple[FrameType, int]]:
        # The interpreter's own function counts the frames between itself and its caller, so none may come in between.
        entries = itertools.takewhile(lambda entry: not _is_bottom(entry[0]), walk(f))
        return filter(lambda entry: not _is_own(entry[0]), entries)

    traceback.walk_stack = walk_stack


vantrel_imports.when_imported("traceback", _shorten_listings)
