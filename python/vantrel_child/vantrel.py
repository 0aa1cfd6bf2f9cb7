"""Stands for the viewer's module in processes that a script has started."""
from typing import Any


def __getattr__(name: str) -> Any:
    if name.startswith("__") and name.endswith("__"):
        raise AttributeError(name)
    raise RuntimeError(f"vantrel.{name} can be used only by a script in the viewer, not in a process that a script has started")
