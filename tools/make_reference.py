#!/usr/bin/env python3
"""Makes docs/reference.md and stubs/vantrel.pyi from viewer/scripting/help/scripting.txt.

usage: make_reference.py [--check]

--check writes nothing; the exit status is 1 if a file is out of date.
"""

import pathlib
import re
import sys
import textwrap

ROOT = pathlib.Path(__file__).resolve().parent.parent
SOURCE = ROOT / "viewer/scripting/help/scripting.txt"
REFERENCE = ROOT / "docs/reference.md"
STUBS = ROOT / "stubs/vantrel.pyi"



class Parameter:
    """A camera parameter. The default and the limits are those of the simulated cameras; None if there are none."""

    def __init__(self, name, kind, unit, meaning, default, limits=None, access="read and write"):
        self.name = name
        self.kind = kind
        self.unit = unit
        self.meaning = meaning
        self.default = default
        self.limits = limits  # minimum, maximum, increment
        self.access = access


READ_ONLY = "read only"
NOT_SUPPORTED = "not supported"
CAMERA_PARAMETERS = [
    Parameter("exposure", "int", "microseconds", "How long the sensor collects light for a frame.", 10000,
              (10, 1000000, 10)),
    Parameter("gain", "float", "decibels", "Amplification of the signal: 6 decibels double the values.", 0.0,
              (0.0, 24.0, 0.1)),
    Parameter("black_level", "int", "pixel values", "Is added to every value, so that noise in the dark is not cut off.",
              0, (0, 255, 1)),
    Parameter("framerate", "float", "frames per second", "How many frames the camera sends.", 30.0, (1.0, 120.0, 0.5)),
    Parameter("auto_exposure", "bool", "", "True lets the camera set exposure itself.", False),
    Parameter("trigger_mode", "str", "", "What starts a frame: `off` (the camera itself), `software` or `line0`. Nothing "
              "triggers a simulated camera, so that no frame comes with the last two.", "off"),
    Parameter("frame_count", "int", "frames", "Frames since the acquisition started.", 0, access=READ_ONLY),
    Parameter("cooling", "bool", "", "Switches the cooling of the sensor.", None, access=NOT_SUPPORTED),
    Parameter("sensor_temperature", "float", "degrees Celsius", "Temperature of the sensor.", 35.5, access=READ_ONLY),
    Parameter("link_speed", "int", "Mbit per second", "Speed of the connection to the camera.", 5000, access=READ_ONLY),
]
MEASURED = [
    ("name", "str", "name of the channel: Mono; Blue, Green, Red, Alpha; or Channel 0, Channel 1 and so on"),
    ("mean", "float", "sum of the values divided by their number"),
    ("stdev", "float", "standard deviation: the square root of the variance"),
    ("variance", "float", "mean of the squared differences from the mean"),
    ("rms", "float", "square root of the mean of the squared values"),
    ("min", "float", "smallest value"),
    ("max", "float", "largest value"),
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


def anchor(heading):
    """Returns the name that web pages give to a heading."""
    return re.sub(r"[^\w -]", "", heading.lower()).replace(" ", "-")


def heading_of(entry):
    return ("class " if entry.is_class else "") + (entry.owner + "." if entry.owner else "") + entry.name


def contents(chapters):
    lines = ["## Contents", ""]
    for title, entries in chapters:
        links = [f"[`{entry.name}`](#{anchor(heading_of(entry))})" for entry in entries if not entry.is_attribute]
        attributes = [entry for entry in entries if entry.is_attribute]
        if attributes:
            heading = f"Attributes of {attributes[0].owner}"
            links.append(f"[a{heading[1:]}](#{anchor(heading)})")
        if title == "Cameras":
            links.append("[camera parameters](#camera-parameters)")
        if title == "Images":
            links.append("[what measuring returns](#what-measuring-returns)")
        text = f"**[{title}](#{anchor(title)})**: " + ", ".join(links)
        lines += textwrap.wrap(text, 120, break_long_words=False, break_on_hyphens=False) + [""]
    return lines + ["**[Constants](#constants)**", ""]


def parameter_table():
    lines = [
        "### Camera parameters", "",
        "The defaults and ranges are those of the simulated cameras.", "",
        "| parameter | type | unit | meaning | default | range, step | access |", "|---|---|---|---|---|---|---|",
    ]
    for parameter in CAMERA_PARAMETERS:
        default = "" if parameter.default is None else f"`{parameter.default!r}`"
        limits = "{} to {}, {}".format(*parameter.limits) if parameter.limits else ""
        lines.append(f"| `{parameter.name}` | {parameter.kind} | {parameter.unit} | {parameter.meaning} | {default} "
                     f"| {limits} | {parameter.access} |")
    return lines + [""]


def measuring_tables():
    lines = [
        "### What measuring returns", "",
        "For a rectangle of h rows and w columns, clipped to the image:", "",
        "| method | returns | example |", "|---|---|---|",
        "| `measure_rect` | a list with a dictionary for each channel | `result[channel][\"mean\"]` |",
        "| `measure_row_profiles_in_rect` | a list of h rows, each a list with a dictionary for each channel "
        "| `result[row][channel][\"mean\"]` |",
        "| `measure_column_profiles_in_rect` | a list of w columns, each a list with a dictionary for each channel "
        "| `result[column][channel][\"mean\"]` |",
        "",
        "Rows and columns count from the corner of the rectangle. Channels of colours are in the order blue, green, red,",
        "alpha. Each dictionary has these entries, in units of the pixel values:", "",
        "| entry | type | |", "|---|---|---|",
    ]
    return lines + [f"| `{name}` | {kind} | {meaning} |" for name, kind, meaning in MEASURED] + [""]


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
    ] + contents(chapters)
    for title, entries in chapters:
        parts += [f"## {title}", ""]
        attributes = [entry for entry in entries if entry.is_attribute]
        for entry in entries:
            if entry.is_attribute:
                continue
            parts += [f"### {heading_of(entry)}", ""]
            parts += ["```python", entry.signature, "```", "", markdown_text(entry.text), ""]
        if attributes:
            parts += [f"### Attributes of {attributes[0].owner}", "", "| attribute | type | |", "|---|---|---|"]
            for entry in attributes:
                kind = entry.signature.split(": ", 1)[1]
                parts.append(f"| `{entry.name}` | `{kind}` | {' '.join(entry.text.split())} |")
            parts.append("")
        if title == "Cameras":
            parts += parameter_table()
        if title == "Images":
            parts += measuring_tables()
    parts += [
        "## Constants", "",
        "The application gives these names to every script:", "",
        "| names | values |", "|---|---|",
        "| " + ", ".join(f"`PARAM_{parameter.name.upper()}`" for parameter in CAMERA_PARAMETERS) +
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
            for name in [parameter.name for parameter in CAMERA_PARAMETERS]:
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
