"""Keeps the viewer's application object in place when a script uses PyQt6.

A process has one application object, and here it is the viewer's. A second one would take its place, and the end of the
script would destroy it. So `QApplication([])` returns the viewer's object, `exec` runs an event loop of the script's
own, and `quit` ends that loop and not the viewer.

These functions are not in `vantrel_viewer`: a stop does not interrupt the functions there, but it must end the loop.
"""
from __future__ import annotations

import sys

import vantrel_imports

TYPE_CHECKING = False  # see vantrel_viewer
if TYPE_CHECKING:
    from typing import Any, List, Optional

__all__ = ["watch_imports"]

_INTERVAL = 50  # ms
_TYPES = {"PyQt6.QtCore": "QCoreApplication", "PyQt6.QtGui": "QGuiApplication", "PyQt6.QtWidgets": "QApplication"}


def watch_imports() -> None:
    """Change the modules of PyQt6 when a script imports them."""
    for module in _TYPES:
        vantrel_imports.when_imported(module, lambda imported: _share(getattr(imported, _TYPES[imported.__name__])))


def _share(kind: Any) -> None:
    """Let a type of application objects stand for the viewer's one."""
    make, begin = kind.__new__, kind.__init__

    # PyQt6 itself makes the Python object for an existing application, without arguments.
    def __new__(cls: Any, *arguments: Any) -> Any:
        return kind.instance() if arguments and cls is kind else make(cls, *arguments)

    def __init__(self: Any, *arguments: Any) -> None:
        if not arguments:
            begin(self)
        elif self is not kind.instance():
            raise RuntimeError(f"the viewer has the application object already; use {kind.__name__}.instance()")

    kind.__new__, kind.__init__ = staticmethod(__new__), __init__
    kind.exec, kind.exit, kind.quit = staticmethod(_exec), staticmethod(_exit), staticmethod(_quit)
    # PyQt6 ends the process after an error in a slot, unless sys.excepthook is another object than this one.
    if sys.excepthook is sys.__excepthook__:
        hook = sys.excepthook
        sys.__excepthook__ = lambda *error: hook(*error)


class _Loop:
    status: Optional[int] = None  # set when the loop is to end


_loops: List[_Loop] = []  # those that run now; the innermost one is the last


def _exec(*_: Any) -> int:
    """Process events until the script calls `quit` or has closed its last window. Returns the status."""
    from PyQt6.QtCore import QCoreApplication, QEvent, QEventLoop, QThread, QTimer

    if QThread.currentThread() is not QCoreApplication.instance().thread():
        raise RuntimeError("the event loop of windows needs their thread: run the script without --worker")
    loop, events, alarm = _Loop(), QEventLoop(), QTimer()
    alarm.start(_INTERVAL)
    _loops.append(loop)
    shown = False
    try:
        # The loop is in Python, so that a stop is raised here. An error in a slot would only be printed.
        while loop.status is None:
            visible = _has_visible_window()
            if shown and not visible:
                return 0
            shown = shown or visible
            events.processEvents(QEventLoop.ProcessEventsFlag.WaitForMoreEvents)
            QCoreApplication.sendPostedEvents(None, QEvent.Type.DeferredDelete.value)
        return loop.status
    finally:
        _loops.remove(loop)
        alarm.stop()


def _has_visible_window() -> bool:
    """Whether a window is visible that a script has made."""
    widgets = sys.modules.get("PyQt6.QtWidgets")
    if not widgets:
        return False
    from PyQt6 import sip

    return any(widget.isVisible() and sip.ispycreated(widget) for widget in widgets.QApplication.topLevelWidgets())


def _exit(returnCode: int = 0) -> None:  # noqa: N803 - its name in PyQt6
    if _loops:
        _loops[-1].status = returnCode


def _quit(*_: Any) -> None:
    _exit()
