# In the editor
import vantrel

camera = vantrel.Camera()
camera.open_device(0)
view = camera.start_acquisition()


def brightness(image):
    return image.measure_rect().mean


for number in range(3):
    vantrel.wait_for_next_frame(2.0, view)
    frame = vantrel.get_view_image(view)
    print("frame", frame.get_frame_number())
    print(f"mean {brightness(frame):.1f}")
