"""Rows for images made from arrays, given back as arrays, and the memory that they hold.

    build/bin/vantrel run bench/scripts/array_rows.py -- [FILTER]
"""

import ctypes
import statistics
import time
import timeit

import numpy
import vantrel

from pairs import compare, group, report, wanted

WIDTH, HEIGHT = 1920, 1200
MB = 1 << 20


def image_of(a):
    img = vantrel.Image()
    img.from_array(a)
    return img


def gradient(dtype, top, height=HEIGHT, width=WIDTH):
    values = numpy.arange(height * width, dtype=numpy.uint64) * 2654435761 % (top + 1)
    return values.reshape(height, width).astype(dtype)


def from_array(dtype, top):
    a = gradient(dtype, top)
    return lambda: image_of(a), a.copy


def widened(dtype, top, narrow):
    """NumPy's way to the same image: look at the largest value, then convert."""
    a = gradient(dtype, top)

    def peer():
        a.max()
        a.astype(narrow)

    return lambda: image_of(a), peer


def converted_float():
    a = gradient("f8", 4095)
    return lambda: image_of(a), lambda: a.astype("f4")


def every_second(side):
    a = gradient("u1", 255, side, side)[::2, ::2]
    return lambda: image_of(a), a.copy


def copy_of_100_megapixels():
    a = numpy.full((10000, 10000), 200, "u1")
    img = image_of(a)
    touched = numpy.full_like(a, 1)
    return img.new_copy, lambda: ctypes.memmove(touched.ctypes.data, a.ctypes.data, a.nbytes)


def resident():
    with open("/proc/self/status") as file:
        for line in file:
            if line.startswith("VmRSS:"):
                return int(line.split()[1]) * 1024


def memory_of_allocations():
    """How much memory one object holds that is given 16 MB again and again."""
    task = "memory held after 1000 alloc of 16 MB on one object"
    if not wanted(task):
        return
    before = resident()
    img = vantrel.Image()
    for _ in range(1000):
        img.alloc(4096, 4096, 1, 8)
    held = (resident() - before) / MB
    report(task, "two images", 1.01, [held / 32], held, 32, "MB")  # a hundredth for all that is not pixels


def as_array():
    """Beside a Python object that has the same dictionary ready: what remains is NumPy's own work."""
    img = image_of(gradient("u1", 255))
    asarray = numpy.asarray
    held = type("Held", (), {"__array_interface__": img.__array_interface__})()
    return lambda: asarray(img), lambda: asarray(held)


def time_as_array():
    """The same as a time, beside the time that is good enough."""
    task = "numpy.asarray(img), as a time"
    if not wanted(task):
        return
    img = image_of(gradient("u1", 255))
    goal = 1.5e-6
    times = [seconds / 1000 for seconds in timeit.repeat(lambda: numpy.asarray(img), timer=time.thread_time, number=1000,
                                                          repeat=25)]
    report(task, "1.5 us", 1.0, [seconds / goal for seconds in times], statistics.median(times), goal)


group("Arrays and memory")
memory_of_allocations()
compare("from_array, 8 bit", "a.copy()", 1.05, lambda: from_array("u1", 255))
compare("from_array, 12 bit in 16", "a.copy()", 1.6, lambda: from_array("u2", 4095))
compare("from_array, float", "a.copy()", 1.05, lambda: from_array("f4", 4095))
for code in ("i2", "i4", "i8", "u4"):
    compare("from_array, " + code, "NumPy max + astype", 1.2, lambda: widened(code, 4095, "u2"))
compare("from_array, f8", "NumPy max + astype", 1.2, lambda: widened("f8", 4095, "f4"))
compare("from_array, f8 alone", "NumPy astype", None, converted_float)
compare("from_array, a[::2, ::2]", "a[::2, ::2].copy()", 2.0, lambda: every_second(1600))
compare("copy, 100 megapixels", "memcpy into touched memory", 1.2, copy_of_100_megapixels)
compare("numpy.asarray(img)", "the same of a ready dictionary", None, as_array)
time_as_array()
