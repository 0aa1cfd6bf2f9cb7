"""Image files and prints, beside OpenCV, Pillow and Python.

Files are on a file system in memory where there is one: the time of a disk is not compared.
"""

import os
import tempfile

import cv2
import numpy
import pairs
from PIL import Image as PillowImage

import vantrel

WIDTH, HEIGHT = 1920, 1200
FORMATS = (("grey BMP", ".bmp", 1, numpy.uint8), ("colour BMP", ".bmp", 3, numpy.uint8),
           ("8-bit PGM", ".pgm", 1, numpy.uint8), ("16-bit PGM", ".pgm", 1, numpy.uint16),
           ("colour PPM", ".ppm", 3, numpy.uint8))

folder = tempfile.mkdtemp(dir="/dev/shm" if os.access("/dev/shm", os.W_OK) else None)
cv2.setNumThreads(1)


def noise(channels, kind):
    shape = (HEIGHT, WIDTH, channels) if channels > 1 else (HEIGHT, WIDTH)
    return numpy.random.default_rng(7).integers(0, numpy.iinfo(kind).max, shape, kind, True)


def in_folder(name):
    return os.path.join(folder, name)


def saving(extension, channels, kind):
    """Save what the active view shows, and the same array with OpenCV."""
    pixels = noise(channels, kind)
    image = vantrel.Image()
    cv2.imwrite(in_folder("source" + extension), pixels)
    image.from_file(in_folder("source" + extension))
    vantrel.new_view_with_image(image)
    ours, theirs = in_folder("ours" + extension), in_folder("theirs" + extension)
    return lambda: vantrel.save_to_file(ours), lambda: cv2.imwrite(theirs, pixels)


def loading(extension, channels, kind):
    file = in_folder("load" + extension)
    cv2.imwrite(file, noise(channels, kind))
    image = vantrel.Image()
    return lambda: image.from_file(file), lambda: cv2.imread(file, cv2.IMREAD_UNCHANGED)


def loading_beside_pillow(read):
    def prepare():
        ours, _ = loading(".bmp", 1, numpy.uint8)
        return ours, lambda: read(PillowImage.open(in_folder("load.bmp")))

    return prepare


pairs.group("Files")
for name, *form in FORMATS:
    pairs.compare(f"save {name}", "cv2.imwrite", 1.1, lambda form=form: saving(*form))
    pairs.compare(f"load {name}", "cv2.imread", 1.1, lambda form=form: loading(*form))
pairs.compare("load grey BMP, pixels read", "numpy.array(PIL.Image.open())", 1, loading_beside_pillow(numpy.array))
pairs.compare("load grey BMP, nothing read", "PIL.Image.open().load()", 1,
              loading_beside_pillow(PillowImage.Image.load))

for name in os.listdir(folder):
    os.remove(in_folder(name))
os.rmdir(folder)
