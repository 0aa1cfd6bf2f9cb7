"""Lists every open camera with its description and its parameters with their ranges.

    ./vantrel run --sim-cameras 4 examples/camera_tour.py
"""
from typing import Optional

import vantrel

DEVICE_KEYS = ("device_name", "device_type", "device_model_id", "device_sn", "device_user_id", "device_inst_path")
PARAMETERS = ("exposure", "gain", "black_level", "framerate", "auto_exposure", "trigger_mode", "frame_count", "cooling",
              "sensor_temperature", "link_speed")


def shown(cam: vantrel.Camera, name: str) -> Optional[str]:
    """The value as text: "" if there is no value, None if the camera does not support the parameter."""
    try:
        value = cam.get_param(name)
    except Exception:
        return None
    if value is None:
        return ""
    return "%g" % value if isinstance(value, float) else str(value)


if vantrel.get_number_devices() == 0:
    print("No camera is open.")

for index in range(vantrel.get_number_devices()):
    cam = vantrel.Camera()
    cam.open_device(index)
    print("%d  %s" % (index, cam))
    for key in DEVICE_KEYS:
        print("   %-20s %s" % (key[len("device_"):], cam.get_device_info_string(key)))
    print("   %-20s %d, %d, %d x %d" % (("region",) + cam.get_roi()))
    for name in PARAMETERS:
        value = shown(cam, name)
        if value is None:
            print("   %-20s not supported" % name)
            continue
        line = "   %-20s %-10s" % (name, value)
        low, high, step = (shown(cam, name + suffix) for suffix in (":min", ":max", ":inc"))
        if low and high:
            line += " from %s to %s" % (low, high)
        if step:
            line += " in steps of %s" % step
        print(line.rstrip())
    print()
