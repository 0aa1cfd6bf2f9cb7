import vantrel
from checks import *


def marked(img):
    """The set of pixels that are not 0."""
    return {(x, y) for y, line in enumerate(rows(img)) for x, value in enumerate(line) if value}


def signed_32_bit():
    # A negative value beyond 16 bits keeps the type.
    img = made_of(Memory("i", (2, 2), [-70000, 0, 0, 0]))
    assert typestr(img) == "|i4"
    return img


def test_values_are_cut_to_the_type():
    img = allocated(4, 4, 1, 8)
    assert img.set_pixel_value(300, 0, 0) is None
    assert img.get_pixel_value(0, 0) == 44
    img = allocated(4, 4, 1, 12)
    img.set_pixel_value(65536 + 5000, 1, 2)
    assert img.get_pixel_value(1, 2) == 5000  # beyond 12 bits: the type counts
    img = allocated(4, 4, 1, 32)
    img.set_pixel_value(-1, 3, 3)
    assert img.get_pixel_value(3, 3) == 4294967295
    img.set_pixel_value(2**63 - 1, 3, 3)
    assert img.get_pixel_value(3, 3) == 4294967295
    img = signed_32_bit()
    assert img.get_pixel_value(0, 0) == -70000
    img.set_pixel_value(-1, 0, 0)
    assert img.get_pixel_value(0, 0) == -1


def test_other_types_are_neither_read_nor_written():
    for data in (made_of([[1.5, 2.5]]), made_of(Memory("b", (1, 2), [-3, 1])), made_of(Memory("h", (1, 2), [-300, 1])),
                 made_of(Memory("q", (1, 2), [-2**40, 1])), made_of(Memory("Q", (1, 2), [2**40, 1]))):
        before = bytes(data)
        assert data.get_pixel_value(0, 0) == 0
        assert data.set_pixel_value(5, 0, 0) is None
        assert data.draw_pixel_line(5, 0, 0, 1, 0) is None
        assert data.draw_pixel_rect(5, 0, 0, 1, 0) is None
        assert bytes(data) == before


def test_positions_are_checked_in_images_of_every_type():
    img = made_of([[1.5, 2.5]])
    raises(Exception, "x-coordinate out of range", img.get_pixel_value, 2, 0)
    raises(Exception, "channel number out of range", img.set_pixel_value, 1, 0, 0, 1)
    raises(Exception, "y2-coordinate out of range", img.draw_pixel_line, 1, 0, 0, 1, 1)
    raises(Exception, "x1-coordinate out of range", img.draw_pixel_rect, 1, 2, 0, 1, 0)


def test_channels_are_apart():
    img = allocated(3, 2, 3, 8)
    img.set_pixel_value(7, 1, 1, 2)
    assert rows(img) == [[(0, 0, 0)] * 3, [(0, 0, 0), (0, 0, 7), (0, 0, 0)]]
    assert img.get_pixel_value(1, 1, 2) == 7 and img.get_pixel_value(1, 1) == 0


def test_positions_are_checked_in_their_order():
    img = allocated(4, 3, 3, 8)
    for get in (img.get_pixel_value, lambda *at: img.set_pixel_value(1, *at)):
        raises(Exception, "x-coordinate out of range", get, 4, 0)
        raises(Exception, "x-coordinate out of range", get, -1, 99, 99)
        raises(Exception, "y-coordinate out of range", get, 0, 3)
        raises(Exception, "y-coordinate out of range", get, 3, -1, 99)
        raises(Exception, "channel number out of range", get, 0, 0, 3)
        raises(Exception, "channel number out of range", get, 0, 0, -1)
    assert not any(bytes(img))


def test_ends_are_checked_in_their_order():
    img = allocated(4, 3, 3, 8)
    for draw in (img.draw_pixel_line, img.draw_pixel_rect):
        raises(Exception, "x1-coordinate out of range", draw, 1, 4, 99, 99, 99, 99)
        raises(Exception, "y1-coordinate out of range", draw, 1, 3, 3, 99, 99, 99)
        raises(Exception, "x2-coordinate out of range", draw, 1, 3, 2, -1, 99, 99)
        raises(Exception, "y2-coordinate out of range", draw, 1, 3, 2, 0, -1, 99)
        raises(Exception, "channel number out of range", draw, 1, 3, 2, 0, 0, 3)
        raises(Exception, "channel number out of range", draw, 1, 3, 2, 0, 0, -2147483648)
    assert not any(bytes(img))


