"""Draws the mean brightness of a picture's rows and columns as a graph with dark background and saves it as PNG.

    ./vantrel run examples/line_profile.py

It reads data/scene12.tif and writes line_profile/profile.png. Both paths start at the working directory: this script's
folder, unless --workdir sets another. To use your own file, pass it as the variable `picture`:

    ./vantrel run --image picture=FILE examples/line_profile.py
"""
import vantrel

OUTPUT = "line_profile/profile.png"

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

chart.save_to_file(OUTPUT)
print("saved", OUTPUT)
