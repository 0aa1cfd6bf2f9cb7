#!/usr/bin/env python3
"""Holds the source tree against its design. usage: house.py CHECK ROOT

arrows      which room may include headers of which other rooms
libraries   which rooms may include the headers of a library
names       product headers have different names, so that an include says which file it means
sizes       no room has more than 20 files and no product file more than 350 lines
lists       the lists of source files in CMakeLists.txt are sorted

Every finding is a line. The exit status is 1 when there is one.
"""

import os
import re
import sys

# Each room, and the rooms whose headers its files may include besides their own. A header of host/ may be included
# everywhere.
ARROWS = {
    "host": [],
    "core": [],
    "core/buffers": [],
    "core/cameras": ["core/storage"],
    "core/chain": ["core/buffers"],
    "core/codecs": ["core/modules"],
    "core/files": ["core/buffers", "core/codecs", "core/storage"],
    "core/measure": ["core/buffers"],
    "core/memory": ["core/buffers"],
    "core/modules": [],
    "core/storage": [],
    "cameras": ["cameras/simulated"],
    "cameras/simulated": ["cameras"],
    "plugins/python": ["plugins/script", "plugins/script/support"],
    "plugins/script": [
        "plugins/script/app",
        "plugins/script/camera",
        "plugins/script/graph",
        "plugins/script/image",
        "plugins/script/support",
    ],
    # The parts of the module reach each other through ScriptModule.h.
    "plugins/script/app": ["plugins/script", "plugins/script/support"],
    "plugins/script/camera": ["plugins/script", "plugins/script/support"],
    "plugins/script/graph": ["plugins/script", "plugins/script/support"],
    "plugins/script/image": ["plugins/script", "plugins/script/support"],
    "plugins/script/support": [],
    "viewer": [
        "cameras",
        "viewer/editor",
        "viewer/interpreter",
        "viewer/process",
        "viewer/scripting",
        "viewer/stopping",
        "viewer/views",
        "viewer/window",
        "viewer/workshop",
    ],
    "viewer/scripting": [
        "cameras",
        "viewer/cameras",
        "viewer/interpreter",
        "viewer/process",
        "viewer/scripting/help",
        "viewer/stopping",
        "viewer/views",
        "viewer/window",
    ],
    "viewer/scripting/help": [],
    "viewer/stopping": ["viewer/interpreter", "viewer/process", "viewer/window"],
    "viewer/interpreter": ["viewer/process"],
    "viewer/editor": ["core/storage", "viewer/workshop"],
    "viewer/workshop": ["viewer/process"],
    "viewer/cameras": ["cameras", "viewer/views", "viewer/window"],
    "viewer/window": ["cameras", "viewer/process", "viewer/views"],
    "viewer/video": ["core/modules"],
    "viewer/views": ["core/buffers", "core/chain", "core/storage", "viewer/process", "viewer/video"],
    "viewer/process": [],
}

# Headers of libraries, and the files or rooms that may include them.
LIBRARIES = [
    (r"<Python\.h>", ["plugins/script/support/PythonApi.h"]),
    (r"<qcustomplot\.h>", ["plugins/script/graph/PlotLibrary.h"]),
    # The first two bring hundreds of libraries, so only modules that are loaded on first use may need them.
    (r"<opencv2/imgcodecs", ["core/codecs/ImageCodecsModule.cpp"]),
    (r"<opencv2/videoio", ["viewer/video/VideoFileModule.cpp"]),
    (r"<opencv2/", ["core", "viewer/video", "viewer/views"]),
    (r"<zlib\.h>", ["core/files"]),
    (r"<Qsci/", ["viewer/editor/EditorLibrary.h"]),
    (r"<arv\.h>", ["cameras/genicam"]),
]

MOST_FILES = 20
MOST_LINES = 350
PRODUCT = ("host", "core", "cameras", "plugins", "viewer")
INCLUDE = re.compile(r'^\s*#\s*include\s+(<[^>]+>|"[^"]+")', re.MULTILINE)


def source_files(root):
    """Product sources, as paths relative to root."""
    found = []
    for top in PRODUCT:
        for folder, _, names in os.walk(os.path.join(root, top)):
            found += [
                os.path.relpath(os.path.join(folder, name), root)
                for name in names
                if name.endswith((".h", ".cpp"))
            ]
    return sorted(found)


def includes(root, path):
    with open(os.path.join(root, path), encoding="utf-8") as text:
        return INCLUDE.findall(text.read())


def check_arrows(root):
    paths = source_files(root)
    room_of_header = {os.path.basename(path): os.path.dirname(path) for path in paths if path.endswith(".h")}
    for path in paths:
        room = os.path.dirname(path)
        if room not in ARROWS:
            yield f"{path}: the design has no room {room}"
            continue
        for name in includes(root, path):
            if name.startswith("<"):
                continue
            header = os.path.basename(name.strip('"'))
            target = room_of_header.get(header)
            if target is None:
                if not header.endswith((".moc", ".cpp")):
                    yield f"{path}: {header} is not a header of the product"
            elif target not in (room, "host") and target not in ARROWS[room]:
                yield f"{path}: {room} may not include {target} ({header})"


def check_libraries(root):
    for path in source_files(root):
        for name in includes(root, path):
            for pattern, places in LIBRARIES:
                allowed = any(path == place or path.startswith(place + "/") for place in places)
                if re.match(pattern, name) and not allowed:
                    yield f"{path}: {name} belongs to {', '.join(places)}"


def check_names(root):
    seen = {}
    for path in source_files(root):
        if not path.endswith(".h"):
            continue
        name = os.path.basename(path)
        if name in seen:
            yield f"{path} and {seen[name]} have the same name"
        seen[name] = path


def check_sizes(root):
    rooms = {}
    for path in source_files(root):
        rooms.setdefault(os.path.dirname(path), []).append(path)
        with open(os.path.join(root, path), encoding="utf-8") as text:
            lines = sum(1 for _ in text)
        if lines > MOST_LINES:
            yield f"{path} has {lines} lines, more than {MOST_LINES}"
    # host/ has one header for each class of the interface, however many there are.
    for room, files in rooms.items():
        if len(files) > MOST_FILES and room != "host":
            yield f"{room} has {len(files)} files, more than {MOST_FILES}"


def folder_first(path):
    """The order of the lists: folder by folder, files from elsewhere last; letter case does not count."""
    folder, name = os.path.split(path)
    return (path.startswith(".."), folder.lower(), name.lower())


def check_lists(root):
    for folder, folders, names in os.walk(root):
        folders[:] = [name for name in folders if not name.startswith((".", "build"))]
        if "CMakeLists.txt" not in names:
            continue
        path = os.path.relpath(os.path.join(folder, "CMakeLists.txt"), root)
        run = []
        with open(os.path.join(root, path), encoding="utf-8") as text:
            lines = text.read().splitlines()
        for line in lines + [""]:
            if re.fullmatch(r"    [\w./]+\.cpp", line):
                run.append(line.strip())
                continue
            if run != sorted(run, key=folder_first):
                yield f"{path}: the list that begins with {run[0]} is not sorted"
            run = []


CHECKS = {
    "arrows": check_arrows,
    "libraries": check_libraries,
    "names": check_names,
    "sizes": check_sizes,
    "lists": check_lists,
}


def main():
    if len(sys.argv) != 3 or sys.argv[1] not in CHECKS:
        sys.exit(f"usage: house.py {'|'.join(CHECKS)} ROOT")
    findings = list(CHECKS[sys.argv[1]](sys.argv[2]))
    for finding in findings:
        print(finding)
    sys.exit(1 if findings else 0)


if __name__ == "__main__":
    main()
