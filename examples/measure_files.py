"""Measures picture files and prints one line for each.

    ./vantrel run examples/measure_files.py -- FILE...
    ./vantrel run examples/measure_files.py -- --percent --channel 1 FILE...

The arguments behind "--" are those of the script; "-- --help" lists them. The exit status is 1 if a file cannot be
measured. The section "Many files" of the guide shows how to measure many files at the same time.
"""
import argparse
import os
import sys

import vantrel

parser = argparse.ArgumentParser(description="Measures picture files.")
parser.add_argument("files", nargs="+", metavar="FILE", help="a picture")
parser.add_argument("--channel", type=int, default=0, help="the channel to measure (default: %(default)s)")
parser.add_argument("--percent", action="store_true", help="print percent of the largest value that the bits can hold")


def measure(path: str, channel: int, percent: bool) -> str:
    image = vantrel.Image()
    # The viewer looks for a relative path in the folder of the script, but the user means the current folder.
    image.from_file(os.path.abspath(path))
    full = 2 ** image.bpc - 1  # raises an error if the file could not be read; the log says why
    stats = image.measure_rect()[channel]
    factor = 100 / full if percent else 1
    return "%-24s%12.3f%12.3f" % (os.path.basename(path), factor * stats["mean"], factor * stats["stdev"])


options = parser.parse_args()
print("%-24s%12s%12s" % ("file", "mean", "deviation"))
failed = []
for path in options.files:
    try:
        print(measure(path, options.channel, options.percent))
    except Exception as error:
        print("%s: %s" % (path, error), file=sys.stderr)
        failed.append(path)
if failed:
    sys.exit(1)
