"""Measures a picture and prints tables: statistics of the whole picture, and profiles of its rows and columns.

    ./vantrel run examples/measure.py

It reads data/scene12.tif below the working directory: this script's folder, unless --workdir sets another. To measure
your own file, pass it as the variable `picture`:

    ./vantrel run --image picture=FILE examples/measure.py
"""
from typing import Any, Dict, List

import vantrel

COLUMNS = ("mean", "stdev", "rms", "min", "max")
LINES_SHOWN = 8


def print_head(first: str) -> None:
    print("%-16s" % first + "".join("%12s" % name for name in COLUMNS))


def print_line(name: str, stats: Dict[str, Any]) -> None:
    print("%-16s" % name + "".join("%12.3f" % stats[column] for column in COLUMNS))


def print_profiles(title: str, profiles: List[List[Dict[str, Any]]]) -> None:
    """Print evenly spaced profiles only, to keep the table short."""
    print()
    print_head(title)
    step = max(1, len(profiles) // LINES_SHOWN)
    for position in range(0, len(profiles), step):
        for stats in profiles[position]:
            print_line("%5d %s" % (position, stats["name"]), stats)


picture = globals().get("picture")
if picture is None:
    picture = vantrel.Image()
    picture.from_file("data/scene12.tif")

print(picture)
print()
print_head("whole picture")
for channel in picture.measure_rect():
    print_line(channel["name"], channel)

print()
print_head("quarter")
half_width, half_height = picture.width // 2, picture.height // 2
for name, x, y in (("top left", 0, 0), ("top right", half_width, 0), ("bottom left", 0, half_height),
                   ("bottom right", half_width, half_height)):
    for channel in picture.measure_rect(x, y, half_width, half_height):
        print_line(name if picture.channels == 1 else name + " " + channel["name"], channel)

print_profiles("row", picture.measure_row_profiles_in_rect())
print_profiles("column", picture.measure_column_profiles_in_rect())

# Rows that vary little show no detail.
most_varied = max(enumerate(picture.measure_row_profiles_in_rect()), key=lambda entry: entry[1][0]["stdev"])[0]
print("\nthe row that varies most is", most_varied)
