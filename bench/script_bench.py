# Benchmarks in Python. vantrel_bench runs them in the plugin's interpreter, beside libraries for the same purpose.
# Prints a line "ROW<tab>name<tab>seconds<tab>peer's seconds or None<tab>goal" for each comparison.

import time
import timeit


def seconds(statement, unrolled=1, **names):
    """Best processor time of a statement. `unrolled` repetitions in the loop make the cost of the loop negligible."""
    timer = timeit.Timer("\n".join([statement] * unrolled), timer=time.process_time, globals=names)
    number, _ = timer.autorange()
    number = max(1, number // 4)
    return min(timer.repeat(15, number)) / number / unrolled


def row(name, ours, peers, goal):
    print("ROW", name, ours, peers, goal, sep="\t")


def new_image(width, height, channels, bpc):
    image = vantrel.Image()
    image.alloc(width, height, channels, bpc)
    return image


def bench_attributes(numpy, Image):
    img = new_image(1920, 1200, 1, 8)
    width = seconds("img.width", 50, img=img)
    if Image:
        im = Image.new("L", (1920, 1200))
        row("img.width / Pillow im.width", width, seconds("im.width", 50, im=im), "below 1")
    if numpy:
        a = numpy.zeros((1200, 1920), numpy.uint8)
        row("img.width / NumPy a.size", width, seconds("a.size", 50, a=a), "below 1.5")
    row("img.get_width() / img.width", seconds("img.get_width()", 50, img=img), width, "")


def bench_arrays(numpy):
    if not numpy:
        return
    for channels, bpc in (1, 8), (3, 8), (1, 12):
        img = new_image(1920, 1200, channels, bpc)
        assert numpy.asarray(img).__array_interface__["data"][0] == img.bp, "asarray copies"
        time = seconds("asarray(img)", 10, asarray=numpy.asarray, img=img)
        row(f"numpy.asarray(img), 1920 x 1200, {channels} x {bpc} bit", time, None, "below 2 us, no copy")


def library(name):
    try:
        return __import__(name, fromlist=["*"])
    except ImportError:
        print(f"{name} is not installed for this interpreter, so its rows are left out")
        return None


numpy = library("numpy")
bench_attributes(numpy, library("PIL.Image"))
bench_arrays(numpy)
