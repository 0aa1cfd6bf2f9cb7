"""Compares the help texts with the running module, in both directions."""

import inspect
import os
import re
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.environ["VANTREL_SOURCE_DIR"], "tools"))
import make_reference  # noqa: E402

problems = []
entries = [entry for _, chapter in make_reference.read_source() for entry in chapter]
types = {name: getattr(vantrel, name, None) for name in ("Camera", "Image", "Graph")}


def names_of(owner):
    return {entry.name for entry in entries if entry.owner == owner and not entry.is_attribute}


def compare(owner, seen):
    for name in sorted(names_of(owner) - seen):
        problems.append(f"{owner}.{name} is described but missing")
    for name in sorted(seen - names_of(owner)):
        problems.append(f"{owner}.{name} is not described")


def most_arguments(function):
    """Returns the largest number of arguments that a function takes, from the error for too many."""
    try:
        function(*[0] * 30)
    except TypeError as error:
        text = str(error)
        if "no arguments" in text:
            return 0
        if "exactly one argument" in text:
            return 1
        found = re.search(r"(?:at most|exactly) (\d+) argument", text)
        if found:
            return int(found.group(1))
        return text
    return "no TypeError"


def check(entry, function):
    text = function.__doc__ or ""
    if text.strip().split("\n")[0] not in entry.text:
        problems.append(f"{entry.signature}: the running help says {text[:60]!r}")
    described = [parameter for parameter in inspect.signature(function).parameters]
    wanted = [word.split(":")[0].strip() for word in
              re.findall(r"(\w+: )", re.sub(r'"[^"]*"', "", entry.signature.split(" -> ")[0]))]
    if described != wanted:
        problems.append(f"{entry.signature}: arguments {described} are not {wanted}")
    if most_arguments(function) != len(wanted):
        problems.append(f"{entry.signature}: takes {most_arguments(function)}, not {len(wanted)}")


functions = {name for name in dir(vantrel) if not name.startswith("__") and not isinstance(getattr(vantrel, name), type)}
compare("vantrel", functions)

samples = {}
if types["Image"]:
    samples["Image"] = vantrel.Image()
    samples["Image"].alloc(4, 3, 3, 8)
if types["Camera"]:
    samples["Camera"] = vantrel.Camera()
    samples["Camera"].open_device()  # some methods check the camera before the arguments
if types["Graph"]:
    samples["Graph"] = vantrel.Graph()
for owner, sample in samples.items():
    methods = {name for name, value in vars(types[owner]).items()
               if not name.startswith("__") and callable(value)}
    if owner == "Image":
        methods.add("__bytes__")
    compare(owner, methods)

for entry in entries:
    if entry.is_attribute or entry.is_class:
        continue
    function = getattr(samples.get(entry.owner, vantrel), entry.name, None)
    if function is not None:
        check(entry, function)

# Attributes of camera frames exist for the other images too, but raise there.
for entry in entries:
    if entry.is_attribute:
        try:
            getattr(samples[entry.owner], entry.name)
        except AttributeError:
            problems.append(f"{entry.owner}.{entry.name} is described but missing")
        except Exception:
            pass

# The table of camera parameters.
for camera_number in range(vantrel.get_number_devices()):
    camera = vantrel.Camera()
    camera.open_device(camera_number)
    for parameter in make_reference.CAMERA_PARAMETERS:
        try:
            value = camera.get_param(parameter.name)
        except Exception:
            value = None
        if (value is None) != (parameter.access == make_reference.NOT_SUPPORTED):
            problems.append(f"{parameter.name}: wrong about whether camera {camera_number} supports it")
            continue
        if value is None:
            continue
        if value != parameter.default or type(value).__name__ != parameter.kind:
            problems.append(f"{parameter.name}: camera {camera_number} has {value!r}")
        if (camera.set_param(parameter.name, value) == 0) != (parameter.access == "read and write"):
            problems.append(f"{parameter.name}: wrong about writing it to camera {camera_number}")
        for suffix, limit in zip((":min", ":max", ":inc"), parameter.limits or (None, None, None)):
            try:
                seen = camera.get_param(parameter.name + suffix)
            except Exception:  # as for a parameter that is read directly
                seen = None
            if seen != limit and not (limit and seen and abs(seen - limit) < 1e-6):
                problems.append(f"{parameter.name}{suffix}: camera {camera_number} has {seen!r}")
if vantrel.get_number_devices() == 0:
    problems.append("no camera is open")

# The shapes and entries of what measuring returns.
rectangle = (1, 0, 2, 3)
shapes = {"measure_rect": (), "measure_row_profiles_in_rect": (3,), "measure_column_profiles_in_rect": (2,)}
for name, shape in shapes.items():
    result = getattr(samples["Image"], name)(*rectangle)
    if shape and len(result) != shape[0]:
        problems.append(f"{name} returns {len(result)} entries, not {shape[0]}")
    for channels in result if shape else [result]:
        if len(channels) != 3:
            problems.append(f"{name} returns {len(channels)} channels")
        for channel in channels:
            seen = [(key, type(value).__name__) for key, value in channel.items()]
            if seen != [(key, kind) for key, kind, _ in make_reference.MEASURED]:
                problems.append(f"{name} returns {seen}")

for line in problems:
    print(line, file=sys.stderr)
