import vantrel
from checks import *

OUT_OF_MEMORY = "cannot allocate new image, out of memory"


def numbered(width, height, channels=1, bpc=16):
    img = allocated(width, height, channels, bpc)
    for y in range(height):
        for x in range(width):
            for c in range(channels):
                img.set_pixel_value(100 * y + 10 * x + c, x, y, c)
    return img


def test_to_rgb_makes_four_channels_of_8_bit():
    img = allocated(5, 3, 1, 8, 77)
    result = img.to_rgb()
    assert geometry(result) == (5, 3, 4, "|u1", 8) and result.rgb
    assert rows(result) == [[(77, 77, 77, 255)] * 5] * 3
    assert geometry(img) == (5, 3, 1, "|u1", 8)
    assert result.black_level == 0 and result.frm == 5


def test_to_rgb_scales_wide_values_and_keeps_the_order_of_colours():
    assert rows(allocated(2, 1, 1, 12, 4095).to_rgb()) == [[(255, 255, 255, 255)] * 2]
    colour = made_of([[[1, 2, 255]]])
    assert rows(colour.to_rgb()) == [[(1, 2, 255, 255)]]


def test_extract_channel_returns_one():
    img = numbered(4, 3, 3)
    result = img.extract_channel(1)
    assert geometry(result) == (4, 3, 1, "|u2", 16) and not result.rgb
    assert rows(result) == [[100 * y + 10 * x + 1 for x in range(4)] for y in range(3)]
    for channel in (3, -1, 2**31 - 1, -2**31):
        raises(Exception, "channel number out of range", img.extract_channel, channel)
    raises(TypeError, None, img.extract_channel)
    assert rows(made_of([[[1.5, 2.5]]]).extract_channel(1)) == [[2.5]]


def test_convert_bpc_chooses_the_type():
    img = allocated(3, 2, 1, 8, 255)
    for bpc, kind in ((1, "|u1"), (8, "|u1"), (9, "|u2"), (12, "|u2"), (16, "|u2"), (17, "|u4"), (32, "|u4")):
        result = img.convert_bpc(bpc)
        assert geometry(result) == (3, 2, 1, kind, bpc)
        assert result.get_pixel_value(2, 1) == 2**bpc - 1, bpc
    for bpc in (0, 33, -1, 2**31 - 1, -2**31):
        raises(Exception, "number of bits out of range", img.convert_bpc, bpc)


def test_convert_bpc_scales_unless_told_otherwise():
    img = allocated(2, 2, 1, 12, 4095)
    assert img.convert_bpc(8).get_pixel_value(0, 0) == 255
    assert img.convert_bpc(8, True).get_pixel_value(0, 0) == 255
    assert img.convert_bpc(16, False).get_pixel_value(0, 0) == 4095
    assert allocated(2, 2, 1, 12, 200).convert_bpc(8, False).get_pixel_value(0, 0) == 200


def test_convert_bpc_refuses_values_that_do_not_fit():
    img = allocated(2, 2, 1, 16, 5000)
    for bpc in (9, 12):
        raises(Exception, "new image contained values over max bpc", img.convert_bpc, bpc, False)
    assert img.convert_bpc(13, False).bpc == 13
    assert img.get_pixel_value(0, 0) == 5000


def test_new_copy_is_independent():
    img = numbered(4, 3)
    copy = img.new_copy()
    assert geometry(copy) == geometry(img) and rows(copy) == rows(img)
    copy.set_pixel_value(9, 0, 0)
    assert img.get_pixel_value(0, 0) == 0
    assert copy.bp != img.bp


def test_crop_cuts_out_a_rectangle():
    img = numbered(5, 4)
    result = img.crop(1, 2, 3, 2)
    assert geometry(result) == (3, 2, 1, "|u2", 16)
    assert rows(result) == [[210, 220, 230], [310, 320, 330]]
    colour = numbered(5, 4, 3).crop(4, 3, 1, 1)
    assert rows(colour) == [[(340, 341, 342)]] and colour.rgb


def test_crop_beyond_the_image_leaves_0():
    for _ in range(20):
        allocated(6, 6, 1, 16, 65535)
        img = numbered(5, 4)
        assert rows(img.crop(4, 3, 2, 2)) == [[340, 0], [0, 0]]
        for at in ((5, 0), (0, 4), (-1, 0), (0, -2147483648)):
            assert not any(bytes(img.crop(*at, 6, 6))), at


def test_sizes_that_make_no_image_are_refused():
    img = numbered(5, 4)
    for size in ((0, 1), (1, 0), (-1, 1), (1, -1), (-2147483648, -2147483648), (2147483647, 2147483647)):
        raises(Exception, OUT_OF_MEMORY, img.crop, 0, 0, *size)
        raises(Exception, OUT_OF_MEMORY, img.resize, *size)
        raises(Exception, OUT_OF_MEMORY, img.resize, *size, 0, 0, 0, 0)
    raises(TypeError, None, img.crop, 0, 0, 5)
    raises(TypeError, None, img.resize, 5)


