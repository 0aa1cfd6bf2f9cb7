"""Counts the bright spots of a picture, with a module of its own that stands beside it: spots.py.

    ./vantrel run --show examples/count_spots.py

The folder of a script is the first place where its imports look. If you change spots.py, the next run uses the change;
the viewer need not start again.
"""
import spots
import vantrel

LEVEL = 2000
WHITE = 4095

picture = vantrel.Image()
picture.from_file("data/scene12.tif")

found = spots.find(picture, LEVEL)
for number, spot in enumerate(found, 1):
    print("spot %d at %5.1f, %5.1f: %4d pixels" % (number, spot.x, spot.y, spot.size))
    x, y = round(spot.x), round(spot.y)
    picture.draw_pixel_line(WHITE, x - 5, y, x + 5, y)
    picture.draw_pixel_line(WHITE, x, y - 5, x, y + 5)
print(len(found), "spots are brighter than", LEVEL)
vantrel.new_view_with_image(picture, "Spots")
