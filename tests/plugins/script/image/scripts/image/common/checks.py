"""What the image tests share."""

import re
import struct

import vantrel

# Type string of the array interface to the code of the struct module.
_CODES = {"|i1": "b", "|u1": "B", "|i2": "h", "|u2": "H", "|i4": "i", "|u4": "I", "|i8": "q", "|u8": "Q", "|f4": "f",
          "|f8": "d"}


def raises(kind, text, function, *arguments):
    """Checks that a call raises exactly this error, with exactly this text unless that is None."""
    try:
        result = function(*arguments)
    except BaseException as error:
        assert type(error) is kind, "%s: %s" % (type(error).__name__, error)
        assert text is None or str(error) == text, "%r is not %r" % (str(error), text)
    else:
        raise AssertionError("no error but the result %r" % (result,))


def fails_silently(function, *arguments):
    """Checks that a call fails without an error of its own, which the interpreter reports."""
    try:
        result = function(*arguments)
    except SystemError as error:
        # The wording depends on how the interpreter called the function.
        assert re.search("returned NULL without setting an|error return without exception set", str(error)), str(error)
    else:
        raise AssertionError("no error but the result %r" % (result,))


def typestr(img):
    return img.__array_interface__["typestr"]


def geometry(img):
    """(width, height, channels, type string, bpc)"""
    return (img.width, img.height, img.channels, typestr(img), img.bpc)


def rows(img):
    """The values as rows of pixels; a pixel is a number, or a tuple of its channels."""
    content = bytes(img)
    stride = img.__array_interface__["strides"][1]
    count = img.width * img.channels
    result = []
    for y in range(img.height):
        line = struct.unpack_from("=%d%s" % (count, _CODES[typestr(img)]), content, y * stride)
        if img.channels > 1:
            line = [line[i:i + img.channels] for i in range(0, count, img.channels)]
        result.append(list(line))
    return result


def made_of(data):
    img = vantrel.Image()
    assert img.from_array(data) is None
    return img


def allocated(width, height, channels, bpc, value=None):
    """An image of this size; every value is 0 or as given."""
    img = vantrel.Image()
    img.alloc(width, height, channels, bpc)
    if value is not None:
        for y in range(height):
            for x in range(width):
                for c in range(channels):
                    img.set_pixel_value(value, x, y, c)
    return img


class Array:
    """Anything with an array interface."""

    def __init__(self, **entries):
        self.__array_interface__ = entries


class Memory:
    """Numbers in memory with an array interface; keyword arguments replace its entries, None removes one."""

    def __init__(self, code, shape, numbers, **entries):
        self.memory = bytearray(struct.pack("=%d%s" % (len(numbers), code[-1]), *numbers)) if numbers else bytearray(8)
        import ctypes
        self._view = (ctypes.c_char * len(self.memory)).from_buffer(self.memory)
        kinds = {"b": "i1", "B": "u1", "h": "i2", "H": "u2", "i": "i4", "I": "u4", "q": "i8", "Q": "u8", "f": "f4",
                 "d": "f8"}
        interface = {"shape": shape, "typestr": "<" + kinds[code], "data": (ctypes.addressof(self._view), False),
                     "strides": None, "version": 3}
        interface.update(entries)
        self.__array_interface__ = {key: value for key, value in interface.items()
                                    if not (key in entries and value is None)}

    @property
    def address(self):
        import ctypes
        return ctypes.addressof(self._view)
