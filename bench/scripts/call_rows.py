"""Small calls, beside the same calls on objects of Python; and the opening of views, beside itself.

A measured function makes many calls, so that the time of the loop counts little.
"""

import time

import pairs

import vantrel

CALLS = 1000


class Camera:
    """What a camera would be in plain Python."""

    def __init__(self):
        self.exposure = 0

    def set_exposure(self, value):
        self.exposure = value
        return 0


def get_width():
    image = vantrel.Image()
    image.alloc(64, 48, 1, 8)
    empty = []

    def ours():
        for _ in range(CALLS):
            image.get_width()

    def peers():
        for _ in range(CALLS):
            empty.clear()

    return ours, peers


def set_exposure():
    camera, peer = vantrel.Camera(), Camera()
    camera.open_device(0)

    def ours():
        for _ in range(CALLS):
            camera.set_exposure(1000)

    def peers():
        for _ in range(CALLS):
            peer.set_exposure(1000)

    return ours, peers


def seconds_to_open(number):
    """The times in which further views open, where `number` are open."""
    image = vantrel.Image()
    image.alloc(64, 48, 1, 8)
    opened = [vantrel.new_view_with_image(image) for _ in range(number)]
    times = []
    for _ in range(25):
        start = time.thread_time()
        opened.append(vantrel.new_view_with_image(image))
        times.append(time.thread_time() - start)
    for view in opened:
        vantrel.close_view(view)
    return sorted(times)


pairs.group("Calls")
pairs.compare("get_width()", "[].clear()", 6, get_width)
pairs.compare("set_exposure", "the same call on a Python object", 4, set_exposure)
if pairs.wanted("open a view, 200 open"):
    FEW, MANY = seconds_to_open(10), seconds_to_open(200)
    pairs.report("open a view, 200 open", "the same, 10 open", 1.1, [a / b for a, b in zip(MANY, FEW)],
                 MANY[len(MANY) // 2], FEW[len(FEW) // 2])
