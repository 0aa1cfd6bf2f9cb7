"""Times what scripts do with cameras: access to parameters, and frames.

Run it with `vantrel run`. Each line has the action, its time, a comparison and the goal.
"""
import time
import timeit

import vantrel

SECONDS = 3


def seconds(statement, **names):
    """Best time of a statement, which is repeated in the loop to make the cost of the loop negligible."""
    return min(timeit.repeat("\n".join([statement] * 20), globals=names, number=1000, repeat=9)) / 20000


def access(cam):
    img = vantrel.Image()
    img.alloc(4, 4, 1, 8)
    floor = seconds("img.get_width()", img=img)
    print("%-34s %7.0f ns          the floor: a trivial method" % ("img.get_width()", floor * 1e9))
    for statement in ("cam.get_exposure()", "cam.set_exposure(500)", "cam.get_param('exposure')",
                      "cam.set_param('exposure', 500)"):
        elapsed = seconds(statement, cam=cam)
        goal = "  (goal: within 4 times)" if "param" not in statement else ""
        print("%-34s %7.0f ns %6.1f x%s" % (statement, elapsed * 1e9, elapsed / floor, goal))


def frames(cam):
    """Takes and measures frames at the highest rate."""
    cam.set_framerate(cam.get_framerate_maximum())
    view = cam.start_acquisition()
    vantrel.wait_for_next_frame(5.0, view)
    taken = 0
    worst = 0.0
    begin, worked = time.perf_counter(), 0.0
    while time.perf_counter() - begin < SECONDS:
        vantrel.wait_for_next_frame(5.0, view)
        start = time.perf_counter()
        img = vantrel.get_view_image(view)
        img.measure_rect()
        worst = max(worst, time.perf_counter() - start)
        worked += time.perf_counter() - start
        taken += 1
    passed = time.perf_counter() - begin
    cam.stop_acquisition()
    # The simulated camera delays frames for a slow host instead of dropping them, so missed frames lower the rate.
    missed = max(0, int(passed * cam.get_framerate()) - taken)
    print("%-34s %7.1f frames/s of %g, %d missed of %d  (goal: none)" %
          ("take and measure 640 x 480 x 3", taken / passed, cam.get_framerate(), missed, taken + missed))
    print("%-34s %7.2f ms, at most %.2f ms" % ("copying and measuring of it", worked / taken * 1e3, worst * 1e3))


def latency(cam):
    """Time from when a frame is due until the waiting script has it. A delay that is not made up adds to later ones."""
    rate = 100.0
    cam.set_framerate(rate)
    view = cam.start_acquisition()
    started = time.perf_counter()
    delays = []
    for _ in range(100):
        vantrel.wait_for_next_frame(5.0, view)
        now = time.perf_counter()
        img = vantrel.get_view_image(view)
        delays.append(now - started - img.get_frame_number() / rate)
    cam.stop_acquisition()
    delays.sort()
    print("%-34s %7.2f ms median, at most %.2f ms" %
          ("from frame due to script", delays[len(delays) // 2] * 1e3, delays[-1] * 1e3))


camera = vantrel.Camera()
camera.open_device(0)
access(camera)
frames(camera)
latency(camera)
