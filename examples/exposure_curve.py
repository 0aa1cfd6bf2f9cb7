"""Measures how bright a camera's pictures are at different exposure times and draws the curve.

    ./vantrel run --show examples/exposure_curve.py

It uses the first open camera, which is a simulated one unless you open another.
"""
from typing import List, Tuple

import vantrel

EXPOSURES = (100, 500, 1000, 2000, 4000, 6000, 8000, 10000, 14000, 18000, 24000, 30000)  # microseconds
SECONDS_FOR_A_FRAME = 3.0


def mean_level(view: int) -> float:
    """The mean of all channels of the first frame with the current exposure."""
    for _ in range(2):  # the next frame may still have the old exposure
        if not vantrel.wait_for_next_frame(SECONDS_FOR_A_FRAME, view):
            raise RuntimeError("no frame came within %.0f seconds" % SECONDS_FOR_A_FRAME)
    stats = vantrel.get_view_image(view).measure_rect()
    return float(sum(channel["mean"] for channel in stats) / len(stats))


def measure(camera: vantrel.Camera) -> List[Tuple[int, float]]:
    before = camera.get_param("exposure")
    assert before is not None
    view = camera.start_acquisition()
    if view < 0:
        raise RuntimeError("the camera did not start")
    try:
        points = []
        for exposure in EXPOSURES:
            camera.set_param("exposure", exposure)
            points.append((exposure, mean_level(view)))
            print("%6d us: mean level %7.2f" % points[-1])
        return points
    finally:
        camera.stop_acquisition()
        camera.set_param("exposure", before)


if vantrel.get_number_devices() == 0:
    raise RuntimeError("no camera is open")
camera = vantrel.Camera()
camera.open_device()
print(camera)

graph = vantrel.Graph()
series = graph.add_series()
for exposure, level in measure(camera):
    graph.series_add_point(series, exposure / 1000.0, level)  # milliseconds

chart = vantrel.Image()
chart.alloc(800, 500, 3, 8)
graph.draw_into_image(chart)
vantrel.new_view_with_image(chart, "Mean level against exposure in milliseconds")
