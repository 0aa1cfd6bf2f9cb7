"""Compiles each C++ block of a document by itself, as it stands.

usage: compile_snippets.py DOCUMENT HEADERS COMPILER [OPTION...]; HEADERS is the folder of the host's headers.
"""

import pathlib
import re
import subprocess
import sys
import tempfile

document, headers, *command = sys.argv[1:]
blocks = re.findall(r"^```cpp\n(.*?)^```", pathlib.Path(document).read_text(), flags=re.M | re.S)
failed = 0
with tempfile.TemporaryDirectory() as folder:
    # As they are installed: <vantrel/...>.
    pathlib.Path(folder, "vantrel").symlink_to(pathlib.Path(headers).resolve())
    for number, block in enumerate(blocks, 1):
        source = pathlib.Path(folder, f"block{number}.cpp")
        source.write_text(block)
        run = subprocess.run([*command, "-I", folder, "-fsyntax-only", str(source)], capture_output=True, text=True)
        print(f"-- block {number}: {'compiles' if run.returncode == 0 else run.stderr}")
        failed += run.returncode != 0
if not blocks:
    print(f"{document} has no C++ block", file=sys.stderr)
sys.exit(1 if failed or not blocks else 0)
