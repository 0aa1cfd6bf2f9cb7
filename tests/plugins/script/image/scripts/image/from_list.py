import vantrel
from checks import *


def test_empty_lists_say_which_level_is_empty():
    img = vantrel.Image()
    raises(Exception, "list passed is empty", img.from_array, [])
    raises(Exception, "array rows are empty", img.from_array, [[]])
    raises(Exception, "array channels are empty", img.from_array, [[[]]])


def test_elements_that_are_no_numbers_are_refused():
    img = vantrel.Image()
    for data in (["a"], [None], [["a"]], [[["a"]]], [[[[1]]]], [(1, 2)], [1j], [[b"x"]]):
        raises(Exception, "unsupported data type", img.from_array, data)


def test_other_objects_are_refused():
    text = "object passed doesn't support neither buffer protocol, nor __array_interface__, and is not list."
    img = vantrel.Image()
    for data in (42, None, "text", (1, 2), {1: 2}, b"bytes", bytearray(b"x"), vantrel.Image(), object, iter([1])):
        raises(Exception, text, img.from_array, data)


def test_takes_exactly_one_argument():
    img = vantrel.Image()
    raises(TypeError, None, img.from_array)
    raises(TypeError, None, img.from_array, [1], [2])


def test_a_flat_list_becomes_a_column():
    img = made_of([1, 2, 200])
    assert geometry(img) == (1, 3, 1, "|u1", 8)
    assert rows(img) == [[1], [2], [200]]
    assert not img.rgb


def test_integers_stay_16_bit_unless_they_use_exactly_8():
    assert geometry(made_of([1, 2, 3])) == (1, 3, 1, "|u2", 2)
    assert geometry(made_of([0])) == (1, 1, 1, "|u2", 1)
    assert geometry(made_of([127])) == (1, 1, 1, "|u2", 7)
    assert geometry(made_of([128])) == (1, 1, 1, "|u1", 8)
    assert geometry(made_of([256])) == (1, 1, 1, "|u2", 9)
    assert geometry(made_of([65535])) == (1, 1, 1, "|u2", 16)


def test_nested_lists_become_rows():
    img = made_of([[0, 300], [5, 7]])
    assert geometry(img) == (2, 2, 1, "|u2", 9)
    assert rows(img) == [[0, 300], [5, 7]]


def test_floats_stay_32_bit():
    img = made_of([[1.5, 2.0], [-3.25, 1e30]])
    assert geometry(img) == (2, 2, 1, "|f4", 32)
    assert rows(img)[0] == [1.5, 2.0] and rows(img)[1][0] == -3.25
    special = rows(made_of([float("nan"), float("inf"), 1e300]))
    assert special[0][0] != special[0][0] and special[1][0] == special[2][0] == float("inf")


def test_three_levels_become_channels():
    img = made_of([[[1, 2, 3], [4, 5, 6]], [[7, 8, 9], [10, 11, 255]]])
    assert geometry(img) == (2, 2, 3, "|u1", 8)
    assert rows(img) == [[(1, 2, 3), (4, 5, 6)], [(7, 8, 9), (10, 11, 255)]]
    assert img.rgb
    assert not made_of([[[1, 2], [4, 5]]]).rgb
    assert not made_of([[[1.0, 2.0, 3.0]]]).rgb
    assert geometry(made_of([[[1, 2, 3, 400]]])) == (1, 1, 4, "|u2", 9)


def test_a_flat_list_leaves_out_other_elements():
    assert rows(made_of([300, "x", None, [3], 4.0, 5])) == [[300], [0], [0], [0], [0], [5]]
    assert rows(made_of([1.5, 2, "x", 2.5])) == [[1.5], [0.0], [0.0], [2.5]]


def test_a_row_closes_up_over_other_elements():
    assert rows(made_of([[300, 0, 0], [1, "x", 3]])) == [[300, 0, 0], [1, 3, 0]]
    assert rows(made_of([[1.5, 2, "x", 2.5]])) == [[1.5, 2.5, 0.0, 0.0]]


