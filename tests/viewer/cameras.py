"""A script's whole way with a camera, in the program; on the GUI thread or on a thread of its own."""
import os
import time

own_thread = False

assert vantrel.get_number_devices() == 3
camera = vantrel.Camera()
camera.open_device_by_SN("sim0003c")
assert str(camera) == "camera(SimCam M8, sn: SIM0003C)", camera
other = vantrel.Camera()
other.open_device_by_user_id("LEFT")
assert other.get_device_info_string("device_sn") == "SIM0001A"

assert camera.set_framerate(120) == 0
view = camera.start_acquisition()
assert view > 0
deadline = time.time() + 20
while True:
    try:
        vantrel.wait_for_next_frame(1.0, view)
    except Exception:
        own_thread = True
        time.sleep(0.02)
    try:
        image = vantrel.get_view_image(view)
        break
    except Exception:
        assert time.time() < deadline
assert (image.width, image.height, image.channels) == (320, 240, 1)
assert image.exposure_time_us == 10000

# Every frame follows the settings that were made before it.
if not own_thread:
    first = image.get_frame_number()
    for exposure in range(100, 2100, 100):
        assert camera.set_exposure(exposure) == 0
        assert vantrel.wait_for_next_frame(5.0, view)
        image = vantrel.get_view_image(view)
        assert image.exposure_time_us == exposure
    assert image.get_frame_number() == first + 20

camera.stop_acquisition()
assert camera.get_frame_count() > 0

# Settings files, beside the script's working directory.
assert camera.set_exposure(777) == 0
camera.set_roi(10, 20, 100, 50)
camera.save_settings_to_file("camera.json")
assert os.path.exists("camera.json")
assert camera.set_exposure(5) == 1
camera.set_roi(0, 0, 320, 240)
camera.load_settings_from_file("camera.json")
assert camera.get_exposure() == 777
assert camera.get_roi() == (10, 20, 100, 50)

# The first answer is Capture, the second dismisses the dialog.
captured = camera.ask_user_capture_image("Flat field", "Hold still", 0)
assert captured > 0 and captured != view
assert vantrel.get_view_image(captured).width == 100
assert camera.ask_user_capture_image() == -1

stale = vantrel.Camera()
stale.open_device_by_SN("SIM0003C")
assert camera.restart_with_default_settings() is True
assert camera.get_exposure() == 10000
assert camera.get_roi() == (0, 0, 320, 240)
assert str(stale) == "camera(disconnected)"
assert stale.start_acquisition() == -1
assert camera.start_acquisition() == view
camera.stop_acquisition()
print("done")
