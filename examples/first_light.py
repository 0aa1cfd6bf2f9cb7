"""First light: opens a 12-bit picture, changes it through NumPy and saves the result.

    ./vantrel run --show examples/first_light.py

It reads data/scene12.tif below the working directory: this script's folder, unless --workdir sets another. It writes to
the folder first_light below the current folder.
"""
import os
import sys

import vantrel

try:
    import numpy
except ImportError:
    # Do not call sys.exit(): it would end the whole application.
    raise RuntimeError("first_light needs NumPy, which is not installed for this Python "
                       + sys.version.split()[0]) from None

# Open the file in a view and get a copy of the image that the view shows.
view = vantrel.open_file("data/scene12.tif")
print("opened data/scene12.tif in view", view)

img = vantrel.get_view_image(view)
print(img)
for name in ("width", "height", "channels", "bpc", "rgb", "padding_x", "data_saturation"):
    print("  %-16s %s" % (name, getattr(img, name)))

# NumPy uses the image's own memory without a copy. The first axis is x, the second is y.
pixels = numpy.asarray(img)
shared = pixels.__array_interface__["data"][0] == img.bp
print("array", pixels.shape, pixels.dtype, "shares the image's memory:", shared)
print("values from %d to %d, mean %.1f" % (pixels.min(), pixels.max(), pixels.mean()))

# Remove the uneven light: fit a plane plus a bowl to the darker half of the picture and subtract it.
width, height = pixels.shape
x, y = numpy.meshgrid(numpy.linspace(-1, 1, width), numpy.linspace(-1, 1, height), indexing="ij")
terms = numpy.stack([numpy.ones_like(x), x, y, x * x, x * y, y * y], axis=-1)
dark = pixels < numpy.median(pixels)
factors = numpy.linalg.lstsq(terms[dark], pixels[dark].astype(float), rcond=None)[0]
flat = pixels - terms @ factors

# Writing to the array changes the image itself. Stretch the values to the full 12 bits and draw a white frame.
full = 2 ** img.bpc - 1
pixels[:] = numpy.clip(flat * (full / flat.max()), 0, full)
pixels[:2, :] = pixels[-2:, :] = full
pixels[:, :2] = pixels[:, -2:] = full
print("changed through the array: values from %d to %d, mean %.1f" % (pixels.min(), pixels.max(), pixels.mean()))

# The view gets a copy of the image. save_to_file() saves what the active view shows and creates missing folders. It only
# logs what goes wrong, so remove an old file first and look for the new one.
result = vantrel.new_view_with_image(img, "First light")
for path in (os.path.abspath("first_light/scene.png"), os.path.abspath("first_light/scene.tif")):
    if os.path.isfile(path):
        os.remove(path)
    vantrel.activate_view(result)
    vantrel.save_to_file(path)
    if not os.path.isfile(path):
        raise RuntimeError("cannot save " + path)
    vantrel.open_file(path)
    same = numpy.array_equal(numpy.asarray(vantrel.get_view_image()), pixels)
    print("saved", path + ", read back with the same values:", same)
vantrel.tile_views()