def test_rows_are_fitted_to_the_first():
    assert rows(made_of([[300, 2], [3], [], [4, 5, 6, 7]])) == [[300, 2], [3, 0], [0, 0], [4, 5]]
    # Only as many elements as the first row has are looked at.
    assert rows(made_of([[300, 2], ["x", 5, 6]])) == [[300, 2], [5, 0]]


def test_a_row_that_is_no_list_stays_0():
    assert rows(made_of([[300, 2], None, 5, (1, 2), [3, 4]])) == [[300, 2], [0, 0], [0, 0], [0, 0], [3, 4]]


def test_a_pixel_keeps_the_places_of_its_channels():
    img = made_of([[[300, 2, 3], [1, "x", 4]], [[5], []], [[1, 2, 3, 4], ["x", 7, 8]]])
    assert rows(img) == [[(300, 2, 3), (1, 0, 4)], [(5, 0, 0), (0, 0, 0)], [(1, 2, 3), (0, 7, 8)]]


def test_rows_of_pixels_close_up_and_end_with_the_first_rows_width():
    img = made_of([[[300], [2]], [None, [3], "x", [4], [5]], [[6]], 7])
    assert rows(img) == [[300, 2], [3, 4], [6, 0], [0, 0]]


def test_unwritten_places_are_0_again_and_again():
    # Used memory comes back from the heap with other bytes in it.
    for _ in range(50):
        made_of([[65535] * 100 for _ in range(20)])
        img = made_of([[300] + [0] * 99] + [["x"] * 100, [], None, [1]] * 4)
        assert all(line == [0] * 100 for line in rows(img)[1:4])
        stride = img.__array_interface__["strides"][1]
        assert all(not any(bytes(img)[y * stride + 200:(y + 1) * stride]) for y in range(img.height))


def test_booleans_and_subclasses_count_as_numbers():
    class Whole(int):
        def __index__(self):
            raise AssertionError("not asked")

    class Real(float):
        def __float__(self):
            raise AssertionError("not asked")

    class Row(list):
        def __len__(self):
            raise AssertionError("not asked")

    assert rows(made_of([True, False, 300])) == [[1], [0], [300]]
    assert rows(made_of(Row([Row([Whole(300), True])]))) == [[300, 1]]
    assert rows(made_of([Real(2.5)])) == [[2.5]]


def test_integers_are_cut_to_16_bits():
    numbers = [65536 + 300, -1, -65536, 2**31, 2**63 + 3, 2**64 - 1, -2**63, 2**64, 2**70 + 7, -2**63 - 1, 2**100 - 2]
    low = [300, 65535, 0, 0, 3, 65535, 0, 0, 7, 65535, 65534]
    assert rows(made_of(numbers)) == [[number] for number in low]
    assert rows(made_of([numbers])) == [low]
    assert rows(made_of([[numbers]])) == [[tuple(low)]]


def test_an_image_is_replaced_only_by_a_success():
    img = made_of([300])
    for data in ([], [[]], ["x"], 5):
        raises(Exception, None, img.from_array, data)
        assert rows(img) == [[300]]
    img.from_array([[400, 500]])
    assert rows(img) == [[400, 500]]


def test_a_list_may_contain_itself():
    data = [300]
    data.append(data)
    assert rows(made_of(data)) == [[300], [0]]
    rows_of_itself = []
    rows_of_itself.append(rows_of_itself)
    raises(Exception, "unsupported data type", vantrel.Image().from_array, rows_of_itself)


def test_a_failing_look_up_of_the_array_interface_counts_as_none():
    class Stubborn(list):
        error = None

        @property
        def __array_interface__(self):
            raise self.error

    for error in (AttributeError("a"), ValueError("b"), RuntimeError("c"), OSError("d"), MemoryError()):
        data = Stubborn([300])
        data.error = error
        assert rows(made_of(data)) == [[300]]
    for interrupt in (KeyboardInterrupt, SystemExit):
        data = Stubborn([300])
        data.error = interrupt("now")
        raises(interrupt, "now", vantrel.Image().from_array, data)


def test_images_from_lists_have_no_metadata():
    raises(Exception, "Vantrel image object is empty", getattr, made_of([1]), "gain_db")
    assert made_of([1]).time_stamp == 0
