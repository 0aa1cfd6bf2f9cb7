"""Time lapse: saves frames to a folder at a fixed interval.

    ./vantrel run examples/time_lapse.py

It uses the first camera and writes time_lapse/frame_000.png and so on below the current folder.
"""
import os
import time

import vantrel

FRAMES = 5
INTERVAL = 0.2  # seconds
FOLDER = os.path.abspath("time_lapse")


def save(img: vantrel.Image, path: str) -> None:
    """Save the image. save_to_file() only logs what goes wrong, so look for the new file."""
    if os.path.isfile(path):
        os.remove(path)
    img.save_to_file(path)
    if not os.path.isfile(path):
        raise RuntimeError("cannot save " + path)


if vantrel.get_number_devices() == 0:
    raise RuntimeError("time_lapse needs a camera: start with --sim-cameras 1")

cam = vantrel.Camera()
cam.open_device(0)
view = cam.start_acquisition()
if view < 0:
    raise RuntimeError("the camera did not start")
try:
    begin = time.monotonic()
    for number in range(FRAMES):
        # Count each interval from the beginning, so that the time for saving does not add up.
        vantrel.wait(max(0.0, begin + number * INTERVAL - time.monotonic()))
        if not vantrel.wait_for_next_frame(5.0, view):
            raise RuntimeError("no frame came")
        img = vantrel.get_view_image(view)
        path = os.path.join(FOLDER, "frame_%03d.png" % number)
        save(img, path)
        print("%d of %d: frame %d after %.2f s, %s" %
              (number + 1, FRAMES, img.get_frame_number(), time.monotonic() - begin, path))
finally:
    cam.stop_acquisition()
