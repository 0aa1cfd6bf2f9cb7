"""Live chain: adds a gain and a blur stage to a live camera, and shows a frame before and a frame after that.

    ./vantrel run --show examples/live_chain.py

It uses the first camera and writes live_chain.png to the current folder.
"""
import os

import vantrel

OUTPUT = os.path.abspath("live_chain.png")


def save(img: vantrel.Image, path: str) -> None:
    """Save the image. save_to_file() only logs what goes wrong, so look for the new file."""
    if os.path.isfile(path):
        os.remove(path)
    img.save_to_file(path)
    if not os.path.isfile(path):
        raise RuntimeError("cannot save " + path)


if vantrel.get_number_devices() == 0:
    raise RuntimeError("live_chain needs a camera: start with --sim-cameras 1")

cam = vantrel.Camera()
cam.open_device(0)
print("camera:", cam.get_device_info_string("device_name"))
view = cam.start_acquisition()
if view < 0:
    raise RuntimeError("the camera did not start")

try:
    if not vantrel.wait_for_next_frame(5.0, view):
        raise RuntimeError("no frame came")
    before = vantrel.get_view_image(view)

    # From now on the two stages process every frame of the active view before it is shown.
    vantrel.add_chain_object("Gain", {"gain": 2.0, "offset": 0})
    vantrel.add_chain_object("Gaussian Blur", {"sigma": 4.0})
    if not vantrel.wait_for_next_frame(5.0, view):
        raise RuntimeError("no frame came")
    after = vantrel.get_view_image(view)
finally:
    cam.stop_acquisition()

for name, img in (("before", before), ("after", after)):
    stats = img.measure_rect()[0]
    print("%-6s  mean %6.1f  standard deviation %6.1f" % (name, stats["mean"], stats["stdev"]))

# Put the two frames side by side.
both = vantrel.Image()
both.alloc(2 * before.width, before.height, before.channels, before.bpc)
before.copy_rect_to(0, 0, before.width, before.height, both, 0, 0)
after.copy_rect_to(0, 0, after.width, after.height, both, before.width, 0)
vantrel.new_view_with_image(both, "Before and after")
save(both, OUTPUT)
print("saved %s: %d x %d" % (OUTPUT, both.width, both.height))
