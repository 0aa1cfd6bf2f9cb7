"""Frames of a camera in scripts, and the recording of a view."""

import os
import tempfile
import time

import cv2
import numpy

import vantrel

from pairs import group, report, wanted

SECONDS = 3


def frames(camera):
    """Take and measure frames at the highest rate."""
    camera.set_framerate(camera.get_framerate_maximum())
    view = camera.start_acquisition()
    vantrel.wait_for_next_frame(5.0, view)
    taken, worked = 0, 0.0
    begin = time.perf_counter()
    while time.perf_counter() - begin < SECONDS:
        vantrel.wait_for_next_frame(5.0, view)
        start = time.perf_counter()
        img = vantrel.get_view_image(view)
        img.measure_rect()
        worked += time.perf_counter() - start
        taken += 1
    passed = time.perf_counter() - begin
    camera.stop_acquisition()
    # The simulated camera delays frames for a slow host instead of dropping them, so missed frames lower the rate.
    period = 1 / camera.get_framerate()
    report("taking and measuring 640 x 480 x 3", "the period of %g frames/s" % camera.get_framerate(), 1.01,
           [passed / taken / period], passed / taken, period)
    report("copying and measuring of it", "the period", None, [worked / taken / period], worked / taken, period)


def latency(camera):
    """The time from when a frame is due until the waiting script has it. Delays that are not made up add up."""
    rate = 100.0
    camera.set_framerate(rate)
    view = camera.start_acquisition()
    started = time.perf_counter()
    delays = []
    for _ in range(100):
        vantrel.wait_for_next_frame(5.0, view)
        now = time.perf_counter()
        img = vantrel.get_view_image(view)
        delays.append(now - started - img.get_frame_number() / rate)
    camera.stop_acquisition()
    delays.sort()
    report("from frame due to script, median", "the period of 100 frames/s", None,
           [delays[len(delays) // 2] * rate], delays[len(delays) // 2], 1 / rate)


def frames_at_the_highest_rate(view):
    """Wait for the frames of a few seconds. Returns the seconds and the processor time of each."""
    taken = 0
    begin, before = time.perf_counter(), time.process_time()
    while time.perf_counter() - begin < SECONDS:
        vantrel.wait_for_next_frame(5.0, view)
        taken += 1
    return (time.perf_counter() - begin) / taken, (time.process_time() - before) / taken


def recording(camera, folder):
    """Record the frames of the highest rate, beside OpenCV writing frames of the same camera."""
    camera.set_framerate(camera.get_framerate_maximum())
    view = camera.start_acquisition()
    vantrel.wait_for_next_frame(5.0, view)
    _, without = frames_at_the_highest_rate(view)
    if not vantrel.record_video_to_file(os.path.join(folder, "frames.avi"), view):
        raise SystemExit("the recording did not start")
    seconds, processor = frames_at_the_highest_rate(view)
    vantrel.stop_video_recording(view)
    camera.stop_acquisition()
    period = 1 / camera.get_framerate()
    report("recording 640 x 480 x 3", "the period of %g frames/s" % camera.get_framerate(), 1.01, [seconds / period],
           seconds, period)

    picture = numpy.ascontiguousarray(vantrel.get_view_image(view))
    if picture.shape != (480, 640, 3):
        picture = numpy.ascontiguousarray(picture.transpose(1, 0, 2))
    writer = cv2.VideoWriter(os.path.join(folder, "peer.avi"), cv2.VideoWriter_fourcc(*"MJPG"), 120, (640, 480))
    before = time.process_time()
    for _ in range(100):
        writer.write(picture)
    peer = (time.process_time() - before) / 100
    writer.release()
    report("processor time that recording adds to a frame", "cv2.VideoWriter.write", 1.2,
           [(processor - without) / peer], processor - without, peer)


def main():
    group("Cameras")
    tasks = ("taking and measuring", "copying and measuring", "from frame due to script", "recording",
             "processor time that recording adds to a frame")
    if not any(wanted(task) for task in tasks):
        return
    camera = vantrel.Camera()
    camera.open_device(0)
    frames(camera)
    latency(camera)
    with tempfile.TemporaryDirectory() as folder:
        recording(camera, folder)


main()
