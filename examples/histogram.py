"""Shows the histogram of a picture's channels as a graph in a new view.

    ./vantrel run --show examples/histogram.py

It reads data/scene12.tif below the working directory: this script's folder, unless --workdir sets another. To use your
own file, pass it as the variable `picture`:

    ./vantrel run --show --image picture=FILE examples/histogram.py
"""
from typing import List

import vantrel

SIZE = (800, 500)
# One line for each channel. Colours are stored blue first, so the lines have the same order.
NAMES_AND_COLORS = {1: [("grey", (110, 110, 110))],
                    3: [("blue", (30, 60, 230)), ("green", (0, 150, 40)), ("red", (220, 30, 30))]}


def channel_bytes(img: vantrel.Image, channel: int) -> bytes:
    """The values of one channel of an 8-bit image, without the padding that rows may have."""
    data = img.get_image_data_raw()
    stride, used = len(data) // img.height, img.width * img.channels
    return b"".join(data[y * stride + channel:y * stride + used:img.channels] for y in range(img.height))


def histogram(img: vantrel.Image, channel: int) -> List[int]:
    values = channel_bytes(img, channel)
    return [values.count(value) for value in range(256)]


picture = globals().get("picture")
if picture is None:
    picture = vantrel.Image()
    picture.from_file("data/scene12.tif")
print(picture)
if picture.bpc > 8:
    picture = picture.convert_bpc(8)
if picture.channels not in NAMES_AND_COLORS:
    picture = picture.to_rgb().extract_channel(0) if picture.channels == 2 else picture.to_rgb()
lines = NAMES_AND_COLORS[1 if picture.channels == 1 else 3]

graph = vantrel.Graph()
graph.set_x_axis_range(0, 255)
for channel, (name, color) in enumerate(lines):
    counts = histogram(picture, channel)
    series = graph.add_series()
    graph.series_set_line_color(series, *color)
    for value, count in enumerate(counts):
        graph.series_add_point(series, value, count)
    most = max(range(256), key=counts.__getitem__)
    print("%-6s most pixels have the value %d: %d of %d" % (name, most, counts[most], sum(counts)))

chart = vantrel.Image()
chart.alloc(SIZE[0], SIZE[1], 3, 8)
graph.draw_into_image(chart)
vantrel.new_view_with_image(chart, "Histogram")
