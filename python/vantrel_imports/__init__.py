"""Changes modules when a script imports them, so that nothing is imported before a script needs it.

These functions are not in `vantrel_viewer`: a stop does not interrupt the functions there, and it ends a script where it
finds a frame of them.
"""
from __future__ import annotations

import sys
from importlib.machinery import PathFinder

TYPE_CHECKING = False  # see vantrel_viewer
if TYPE_CHECKING:
    from importlib.machinery import ModuleSpec
    from typing import Any, Callable, Dict, Optional

__all__ = ["when_imported"]

_changes: Dict[str, Callable[[Any], None]] = {}  # by the name of the module


def when_imported(name: str, change: Callable[[Any], None]) -> None:
    """Call `change` with a module as soon as it is imported; at once if it has been."""
    if not _changes:
        sys.meta_path.insert(0, _Finder)
    _changes[name] = change
    if name in sys.modules:
        change(sys.modules[name])


class _Finder:
    @staticmethod
    def find_spec(name: str, path: Any = None, target: Any = None) -> Optional[ModuleSpec]:
        found = PathFinder.find_spec(name, path, target) if name in _changes else None
        loader: Any = found.loader if found else None
        if not loader:
            return None
        execute = loader.exec_module

        def exec_module(module: Any) -> None:
            execute(module)
            _changes[name](module)

        loader.exec_module = exec_module
        return found
