import math

import vantrel
from checks import *

KEYS = ["name", "mean", "stdev", "variance", "rms", "min", "max"]


def ramp(width, height):
    return made_of([[300 + x + y for x in range(width)] for y in range(height)])


def expect(stats, name, numbers):
    """Compares a dictionary with what the definitions give for these numbers."""
    assert list(stats) == KEYS
    mean = sum(numbers) / len(numbers)
    variance = sum((n - mean) ** 2 for n in numbers) / len(numbers)
    wanted = {"mean": mean, "stdev": math.sqrt(variance), "rms": math.sqrt(sum(n * n for n in numbers) / len(numbers)),
              "min": min(numbers), "max": max(numbers)}
    assert stats["name"] == name
    for key, value in wanted.items():
        assert math.isclose(stats[key], value, rel_tol=1e-9, abs_tol=1e-9), (key, stats[key], value)
    assert stats["variance"] == stats["stdev"] * stats["stdev"]


def test_the_whole_image_by_default():
    img = allocated(640, 480, 1, 8, None)
    img.draw_pixel_line(200, 0, 0, 639, 479)
    stats = img.measure_rect()
    assert len(stats) == 1
    expect(stats[0], "Mono", [n for line in rows(img) for n in line])


def test_a_missing_size_reaches_to_the_edge():
    img = ramp(64, 48)
    values = rows(img)
    expect(img.measure_rect(60, 0)[0], "Mono", [n for line in values for n in line[60:]])
    expect(img.measure_rect(60, 40, 0, -5)[0], "Mono", [n for line in values[40:] for n in line[60:]])
    expect(img.measure_rect(0, 0, 3)[0], "Mono", [n for line in values for n in line[:3]])
    expect(img.measure_rect(2, 1, 3, 4)[0], "Mono", [n for line in values[1:5] for n in line[2:5]])


def test_a_constant_image_does_not_vary():
    for img in (allocated(30, 20, 1, 8, 77), allocated(30, 20, 1, 32, 4000000000), made_of([[0.1] * 30] * 20)):
        stats = img.measure_rect()[0]
        assert stats["stdev"] == 0.0 and stats["variance"] == 0.0
        assert stats["min"] == stats["max"] == stats["mean"]


def test_channels_are_named_in_the_order_of_memory():
    img = made_of([[[10, 20, 200], [30, 40, 50]]])
    stats = img.measure_rect()
    assert [s["name"] for s in stats] == ["Blue", "Green", "Red"]
    expect(stats[0], "Blue", [10, 30])
    expect(stats[2], "Red", [200, 50])
    assert [s["name"] for s in img.to_rgb().measure_rect()] == ["Blue", "Green", "Red", "Alpha"]


def test_a_rectangle_outside_the_image_fails():
    img = ramp(8, 6)
    for rect in ((8, 0), (0, 6), (100, 100, 5, 5), (-5, 0, 5, 6), (0, -2, 8, 2), (2147483647, 0, 2147483647, 1),
                 (-2147483648, 0, 5, 5), (0, 2147483647), (9, 0), (100, 0), (0, 7, 0, 0)):
        raises(Exception, "Cannot measure data", img.measure_rect, *rect)
        raises(Exception, "Cannot measure profile data", img.measure_row_profiles_in_rect, *rect)
        raises(Exception, "Cannot measure profile data", img.measure_column_profiles_in_rect, *rect)


def test_a_rectangle_partly_outside_is_clipped():
    img = ramp(8, 6)
    values = rows(img)
    every = [n for line in values for n in line]
    expect(img.measure_rect(-5, -5, 100, 100)[0], "Mono", every)
    expect(img.measure_rect(-2147483648, -2147483648)[0], "Mono", every)
    expect(img.measure_rect(6, 4, 2147483647, 2147483647)[0], "Mono", values[4][6:] + values[5][6:])
    assert len(img.measure_row_profiles_in_rect(0, 4, 8, 10)) == 2


def test_values_above_the_black_level():
    img = ramp(8, 6)
    assert img.black_level == 0
    assert img.measure_rect(0, 0, 0, 0, True) == img.measure_rect()


def test_one_profile_for_each_row_or_column():
    img = ramp(20, 10)
    values = rows(img)
    profiles = img.measure_row_profiles_in_rect(0, 0, 10, 5)
    assert len(profiles) == 5 and all(len(profile) == 1 for profile in profiles)
    for y, profile in enumerate(profiles):
        expect(profile[0], "Mono", values[y][:10])
    profiles = img.measure_column_profiles_in_rect(2, 1, 10, 5)
    assert len(profiles) == 10
    for x, profile in enumerate(profiles):
        expect(profile[0], "Mono", [line[2 + x] for line in values[1:6]])
    assert len(img.measure_row_profiles_in_rect()) == 10
    assert len(img.measure_column_profiles_in_rect()) == 20


def test_profiles_have_every_channel():
    img = made_of([[[10, 20, 200], [30, 40, 50]], [[1, 2, 3], [4, 5, 6]]])
    rows_of_it = img.measure_row_profiles_in_rect()
    assert [[s["name"] for s in profile] for profile in rows_of_it] == [["Blue", "Green", "Red"]] * 2
    expect(rows_of_it[1][2], "Red", [3, 6])
    expect(img.measure_column_profiles_in_rect()[0][1], "Green", [20, 2])


def test_every_type_is_measured():
    for code, numbers in (("B", [1, 2, 250]), ("b", [-100, 0, 100]), ("h", [-3000, 5, 20000]), ("H", [3, 4, 60000]),
                          ("i", [-2**31, 5, 2**31 - 1]), ("I", [1, 2, 2**32 - 1]), ("q", [-2**40, 5, 2**41]),
                          ("Q", [5, 6, 2**50]), ("f", [-1.5, 0.25, 1024.0])):
        expect(made_of(Memory(code, (3, 1), numbers)).measure_rect()[0], "Mono", numbers)


def test_arguments_are_parsed_first():
    for img in (vantrel.Image(), ramp(3, 3)):
        for measure in (img.measure_rect, img.measure_row_profiles_in_rect, img.measure_column_profiles_in_rect):
            raises(TypeError, None, measure, "x")
            raises(TypeError, None, measure, 1.5)
            raises(OverflowError, None, measure, 2**31)
        raises(TypeError, None, img.measure_rect, 0, 0, 0, 0, 0, 0)
        raises(TypeError, None, img.measure_row_profiles_in_rect, 0, 0, 0, 0, 0)


def test_an_empty_object_fails_silently():
    img = vantrel.Image()
    fails_silently(img.measure_rect)
    fails_silently(img.measure_row_profiles_in_rect)
    fails_silently(img.measure_column_profiles_in_rect)
