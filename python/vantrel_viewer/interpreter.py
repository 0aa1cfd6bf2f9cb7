"""The interpreter that belongs to the embedded one, for the programs and processes that a script starts."""
from __future__ import annotations

import os
import site
import sys

import vantrel_qt

from . import TYPE_CHECKING

if TYPE_CHECKING:
    from typing import List

__all__ = ["find", "prepare", "use_environment"]

_folder = os.path.dirname(os.path.abspath(__file__))
_absent = os.path.join(_folder, "no-interpreter")
_for_children = os.path.join(os.path.dirname(_folder), "vantrel_child")


def find(prefix: str) -> str:
    """Return the path of the interpreter below a prefix, or that of a program that only says that there is none."""
    names: List[str] = ["python{}.{}".format(*sys.version_info), "python3", "python"]
    for name in names:
        path = os.path.join(prefix, "bin", name)
        if os.access(path, os.X_OK) and not os.path.isdir(path):
            return path
    return _absent


def prepare(environment: str) -> None:
    """Tell `sys` which interpreter and which virtual environment a script uses; without one `environment` is empty.

    Processes that a script spawns with `multiprocessing` inherit `sys.path`; there they find a module `vantrel`.
    """
    sys.executable = sys._base_executable = find(sys.base_exec_prefix)  # type: ignore[attr-defined]
    if environment:
        use_environment(environment)
    if _for_children not in sys.path:
        sys.path.append(_for_children)
    vantrel_qt.watch_imports()


def use_environment(folder: str) -> None:
    """Put the packages of a virtual environment before those of the system, behind the standard library."""
    packages = os.path.join(folder, "lib", "python{}.{}".format(*sys.version_info), "site-packages")
    known = len(sys.path)
    site.addsitedir(packages)
    added = sys.path[known:]
    del sys.path[known:]
    others = [number for number, entry in enumerate(sys.path) if entry.endswith(("site-packages", "dist-packages"))]
    start = min(others, default=len(sys.path))
    sys.path[start:start] = added
    sys.prefix = sys.exec_prefix = folder
    own = find(folder)
    # Processes get the search path of this one, which fits no other build of the same version.
    if os.path.realpath(own) == os.path.realpath(sys._base_executable):  # type: ignore[attr-defined]
        sys.executable = own
