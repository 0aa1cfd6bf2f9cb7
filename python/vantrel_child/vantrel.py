"""Stands for the viewer's module in processes that a script has started."""
from typing import Any


def _refuse(name: str) -> Any:
    raise RuntimeError(f"vantrel.{name} can be used only by a script in the viewer, not in a process that a script has started")


class _Refusing(type):
    """The types are there for annotations: a process that `multiprocessing` spawns executes the script's definitions."""

    def __call__(cls, *arguments: Any) -> Any:
        _refuse(cls.__name__)

    def __getattr__(cls, name: str) -> Any:
        return __getattr__(f"{cls.__name__}.{name}")


class Camera(metaclass=_Refusing):
    pass


class Graph(metaclass=_Refusing):
    pass


class Image(metaclass=_Refusing):
    pass


def __getattr__(name: str) -> Any:
    if name.rpartition(".")[2].startswith("__") and name.endswith("__"):
        raise AttributeError(name)
    _refuse(name)
