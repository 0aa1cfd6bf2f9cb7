"""Throws random input at vantrel.Image until the time is up.

Everything may fail with an ordinary error; nothing may end the process. The lines printed name the seed and count what
was tried.
"""

import ctypes
import mmap
import os
import random
import sys
import tempfile
import time

import vantrel


def fuzz(seconds, seed):
    print("seed %d" % seed)
    rand = random.Random(seed)
    arena = Arena(rand)
    tried = {}
    with tempfile.TemporaryDirectory() as folder:
        files = Files(rand, folder)
        attempts = (lambda: from_dictionary(rand, arena), lambda: from_list(rand), lambda: operate(rand),
                    files.read_broken, files.read_anything)
        names = ("dictionaries", "lists", "operations", "damaged files", "random files")
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            choice = rand.randrange(len(attempts))
            attempts[choice]()
            tried[names[choice]] = tried.get(names[choice], 0) + 1
    print(", ".join("%d %s" % (count, name) for name, count in sorted(tried.items())))


def attempt(function, *arguments):
    """Calls; an error of the kinds that scripts get is fine, another one is a finding."""
    try:
        return function(*arguments)
    except (TypeError, ValueError, OverflowError, IndexError):
        return None
    except SystemError as error:
        assert "without" in str(error), error
    except Exception as error:
        assert type(error) is Exception, error
    return None


def look_at(img):
    """Reads an image in every way: whatever it was made of, all of its pixels are there."""
    if str(img) == "Vantrel image object is empty":
        return
    assert len(bytes(img)) == img.bp_size
    assert img.padding_x >= 0
    attempt(img.get_pixel_value, img.width - 1, img.height - 1, img.channels - 1)
    if img.bp_size < 1 << 20:
        attempt(img.measure_rect)


class Arena:
    """Readable memory with walls of memory that nobody may touch, where arrays are said to lie."""

    SIZE = 64 * mmap.PAGESIZE
    WALL = 1 << 30

    def __init__(self, rand):
        libc = ctypes.CDLL(None, use_errno=True)
        libc.mmap.restype = ctypes.c_void_p
        libc.mmap.argtypes = [ctypes.c_void_p, ctypes.c_size_t, ctypes.c_int, ctypes.c_int, ctypes.c_int, ctypes.c_long]
        libc.mprotect.argtypes = [ctypes.c_void_p, ctypes.c_size_t, ctypes.c_int]
        no_access, private_anonymous_noreserve = 0, 0x4022
        start = libc.mmap(None, self.SIZE + 2 * self.WALL, no_access, private_anonymous_noreserve, -1, 0)
        self.address = start + self.WALL
        assert libc.mprotect(self.address, self.SIZE, mmap.PROT_READ | mmap.PROT_WRITE) == 0
        ctypes.memmove(self.address, bytes(rand.getrandbits(8) for _ in range(self.SIZE)), self.SIZE)


# ---- dictionaries and lists ----

def odd(rand):
    """Something of a kind that is hardly ever expected."""
    return rand.choice((None, True, 0, -1, 1.5, float("nan"), "", "x", "\ud800", b"|u1", (), (1,), [], [1], {}, 2**31,
                        2**32, 2**63, 2**64, -2**63, 10**40, object(), vantrel.Image()))


def number(rand):
    return rand.choice((0, 1, 2, 3, 4, 5, 8, 16, 17, rand.randint(1, 300), rand.randint(-300, 300), -1,
                        rand.randint(-10**6, 10**6), rand.getrandbits(62) - 2**61, 2**31 - 1, 2**32))


def extent(rand):
    return rand.choice((0, 1, 1, 2, 3, 4, 7, 30, rand.randint(1, 200), -1)) if rand.random() < 0.97 else number(rand)


def from_dictionary(rand, arena):
    count = rand.choice((0, 1, 2, 2, 2, 3, 3, 3, 4))
    typestr = rand.choice("<>|=") + rand.choice(("u1", "u2", "u4", "u8", "i1", "i2", "i4", "i8", "f4", "f8", "f2", "", "c"))
    entries = {
        "shape": tuple(extent(rand) for _ in range(count)),
        "typestr": typestr,
        "data": (rand.choice((arena.address, arena.address + rand.randrange(arena.SIZE), arena.address + arena.SIZE - 8,
                              arena.address + rand.randint(-arena.WALL, arena.WALL), rand.getrandbits(64),
                              rand.getrandbits(47) | 1 << 46, 1)), False),
        "version": 3,
    }
    if rand.random() < 0.8:
        entries["strides"] = tuple(number(rand) for _ in range(rand.choice((count, count, count, 0, 1, 2, 3, 4))))
    if rand.random() < 0.2:
        key = rand.choice(("shape", "typestr", "data", "strides"))
        if rand.random() < 0.3:
            entries.pop(key, None)
        elif isinstance(entries.get(key), tuple) and entries[key] and rand.random() < 0.6:
            items = list(entries[key])
            items[rand.randrange(len(items))] = odd(rand)
            entries[key] = tuple(items)
        else:
            entries[key] = odd(rand)

    # The address sanitizer keeps its own tables there, readable and yet nobody's to read.
    data = entries.get("data")
    if isinstance(data, tuple) and data and isinstance(data[0], int) and 0x7FFF8000 <= data[0] < 0x10007FFF8000:
        entries["data"] = (1, False)

    class Array:
        __array_interface__ = entries if rand.random() < 0.99 else odd(rand)

    img = vantrel.Image()
    attempt(img.from_array, Array())
    look_at(img)


def nested(rand, depth):
    if depth == 0 or rand.random() < 0.03:
        if rand.random() < 0.05:
            return odd(rand)
        return rand.choice((rand.randint(0, 255), rand.randint(-2**16, 2**16), rand.random(), True, 2**70, 300))
    return [nested(rand, depth - 1) for _ in range(rand.choice((0, 1, 2, 3, 3, 3, 8)))]


