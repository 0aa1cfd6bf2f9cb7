#!/usr/bin/env python3
"""The checks of house.py find what they look for, in small trees that break one rule each."""

import os
import subprocess
import sys
import tempfile
import unittest

CHECKER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "house.py")


def findings(check, files):
    """What a check prints about a tree with these files, a dictionary of paths and texts."""
    with tempfile.TemporaryDirectory() as root:
        for path, text in files.items():
            full = os.path.join(root, path)
            os.makedirs(os.path.dirname(full), exist_ok=True)
            with open(full, "w", encoding="utf-8") as file:
                file.write(text)
        result = subprocess.run(
            [sys.executable, CHECKER, check, root], stdout=subprocess.PIPE, universal_newlines=True, check=False
        )
        lines = result.stdout.splitlines()
        assert (result.returncode == 0) == (not lines), result
        return lines


class House(unittest.TestCase):
    def test_an_arrow_against_the_design_is_found(self):
        found = findings(
            "arrows",
            {"viewer/views/A.cpp": '#include "window/B.h"\n', "viewer/window/B.h": '#include "views/C.h"\n',
             "viewer/views/C.h": ""},
        )
        self.assertEqual(found, ["viewer/views/A.cpp: viewer/views may not include viewer/window (B.h)"])

    def test_an_arrow_from_the_plugin_into_the_core_is_found(self):
        found = findings(
            "arrows", {"plugins/script/image/A.cpp": '#include "buffers/B.h"\n', "core/buffers/B.h": ""}
        )
        self.assertEqual(len(found), 1)

    def test_an_unknown_room_and_an_unknown_header_are_found(self):
        found = findings("arrows", {"viewer/attic/A.cpp": "", "core/B.cpp": '#include "Nowhere.h"\n'})
        self.assertEqual(len(found), 2)

    def test_the_interpreters_header_is_kept_in_its_place(self):
        found = findings(
            "libraries",
            {"plugins/script/support/PythonApi.h": "#include <Python.h>\n", "plugins/script/A.cpp": "#include <Python.h>\n"},
        )
        self.assertEqual(found, ["plugins/script/A.cpp: <Python.h> belongs to plugins/script/support/PythonApi.h"])

    def test_two_headers_of_one_name_are_found(self):
        self.assertEqual(len(findings("names", {"core/A.h": "", "viewer/A.h": ""})), 1)

    def test_a_crowded_room_and_a_long_file_are_found(self):
        files = {f"core/F{i}.cpp": "" for i in range(21)}
        self.assertEqual(findings("sizes", files), ["core has 21 files, more than 20"])
        self.assertEqual(len(findings("sizes", {"core/A.cpp": "\n" * 351})), 1)
        self.assertEqual(findings("sizes", {"core/A.cpp": "\n" * 350}), [])

    def test_an_unsorted_list_is_found(self):
        self.assertEqual(len(findings("lists", {"core/CMakeLists.txt": "add(\n    b.cpp\n    a.cpp\n)\n"})), 1)
        self.assertEqual(findings("lists", {"core/CMakeLists.txt": "add(\n    b.cpp\n    a/a.cpp\n    ../a.cpp\n)\n"}), [])


if __name__ == "__main__":
    unittest.main()
