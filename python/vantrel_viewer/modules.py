"""Modules that stand beside a script: from one run to the next, those that have changed on disk are read again."""
from __future__ import annotations

import os
import sys
import time
from importlib.machinery import SourceFileLoader
from types import ModuleType

from . import TYPE_CHECKING

if TYPE_CHECKING:
    from typing import Dict, Optional, Set, Tuple

    _Stamp = Optional[Tuple[int, int]]  # the time of change and the size; None if unknown

__all__ = ["forget_changed", "loader", "remember"]

_stamps: Dict[str, _Stamp] = {}  # by the name of the module
_started = 0  # ns since the epoch, when the run started


def loader(file: str) -> SourceFileLoader:
    """Return what `__loader__` is in a script file."""
    return SourceFileLoader("__main__", file)


def forget_changed(folder: str) -> None:
    """Let the next import read the folder's modules that have changed since they were imported, and those using them."""
    global _started
    _started = time.time_ns()
    ours = _modules_in(folder)
    changed = {name for name, module in ours.items() if name in _stamps and _stamps[name] != _stamp(module)}
    before = None
    while changed != before:
        before = set(changed)
        changed |= {name for name, module in ours.items() if _uses(name, module, changed)}
    for name in changed:
        sys.modules.pop(name, None)
        _stamps.pop(name, None)


def remember(folder: str) -> None:
    """Note which state of its file each new module of the folder has."""
    for name, module in _modules_in(folder).items():
        if name not in _stamps:
            stamp = _stamp(module)
            # A file that has changed during the run may have changed after its import.
            _stamps[name] = stamp if stamp and stamp[0] < _started else None


def _modules_in(folder: str) -> Dict[str, ModuleType]:
    start = os.path.join(folder, "")
    found = {}
    for name, module in list(sys.modules.items()):
        file = getattr(module, "__file__", None)
        if name != "__main__" and isinstance(file, str) and os.path.realpath(file).startswith(start):
            if "site-packages" not in file and "dist-packages" not in file:
                found[name] = module
    return found


def _stamp(module: ModuleType) -> _Stamp:
    try:
        status = os.stat(str(module.__file__))
    except OSError:
        return None
    return status.st_mtime_ns, status.st_size


def _uses(name: str, module: ModuleType, others: Set[str]) -> bool:
    """Whether a module is a part of other modules or has something of them in its namespace."""
    if any(name.startswith(other + ".") or other.startswith(name + ".") for other in others):
        return True
    for value in list(vars(module).values()):
        if isinstance(value, ModuleType):
            if value.__name__ in others:
                return True
        elif getattr(value, "__module__", None) in others:
            return True
    return False
