"""Rows for operations on pixels, beside OpenCV and NumPy.

    build/bin/vantrel run bench/scripts/pixel_rows.py -- [FILTER]
"""

import cv2
import numpy
from PIL import Image as PillowImage

import vantrel
from pairs import compare, group

WIDTH, HEIGHT = 1920, 1200
HALF = (WIDTH // 2, HEIGHT // 2)

# Scripts run on one thread, so the peers do too.
cv2.setNumThreads(1)


def image_of(a):
    img = vantrel.Image()
    img.from_array(a)
    return img


def gradient(dtype, top, channels=1):
    shape = (HEIGHT, WIDTH) if channels == 1 else (HEIGHT, WIDTH, channels)
    values = numpy.arange(numpy.prod(shape), dtype=numpy.uint64) * 2654435761 % (top + 1)
    return values.reshape(shape).astype(dtype)


GREY8, GREY12, COLOUR8 = gradient("u1", 255), gradient("u2", 4095), gradient("u1", 255, 3)
GREY16, COLOUR12 = gradient("u2", 65535), gradient("u2", 4095, 3)
UNIT = gradient("f4", 65535) / numpy.float32(65535)


def single_pixels():
    group("Single pixels and lines")

    def get():
        method, pillow = image_of(GREY8).get_pixel_value, PillowImage.fromarray(GREY8).getpixel
        return lambda: method(700, 500), lambda: pillow((700, 500))

    def put():
        method, pillow = image_of(GREY8).set_pixel_value, PillowImage.fromarray(GREY8).putpixel
        return lambda: method(9, 700, 500), lambda: pillow((700, 500), 9)

    def get_item():
        method, item = image_of(GREY8).get_pixel_value, GREY8.item
        return lambda: method(700, 500), lambda: item(500, 700)

    def put_item():
        method, item = image_of(GREY8).set_pixel_value, GREY8.copy().itemset
        return lambda: method(9, 700, 500), lambda: item(500, 700, 9)

    def line(y2):
        def prepare():
            draw, drawn, cv_line = image_of(GREY8).draw_pixel_line, GREY8.copy(), cv2.line
            return lambda: draw(255, 10, 20, 1009, y2), lambda: cv_line(drawn, (10, 20), (1009, y2), 255)
        return prepare

    compare("get_pixel_value", "Pillow getpixel", 1 / 3, get)
    compare("get_pixel_value", "a.item", 2.0, get_item)
    compare("set_pixel_value", "Pillow putpixel", 1 / 3, put)
    compare("set_pixel_value", "a.itemset", 2.0, put_item)
    compare("draw_pixel_line, 1000 pixels", "cv2.line", 2.0, line(620))
    compare("draw_pixel_line, 1000 in a row", "cv2.line", None, line(20))


def conversions():
    group("Conversions")
    compare("to_rgb, 8 bit", "cv2.cvtColor", 1.0,
            lambda: (image_of(GREY8).to_rgb, lambda: cv2.cvtColor(GREY8, cv2.COLOR_GRAY2BGRA)))
    compare("to_rgb, 3 x 8 bit", "cv2.cvtColor", 1.0,
            lambda: (image_of(COLOUR8).to_rgb, lambda: cv2.cvtColor(COLOUR8, cv2.COLOR_BGR2BGRA)))
    compare("to_rgb, 12 bit in 16", "cv2.convertScaleAbs, cvtColor", 1.0, lambda: (
        image_of(GREY12).to_rgb,
        lambda: cv2.cvtColor(cv2.convertScaleAbs(GREY12, alpha=255 / 4095), cv2.COLOR_GRAY2BGRA)))
    compare("to_rgb, float", "cv2.convertScaleAbs, cvtColor", 1.0, lambda: (
        image_of(UNIT).to_rgb, lambda: cv2.cvtColor(cv2.convertScaleAbs(UNIT, alpha=255), cv2.COLOR_GRAY2BGRA)))
    compare("get_image_data_numpy, 3 x 8 bit", "cv2.cvtColor", 1.1, lambda: (
        image_of(COLOUR8).get_image_data_numpy, lambda: cv2.cvtColor(COLOUR8, cv2.COLOR_BGR2RGB)))

    def bits(a, *arguments):
        img = image_of(a)
        return lambda: img.convert_bpc(*arguments)

    compare("convert_bpc, 8 to 16 bit", "cv2.multiply", 0.5,
            lambda: (bits(GREY8, 16), lambda: cv2.multiply(GREY8, 257, dtype=cv2.CV_16U)))
    compare("convert_bpc, 12 to 8 bit", "cv2.convertScaleAbs", 1.2,
            lambda: (bits(GREY12, 8), lambda: cv2.convertScaleAbs(GREY12, alpha=255 / 4095)))
    compare("convert_bpc, 16 to 8 bit", "cv2.convertScaleAbs", 1.2,
            lambda: (bits(GREY16, 8), lambda: cv2.convertScaleAbs(GREY16, alpha=1 / 257)))
    compare("convert_bpc, 8 to 16 bit, keeping values", "a.astype", 1.1,
            lambda: (bits(GREY8, 16, False), lambda: GREY8.astype("u2")))
    compare("convert_bpc, 8 to 32 bit, keeping values", "a.astype", 1.1,
            lambda: (bits(GREY8, 32, False), lambda: GREY8.astype("u4")))
    low = GREY12 & 255
    compare("convert_bpc, 16 to 8 bit, keeping values", "a.astype", 1.1,
            lambda: (bits(low, 8, False), lambda: low.astype("u1")))
    compare("convert_bpc, 12 to 16 bit, keeping values", "a.copy()", 1.1,
            lambda: (bits(GREY12, 16, False), GREY12.copy))


def arithmetic():
    group("Arithmetic")
    for name, a in (("8 bit", GREY8), ("3 x 8 bit", COLOUR8), ("12 bit in 16", GREY12), ("16 bit", GREY16),
                    ("float", UNIT)):

        def sums(method, peer):
            img, other, same = image_of(a), image_of(a), a.copy()
            function = getattr(img, method)
            return lambda: function(other), lambda: peer(same, a, same)

        # Repeated sums reach the largest value, and repeated differences 0. Neither changes the time.
        compare("add, " + name, "cv2.add", 1.02, lambda: sums("add", cv2.add))
        compare("subtract, " + name, "cv2.subtract", 1.02, lambda: sums("subtract", cv2.subtract))
    for name, a, goal in (("8 bit", GREY8, 1.5), ("16 bit", GREY16, 1.2)):

        def integers():
            divide, same = image_of(a).divide_by_value, a.copy()
            return lambda: divide(3), lambda: numpy.floor_divide(same, 3, same)

        compare("divide_by_value, " + name, "numpy.floor_divide", goal, integers)

    def floats():
        divide, same = image_of(UNIT).divide_by_value, UNIT.copy()
        return lambda: divide(-1), lambda: numpy.divide(same, -1, same)  # no denormal values however often it runs

    compare("divide_by_value, float", "numpy.divide", 1.05, floats)


def geometry():
    group("Geometry")
    for name, a in (("8 bit", GREY8), ("12 bit in 16", GREY12), ("3 x 8 bit", COLOUR8)):

        def crop(x, y, w, h):
            method = image_of(a).crop
            return lambda: method(x, y, w, h), a[y:y + h, x:x + w].copy

        compare("crop 640 x 480, " + name, "slice copy", 1.05, lambda: crop(600, 300, 640, 480))
        compare("crop 1900 x 1180, " + name, "slice copy", 1.05, lambda: crop(10, 10, 1900, 1180))
        compare("resize to half, " + name, "cv2.resize, area", None, lambda: (
            (lambda resize: lambda: resize(*HALF, 0, 0, 0, 0))(image_of(a).resize),
            lambda: cv2.resize(a, HALF, interpolation=cv2.INTER_AREA)))
        compare("resize to 1.5, " + name, "cv2.resize, linear", None, lambda: (
            (lambda resize: lambda: resize(2880, 1800, 0, 0, 0, 0))(image_of(a).resize),
            lambda: cv2.resize(a, (2880, 1800))))


def measuring():
    group("Measuring")
    for name, a in (("8 bit", GREY8), ("12 bit in 16", GREY12), ("float", UNIT)):

        def opencv():
            cv2.meanStdDev(a)
            cv2.minMaxLoc(a)

        def arrays():
            a.mean(), a.std(), a.min(), a.max()

        compare("measure_rect, " + name, "cv2.meanStdDev, minMaxLoc", 1.5, lambda: (image_of(a).measure_rect, opencv))
        compare("measure_rect, " + name, "NumPy mean, std, min, max", 1 / 5, lambda: (image_of(a).measure_rect, arrays))
    one_read = numpy.frombuffer(COLOUR8.tobytes(), "u8")
    compare("measure_rect, 3 x 8 bit", "one read of memory (numpy.max of 64-bit words)", 4.0,
            lambda: (image_of(COLOUR8).measure_rect, one_read.max))

    def colours():
        cv2.meanStdDev(COLOUR8)
        for channel in cv2.split(COLOUR8):
            cv2.minMaxLoc(channel)

    compare("measure_rect, 3 x 8 bit", "cv2.meanStdDev, split, minMaxLoc", 1.0,
            lambda: (image_of(COLOUR8).measure_rect, colours))
    for name, a in (("8 bit", GREY8), ("12 bit in 16", GREY12), ("3 x 8 bit", COLOUR8), ("float", UNIT)):

        def reduced():
            cv2.reduce(a, 0, cv2.REDUCE_AVG, dtype=cv2.CV_32F)
            cv2.reduce(a, 0, cv2.REDUCE_MIN)
            cv2.reduce(a, 0, cv2.REDUCE_MAX)

        def measured():
            return image_of(a).measure_column_profiles_in_rect, reduced

        compare("column profiles, " + name, "cv2.reduce, three values", 1.0, measured)


single_pixels()
conversions()
arithmetic()
geometry()
measuring()
