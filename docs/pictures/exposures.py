import vantrel

camera = vantrel.Camera()
camera.open_device(0)
view = camera.start_acquisition()
for exposure in (2500, 5000, 10000, 20000):  # microseconds
    camera.set_exposure(exposure)
    vantrel.wait_for_next_frame(5, view)
    green = vantrel.get_view_image(view).measure_rect()[1]
    print(exposure, "us:", green["name"], "mean", round(green["mean"]))
vantrel.tile_views()
