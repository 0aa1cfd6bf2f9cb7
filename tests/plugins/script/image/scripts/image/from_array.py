import ctypes
import mmap
import random
import struct

import vantrel
from checks import *


def test_builds_from_every_type():
    for code, expected in (("B", ("|u1", 8)), ("H", ("|u2", 16)), ("I", ("|u4", 32)), ("Q", ("|u8", 64)),
                           ("f", ("|f4", 32))):
        top = 2.0 if code == "f" else 2 ** (8 * struct.calcsize("=" + code)) - 1
        img = made_of(Memory(code, (2, 3), [0, 1, 2, 3, 4, top]))
        assert geometry(img) == (3, 2, 1) + expected, (code, geometry(img))
        assert rows(img) == [[0, 1, 2], [3, 4, top]]


def test_unsigned_types_are_narrowed_to_the_bits_in_use():
    def narrowed(code, top):
        img = made_of(Memory(code, (2,), [1, top]))
        assert rows(img) == [[1], [top]], (code, top)
        return typestr(img), img.bpc

    assert narrowed("B", 1) == ("|u1", 8)
    assert narrowed("H", 3) == ("|u2", 2)
    assert narrowed("H", 255) == ("|u1", 8)
    assert narrowed("H", 4095) == ("|u2", 12)
    assert narrowed("I", 3) == ("|u2", 2)
    assert narrowed("I", 200) == ("|u1", 8)
    assert narrowed("I", 65535) == ("|u2", 16)
    assert narrowed("I", 65536) == ("|u4", 17)
    assert narrowed("Q", 127) == ("|u2", 7)
    assert narrowed("Q", 128) == ("|u1", 8)
    assert narrowed("Q", 1000) == ("|u2", 10)
    assert narrowed("Q", 2**32 - 1) == ("|u4", 32)
    assert narrowed("Q", 2**32) == ("|u8", 33)


def test_signed_types_with_negative_values_stay_signed():
    def narrowed(code, low):
        img = made_of(Memory(code, (2,), [1, low]))
        return typestr(img), img.bpc, rows(img)[1][0]

    assert narrowed("b", -5) == ("|i1", 8, -5)
    assert narrowed("h", -5) == ("|i2", 3, -5)
    assert narrowed("h", -128) == ("|i1", 8, -128)
    assert narrowed("h", -3000) == ("|i2", 12, -3000)
    assert narrowed("i", -5) == ("|i2", 3, -5)
    assert narrowed("i", -128) == ("|i1", 8, -128)
    assert narrowed("i", -70000) == ("|i4", 17, -70000)
    assert narrowed("q", -300) == ("|i2", 9, -300)
    assert narrowed("q", -70000) == ("|i4", 17, -70000)
    assert narrowed("q", -2**40) == ("|i8", 41, -2**40)


def test_signed_types_without_negative_values_become_unsigned_with_an_even_bit_count():
    def narrowed(code, top):
        img = made_of(Memory(code, (2,), [0, top]))
        return typestr(img), img.bpc, rows(img)[1][0]

    assert narrowed("b", 127) == ("|u1", 8, 127)
    assert narrowed("h", 3) == ("|u1", 8, 3)
    assert narrowed("h", 257) == ("|u2", 10, 257)
    assert narrowed("h", 32767) == ("|u2", 16, 32767)
    assert narrowed("i", 0) == ("|u1", 8, 0)
    assert narrowed("i", 1024) == ("|u2", 10, 1024)
    assert narrowed("i", 1025) == ("|u2", 12, 1025)
    assert narrowed("i", 65536)[:2] == ("|u2", 16)
    assert narrowed("i", 65537) == ("|u4", 18, 65537)
    assert narrowed("i", 2**31 - 1) == ("|u4", 32, 2**31 - 1)
    assert narrowed("q", 256)[:2] == ("|u1", 8)
    assert narrowed("q", 2**32 - 1) == ("|u4", 32, 2**32 - 1)
    assert narrowed("q", 2**33) == ("|u8", 34, 2**33)
    assert narrowed("q", 2**63 - 1) == ("|u8", 64, 2**63 - 1)


def test_256_counts_as_8_bit():
    img = made_of(Memory("i", (257,), list(range(257))))
    assert geometry(img) == (1, 257, 1, "|u1", 8)
    assert [line[0] for line in rows(img)] == list(range(256)) + [255]


