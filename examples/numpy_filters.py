"""Flat-field correction of 12-bit pictures with NumPy.

    ./vantrel run --show examples/numpy_filters.py

A lens passes less light to the corners, and a sensor adds an offset to each pixel. Two calibration pictures remove both
errors: a dark one (no light) and a flat one (an evenly lit surface):

    corrected = (raw - dark) * mean(flat - dark) / (flat - dark)

This script calculates its pictures, so that it can compare the result with the truth. With a camera that runs, get each
picture with vantrel.get_view_image(), or let the user take it with cam.ask_user_capture_image().
"""
import sys

import vantrel

try:
    import numpy
except ImportError:
    # Do not call sys.exit(): it would end the whole application.
    raise RuntimeError("numpy_filters needs NumPy, which is not installed for this Python "
                       + sys.version.split()[0]) from None

WIDTH, HEIGHT, FULL_SCALE = 640, 480, 4095


def to_image(values: "numpy.ndarray") -> vantrel.Image:
    """A 12-bit image from rows of numbers."""
    rounded = numpy.ascontiguousarray(numpy.clip(numpy.rint(values), 0, FULL_SCALE).astype(numpy.uint16))
    img = vantrel.Image()
    img.from_array(rounded)
    # from_array() sets bpc to the bits that the values use, which may be fewer than 12.
    return img.convert_bpc(12, False)


def to_array(img: vantrel.Image) -> "numpy.ndarray":
    """A copy of the values as rows of numbers. (The axes of an image's own array are x, y.)"""
    return numpy.asarray(img).T.astype(float)


def unevenness(img: vantrel.Image) -> float:
    """The difference between the brightest and darkest of nine regions, in percent of the brightest."""
    size = 40
    means = [img.measure_rect(x, y, size, size)[0]["mean"]
             for x in (0, (WIDTH - size) // 2, WIDTH - size) for y in (0, (HEIGHT - size) // 2, HEIGHT - size)]
    return 100.0 * (max(means) - min(means)) / max(means)


# The lens, the sensor's offset, and a scene of stripes.
noise = numpy.random.default_rng(12)
x, y = numpy.meshgrid(numpy.linspace(-1, 1, WIDTH), numpy.linspace(-1, 1, HEIGHT))
vignetting = 1.0 - 0.35 * (x * x + y * y) / 2
offset = 64 + 8 * numpy.sin(40 * x)
scene = 900 + 600 * numpy.sign(numpy.sin(12 * x))


def exposure(light: "numpy.ndarray") -> vantrel.Image:
    return to_image(light * vignetting + offset + noise.normal(0, 3, light.shape))


dark = exposure(numpy.zeros((HEIGHT, WIDTH)))
flat = exposure(numpy.full((HEIGHT, WIDTH), 3000.0))
raw = exposure(scene)
print("raw      ", raw)

dark_values, flat_values = to_array(dark), to_array(flat)
gain = (flat_values - dark_values).mean() / numpy.maximum(flat_values - dark_values, 1)


def correct(img: vantrel.Image) -> vantrel.Image:
    return to_image((to_array(img) - dark_values) * gain)


corrected = correct(raw)
print("corrected", corrected)

# The correction works if an even surface looks even.
surface = exposure(numpy.full((HEIGHT, WIDTH), 2000.0))
before, after = unevenness(surface), unevenness(correct(surface))
print("an even surface varies by %.1f %% before and %.1f %% after the correction" % (before, after))
if after > 1.0:
    raise RuntimeError("the corrected picture is still uneven")

vantrel.new_view_with_image(raw, "Raw")
vantrel.new_view_with_image(corrected, "Corrected")
