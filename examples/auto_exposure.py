"""Finds the exposure that brings the mean of the picture to half of full scale, in at most ten frames.

    ./vantrel run --show examples/auto_exposure.py

It uses the first camera. A sensor is linear until it saturates, so one picture that is neither dark nor saturated is
enough to calculate the exposure. Each further picture makes the exposure more exact.
"""
import vantrel

MOST_FRAMES = 10
GOAL = 0.5  # of full scale
TOLERANCE = 0.01

if vantrel.get_number_devices() == 0:
    raise RuntimeError("auto_exposure needs a camera: start with --sim-cameras 1")

cam = vantrel.Camera()
cam.open_device(0)
print(cam)
cam.disable_auto_exposure()
cam.set_framerate(cam.get_framerate_maximum() or 30.0)
cam.set_exposure(200)  # far too dark

shortest = int(cam.get_exposure_minimum() or 1)
longest = int(cam.get_exposure_maximum() or 1000000)
step = int(cam.get_exposure_increment() or 1)

view = cam.start_acquisition()
if view < 0:
    raise RuntimeError("the camera did not start")
found = False
try:
    for number in range(1, MOST_FRAMES + 1):
        if not vantrel.wait_for_next_frame(5.0, view):
            raise RuntimeError("no frame came")
        img = vantrel.get_view_image(view)
        exposure = img.exposure_time_us  # not the camera's setting: a frame may be older than that
        channels = img.measure_rect()
        level = sum(channel["mean"] for channel in channels) / len(channels) / img.data_saturation
        print("frame %2d: %7d us, mean %5.1f %% of full scale" % (number, exposure, 100 * level))
        if abs(level - GOAL) <= TOLERANCE:
            found = True
            break
        # A very dark or bright picture tells little, so change the exposure by a fixed factor.
        if level < 0.01:
            factor = 16.0
        elif level > 0.95:
            factor = 0.25
        else:
            factor = GOAL / level
        wanted = int(round(exposure * factor / step)) * step
        cam.set_exposure(min(max(wanted, shortest), longest))
finally:
    cam.stop_acquisition()

if found:
    print("found: %d us" % exposure)
else:
    print("not found in %d frames" % MOST_FRAMES)
