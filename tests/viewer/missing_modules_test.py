#!/usr/bin/env python3
"""What the viewer says where its modules are missing. usage: missing_modules_test.py PROGRAM CORE_LIBRARY

A copy of the core library in another folder looks for the modules there.
"""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest

PROGRAM, CORE = sys.argv[1:3]

SCRIPT = """
import vantrel
image = vantrel.Image()
image.alloc(8, 8, 1, 8)
vantrel.new_view_with_image(image)
vantrel.save_to_file("new.png")
print("opened" if image.from_file("old.png") else "not opened")
print("recording", vantrel.record_video_to_file("new.avi"))
"""


class MissingModules(unittest.TestCase):
    def test_files_fail_with_a_reason_and_the_script_goes_on(self):
        with tempfile.TemporaryDirectory() as folder:
            library = os.path.join(folder, "lib")
            os.mkdir(library)
            shutil.copy(CORE, os.path.join(library, "libvantrel_core.so.1"))
            with open(os.path.join(folder, "script.py"), "w", encoding="utf-8") as script:
                script.write(SCRIPT)
            with open(os.path.join(folder, "old.png"), "wb") as png:  # its header is whole, its pixels are of no matter
                png.write(b"\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\0\x01\0\0\0\x01\x08\0\0\0\0\0\0\0\0\0\0\0\0IEND\0\0\0\0")
            environment = dict(os.environ, LD_LIBRARY_PATH="lib", QT_QPA_PLATFORM="offscreen")
            run = subprocess.run([PROGRAM, "run", "script.py"], cwd=folder, env=environment, stdout=subprocess.PIPE,
                                 stderr=subprocess.PIPE, universal_newlines=True, check=False)
            self.assertIn("recording False", run.stdout, run.stderr)
            missing = os.path.join(os.path.realpath(library), "vantrel")
            for beginning, module in (
                    ("Cannot save image file {}/new.png: the library for image files", "core1/libvantrel_codecs.so"),
                    ("Cannot read image file {}/old.png: the library for image files", "core1/libvantrel_codecs.so"),
                    ("Cannot record to {}/new.avi: the library for videos", "viewer/libvantrel_video.so")):
                reason = f" cannot be loaded: {missing}/{module}: cannot open shared object file"
                self.assertIn(beginning.format(folder) + reason, run.stderr)
            self.assertEqual(sorted(os.listdir(folder)), ["lib", "old.png", "script.py"])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
