#!/usr/bin/env python3
"""Makes docs/reference.md and stubs/vantrel.pyi from viewer/scripting/help/scripting.txt.

usage: make_reference.py [--check]

--check writes nothing; the exit status is 1 if a file is out of date.
"""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
SOURCE = ROOT / "viewer/scripting/help/scripting.txt"
REFERENCE = ROOT / "docs/reference.md"
STUBS = ROOT / "stubs/vantrel.pyi"

CAMERA_PARAMETERS = [
    "exposure", "gain", "black_level", "framerate", "auto_exposure", "trigger_mode", "frame_count", "cooling",
    "sensor_temperature", "link_speed",
]
DATA_TYPES = [
    "INT8", "UINT8", "INT16", "UINT16", "INT32", "UINT32", "INT64", "UINT64", "FLOAT", "DOUBLE", "PACKED565",
]


class Entry:
    """A function, a method, a type or an attribute that scripts can use."""

    def __init__(self, signature, text):
        self.signature = signature
        self.text = text.strip("\n")
        head = re.match(r"(?:(class) )?(?:(\w+)\.)?(\w+)", signature)
        self.is_class = bool(head.group(1))
        self.owner = head.group(2) or ""
        self.name = head.group(3)
        self.is_attribute = "(" not in signature.split(":")[0]


def read_source():
    """Returns the chapters as [(title, [Entry])]."""
    chapters = []
    for block in re.split(r"^(?=(?:===|---) )", SOURCE.read_text(), flags=re.M):
        head, _, text = block.partition("\n")
        if head.startswith("--- "):
            chapters.append((head[4:], []))
        elif head.startswith("=== "):
            chapters[-1][1].append(Entry(head[4:], text))
    return chapters


def markdown_text(text):
    """Returns the plain text with its arguments as a list."""
    lines = []
    for line in text.split("\n"):
        argument = re.match(r"([a-z]\w*(?:, [a-z]\w*)*): (.*)", line)
        if argument:
            names = ", ".join(f"`{name}`" for name in argument.group(1).split(", "))
            line = f"- {names}: {argument.group(2)}"
        elif lines and lines[-1].startswith("- ") and line:
            line = "  " + line
        lines.append(line)
    return "\n".join(lines)


def make_reference(chapters):
    parts = [
        "# Scripting reference",
        "",
        "Everything that the module `vantrel` offers to scripts. This file is made from the help texts. In a script,",
        "`help(vantrel)` shows those of the functions and methods.",
        "",
        "Unless an entry says otherwise:",
        "",
        "- Arguments are given by position.",
        "- Wrong arguments raise `TypeError`. An integer that does not fit 32 bits with a sign raises `OverflowError`.",
        "- A function that touches windows raises `Exception` if the script does not run on the GUI thread.",
        "- A relative path starts at the working directory.",
        "- A negative view id means the active view.",
        "",
    ]
    for title, entries in chapters:
        parts += [f"## {title}", ""]
        attributes = [entry for entry in entries if entry.is_attribute]
        for entry in entries:
            if entry.is_attribute:
                continue
            kind = "class " if entry.is_class else ""
            parts += [f"### {kind}{entry.owner + '.' if entry.owner else ''}{entry.name}", ""]
            parts += ["```python", entry.signature, "```", "", markdown_text(entry.text), ""]
        if attributes:
            parts += [f"### Attributes of {attributes[0].owner}", "", "| attribute | type | |", "|---|---|---|"]
            for entry in attributes:
                kind = entry.signature.split(": ", 1)[1]
                parts.append(f"| `{entry.name}` | `{kind}` | {' '.join(entry.text.split())} |")
            parts.append("")
    parts += [
        "## Constants", "",
        "The application gives these names to every script:", "",
        "| names | values |", "|---|---|",
        "| " + ", ".join(f"`PARAM_{name.upper()}`" for name in CAMERA_PARAMETERS) +
        " | the names of the camera parameters, as in `\"exposure\"` |",
        "| " + ", ".join(f"`DATA_{name}`" for name in DATA_TYPES) + " | the codes of the pixel types, 1 to 11 |",
        "",
    ]
    return "\n".join(parts)


def stub_arguments(entry):
    arguments = re.search(r"\((.*)\)", entry.signature.split(" -> ")[0]).group(1)
    return f"{arguments}, /" if arguments else ""


def stub_result(entry):
    return entry.signature.split(" -> ")[1]


def make_stubs(chapters):
    entries = [entry for _, chapter in chapters for entry in chapter]
    parts = [
        '"""Types of the module that scripts see. Made from viewer/scripting/help/scripting.txt."""',
        "",
        "from typing import Any, Callable, Dict, List, Optional, Tuple, Union",
        "",
        "ArrayLike = Any",
        "ParamValue = Union[int, float, bool, str]",
        "",
    ]
    for entry in entries:
        if entry.owner == "vantrel":
            parts.append(f"def {entry.name}({stub_arguments(entry)}) -> {stub_result(entry)}: ...")
    for kind in ("Camera", "Image", "Graph"):
        parts += ["", f"class {kind}:", "    def __init__(self) -> None: ..."]
        for entry in entries:
            if entry.owner != kind:
                continue
            if entry.is_attribute:
                parts += ["    @property", f"    def {entry.name}(self) -> {entry.signature.split(': ', 1)[1]}: ..."]
            else:
                arguments = stub_arguments(entry)
                parts.append(f"    def {entry.name}(self{', ' + arguments if arguments else ''}) -> {stub_result(entry)}: ...")
        if kind == "Camera":
            # Writing returns None if no camera is attached. The type leaves that out, so that scripts which attach a
            # camera need not check every result.
            for name in CAMERA_PARAMETERS:
                parts += [
                    f"    def get_{name}(self) -> Optional[ParamValue]: ...",
                    f"    def is_{name}(self) -> Optional[ParamValue]: ...",
                    f"    def set_{name}(self, value: ParamValue, /) -> int: ...",
                    f"    def enable_{name}(self) -> int: ...",
                    f"    def disable_{name}(self) -> int: ...",
                ]
                parts += [f"    def get_{name}_{word}(self) -> Optional[ParamValue]: ..."
                          for word in ("minimum", "maximum", "increment")]
    parts.append("")
    return "\n".join(parts)


def main(arguments):
    if arguments not in ([], ["--check"]):
        print(__doc__, file=sys.stderr)
        return 2
    chapters = read_source()
    status = 0
    for path, text in ((REFERENCE, make_reference(chapters)), (STUBS, make_stubs(chapters))):
        if path.exists() and path.read_text() == text:
            continue
        if arguments:
            print(f"{path.relative_to(ROOT)} is out of date: run tools/make_reference.py", file=sys.stderr)
            status = 1
        else:
            path.write_text(text)
    return status


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
