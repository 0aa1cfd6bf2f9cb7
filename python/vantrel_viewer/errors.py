"""Compiles scripts and reports their errors, with the texts of the interpreter's own start of a script file."""
from __future__ import annotations

import ctypes
import os
import sys

from . import TYPE_CHECKING, stack

if TYPE_CHECKING:
    from types import CodeType
    from typing import Any, Dict, Optional

__all__ = ["execute", "show", "write", "write_exit_text"]


def execute(file: str, namespace: Dict[str, Any]) -> None:
    """Compile a script file and execute it in a namespace."""
    with open(file, "rb") as stream:
        source = stream.read()
    code = _compiled(source, file)
    if code is None:
        _execute_as_file(file, namespace)
    else:
        exec(code, namespace)


def _compiled(source: bytes, file: str) -> Optional[CodeType]:
    """Return the code, or None if the interpreter's own reader of files has to decide.

    That reader differs from `compile` in its errors, and in what it makes of null bytes and of text without a declared
    encoding.
    """
    if b"\0" in source or not (source.isascii() or b"coding" in source or _is_utf8(source)):
        return None
    try:
        code: CodeType = compile(source, file, "exec", dont_inherit=True)
    except SyntaxError:
        return None
    return code


def _is_utf8(source: bytes) -> bool:
    try:
        source.decode()
    except UnicodeDecodeError:
        return False
    return True


def _execute_as_file(file: str, namespace: Dict[str, Any]) -> None:
    """Let the interpreter read and execute a file; its library offers that only to C."""
    opened = ctypes.CDLL(None).fopen
    opened.restype = ctypes.c_void_p
    handle = opened(os.fsencode(file), b"rb")
    if not handle:
        raise OSError(f"cannot open {file}")
    run = ctypes.pythonapi.PyRun_FileExFlags
    run.restype = ctypes.py_object
    run.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_int, ctypes.py_object, ctypes.py_object, ctypes.c_int,
                    ctypes.c_void_p]
    file_input, closes_file = 257, 1
    run(handle, os.fsencode(file), file_input, namespace, namespace, closes_file, None)


class _ErrorStream:
    """Standard error as the interpreter has it: what cannot be encoded is escaped."""

    encoding = "utf-8"
    errors = "backslashreplace"

    def __init__(self, stream: Any) -> None:
        self._stream = stream

    def write(self, text: str) -> int:
        self._stream.write(text.encode(self.encoding, self.errors).decode(self.encoding))
        return len(text)

    def flush(self) -> None:
        self._stream.flush()

    def __getattr__(self, name: str) -> Any:
        return getattr(self._stream, name)


def write(text: str) -> None:
    """Write text to standard error; a stream that a script has broken is left alone."""
    try:
        _ErrorStream(sys.stderr).write(text)
    except Exception:
        pass


def write_exit_text(code: object) -> None:
    """Write what a SystemExit carries instead of a status, as the interpreter does."""
    try:
        text = str(code)
    except Exception:
        text = ""
    write(text)
    write("\n")


def show(error: BaseException) -> None:
    """Report an uncaught error through `sys.excepthook`, as the interpreter does at the end of a script.

    Lets a SystemExit of the hook pass.
    """
    kind, trace = type(error), error.__traceback__
    sys.last_type, sys.last_value, sys.last_traceback = kind, error, trace
    if sys.version_info >= (3, 12):
        sys.last_exc = error
    stream: Any = sys.stderr
    escaping: Any = None if stream is None or hasattr(stream, "encoding") else _ErrorStream(stream)
    if escaping:
        sys.stderr = escaping
    try:
        missing = object()
        hook = getattr(sys, "excepthook", missing)
        sys.audit("sys.excepthook", hook, kind, error, trace)
        if hook is missing:
            write("sys.excepthook is missing\n")
            sys.__excepthook__(kind, error, trace)
            return
        second = _called(hook, error)
        if second is not None:
            write("Error in sys.excepthook:\n")
            sys.__excepthook__(type(second), second, second.__traceback__)
            write("\nOriginal exception was:\n")
            sys.__excepthook__(kind, error, trace)
    finally:
        if escaping and sys.stderr is escaping:
            sys.stderr = stream


def _called(hook: Any, error: BaseException) -> Any:
    """Call an excepthook. Returns the error that it has raised, or None."""
    try:
        hook(type(error), error, error.__traceback__)
    except SystemExit:
        raise
    except BaseException as second:  # a hook may raise anything
        stack.strip(second)
        return second
    return None
