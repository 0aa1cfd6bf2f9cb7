"""Times graphs in scripts: drawing, beside Matplotlib's Agg canvas, and adding points, beside a list.

Run it with `vantrel run`. Each line has the action, the best time of several rounds and a comparison.
"""
import math
import time

import vantrel


def best(call, rounds=5):
    """The shortest time of one call, in seconds."""
    times = []
    for _ in range(rounds):
        start = time.perf_counter()
        call()
        times.append(time.perf_counter() - start)
    return min(times)


def series_values(series_count, point_count):
    for s in range(series_count):
        xs = [100.0 * i / point_count for i in range(point_count)]
        yield xs, [s + math.sin(x + s) + 0.1 * math.sin(37 * x) for x in xs]


def drawer(values):
    graph = vantrel.Graph()
    for xs, ys in values:
        series = graph.add_series()
        for x, y in zip(xs, ys):
            graph.series_add_point(series, x, y)
    image = vantrel.Image()
    image.alloc(1280, 720, 3, 8)
    return lambda: graph.draw_into_image(image)


def agg_drawer(values):
    from matplotlib.backends.backend_agg import FigureCanvasAgg
    from matplotlib.figure import Figure

    def draw():
        figure = Figure(figsize=(12.8, 7.2), dpi=100)
        canvas = FigureCanvasAgg(figure)
        axes = figure.add_axes((0.05, 0.05, 0.94, 0.93))
        for xs, ys in values:
            axes.plot(xs, ys, linewidth=1.44)  # points: 2 pixels
        axes.grid(True)
        canvas.draw()

    return draw


def compare_drawing():
    for series_count, point_count in ((10, 10_000), (1, 1_000_000)):
        values = list(series_values(series_count, point_count))
        ours = best(drawer(values))
        name = 'draw {} x {:,} points'.format(series_count, point_count)
        try:
            theirs = best(agg_drawer(values), rounds=3)
        except ImportError:
            print('{:<28} {:9.2f} ms   (Matplotlib is not installed)'.format(name, ours * 1e3))
        else:
            print('{:<28} {:9.2f} ms   Agg {:9.2f} ms   {:.1f} times faster'.format(
                name, ours * 1e3, theirs * 1e3, theirs / ours))


def compare_adding():
    count = 200_000

    def add_points():
        graph = vantrel.Graph()
        add, series = graph.series_add_point, graph.add_series()
        for _ in range(count):
            add(series, 1.5, 2.5)

    def append_tuples():
        points = []
        append, x, y = points.append, 1.5, 2.5
        for _ in range(count):
            append((x, y))

    ours, theirs = best(add_points), best(append_tuples)
    print('{:<28} {:9.1f} ns   list {:8.1f} ns   {:.2f} times as long'.format(
        'series_add_point', ours / count * 1e9, theirs / count * 1e9, ours / theirs))


compare_adding()
compare_drawing()
