"""The libraries behind image files and videos are loaded by the first file that needs them, and not before."""

import os

import vantrel


def loaded():
    with open("/proc/self/maps", encoding="utf-8") as maps:
        paths = {line.split()[-1] for line in maps if ".so" in line}
    return {os.path.basename(path).split(".")[0] for path in paths}


CODECS = "libopencv_imgcodecs"
VIDEO = "libopencv_videoio"

at_start = loaded()
assert "libopencv_core" in at_start, "this test looks for the wrong names"
assert CODECS not in at_start
assert VIDEO not in at_start
assert len(at_start) < 110, sorted(at_start)
with open("/proc/self/maps", encoding="utf-8") as maps:
    assert "/fontconfig/" not in maps.read(), "nothing is shown, so no font is needed"

image = vantrel.Image()
image.alloc(64, 48, 3, 8)
vantrel.new_view_with_image(image, "loading")
assert CODECS not in loaded()
for name in ("first.bmp", "first.ppm"):  # these need no library
    vantrel.save_to_file(name)
    vantrel.Image().from_file(name)
assert CODECS not in loaded()
vantrel.save_to_file("first.png")
assert CODECS in loaded()
assert VIDEO not in loaded()
again = vantrel.Image()
assert again.from_file("first.png") is not False
assert (again.get_width(), again.get_height()) == (64, 48)

assert vantrel.record_video_to_file("first.avi") is True
assert VIDEO in loaded()
vantrel.set_view_image(image)
vantrel.stop_video_recording()
assert os.path.getsize("first.avi") > 0
