import vantrel

camera = vantrel.Camera()
camera.open_device(0)
camera.set_exposure(8000)

graph = vantrel.Graph()
series = graph.add_series()
chart = vantrel.Image()
chart.alloc(640, 400, 3, 8)
chart_view = vantrel.new_view_with_image(chart, "Mean of green in the disc's path")

view = camera.start_acquisition()
vantrel.tile_views()
for i in range(100):
    if not vantrel.wait_for_next_frame(2.0, view):
        raise RuntimeError("no frame came")
    frame = vantrel.get_view_image(view)
    green = frame.measure_rect(400, 340, 80, 80)[1]
    graph.series_add_point(series, frame.frame_number, green["mean"])
    graph.draw_into_image(chart)
    vantrel.set_view_image(chart, chart_view)
camera.stop_acquisition()
print("measured frames up to number", frame.frame_number)
