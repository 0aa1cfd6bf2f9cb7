"""Runs the code of docs/guide.md with the viewer, each chapter and each section as one script.

usage: run_guide.py PROGRAM GUIDE [OPTION...]; every run gets the options.
"""

import pathlib
import re
import subprocess
import sys
import tempfile

program, guide, *options = sys.argv[1:]
WITHOUT_CODE = {"The viewer", "Writing scripts", "Python in the viewer"}
answers = {"Talking to the user": ["--answer", "Wafer 7", "--answer", "Go on"]}

failed = 0
chapters = re.split(r"^###? ", pathlib.Path(guide).read_text(), flags=re.M)[1:]
for chapter in chapters:
    title = chapter.split("\n", 1)[0]
    blocks = re.findall(r"```python\n(.*?)```", chapter, flags=re.S)
    if title in WITHOUT_CODE:
        continue
    assert blocks, f"the chapter {title!r} has no code"
    with tempfile.TemporaryDirectory() as folder:
        script = pathlib.Path(folder, "chapter.py")
        script.write_text("\n".join(blocks))
        run = subprocess.run([program, "run", *options, *answers.get(title, []), str(script)],
                             cwd=folder, capture_output=True, text=True, timeout=120)
    lacks_library = "is not installed" in run.stderr
    if run.returncode != 0 and not lacks_library:
        failed += 1
        print(f"-- {title}: status {run.returncode}\n{run.stdout}{run.stderr}")
    else:
        print(f"-- {title}: {'skipped, a library is missing' if lacks_library else 'ran'}")
sys.exit(1 if failed else 0)