def from_list(rand):
    img = vantrel.Image()
    attempt(img.from_array, nested(rand, rand.randint(0, 5)))
    look_at(img)


# ---- operations ----

def any_image(rand):
    img = vantrel.Image()
    kind = rand.random()
    if kind < 0.05:
        return img
    width, height = rand.randint(1, 40), rand.randint(1, 40)
    if kind < 0.4:
        img.alloc(width, height, rand.randint(1, 5), rand.randint(1, 32))
        for _ in range(5):
            img.set_pixel_value(rand.getrandbits(33), rand.randrange(width), rand.randrange(height))
    else:
        channels = rand.choice((1, 1, 2, 3, 4, 5))
        typestr, size = rand.choice((("u1", 1), ("u2", 2), ("u4", 4), ("u8", 8), ("i1", 1), ("i2", 2), ("i4", 4),
                                     ("i8", 8), ("f4", 4), ("f8", 8), ("", 1)))
        count = width * height * channels * size
        memory = ctypes.create_string_buffer(rand.getrandbits(8 * count).to_bytes(count, "little"), count)

        class Array:
            __array_interface__ = {"shape": (height, width, channels), "typestr": "|" + typestr,
                                   "data": (ctypes.addressof(memory), False)}

        img.from_array(Array())
    return img


def place(rand):
    return rand.choice((0, 0, 1, 2, 5, rand.randint(-5, 45), 39, 40, -1, 2**31 - 1, -2**31))


def size(rand):
    # Enormous sizes come in pairs: an image of one such side alone may well fit into memory.
    if rand.random() < 0.02:
        return 2**31 - 1, 2**31 - 1
    return rand.choice(((0, 0), (1, 1), (-1, 5), (5, -1), (-2**31, -2**31), (rand.randint(1, 60), rand.randint(1, 60)),
                        (rand.randint(1, 60), rand.randint(1, 60))))


def operate(rand):
    img = any_image(rand)
    other = img if rand.random() < 0.2 else any_image(rand)
    for _ in range(rand.randint(1, 6)):
        if rand.random() < 0.03:
            other = odd(rand)
        at, area, to, target = (place(rand), place(rand)), size(rand), (place(rand), place(rand)), size(rand)
        flag = rand.random() < 0.5
        name, arguments = rand.choice((
            ("to_rgb", ()), ("extract_channel", (place(rand),)), ("convert_bpc", (rand.randint(-1, 34), flag)),
            ("new_copy", ()), ("crop", at + area), ("resize", area), ("resize", area + at + target), ("copy_to", (other,)),
            ("copy_rect_to", at + area + (other,) + to), ("resize_to", (other,)),
            ("tesize_rect_to", at + area + (other,) + to + target), ("add", (other,)), ("subtract", (other,)),
            ("divide_by_value", (rand.choice((0, 1, -1, 2, 3, -2**31, 2**31 - 1)),)),
            ("set_pixel_value", (rand.getrandbits(63),) + at), ("draw_pixel_line", (255,) + at + to),
            ("draw_pixel_rect", (255,) + at + to + (place(rand),)), ("get_image_data_numpy", (flag,)),
            ("measure_rect", at + area + (flag,)), ("measure_row_profiles_in_rect", at + area),
            ("measure_column_profiles_in_rect", at + area)))
        result = attempt(getattr(img, name), *arguments)
        if isinstance(result, vantrel.Image):
            look_at(result)
            if rand.random() < 0.3:
                img = result
    look_at(img)
    if isinstance(other, vantrel.Image):
        look_at(other)


# ---- files ----

class Files:
    ENDINGS = ("png", "tif", "tiff", "jpg", "jpeg", "bmp", "pgm", "ppm", "PNG", "xyz", "")

    def __init__(self, rand, folder):
        self.rand = rand
        self.folder = folder
        self.whole = []
        for ending in self.ENDINGS:
            for channels, bpc in ((1, 8), (1, 16), (3, 8)):
                path = os.path.join(folder, "whole%d%d.%s" % (channels, bpc, ending))
                img = vantrel.Image()
                img.alloc(20, 15, channels, bpc)
                img.draw_pixel_line(255, 0, 0, 19, 14)
                attempt(img.save_to_file, path)
                if os.path.exists(path):
                    with open(path, "rb") as file:
                        self.whole.append((ending, file.read()))

    def read_broken(self):
        if not self.whole:
            return
        ending, content = self.rand.choice(self.whole)
        content = bytearray(content)
        for _ in range(self.rand.choice((0, 1, 1, 2, 10))):
            if content:
                content[self.rand.randrange(min(len(content), self.rand.choice((30, 200, len(content)))))] = \
                    self.rand.choice((0, 1, 0x7F, 0x80, 0xFF, self.rand.getrandbits(8)))
        if self.rand.random() < 0.4:
            del content[self.rand.randrange(len(content) + 1):]
        self.read(ending, bytes(content))

    def read_anything(self):
        count = self.rand.choice((0, 1, 10, 100, 3000))
        start = self.rand.choice((b"", b"\x89PNG\r\n\x1a\n", b"II*\0\x08\0\0\0", b"MM\0*", b"\xff\xd8\xff\xe0", b"BM",
                                  b"P5\n", b"P6 20 15 255\n"))
        self.read(self.rand.choice(self.ENDINGS), start + bytes(self.rand.getrandbits(8) for _ in range(count)))

    def read(self, ending, content):
        path = os.path.join(self.folder, "broken." + ending)
        with open(path, "wb") as file:
            file.write(content)
        img = vantrel.Image()
        attempt(img.from_file, path)
        look_at(img)
