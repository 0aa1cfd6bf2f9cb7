"""Draws the mean brightness of a picture's rows and columns as a graph with dark background and saves it as PNG.

    ./vantrel run --show examples/line_profile.py

It reads data/scene12.tif below the working directory: this script's folder, unless --workdir sets another. It writes
line_profile/profile.png below the current folder. To use your own file, pass it as the variable `picture`:

    ./vantrel run --show --image picture=FILE examples/line_profile.py
"""
import os

import vantrel

OUTPUT = os.path.abspath("line_profile/profile.png")


def save(img: vantrel.Image, path: str) -> None:
    """Save the image. save_to_file() only logs what goes wrong, so look for the new file."""
    if os.path.isfile(path):
        os.remove(path)
    img.save_to_file(path)
    if not os.path.isfile(path):
        raise RuntimeError("cannot save " + path)


picture = globals().get("picture")
if picture is None:
    picture = vantrel.Image()
    picture.from_file("data/scene12.tif")
print(picture)

graph = vantrel.Graph()
graph.set_dark_color_theme()
for name, profiles, color in (("rows", picture.measure_row_profiles_in_rect(), (90, 200, 250)),
                              ("columns", picture.measure_column_profiles_in_rect(), (250, 180, 60))):
    series = graph.add_series()
    graph.series_set_line_color(series, *color)
    means = [sum(channel["mean"] for channel in profile) / len(profile) for profile in profiles]
    for position, mean in enumerate(means):
        graph.series_add_point(series, position, mean)
    print("%-8s %4d profiles, mean brightness from %.1f to %.1f" % (name, len(means), min(means), max(means)))

chart = vantrel.Image()
chart.alloc(1000, 500, 3, 8)
graph.draw_into_image(chart)

save(chart, OUTPUT)
print("saved", OUTPUT)
vantrel.new_view_with_image(chart, "Mean brightness of rows (blue) and columns (orange)")