def test_resize_alone_enlarges_the_first_pixel():
    img = numbered(5, 4)
    img.set_pixel_value(77, 0, 0)
    result = img.resize(10, 6)
    assert geometry(result) == (10, 6, 1, "|u2", 16)
    assert rows(result) == [[77] * 10] * 6


def test_resize_takes_the_whole_image_for_zeros():
    img = made_of([[300] * 4 + [500] * 4] * 8)
    assert rows(img.resize(2, 2, 0, 0, 0, 0)) == [[300, 500]] * 2
    assert rows(img.resize(2, 1, 4, 0, 4, 8)) == [[500, 500]]
    # A width alone reaches as far as the image does.
    assert rows(img.resize(1, 1, 0, 0, 4)) == [[300]]


def test_resize_outside_the_image_leaves_0():
    img = allocated(4, 4, 1, 8, 9)
    for x, y in ((4, 0), (0, 4), (-1, 0), (0, -1)):
        assert rows(img.resize(2, 2, x, y, 2, 2)) == [[0, 0]] * 2
    assert rows(img.resize(2, 2, 3, 3, -5, 2**31 - 1)) == [[9, 9]] * 2


def test_copy_to_writes_into_the_other():
    img, other = numbered(4, 3), allocated(4, 3, 1, 12)
    assert img.copy_to(other) is None
    assert rows(other) == rows(img) and other.bpc == 16
    smaller = allocated(3, 3, 1, 16, 5)
    img.copy_to(smaller)
    assert rows(smaller) == [[5] * 3] * 3


def test_copy_rect_to_writes_a_block():
    img, other = numbered(20, 20), allocated(20, 20, 1, 16, 7)
    assert img.copy_rect_to(0, 0, 10, 10, other, 5, 5) is None
    got, source = rows(other), rows(img)
    for y in range(20):
        for x in range(20):
            inside = 5 <= x < 15 and 5 <= y < 15
            assert got[y][x] == (source[y - 5][x - 5] if inside else 7)


def test_copy_rect_to_is_clipped_to_both():
    img = numbered(4, 4)
    other = allocated(3, 3, 1, 16, 7)
    img.copy_rect_to(3, 3, 10, 10, other, 2, 2)
    assert rows(other) == [[7, 7, 7], [7, 7, 7], [7, 7, 330]]
    for arguments in ((4, 0, 1, 1, other, 0, 0), (0, 0, 1, 1, other, 3, 0), (-1, -1, 1, 1, other, 0, 0),
                      (0, 0, 1, 1, other, -1, -1), (0, 0, 0, 0, other, 0, 0)):
        img.copy_rect_to(*arguments)
        assert rows(other) == [[7, 7, 7], [7, 7, 7], [7, 7, 330]]
    img.copy_rect_to(0, 0, -1, -1, other, 0, 0)  # as far as both reach
    assert rows(other) == [line[:3] for line in rows(img)[:3]]


def test_copy_rect_to_may_overlap_itself():
    img = numbered(4, 4)
    before = rows(img)
    img.copy_rect_to(0, 0, 3, 3, img, 1, 1)
    after = rows(img)
    assert [line[1:] for line in after[1:]] == [line[:3] for line in before[:3]]
    assert after[0] == before[0]


def test_resize_to_fills_the_other():
    img, other = made_of([[300] * 4 + [500] * 4] * 8), allocated(4, 2, 1, 16)
    assert img.resize_to(other) is None
    assert rows(other) == [[300, 300, 500, 500]] * 2
    before = rows(img)
    img.resize_to(img)
    assert rows(img) == before


def test_a_rectangle_is_resized_under_its_published_name():
    img, other = made_of([[300] * 4 + [500] * 4] * 8), allocated(4, 3, 1, 16, 7)
    assert img.tesize_rect_to(4, 0, 4, 8, other, 1, 1, 2, 1) is None
    assert rows(other) == [[7, 7, 7, 7], [7, 500, 500, 7], [7, 7, 7, 7]]
    assert not hasattr(img, "resize_rect_to")


def test_add_and_subtract_change_self():
    a, b = allocated(3, 2, 1, 8, 200), allocated(3, 2, 1, 8, 100)
    assert a.add(b) is None
    assert rows(a) == [[255] * 3] * 2 and rows(b) == [[100] * 3] * 2
    assert b.subtract(allocated(3, 2, 1, 8, 30)) is None
    assert rows(b) == [[70] * 3] * 2
    b.subtract(a)
    assert rows(b) == [[0] * 3] * 2
    c = allocated(3, 2, 1, 8, 50)
    c.add(c)
    assert rows(c) == [[100] * 3] * 2
    c.subtract(c)
    assert rows(c) == [[0] * 3] * 2


