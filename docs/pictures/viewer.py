"""The scene of the picture in the README: a live camera with a stage, a picture file and the graph of the guide."""

import math

import vantrel

camera = vantrel.Camera()
camera.open_device(0)
live = camera.start_acquisition()
vantrel.open_file("../../examples/data/scene12.tif")

graph = vantrel.Graph()
graph.set_dark_color_theme()
for phase in (0.0, 1.0):
    series = graph.add_series()
    for i in range(200):
        graph.series_add_point(series, i / 10, math.sin(i / 10 + phase))
image = vantrel.Image()
image.alloc(640, 400, 3, 8)
graph.draw_into_image(image)
image.save_to_file("graph.png")
vantrel.new_view_with_image(image, "Two waves")

vantrel.activate_view(live)
vantrel.add_chain_object("Gaussian Blur", {"sigma": 2.0})
vantrel.tile_views()
vantrel.wait(1)
for channel in vantrel.get_view_image(live).measure_rect():
    print(f"{channel['name']:6} mean {channel['mean']:7.2f}  deviation {channel['stdev']:6.2f}")