def test_doubles_become_32_bit_floats_of_bpc_4():
    img = made_of(Memory("d", (2, 2), [0.5, -1.25, 3.0, float("inf")]))
    assert geometry(img) == (2, 2, 1, "|f4", 4)
    assert rows(img) == [[0.5, -1.25], [3.0, float("inf")]]


def test_three_dimensions_give_channels():
    img = made_of(Memory("B", (1, 2, 3), [1, 2, 3, 4, 5, 6]))
    assert geometry(img) == (2, 1, 3, "|u1", 8) and img.rgb
    assert rows(img) == [[(1, 2, 3), (4, 5, 6)]]
    assert made_of(Memory("H", (1, 1, 3), [1, 2, 3000])).rgb
    assert not made_of(Memory("I", (1, 1, 3), [1, 2, 300000])).rgb
    assert not made_of(Memory("B", (1, 1, 4), [1, 2, 3, 4])).rgb
    assert not made_of(Memory("f", (1, 1, 3), [1, 2, 3])).rgb
    # Narrowing decides about colour anew.
    assert made_of(Memory("I", (1, 1, 3), [1, 2, 200])).rgb


def test_only_the_second_and_third_character_of_the_type_count():
    for text in ("<u2", ">u2", "|u2", "=u2", "?u2", "\u00e4u2", "<u2xyz"):
        assert rows(made_of(Memory("H", (1,), [300], typestr=text))) == [[300]]
    for text in ("<f2", "|b1", "<c8", "<u3", "|S1", "<U4", "|O8", "<M8", "|V3", "<u ", "u12", "\u00e4\u00e4\u00e4"):
        raises(Exception, "unsupported data type in __array_interface__", vantrel.Image().from_array,
               Memory("H", (1,), [300], typestr=text))


def test_a_short_type_is_taken_as_bytes_of_no_type():
    for text in ("", "u", "u1", "f2"):
        img = made_of(Memory("B", (2, 2), [1, 2, 3, 4], typestr=text))
        assert str(img).endswith("bit per channel (bpc): 8, type: N/A")
        stride = img.__array_interface__["strides"][1]
        assert bytes(img)[:2] == b"\1\2" and bytes(img)[stride:stride + 2] == b"\3\4"


def test_missing_entries_are_named_in_their_order():
    img = made_of([300])
    raises(Exception, "No shape provided in __array_interface__", img.from_array, Array())
    raises(Exception, "No typestr provided in __array_interface__", img.from_array, Array(shape=(1, 1)))
    raises(Exception, "unsupported data type in __array_interface__", img.from_array,
           Array(shape=(1, 1), typestr="<f2"))
    raises(Exception, "No data provided in __array_interface__", img.from_array, Array(shape=(1, 1), typestr="|u1"))
    for data in (None, 5, [1, 2], b"x"):
        raises(Exception, "Data in __array_interface__ not as tuple", img.from_array,
               Array(shape=(1, 1), typestr="|u1", data=data))
    raises(Exception, "Null data provided in __array_interface__", img.from_array,
           Array(shape=(1, 1), typestr="|u1", data=(0, False)))
    assert rows(img) == [[300]]


def test_what_is_no_dictionary_fails_silently():
    class Odd:
        pass

    img = made_of([300])
    for value in (None, 5, "x", [("shape", (1, 1))]):
        odd = Odd()
        odd.__array_interface__ = value
        fails_silently(img.from_array, odd)
    assert rows(img) == [[300]]