def test_images_of_another_size_or_type():
    a = allocated(3, 3, 1, 8, 10)
    a.add(allocated(2, 5, 1, 8, 1))
    assert rows(a) == [[11, 11, 10]] * 3
    a.add(allocated(3, 3, 1, 16, 1))
    a.add(allocated(3, 3, 3, 8, 1))
    a.subtract(allocated(3, 3, 1, 32, 1))
    assert rows(a) == [[11, 11, 10]] * 3


def test_divide_by_value_rounds():
    img = made_of([[300, 301, 299, 0]])
    assert img.divide_by_value(2) is None
    assert rows(img)[0][0] == 150 and rows(img)[0][3] == 0
    before = rows(img)
    img.divide_by_value(0)
    img.divide_by_value(1)
    assert rows(img) == before
    img.divide_by_value(-2147483648)
    assert rows(img) == [[0] * 4]
    raises(TypeError, None, img.divide_by_value, 2.5)
    raises(OverflowError, None, img.divide_by_value, 2**31)


def test_an_empty_object_fails_silently():
    empty, other = vantrel.Image(), allocated(2, 2, 1, 8)
    for name, arguments in (("to_rgb", ()), ("extract_channel", (0,)), ("convert_bpc", (8,)), ("convert_bpc", (0,)),
                            ("new_copy", ()), ("crop", (0, 0, 1, 1)), ("resize", (1, 1)), ("copy_to", (other,)),
                            ("copy_rect_to", (0, 0, 1, 1, other, 0, 0)), ("resize_to", (other,)),
                            ("tesize_rect_to", (0, 0, 1, 1, other, 0, 0, 1, 1)), ("add", (other,)),
                            ("subtract", (other,)), ("divide_by_value", (1,)), ("save_to_file", ("x.png",))):
        fails_silently(getattr(empty, name), *arguments)


def test_an_empty_argument_fails_silently():
    img, empty = allocated(2, 2, 1, 8), vantrel.Image()
    for name, arguments in (("copy_to", (empty,)), ("copy_rect_to", (0, 0, 1, 1, empty, 0, 0)),
                            ("resize_to", (empty,)), ("tesize_rect_to", (0, 0, 1, 1, empty, 0, 0, 1, 1)),
                            ("add", (empty,)), ("subtract", (empty,))):
        fails_silently(getattr(img, name), *arguments)


def test_an_argument_that_is_not_an_image_fails_silently():
    img = allocated(2, 2, 1, 8)
    for other in (None, 5, "x", [1], object(), vantrel.Image, vantrel):
        for name, arguments in (("copy_to", (other,)), ("copy_rect_to", (0, 0, 1, 1, other, 0, 0)),
                                ("resize_to", (other,)), ("tesize_rect_to", (0, 0, 1, 1, other, 0, 0, 1, 1)),
                                ("add", (other,)), ("subtract", (other,))):
            fails_silently(getattr(img, name), *arguments)


def test_every_type_takes_every_operation():
    images = [made_of(Memory(code, (4, 5, channels), numbers))
              for channels in (1, 3, 4, 5)
              for numbers in [list(range(20 * channels))]
              for code in "BHIQfd"]
    images += [made_of(Memory(code, (4, 5), [-1 - 60000 * (code in "iq")] + list(range(19)))) for code in "bhi"]
    for img in images:
        width, height = img.width, img.height
        assert geometry(img.to_rgb())[:4] == (width, height, 4, "|u1")
        assert geometry(img.extract_channel(0))[:3] == (width, height, 1)
        assert img.convert_bpc(16).bpc == 16
        assert rows(img.crop(0, 0, width, height)) == rows(img)
        assert geometry(img.resize(9, 9, 0, 0, 0, 0))[:3] == (9, 9, img.channels)
        assert geometry(img.resize(2, 2, 0, 0, 0, 0))[:3] == (2, 2, img.channels)
        assert any(bytes(img.resize(2, 2, 0, 0, 0, 0))), geometry(img)
        copy = img.new_copy()
        copy.subtract(img)
        assert rows(copy) == rows(allocated(width, height, img.channels, 8)), geometry(img)
        copy.add(img)
        assert rows(copy) == rows(img)
        copy.divide_by_value(1)
        assert rows(copy) == rows(img)


def test_the_table_has_every_method():
    names = [name for name in dir(vantrel.Image) if name == "__bytes__" or not name.startswith("__")]
    assert len(names) == 34, names
