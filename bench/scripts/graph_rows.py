"""Graphs beside Matplotlib's Agg canvas, which is given arrays.

Both sides draw lines of 2 pixels, axes, labels and a grid into pixels. A draw begins without a plot: a script's graph
holds data only, so the peer makes its figure from its arrays too. The rows named "fill" count what comes before:
adding every point to a graph, or turning the peer's lists into arrays.
"""

import time

import numpy as np
from matplotlib.backends.backend_agg import FigureCanvasAgg
from matplotlib.figure import Figure

import pairs
import vantrel

WIDTH, HEIGHT = 1280, 720


def smooth(series, points):
    for s in range(series):
        x = np.linspace(0, 100, points, endpoint=False)
        yield x, s + np.sin(x + s) + 0.1 * np.sin(37 * x)


def noise(series, points):
    random = np.random.default_rng(1)
    for _ in range(series):
        yield np.arange(float(points)), random.uniform(-1, 1, points)


def filled_graph(lines):
    graph = vantrel.Graph()
    for xs, ys in lines:
        series = graph.add_series()
        for x, y in zip(xs, ys):
            graph.series_add_point(series, x, y)
    return graph


def new_image():
    image = vantrel.Image()
    image.alloc(WIDTH, HEIGHT, 3, 8)
    return image


def agg_picture(lines):
    figure = Figure(figsize=(WIDTH / 100, HEIGHT / 100), dpi=100)
    canvas = FigureCanvasAgg(figure)
    axes = figure.add_axes((0.05, 0.05, 0.94, 0.93))
    for xs, ys in lines:
        axes.plot(xs, ys, linewidth=1.44)  # points: 2 pixels
    axes.grid(True)
    canvas.draw()


def drawing(lines):
    lines = list(lines)
    graph = filled_graph((xs.tolist(), ys.tolist()) for xs, ys in lines)
    image = new_image()
    return lambda: graph.draw_into_image(image), lambda: agg_picture(lines)


def filling_and_drawing(lines):
    lists = [(xs.tolist(), ys.tolist()) for xs, ys in lines]
    image = new_image()
    return (lambda: filled_graph(lists).draw_into_image(image),
            lambda: agg_picture([(np.array(xs), np.array(ys)) for xs, ys in lists]))


def drawn_once(task, goal, graph):
    """Report the seconds of the best of three draws, without a peer."""
    if not pairs.wanted(task):
        return
    image = new_image()
    seconds = []
    for _ in range(3):
        start = time.thread_time()
        graph.draw_into_image(image)
        seconds.append(time.thread_time() - start)
    pairs.report(task, "goal in seconds", goal, seconds, min(seconds))


def zoomed(points, far):
    """A graph of noise that shows one of `far` parts of its height."""
    (xs, ys), = noise(1, points)
    graph = filled_graph([(xs.tolist(), (ys * far).tolist())])
    graph.set_y_axis_range(-1, 1)
    return graph


PEER = "Matplotlib Agg"
pairs.group("Graphs")
pairs.compare("draw 10 x 10,000 smooth", PEER, 0.5, lambda: drawing(smooth(10, 10_000)))
pairs.compare("draw 1 x 1,000,000 smooth", PEER, 0.5, lambda: drawing(smooth(1, 1_000_000)), turns=9)
pairs.compare("draw 100 x 1000 smooth", PEER, 0.5, lambda: drawing(smooth(100, 1000)), turns=9)
pairs.compare("draw 1 x 300 noise", PEER, 0.5, lambda: drawing(noise(1, 300)))
pairs.compare("draw 1 x 1000 noise", PEER, 0.5, lambda: drawing(noise(1, 1000)))
pairs.compare("draw 10 x 10,000 noise", PEER, 1, lambda: drawing(noise(10, 10_000)), turns=9)
pairs.compare("fill and draw 10 x 10,000 smooth", PEER, None, lambda: filling_and_drawing(smooth(10, 10_000)), turns=9)
pairs.compare("fill and draw 1 x 1,000,000 smooth", PEER, None, lambda: filling_and_drawing(smooth(1, 1_000_000)), turns=5)
pairs.compare("fill and draw 100 x 1000 smooth", PEER, None, lambda: filling_and_drawing(smooth(100, 1000)), turns=9)
for far in (1e2, 1e3, 1e4, 1e5, 1e6):
    drawn_once(f"draw 290 points of noise, y zoomed {far:,.0f} times", 0.2, zoomed(290, far))
drawn_once("draw 1000 points of noise, y zoomed 100,000 times", 0.2, zoomed(1000, 1e5))