def test_entries_of_the_wrong_kind_are_refused():
    img = made_of([300])
    for shape in (None, 5, [2, 2], "22"):
        raises(TypeError, "shape in __array_interface__ is not a tuple", img.from_array,
               Array(shape=shape, typestr="|u1", data=(1, 0)))
    for shape in (("a",), (1.5, 1), (None, 1), ((1,), 1)):
        raises(TypeError, None, img.from_array, Array(shape=shape, typestr="|u1", data=(1, 0)))
    raises(OverflowError, None, img.from_array, Array(shape=(2**64, 1), typestr="|u1", data=(1, 0)))
    for text in (None, 5, b"|u1"):
        raises(TypeError, "typestr in __array_interface__ is not a str", img.from_array,
               Array(shape=(1, 1), typestr=text, data=(1, 0)))
    raises(UnicodeEncodeError, None, img.from_array, Array(shape=(1, 1), typestr="\ud800u1", data=(1, 0)))
    raises(TypeError, None, img.from_array, Memory("B", (1, 1), [1], strides=("a", 1)))
    raises(OverflowError, None, img.from_array, Memory("B", (1, 1), [1], strides=(2**70, 1)))
    for data in (("x", 0), (None, 0), (1.5, 0), ()):
        raises(TypeError, None, img.from_array, Array(shape=(1, 1), typestr="|u1", data=data))
    for address in (-1, 2**64):
        raises(OverflowError, None, img.from_array, Array(shape=(1, 1), typestr="|u1", data=(address, 0)))
    assert rows(img) == [[300]]


def test_errors_of_foreign_integers_are_passed_on():
    class Bad:
        def __index__(self):
            raise ZeroDivisionError("of mine")

    raises(ZeroDivisionError, "of mine", vantrel.Image().from_array, Array(shape=(Bad(), 1), typestr="|u1", data=(1, 0)))


def test_a_dictionary_that_changes_meanwhile_is_read_safely():
    memory = Memory("B", (2, 2), [1, 2, 3, 4])
    interface = memory.__array_interface__

    class Emptying:
        def __index__(self):
            interface.clear()
            return 2

    interface["shape"] = (Emptying(), Emptying())
    raises(Exception, "No typestr provided in __array_interface__", vantrel.Image().from_array, memory)


def test_shapes_that_make_no_image_cannot_be_allocated():
    img = made_of([300])
    for shape in ((), (1, 1, 1, 1), (1, 1, 1, 1, 1), (0,), (0, 5), (5, 0), (1, 1, 0), (0, 0, 0), (-1, 1), (1, -1),
                  (1, 1, -1), (2**32, 1), (1, 2**32 + 1), (2**32 - 1, 2**32 - 1), (2**31, 2**31, 2**31),
                  (1, 1, 2**32 - 1, 5), (2**63 - 1, 2**63 - 1)):
        raises(Exception, "Cannot allocate image", img.from_array, Memory("d", shape, [1.0]))
    assert rows(img) == [[300]]


def test_strides_that_are_none_no_tuple_or_of_another_length_mean_dense():
    numbers = [1, 2, 3, 4, 5, 6]
    for strides in (None, [9, 9], 7, "x", (), (1, 2, 3, 4)):
        memory = Memory("B", (2, 3), numbers)
        memory.__array_interface__["strides"] = strides
        assert rows(made_of(memory)) == [[1, 2, 3], [4, 5, 6]]
    assert rows(made_of(Memory("B", (2, 3), numbers, strides=None))) == [[1, 2, 3], [4, 5, 6]]


def test_the_first_stride_is_that_of_x_and_the_second_that_of_y():
    # 3 rows of 3, told by the strides of a dense array: x walks down, y to the right.
    assert rows(made_of(Memory("B", (3, 3), list(range(9)), strides=(3, 1)))) == [[0, 3, 6], [1, 4, 7], [2, 5, 8]]
    assert rows(made_of(Memory("B", (3, 3), list(range(9)), strides=(1, 3)))) == [[0, 1, 2], [3, 4, 5], [6, 7, 8]]


def test_one_stride_counts_for_all():
    assert rows(made_of(Memory("H", (3,), [300, 1, 301, 2, 302], strides=(4,)))) == [[300], [301], [302]]
    # Two rows of two from one stride: the pixels overlap.
    assert rows(made_of(Memory("B", (2, 2), [7, 8, 200], strides=(1,)))) == [[7, 8], [8, 200]]


def test_two_strides_leave_the_channels_side_by_side():
    memory = Memory("B", (2, 2, 3), list(range(12)), strides=(6, 3))
    assert rows(made_of(memory)) == [[(0, 1, 2), (6, 7, 8)], [(3, 4, 5), (9, 10, 11)]]


