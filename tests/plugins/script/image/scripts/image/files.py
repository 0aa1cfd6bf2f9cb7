import os

import vantrel
from checks import *

# The working directory that relative paths start from is told by the environment, not by the process.
FORMATS = ("png", "tif", "tiff", "jpg", "jpeg", "bmp", "pgm", "ppm")


def folder():
    """The folder of the script's relative paths, found by writing to it."""
    allocated(1, 1, 1, 8).save_to_file("marker-of-this-test.png")
    import glob
    import tempfile
    found = glob.glob(os.path.join(tempfile.gettempdir(), "*", "marker-of-this-test.png"))
    newest = max(found, key=os.path.getmtime)
    os.remove(newest)
    return os.path.dirname(newest)


def test_what_is_saved_is_read_again():
    mono8 = made_of([[0, 255], [7, 200], [1, 2]])
    mono16 = made_of([[0, 65535], [300, 7]])
    colour = made_of([[[255, 0, 1], [2, 3, 4]]])
    floats = made_of([[1.5, -2.25]])
    for img, endings in ((mono8, ("png", "tif", "tiff", "bmp", "pgm")), (mono16, ("png", "tif", "pgm")),
                         (colour, ("png", "tif", "bmp", "ppm")), (floats, ("tif",))):
        for ending in endings:
            assert img.save_to_file("image." + ending) is None
            back = vantrel.Image()
            assert back.from_file("image." + ending) is None
            assert rows(back) == rows(img), ending
            assert back.rgb == img.rgb, ending


def test_upper_case_extensions_and_other_letters_are_fine():
    img = made_of([[0, 255]])
    for name in ("IMAGE.PNG", "gr\u00fc\u00dfe \u65e5\u672c.png", "two.dots.png"):
        img.save_to_file(name)
        back = vantrel.Image()
        back.from_file(name)
        assert rows(back) == rows(img)


def test_the_directory_is_made_first():
    made_of([[0, 255]]).save_to_file("new/folder/image.png")
    img = vantrel.Image()
    img.from_file("new/folder/image.png")
    assert img.width == 2


def test_unknown_extensions_cannot_be_opened():
    img = made_of([300])
    for name in ("image.xyz", "image", "png", "", "image.png.txt"):
        raises(Exception, "cannot open file", img.from_file, name)
        assert rows(img) == [[300]]


def test_unknown_extensions_are_not_saved():
    img = made_of([300])
    fails_silently(img.save_to_file, "image.xyz")
    fails_silently(img.save_to_file, "deeper/image")
    # The directory is made before the format is looked for.
    assert os.path.isdir(os.path.join(folder(), "deeper"))


def test_a_file_that_cannot_be_read_leaves_the_object_empty():
    img = made_of([300])
    assert img.from_file("missing.png") is None
    assert str(img) == "Vantrel image object is empty"
    fails_silently(img.get_width)
    img.from_array([300])
    assert rows(img) == [[300]]


def test_paths_are_strings():
    img = made_of([300])
    for call in (img.from_file, img.save_to_file):
        raises(TypeError, None, call)
        raises(TypeError, None, call, 5)
        raises(TypeError, None, call, b"image.png")
        raises(TypeError, None, call, "a.png", "b.png")
        raises(ValueError, None, call, "a\0.png")
    assert rows(img) == [[300]]


def test_saving_where_nothing_can_be_written_says_nothing():
    assert made_of([300]).save_to_file("/proc/none/image.png") is None


def test_damaged_and_cut_files_never_crash():
    source = made_of([[[x * y % 256, x % 256, y] for x in range(40)] for y in range(30)])
    place = folder()
    for ending in FORMATS:
        img = source.extract_channel(0) if ending == "pgm" else source
        path = os.path.join(place, "whole." + ending)
        img.save_to_file(path)
        with open(path, "rb") as file:
            content = file.read()
        for cut in (0, 1, 2, 8, 20, 60, len(content) // 2, len(content) - 1):
            read_broken(place, ending, content[:cut])
        for step in range(0, min(len(content), 400), 7):
            broken = bytearray(content)
            broken[step] ^= 0xFF
            read_broken(place, ending, bytes(broken))
        read_broken(place, ending, b"\xff" * 200)
        read_broken(place, ending, content + b"more")


def read_broken(place, ending, content):
    path = os.path.join(place, "broken." + ending)
    with open(path, "wb") as file:
        file.write(content)
    img = made_of([300])
    assert img.from_file(path) is None
    assert str(img).startswith("Vantrel image")
    if str(img) != "Vantrel image object is empty":
        assert len(bytes(img)) == img.bp_size
