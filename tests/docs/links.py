"""Checks the documents: links, pictures, folders and anchors exist, and so do the methods that texts and examples name.

usage: links.py ROOT
"""

import pathlib
import re
import sys

sys.dont_write_bytecode = True
root = pathlib.Path(sys.argv[1]).resolve()
sys.path.insert(0, str(root / "tools"))
import make_reference  # noqa: E402

# Pictures that show more than one script of the documents.
PICTURES_OF_MORE = {"viewer", "graph", "editor"}

problems = []
documents = [*sorted(root.glob("*.md")), *sorted((root / "docs").glob("*.md"))]
scripts = [*sorted((root / "examples").rglob("*.py")), *sorted((root / "docs/pictures").glob("*.py"))]


def without_code(text):
    return re.sub(r"^```.*?^```", "", text, flags=re.M | re.S)


def anchors(document):
    return {make_reference.anchor(heading.strip().replace("`", ""))
            for heading in re.findall(r"^#+ (.*)$", without_code(document.read_text()), flags=re.M)}


def check_link(document, link):
    name, _, anchor = link.partition("#")
    target = (document.parent / name).resolve() if name else document
    if not target.exists():
        problems.append(f"{document.name}: {link} does not exist")
    elif anchor and anchor not in anchors(target):
        problems.append(f"{document.name}: {target.name} has no heading #{anchor}")


linked = set()
for document in documents:
    for link in re.findall(r"\]\(([^)\s]+)\)", without_code(document.read_text())):
        if not re.match(r"[a-z]+:", link):
            check_link(document, link)
            linked.add((document.parent / link.partition("#")[0]).resolve())

# Nothing is left over: each picture is shown somewhere, and each document can be reached.
for path in [*(root / "docs").glob("*.md"), *(root / "docs/pictures").glob("*.png")]:
    if path.resolve() not in linked:
        problems.append(f"{path.relative_to(root)}: no document links to it")

# The pictures beside a script are made from that very script.
shown = [block for document in documents
         for block in re.findall(r"^```python\n(.*?)^```", document.read_text(), flags=re.M | re.S)]
for document in documents:
    for name in re.findall(r"\]\((?:docs/)?pictures/(\w+)\.png\)", document.read_text()):
        script = root / "docs/pictures" / f"{name}.py"
        if name not in PICTURES_OF_MORE and script.read_text() not in shown:
            problems.append(f"{script.relative_to(root)} is not the script that {document.name} shows")

# A variable tells by its name what it holds.
known = {"vantrel": set(), "Image": set(), "Camera": set(), "Graph": set()}
for _, entries in make_reference.read_source():
    for entry in entries:
        known[entry.owner or "vantrel"].add(entry.name)
for parameter in make_reference.CAMERA_PARAMETERS:
    known["Camera"] |= {f"{word}_{parameter.name}" for word in ("get", "set", "is", "enable", "disable")}
    known["Camera"] |= {f"get_{parameter.name}_{word}" for word in ("minimum", "maximum", "increment")}
known["vantrel"] |= {"Image", "Camera", "Graph"}
variables = {"vantrel": "vantrel", "image": "Image", "img": "Image", "camera": "Camera", "cam": "Camera", "graph": "Graph",
             "Image": "Image", "Camera": "Camera", "Graph": "Graph"}
for path in [*documents, *scripts]:
    for variable, name in re.findall(r"(?<![\w.])(" + "|".join(variables) + r")\.(\w+)\b(?=\()", path.read_text()):
        if name not in known[variables[variable]]:
            problems.append(f"{path.relative_to(root)}: {variable}.{name}() does not exist")

for problem in problems:
    print(problem, file=sys.stderr)
sys.exit(1 if problems else 0)