def test_arrays_with_gaps_between_their_rows_are_narrowed():
    numbers = [1, 300, 3, -1, -2, 4, 5, 6, -3, -4]
    for code in "hiq":
        size = struct.calcsize("=" + code)
        made_of([[65535] * 3] * 2)  # leaves its bytes for the next image
        img = made_of(Memory(code, (2, 3), numbers, strides=(size, 5 * size)))
        assert (typestr(img), img.bpc, rows(img)) == ("|u2", 10, [[1, 300, 3], [4, 5, 6]]), code
        line = img.__array_interface__["strides"][1]
        data = bytes(img)
        assert data[6:line] == bytes(line - 6) and data[line + 6:] == bytes(line - 6)
    img = made_of(Memory("d", (2, 3), numbers, strides=(8, 40)))
    assert (typestr(img), img.bpc, rows(img)) == ("|f4", 4, [[1, 300, 3], [4, 5, 6]])
    img = made_of(Memory("Q", (2, 3), [abs(number) for number in numbers], strides=(8, 40)))
    assert (typestr(img), img.bpc, rows(img)) == ("|u2", 9, [[1, 300, 3], [4, 5, 6]])


def test_a_third_stride_counts_without_a_third_axis():
    # The written places are as far apart as the channels of the array.
    assert bytes(made_of(Memory("B", (1, 3), [7, 8, 9], strides=(1, 3, 2))))[:6] == b"\7\0\10\0\11\0"


def defined_result(memory, start, width, height, channels, size, strides, line):
    """The reading of strides, value by value."""
    result = bytearray(line * height)
    for y in range(height):
        to = y * line
        for x in range(width):
            for c in range(channels):
                at = start + y * strides[1] + x * strides[0] + c * strides[2]
                if 0 <= to <= len(result) - size:
                    result[to:to + size] = memory[at:at + size]
                to += strides[2]
    return bytes(result)


def test_random_strides_are_read_as_defined():
    rand = random.Random(7)
    for _ in range(300):
        width, height, channels = rand.randint(1, 9), rand.randint(1, 7), rand.randint(1, 4)
        size, code = rand.choice(((1, "B"), (4, "f")))
        strides = tuple(rand.choice((size, -size, 0, rand.randint(-60, 60))) for _ in range(3))
        memory = bytearray(rand.getrandbits(8) for _ in range(2600))
        view = (ctypes.c_char * len(memory)).from_buffer(memory)
        start = 1300
        img = made_of(Array(shape=(height, width, channels), typestr="|u1" if size == 1 else "<f4",
                            data=(ctypes.addressof(view) + start, False), strides=strides))
        line = img.__array_interface__["strides"][1]
        assert bytes(img) == defined_result(memory, start, width, height, channels, size, strides, line), strides
        del view


def test_readable_memory_beyond_the_array_is_read():
    memory = mmap.mmap(-1, 8 * mmap.PAGESIZE)
    memory[:] = bytes(i % 251 for i in range(len(memory)))
    view = (ctypes.c_char * len(memory)).from_buffer(memory)
    # 3 x 2000, whose x goes down in steps of 8: far beyond 2 * 8 + 1999.
    img = made_of(Array(shape=(3, 2000), typestr="|u1", data=(ctypes.addressof(view), False), strides=(8, 1)))
    assert rows(img) == [[(8 * x + y) % 251 for x in range(2000)] for y in range(3)]
    del view


def test_unreadable_memory_is_refused_and_the_image_kept():
    img = made_of([300])
    memory = Memory("B", (4,), [1, 2, 3, 4])
    text = "Data in __array_interface__ lies outside readable memory"
    for strides in ((2**46, 1), (-2**46, 1), (2**62, 2**62), (-2**63, 2**63 - 1), (2**46, 0)):
        memory.__array_interface__["shape"] = (2, 3)
        memory.__array_interface__["strides"] = strides
        raises(Exception, text, img.from_array, memory)
    memory.__array_interface__.update(shape=(2, 2, 2), strides=(1, 1, 2**46))
    raises(Exception, text, img.from_array, memory)
    assert rows(img) == [[300]]


def test_an_image_is_an_array_itself():
    source = made_of([[300, 2, 3], [4, 5, 6], [7, 8, 9]])
    assert rows(made_of(source)) == rows(source)
    source.from_array(source)
    assert rows(source) == [[300, 2, 3], [4, 5, 6], [7, 8, 9]]


def test_the_copy_is_independent_of_the_array():
    memory = Memory("B", (1, 2), [1, 2])
    img = made_of(memory)
    memory.memory[0] = 99
    assert rows(img) == [[1, 2]]
