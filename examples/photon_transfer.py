"""Photon transfer: measures the gain of a sensor from its noise.

    ./vantrel run examples/photon_transfer.py

Light comes in quanta, so the noise of a pixel that collects N electrons is the square root of N. The variance of the
pixel values is therefore proportional to their mean, and the slope is the sensor's gain in values per electron.

The script uses the last open camera and takes two frames at each exposure. The sum of the frames gives the mean, and
their difference the variance, since everything that stands still cancels out. It uses a part of the picture that does
not move.
"""
from typing import List, Tuple

import vantrel

EXPOSURES = (500, 1000, 2000, 4000, 6000, 8000, 10000)
ROUNDING = 1.0 / 12  # variance from rounding to whole numbers


def next_frame(view: int) -> vantrel.Image:
    if not vantrel.wait_for_next_frame(5.0, view):
        raise RuntimeError("no frame came")
    return vantrel.get_view_image(view)


def slope(points: List[Tuple[float, float]]) -> float:
    """The slope of the least-squares line through the points."""
    mean_x = sum(x for x, _ in points) / len(points)
    mean_y = sum(y for _, y in points) / len(points)
    return (sum((x - mean_x) * (y - mean_y) for x, y in points) / sum((x - mean_x) ** 2 for x, _ in points))


def values(img: vantrel.Image) -> List[float]:
    """The values of the first channel in the still part, row by row."""
    width, height = img.width // 8, img.height // 8
    left, top = img.width - width - 8, img.height * 3 // 16
    pixels = memoryview(img.get_image_data_raw())
    if img.bpc == 32:
        pixels = pixels.cast("f")
    elif img.bpc > 8:
        pixels = pixels.cast("H")
    stride = len(pixels) // img.height
    result: List[float] = []
    for y in range(top, top + height):
        start = y * stride + left * img.channels
        result.extend(pixels[start:start + width * img.channels:img.channels])
    return result


if vantrel.get_number_devices() == 0:
    raise RuntimeError("photon_transfer needs a camera: start with --sim-cameras 2")

cam = vantrel.Camera()
cam.open_device(vantrel.get_number_devices() - 1)
print(cam)
cam.set_gain(0.0)
cam.set_black_level(0)
cam.set_framerate(cam.get_framerate_maximum() or 30.0)
view = cam.start_acquisition()
if view < 0:
    raise RuntimeError("the camera did not start")

points: List[Tuple[float, float]] = []
try:
    print("%12s%12s%12s" % ("exposure us", "mean", "variance"))
    for exposure in EXPOSURES:
        cam.set_exposure(exposure)
        first, second = values(next_frame(view)), values(next_frame(view))
        mean = (sum(first) + sum(second)) / 2 / len(first)
        differences = [a - b for a, b in zip(first, second)]
        middle = sum(differences) / len(differences)
        variance = sum((d - middle) ** 2 for d in differences) / len(differences) / 2 - ROUNDING
        points.append((mean, variance))
        print("%12d%12.2f%12.3f" % (exposure, mean, variance))
finally:
    cam.stop_acquisition()

gain = slope(points)
print("gain: %.4f values per electron, %.2f electrons per value" % (gain, 1 / gain))
