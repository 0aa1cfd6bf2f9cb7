#!/usr/bin/env python3
"""usage: manual_test.py PACKAGES

The manual page must render without a warning, and each line of the help texts must be in it: in the page of the package,
and in the page of a program whose help text is hard to render.
"""

import gzip
import os
import pathlib
import shutil
import subprocess
import sys
import tarfile
import tempfile
import unittest

PACKAGING = pathlib.Path(__file__).parents[2] / "packaging"
HARD_PROGRAM = r"""#!/bin/sh
case $1 in
--version) echo 'vantrel 9.8.7' ;;
run) cat <<'TEXT'
Usage: vantrel run [options] SCRIPT...

'Quoted' words, a path C:\new\folder and
.dots at the beginning of a line - all of them are ordinary text.

Options:
  --a-rather-long-option NAME=FILE
                      explained below the option, \fBnot in bold\fR,
                      in two lines
  -- ARGUMENT...      the rest

  vantrel run --show .hidden.py
  vantrel run 'two words.py'

Exit status: 0 if all is well.
TEXT
    ;;
view) printf 'Usage: vantrel view [FILE...]\n\nOpens the viewer.\n' ;;
*) printf 'Usage: vantrel run SCRIPT...\n       vantrel view\n\n  run    runs\n  view   views\n' ;;
esac
"""


def joined(text):
    return " ".join(text.split())


def rendered(page):
    command = ["groff", "-ww", "-man", "-Tutf8", "-P-cbou", "-rHY=0", "-rLL=100n"]
    return subprocess.run(command, input=page, capture_output=True, check=True)


class ManualPage(unittest.TestCase):
    def check(self, page, program, environment):
        result = rendered(page)
        self.assertEqual(result.stderr.decode(), "", "groff complains")
        text = joined(result.stdout.decode())
        for command in [], ["run"], ["view"]:
            output = subprocess.run([program, *command, "--help"], capture_output=True, text=True, env=environment, check=True)
            self.assertIn("Usage:", output.stdout)
            for line in output.stdout.splitlines():
                self.assertIn(joined(line.replace("Usage: ", "").replace("Exit status: ", "")), text)
        version = subprocess.run([program, "--version"], capture_output=True, text=True, env=environment, check=True).stdout
        self.assertIn(version.strip(), text)
        return text

    def test_page_of_the_package(self):
        with tempfile.TemporaryDirectory() as folder:
            for package in PACKAGES.glob("*.deb"):
                subprocess.run(["dpkg-deb", "-x", package, folder], check=True)
            page = gzip.decompress(pathlib.Path(folder, "usr/share/man/man1/vantrel.1.gz").read_bytes())
            text = self.check(page, f"{folder}/usr/bin/vantrel", os.environ)
        for title in "NAME", "SYNOPSIS", "COMMANDS", "RUN", "VIEW", "EXIT STATUS", "FILES", "SEE ALSO":
            self.assertIn(f".SH {title}\n".encode(), page)
        self.assertIn("vantrel - camera viewer with Python scripting", text)

    def test_page_of_a_program_with_a_hard_help_text(self):
        with tempfile.TemporaryDirectory() as folder:
            program = pathlib.Path(folder, "vantrel")
            program.write_text(HARD_PROGRAM)
            program.chmod(0o755)
            command = [PACKAGING / "make_manual", program, "a .summary - with marks", "2026-01-02"]
            page = subprocess.run(command, capture_output=True, check=True).stdout
            text = self.check(page, program, os.environ)
        self.assertIn("vantrel - a .summary - with marks", text)
        self.assertIn("2026-01-02", text)
        self.assertIn(b"\n.TP\n\\fB\\-\\-a\\-rather\\-long\\-option\\fR", page, "the option begins a paragraph")


if __name__ == "__main__":
    if not shutil.which("groff"):
        print("groff is not installed")
        sys.exit(0)
    PACKAGES = pathlib.Path(sys.argv.pop(1))
    unittest.main()
