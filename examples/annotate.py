"""Marks the brightest pixel of a picture: a frame around it, a cross through it, a scale along the lower edge.

    ./vantrel run --show examples/annotate.py

It reads data/scene12.tif below the working directory: this script's folder, unless --workdir sets another. It writes
annotate/marked.png below the current folder.
"""
import os

import vantrel

OUTPUT = os.path.abspath("annotate/marked.png")
MARK_SIZE = 24
RED, GREEN, YELLOW = (0, 0, 255), (0, 255, 0), (0, 255, 255)  # colours are stored blue first


def draw_line(img: vantrel.Image, color: tuple, x1: int, y1: int, x2: int, y2: int) -> None:
    """Draw a line into each channel, since draw_pixel_line() draws into one channel only."""
    for channel, value in enumerate(color):
        img.draw_pixel_line(value, x1, y1, x2, y2, channel)


def draw_frame(img: vantrel.Image, color: tuple, x1: int, y1: int, x2: int, y2: int) -> None:
    for channel, value in enumerate(color):
        img.draw_pixel_rect(value, x1, y1, x2, y2, channel)


def brightest(profiles: list) -> int:
    return max(range(len(profiles)), key=lambda position: profiles[position][0]["max"])


def save(img: vantrel.Image, path: str) -> None:
    """Save the image. save_to_file() only logs what goes wrong, so look for the new file."""
    if os.path.isfile(path):
        os.remove(path)
    img.save_to_file(path)
    if not os.path.isfile(path):
        raise RuntimeError("cannot save " + path)


source = vantrel.Image()
source.from_file("data/scene12.tif")

# The brightest pixel lies where the row and the column with the highest maximum cross.
x = brightest(source.measure_column_profiles_in_rect())
y = brightest(source.measure_row_profiles_in_rect())
print("brightest column %d, brightest row %d, value %d there" % (x, y, source.get_pixel_value(x, y)))

# The file stores 12-bit values in 16 bits. With bpc set to 12, the full scale of 12 bits becomes that of the colours.
marked = source.convert_bpc(12, False).to_rgb()
last_x, last_y = marked.width - 1, marked.height - 1
left, top = max(0, x - MARK_SIZE), max(0, y - MARK_SIZE)
right, bottom = min(last_x, x + MARK_SIZE), min(last_y, y + MARK_SIZE)
draw_frame(marked, YELLOW, left, top, right, bottom)
draw_line(marked, RED, left, top, right, bottom)
draw_line(marked, RED, left, bottom, right, top)

# A scale: a mark every 10 pixels, a longer one every 50.
for position in range(0, marked.width, 10):
    draw_line(marked, GREEN, position, last_y, position, max(0, last_y - (12 if position % 50 == 0 else 6)))

save(marked, OUTPUT)
print("saved", OUTPUT)
vantrel.new_view_with_image(marked, "Marked")
