"""Time lapse: saves a number of frames at an interval into a folder.

    ./vantrel run examples/time_lapse.py

It takes the first camera and writes time_lapse/frame_000.png and so on below the working directory, which is this
script's own folder unless --workdir names another.
"""
import time

import vantrel

FRAMES = 5
INTERVAL = 0.2  # seconds
FOLDER = "time_lapse"

if vantrel.get_number_devices() == 0:
    raise RuntimeError("time_lapse needs a camera: start with --sim-cameras 1")

cam = vantrel.Camera()
cam.open_device(0)
view = cam.start_acquisition()
if view < 0:
    raise RuntimeError("the camera does not start")
try:
    begin = time.monotonic()
    for number in range(FRAMES):
        # Counted from the beginning, so that the time that saving takes does not add up.
        vantrel.wait(max(0.0, begin + number * INTERVAL - time.monotonic()))
        if not vantrel.wait_for_next_frame(5.0, view):
            raise RuntimeError("no frame came")
        img = vantrel.get_view_image(view)
        path = "%s/frame_%03d.png" % (FOLDER, number)
        img.save_to_file(path)
        print("%d of %d: frame %d after %.2f s, %s" %
              (number + 1, FRAMES, img.get_frame_number(), time.monotonic() - begin, path))
finally:
    cam.stop_acquisition()
