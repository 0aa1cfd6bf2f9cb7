"""Measures vantrel.Image beside NumPy, OpenCV and Pillow, each pair in one run.

    build/bin/vantrel run bench/image_bench.py

The functions of a row take turns, and the best turn of each counts, so that other work of the machine affects all of
them alike. A ratio below 1 means that vantrel is faster.
"""

import gc
import os
import time

import cv2
import numpy
from PIL import Image as PillowImage

import vantrel

WIDTH, HEIGHT = 1920, 1200
TURNS = 25
TURN_SECONDS = 0.01

# Scripts run on one thread, so the peers do too.
cv2.setNumThreads(1)


def best_times(functions):
    """The seconds per call of each function."""
    counts = []
    for function in functions:
        function()
        start = time.perf_counter()
        function()
        counts.append(max(1, int(TURN_SECONDS / max(time.perf_counter() - start, 1e-8))))
    best = [float("inf")] * len(functions)
    gc.disable()
    for _ in range(TURNS):
        for i, function in enumerate(functions):
            start = time.perf_counter()
            for _ in range(counts[i]):
                function()
            best[i] = min(best[i], (time.perf_counter() - start) / counts[i])
    gc.enable()
    return best


def compare(what, ours, *peers):
    """Print a line for each peer. A peer is a name, a function and the goal for the ratio, which may be None."""
    times = best_times([ours] + [function for _, function, _ in peers])
    for (name, _, goal), peer in zip(peers, times[1:]):
        ratio = times[0] / peer
        verdict = "" if goal is None else "goal %.2f %s" % (goal, "met" if ratio <= goal else "MISSED")
        print("%-34s %10.2f us   %-30s %10.2f us   %6.2f   %s" %
              (what, times[0] * 1e6, name, peer * 1e6, ratio, verdict), flush=True)


def title(text):
    print("\n" + text)


def image_of(a):
    img = vantrel.Image()
    img.from_array(a)
    return img


def gradient(dtype, top, channels=1):
    shape = (HEIGHT, WIDTH) if channels == 1 else (HEIGHT, WIDTH, channels)
    values = numpy.arange(numpy.prod(shape), dtype=numpy.uint64) * 2654435761 % (top + 1)
    return values.reshape(shape).astype(dtype)


gray8, gray12, colour8 = gradient("u1", 255), gradient("u2", 4095), gradient("u1", 255, 3)


def making():
    title("Making images of %d x %d" % (WIDTH, HEIGHT))
    for name, a, goal in (("8 bit", gray8, 1.25), ("12 bit in 16", gray12, 2.0), ("3 x 8 bit", colour8, 1.25)):
        compare("from_array, " + name, lambda: image_of(a), ("a.copy()", a.copy, goal),
                ("Pillow fromarray(a).copy()", lambda: PillowImage.fromarray(a).copy(), 1.0))
    nested = (numpy.arange(512 * 512) % 4096).reshape(512, 512).tolist()
    compare("from_array, list of 512 x 512", lambda: image_of(nested),
            ("numpy.array(list)", lambda: numpy.array(nested), 1.0))


def pixels():
    title("Single pixels and lines")
    img, pillow, a = image_of(gray8), PillowImage.fromarray(gray8), gray8.copy()
    get, get_pillow, item = img.get_pixel_value, pillow.getpixel, a.item
    compare("get_pixel_value", lambda: get(700, 500), ("Pillow getpixel", lambda: get_pillow((700, 500)), 1 / 3),
            ("a.item", lambda: item(500, 700), 2.0))
    put, put_pillow, set_item = img.set_pixel_value, pillow.putpixel, a.itemset
    compare("set_pixel_value", lambda: put(9, 700, 500), ("Pillow putpixel", lambda: put_pillow((700, 500), 9), 1 / 3),
            ("a.itemset", lambda: set_item(500, 700, 9), 2.0))
    draw, line = img.draw_pixel_line, cv2.line
    compare("draw_pixel_line, 1000 pixels", lambda: draw(255, 10, 20, 1009, 620),
            ("cv2.line", lambda: line(a, (10, 20), (1009, 620), 255), 2.0))
    compare("draw_pixel_line, 1000 in a row", lambda: draw(255, 10, 20, 1009, 20),
            ("cv2.line", lambda: line(a, (10, 20), (1009, 20), 255), None))


def measuring():
    title("Measuring %d x %d" % (WIDTH, HEIGHT))
    for name, a in (("8 bit", gray8), ("12 bit in 16", gray12), ("float", gray12.astype("f4"))):
        img = image_of(a)

        def with_opencv():
            cv2.meanStdDev(a)
            cv2.minMaxLoc(a)

        def with_numpy():
            a.mean(), a.std(), a.min(), a.max()

        compare("measure_rect, " + name, img.measure_rect, ("cv2.meanStdDev + minMaxLoc", with_opencv, 1.5),
                ("numpy mean, std, min, max", with_numpy, 1 / 5))


