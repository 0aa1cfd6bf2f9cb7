import ctypes

import vantrel
from checks import *

try:
    import numpy
except ImportError:
    numpy = None
    print("SKIP: this Python has no NumPy")


def needs_numpy(function):
    return function if numpy else (lambda: None)


SUPPORTED = ("u1", "u2", "u4", "u8", "i1", "i2", "i4", "i8", "f4", "f8")


@needs_numpy
def test_every_type_arrives_with_its_values():
    for kind in SUPPORTED:
        for shape in ((7,), (4, 5), (3, 4, 3), (2, 3, 4), (3, 3, 1)):
            a = (numpy.arange(numpy.prod(shape)) + 60).reshape(shape).astype(kind)
            img = made_of(a)
            wanted = a.reshape(shape[0], 1) if len(shape) == 1 else a
            got = numpy.array(rows(img)).reshape(wanted.shape)
            assert (got == wanted).all(), (kind, shape)


@needs_numpy
def test_other_types_are_refused():
    img = made_of([300])
    for kind in ("f2", "c8", "c16", "b1", "S3", "U3", "M8[s]", "m8[s]", [("a", "u1"), ("b", "u2")]):
        raises(Exception, "unsupported data type in __array_interface__", img.from_array, numpy.zeros((2, 2), kind))
    raises(Exception, "unsupported data type in __array_interface__", img.from_array,
           numpy.zeros((2, 2), numpy.longdouble))
    assert rows(img) == [[300]]


@needs_numpy
def test_object_arrays_have_a_type_too_short_to_be_examined():
    img = made_of(numpy.zeros((2, 3), "O"))
    assert (img.width, img.height, img.bpc) == (3, 2, 8) and str(img).endswith("type: N/A")


@needs_numpy
def test_the_boundaries_of_narrowing_hold():
    a = numpy.arange(257, dtype=numpy.int32)
    assert (typestr(made_of(a)), made_of(a).bpc) == ("|u1", 8)
    a = numpy.arange(1025, dtype=numpy.int32)
    assert (typestr(made_of(a)), made_of(a).bpc) == ("|u2", 10)
    assert geometry(made_of(numpy.zeros((2, 3)))) == (3, 2, 1, "|f4", 4)


def as_defined(a, line_bytes):
    """The defined reading of an array's strides: x takes the first stride and y the second."""
    shape = a.shape + (1,) * (3 - a.ndim)
    size = a.itemsize
    strides = a.__array_interface__["strides"]
    if strides is None:
        strides = (size * shape[2], size * shape[2] * shape[1], size)
    strides += (size,) * (3 - len(strides))
    owner = a
    while getattr(owner, "base", None) is not None:
        owner = owner.base
    memory = ctypes.string_at(owner.__array_interface__["data"][0], owner.nbytes)
    start = a.__array_interface__["data"][0] - owner.__array_interface__["data"][0]
    result = bytearray(line_bytes * shape[0])
    for y in range(shape[0]):
        to = y * line_bytes
        for x in range(shape[1]):
            for c in range(shape[2]):
                at = start + y * strides[1] + x * strides[0] + c * strides[2]
                if 0 <= to <= len(result) - size:
                    result[to:to + size] = memory[at:at + size]
                to += strides[2]
    return bytes(result)


@needs_numpy
def test_views_are_read_as_defined_where_they_stay_within_their_owner():
    big = (numpy.arange(40 * 40 * 4, dtype=numpy.uint32) * 2654435761 >> 24).astype("u1").reshape(40, 40, 4).copy()
    flat = big[:, :, 0].copy()
    views = {
        "transposed": flat.T,
        "every second row and column": flat[:20:2, :20:2],
        "rows backwards": flat[19:9:-1, 5:15],
        "columns backwards": flat[5:15, 19:9:-1],
        "both backwards": flat[::-1, ::-1],
        "stretched row": numpy.lib.stride_tricks.as_strided(flat[3:4], (10, 10), (0, 1)),
        "stretched column": numpy.lib.stride_tricks.as_strided(flat[:, 3:4], (10, 10), (40, 0)),
        "one value": numpy.broadcast_to(flat[0, 0], (10, 10)),
        "channels of a larger image": big[5:15, 5:15, :3],
        "channels backwards": big[5:15, 5:15, ::-1],
        "every second channel": big[5:15, 5:15, ::2],
        "one channel": big[5:15, 5:15, 1],
        "column-major": numpy.asfortranarray(flat),
    }
    for name, a in views.items():
        img = made_of(a)
        assert img.bpc == 8, name
        assert bytes(img) == as_defined(a, img.__array_interface__["strides"][1]), name


@needs_numpy
def test_views_that_lead_beyond_their_owner_never_crash():
    wide = numpy.zeros((64, 50000), "u1")
    img = made_of([300])
    for a in (wide[::2], wide[::-1], wide[:, ::-1], wide[::-2, ::3], wide.T[::7]):
        try:
            img.from_array(a)
        except Exception as error:
            assert str(error) == "Data in __array_interface__ lies outside readable memory"


@needs_numpy
def test_arrays_in_the_other_byte_order_are_taken_in_the_machines():
    a = numpy.array([[1, 256]], ">u2")
    assert rows(made_of(a)) == [[256, 1]]
    assert made_of(numpy.array([[1.0]], ">f4")).channels == 1


@needs_numpy
def test_read_only_arrays_are_taken():
    a = numpy.full((2, 2), 200, "u1")
    a.flags.writeable = False
    img = made_of(a)
    assert rows(img) == [[200, 200]] * 2
    img.set_pixel_value(1, 0, 0)
    assert a[0, 0] == 200


@needs_numpy
def test_empty_flat_and_deep_arrays_cannot_be_allocated():
    img = made_of([300])
    for shape in ((), (0,), (0, 5), (5, 0), (2, 2, 0), (2, 2, 2, 2), (1, 1, 1, 1, 1)):
        for kind in SUPPORTED:
            raises(Exception, "Cannot allocate image", img.from_array, numpy.zeros(shape, kind))
    raises(Exception, "Cannot allocate image", img.from_array, numpy.uint8(5))
    assert rows(img) == [[300]]


@needs_numpy
def test_an_image_goes_to_numpy_and_back():
    img = made_of([[300, 2, 3], [4, 5, 6]])
    a = numpy.asarray(img)
    assert a.shape == (3, 2) and a[2, 1] == 6
    back = made_of(a.T.copy())
    assert rows(back) == rows(img)
    colour = made_of([[[1, 2, 255]]])
    assert numpy.asarray(colour.get_image_data_numpy())[0, 0].tolist() == [255, 2, 1]


@needs_numpy
def test_nothing_of_an_array_is_held():
    import sys
    a = numpy.zeros((10, 10), "u1")
    before = sys.getrefcount(a)
    img = made_of(a)
    assert sys.getrefcount(a) == before
    for _ in range(200):
        img.from_array(a)
    assert sys.getrefcount(a) == before