def test_arguments_are_parsed_first():
    for img in (vantrel.Image(), allocated(4, 3, 1, 8)):
        raises(TypeError, None, img.get_pixel_value)
        raises(TypeError, None, img.get_pixel_value, 1)
        raises(TypeError, None, img.get_pixel_value, 1, 2, 3, 4)
        raises(TypeError, None, img.get_pixel_value, 1.0, 2)
        raises(TypeError, None, img.get_pixel_value, "1", 2)
        raises(OverflowError, None, img.get_pixel_value, 2**31, 0)
        raises(OverflowError, None, img.get_pixel_value, 0, -2**31 - 1)
        raises(OverflowError, None, img.get_pixel_value, 2**70, 0)
        raises(OverflowError, None, img.set_pixel_value, 2**63, 0, 0)
        raises(TypeError, None, img.set_pixel_value, 1.5, 0, 0)
        raises(TypeError, None, img.set_pixel_value, 1, 0)
        raises(TypeError, None, img.draw_pixel_line, 1, 0, 0, 1)
        raises(TypeError, None, img.draw_pixel_rect, 1, 0, 0, 1)


def test_whatever_is_an_integer_is_taken():
    class Index:
        def __index__(self):
            return 1

    img = allocated(4, 3, 2, 8)
    img.set_pixel_value(True, Index(), True, Index())
    assert img.get_pixel_value(True, Index(), 1) == 1


def test_an_argument_may_replace_the_image():
    img = allocated(40, 40, 1, 8)

    class Shrinking:
        def __index__(self):
            img.alloc(2, 2, 1, 8)
            return 30

    raises(Exception, "x-coordinate out of range", img.get_pixel_value, Shrinking(), 0)
    raises(Exception, "x-coordinate out of range", img.set_pixel_value, 1, Shrinking(), 0)
    raises(Exception, "x2-coordinate out of range", img.draw_pixel_line, 1, 0, 0, Shrinking(), 0)


def test_an_empty_object_fails_silently():
    img = vantrel.Image()
    fails_silently(img.get_pixel_value, 0, 0)
    fails_silently(img.set_pixel_value, 1, 0, 0)
    fails_silently(img.draw_pixel_line, 1, 0, 0, 1, 1)
    fails_silently(img.draw_pixel_rect, 1, 0, 0, 1, 1)


def test_lines_take_the_minor_step_at_a_tie():
    def line(*ends):
        img = allocated(6, 6, 1, 8)
        assert img.draw_pixel_line(255, *ends) is None
        return marked(img)

    assert line(0, 0, 4, 2) == {(0, 0), (1, 1), (2, 1), (3, 2), (4, 2)}
    assert line(0, 0, 2, 4) == {(0, 0), (1, 1), (1, 2), (2, 3), (2, 4)}
    assert line(0, 0, 5, 1) == {(0, 0), (1, 0), (2, 0), (3, 1), (4, 1), (5, 1)}
    assert line(3, 3, 3, 3) == {(3, 3)}
    assert line(0, 5, 5, 0) == {(i, 5 - i) for i in range(6)}


def test_rectangles_are_outlines():
    square = {(x, y) for x in range(1, 4) for y in range(1, 4)} - {(2, 2)}
    for ends in ((1, 1, 3, 3), (3, 3, 1, 1), (3, 1, 1, 3), (1, 3, 3, 1)):
        img = allocated(6, 6, 1, 8)
        assert img.draw_pixel_rect(9, *ends) is None
        assert marked(img) == square
        assert {img.get_pixel_value(*at) for at in square} == {9}
    img = allocated(6, 6, 3, 16)
    img.draw_pixel_rect(70000, 0, 0, 5, 5, 1)
    assert {value for line in rows(img) for value in line} == {(0, 0, 0), (0, 70000 - 65536, 0)}
    img = allocated(6, 6, 1, 8)
    img.draw_pixel_rect(1, 2, 3, 2, 3)
    assert marked(img) == {(2, 3)}