def operations():
    title("Operations on %d x %d" % (WIDTH, HEIGHT))
    img8, img12, colour = image_of(gray8), image_of(gray12), image_of(colour8)
    half = (WIDTH // 2, HEIGHT // 2)
    for name, img, a in (("8 bit", img8, gray8), ("12 bit in 16", img12, gray12), ("3 x 8 bit", colour, colour8)):
        compare("resize to half, " + name, lambda: img.resize(half[0], half[1], 0, 0, 0, 0),
                ("cv2.resize, area", lambda: cv2.resize(a, half, interpolation=cv2.INTER_AREA), None))
        compare("resize to 1.5, " + name, lambda: img.resize(2880, 1800, 0, 0, 0, 0),
                ("cv2.resize, linear", lambda: cv2.resize(a, (2880, 1800)), None))
    compare("to_rgb, 8 bit", img8.to_rgb, ("cv2.cvtColor", lambda: cv2.cvtColor(gray8, cv2.COLOR_GRAY2BGRA), None))
    compare("to_rgb, 3 x 8 bit", colour.to_rgb,
            ("cv2.cvtColor", lambda: cv2.cvtColor(colour8, cv2.COLOR_BGR2BGRA), None))
    compare("convert_bpc, 12 to 8 bit", lambda: img12.convert_bpc(8),
            ("cv2.convertScaleAbs", lambda: cv2.convertScaleAbs(gray12, alpha=255 / 4095), None))
    compare("convert_bpc, 8 to 16 bit", lambda: img8.convert_bpc(16),
            ("cv2.multiply", lambda: cv2.multiply(gray8, 257, dtype=cv2.CV_16U), None))
    for name, a in (("8 bit", gray8), ("12 bit in 16", gray12)):
        summand, sum_of_us, sum_of_peer = image_of(a), image_of(a), a.copy()
        compare("add, " + name, lambda: sum_of_us.add(summand),
                ("cv2.add", lambda: cv2.add(sum_of_peer, a, sum_of_peer), None))


def memory():
    title("Peak memory of from_array")
    for name, a in (("8 bit, 100 megapixels", numpy.full((10000, 10000), 200, "u1")),
                    ("12 bit in 16, 100 megapixels", numpy.full((10000, 10000), 4000, "u2")),
                    ("3 x 8 bit, 33 megapixels", numpy.full((5773, 5773, 3), 200, "u1"))):
        with open("/proc/self/clear_refs", "w") as file:
            file.write("5")  # resets the peak
        before = kilobytes("VmHWM:")
        img = image_of(a)
        images = (kilobytes("VmHWM:") - before) * 1024 / a.nbytes
        print("%-34s %10.2f times the array   goal 1.00 %s" % (name, images, "met" if images < 1.02 else "MISSED"),
              flush=True)
        del img


def kilobytes(field):
    with open("/proc/self/status") as file:
        return next(int(line.split()[1]) for line in file if line.startswith(field))


def growth():
    title("Nanoseconds per pixel, by megapixels")
    sizes = (0.1, 1, 10, 100)
    print("%-34s" % "" + "".join("%10g" % size for size in sizes))
    work = (("a.copy(), 8 bit", "u1", lambda a: a.copy(), False), ("from_array, 8 bit", "u1", image_of, False),
            ("a.copy(), 16 bit", "u2", lambda a: a.copy(), False), ("from_array, 12 bit in 16", "u2", image_of, False),
            ("measure_rect, 8 bit", "u1", lambda img: img.measure_rect(), True),
            ("convert_bpc, 12 to 8 bit", "u2", lambda img: img.convert_bpc(8), True),
            ("to_rgb, 8 bit", "u1", lambda img: img.to_rgb(), True),
            ("resize to half, 8 bit", "u1", lambda img: img.resize(img.width // 2, img.height // 2, 0, 0, 0, 0), True),
            ("add, 8 bit", "u1", lambda img: img.add(img), True))
    for name, dtype, function, on_image in work:
        line = "%-34s" % name
        for size in sizes:
            side = int((size * 1e6) ** 0.5)
            a = numpy.full((side, side), 200 if dtype == "u1" else 4000, dtype)
            subject = image_of(a) if on_image else a
            repeats = max(3, int(20 / size))
            best = float("inf")
            for _ in range(repeats):
                start = time.perf_counter()
                function(subject)
                best = min(best, time.perf_counter() - start)
            line += "%10.2f" % (best * 1e9 / side ** 2)
        print(line, flush=True)


print("%d processors, NumPy %s, OpenCV %s" % (os.cpu_count(), numpy.__version__, cv2.__version__))
print("%-34s %13s   %-30s %13s   %6s" % ("", "vantrel", "peer", "", "ratio"))
making()
pixels()
measuring()
operations()
memory()
growth()
