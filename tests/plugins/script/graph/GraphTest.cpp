// vantrel.Graph as scripts use it.

#include "support/PluginHost.h"

#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>

namespace {

// What the scripts below share: an image to draw into, what a call raises, and how often a colour is in an image.
constexpr const char* helpers = R"(
def picture(width=320, height=240, channels=3, bits=8):
    image = vantrel.Image()
    image.alloc(width, height, channels, bits)
    return image

def raised(call, *arguments):
    try:
        call(*arguments)
    except BaseException as error:
        return type(error).__name__, str(error)
    return None

def pixels(image):
    data, channels = image.tobytes(), image.channels
    stride = len(data) // image.height
    for y in range(image.height):
        for x in range(image.width):
            at = y * stride + x * channels
            yield data[at:at + channels]

def count(image, blue, green, red):
    return sum(1 for pixel in pixels(image) if pixel[:3] == bytes((blue, green, red)))

def check(seen, wanted):
    if seen != wanted:
        raise AssertionError('seen {!r}, wanted {!r}'.format(seen, wanted))
)";

class Graph : public PluginTest
{
protected:
    void expectCleanRun(const char* script)
    {
        EXPECT_EQ(host.run(QString::fromUtf8(helpers) + QString::fromUtf8(script)).toStdString(), "");
    }

    static QString clipboard() { return QGuiApplication::clipboard()->text(); }
};

TEST_F(Graph, CountsSeriesFromZero)
{
    expectCleanRun(R"(
graph = vantrel.Graph()
check(graph.get_series_count(), 0)
check([graph.add_series() for i in range(3)], [0, 1, 2])
check(graph.get_series_count(), 3)
)");
}

TEST_F(Graph, IgnoresArgumentsOfItsType)
{
    expectCleanRun("check(vantrel.Graph(1, 'two', three=3).get_series_count(), 0)");
}

TEST_F(Graph, StartsAnewWhenItIsInitialisedAgain)
{
    expectCleanRun(R"(
graph = vantrel.Graph()
graph.add_series()
graph.__init__()
check(graph.get_series_count(), 0)
)");
}

TEST_F(Graph, CannotBeSubclassed)
{
    expectCleanRun(R"(
check(raised(type, 'Mine', (vantrel.Graph,), {})[0], 'TypeError')
)");
}

TEST_F(Graph, OffersItsMethodsAndNoAttributeElse)
{
    expectCleanRun(R"(
check([name for name in vantrel.Graph.__dict__ if not name.startswith('__')],
      ['add_series', 'series_add_point', 'series_set_line_color', 'get_series_count', 'set_x_axis_range',
       'set_x_axis_range_auto', 'set_y_axis_range', 'set_y_axis_range_auto', 'set_background_color',
       'set_axes_color', 'set_grid_color', 'set_dark_color_theme', 'draw_into_image',
       'copy_series_data_to_clipboard'])
check((vantrel.Graph.__module__, vantrel.Graph.__name__), ('vantrel', 'Graph'))
check((vantrel.Graph.__basicsize__, vantrel.Graph.__itemsize__), (object.__basicsize__ + tuple.__itemsize__, 0))
check(repr(vantrel.Graph())[:25], '<vantrel.Graph object at ')
)");
}

TEST_F(Graph, TakesItsHelpFromTheEnvironment)
{
    host.environment.help["graphObj.add_series"] = "adds a series";
    EXPECT_CLEAN_RUN("print(vantrel.Graph.add_series.__doc__)\nprint(vantrel.Graph.get_series_count.__doc__)\n");
    EXPECT_EQ(host.printed().toStdString(), "adds a series\nNone\n");
}

TEST_F(Graph, RefusesEveryMethodWhileEmptyBeforeItLooksAtArguments)
{
    expectCleanRun(R"(
empty = vantrel.Graph.__new__(vantrel.Graph)
names = [name for name in vantrel.Graph.__dict__ if not name.startswith('__')]
check(len(names), 14)
for name in names:
    arguments = () if name in ('add_series', 'get_series_count') else ('wrong', 'number', 'of', 'a', 'r', 'g', 's')
    check((name, raised(getattr(empty, name), *arguments)), (name, ('Exception', 'Graph object is empty')))
)");
}

TEST_F(Graph, ChecksArgumentsAsTheInterpreterDoes)
{
    expectCleanRun(R"(
graph = vantrel.Graph()
for name, wrong in [('add_series', (1,)), ('series_add_point', (0, 1.0)), ('series_add_point', ('0', 1.0, 2.0)),
                    ('series_set_line_color', (0, 1, 2)), ('series_set_line_color', (0, 1, 2, 3, 4, 5)),
                    ('get_series_count', (1,)), ('set_x_axis_range', (1,)), ('set_x_axis_range_auto', ()),
                    ('set_y_axis_range', (1, 2, 3)), ('set_y_axis_range_auto', ()),
                    ('set_background_color', (1, 2)), ('set_axes_color', (1, 2, 3, 4, 5)),
                    ('set_grid_color', (1, 2, 'three')), ('set_dark_color_theme', (1, 2)),
                    ('draw_into_image', ()), ('copy_series_data_to_clipboard', ('1',))]:
    check((name, wrong, raised(getattr(graph, name), *wrong)[0]), (name, wrong, 'TypeError'))
check(raised(graph.series_add_point, 2 ** 40, 0.0, 0.0)[0], 'OverflowError')
)");
}

TEST_F(Graph, ReturnsNoneFromEveryMethodThatSets)
{
    expectCleanRun(R"(
graph = vantrel.Graph()
graph.add_series()
for name, arguments in [('series_add_point', (0, 1, 2.5)), ('series_set_line_color', (0, 1, 2, 3)),
                        ('series_set_line_color', (0, 1, 2, 3, 4)), ('set_x_axis_range', (1, 2)),
                        ('set_x_axis_range_auto', (True,)), ('set_y_axis_range', (1, 2)),
                        ('set_y_axis_range_auto', ('',)), ('set_background_color', (1, 2, 3)),
                        ('set_axes_color', (1, 2, 3, 4)), ('set_grid_color', (1, 2, 3)),
                        ('set_dark_color_theme', ()), ('set_dark_color_theme', (False,)),
                        ('draw_into_image', (picture(),)), ('copy_series_data_to_clipboard', (1,))]:
    check((name, getattr(graph, name)(*arguments)), (name, None))
)");
}

TEST_F(Graph, IgnoresSeriesThatDoNotExist)
{
    QGuiApplication::clipboard()->setText(QStringLiteral("before"));
    expectCleanRun(R"(
graph = vantrel.Graph()
graph.add_series()
graph.add_series()
for index in (-1, 2, 5, -2 ** 31, 2 ** 31 - 1):
    check(graph.series_add_point(index, 1.0, 2.0), None)
    check(graph.series_set_line_color(index, 1, 2, 3), None)
for number in (0, -1, 3, -2 ** 31, 2 ** 31 - 1):
    check(graph.copy_series_data_to_clipboard(number), None)
)");
    EXPECT_EQ(clipboard().toStdString(), "before");
    expectCleanRun(R"(
graph = vantrel.Graph()
graph.add_series()
graph.series_add_point(5, 1.0, 2.0)
graph.copy_series_data_to_clipboard(1)
)");
    EXPECT_EQ(clipboard().toStdString(), "x\ty\n");
}

TEST_F(Graph, CopiesSeriesCountedFromOneInTheOrderAdded)
{
    expectCleanRun(R"(
graph = vantrel.Graph()
first, second = graph.add_series(), graph.add_series()
graph.series_add_point(first, 3, 0.5)
graph.series_add_point(first, 1, 1e20)
graph.series_add_point(first, 1, 1e20)
graph.series_add_point(second, 7, 8)
graph.copy_series_data_to_clipboard(1)
)");
    EXPECT_EQ(clipboard().toStdString(), "x\ty\n3\t0.5\n1\t1e+20\n1\t1e+20\n");
}

TEST_F(Graph, DrawsOverTheWholeImageAndKeepsItsGeometry)
{
    expectCleanRun(R"(
graph = vantrel.Graph()
series = graph.add_series()
for x in (0, 1, 2):
    graph.series_add_point(series, x, x * x)
image = picture()
graph.draw_into_image(image)
check((image.width, image.height, image.channels, image.bpc), (320, 240, 3, 8))
check(image.tobytes()[:3], b'\xff\xff\xff')
check(count(image, 0, 0, 255) > 100, True)   # red, blue first
check(count(image, 255, 0, 0), 0)
check(count(image, 0, 0, 0) > 300, True)     # axes
check(count(image, 192, 192, 192) > 1000, True)
)");
}

TEST_F(Graph, DrawsInTheColoursThatWereSetWithoutTheirAlpha)
{
    expectCleanRun(R"(
graph = vantrel.Graph()
series = graph.add_series()
graph.series_add_point(series, 0, 0)
graph.series_add_point(series, 1, 1)
graph.series_set_line_color(series, 250, 128, 0, 0)
graph.set_background_color(10, 20, 30, 0)
graph.set_axes_color(40, 50, 60, 0)
graph.set_grid_color(70, 80, 90, 0)
image = picture()
graph.draw_into_image(image)
check(image.tobytes()[:3], bytes((30, 20, 10)))
check(count(image, 30, 20, 10) > 60000, True)
check(count(image, 0, 128, 250) > 100, True)
check(count(image, 60, 50, 40) > 300, True)
check(count(image, 90, 80, 70) > 1000, True)
graph.set_dark_color_theme()
graph.draw_into_image(image)
check(count(image, 55, 55, 55) > 60000, True)
check(count(image, 230, 230, 230) > 300, True)
check(count(image, 80, 80, 80) > 1000, True)
check(count(image, 0, 128, 250) > 100, True)
graph.set_dark_color_theme(False)
graph.draw_into_image(image)
check(count(image, 255, 255, 255) > 60000, True)
)");
}

TEST_F(Graph, SwitchesBetweenFixedAndFittedRanges)
{
    expectCleanRun(R"(
def drawn():
    image = picture()
    graph.draw_into_image(image)
    return image.tobytes()

graph = vantrel.Graph()
series = graph.add_series()
graph.series_add_point(series, 0, 0)
graph.series_add_point(series, 20, 20)
fitted = drawn()
graph.set_x_axis_range(0, 10)
narrow = drawn()
check(narrow == fitted, False)
graph.set_x_axis_range_auto(True)
check(drawn() == fitted, True)
graph.set_x_axis_range_auto(False)   # the range was kept
check(drawn() == narrow, True)
graph.set_x_axis_range_auto(True)
graph.set_y_axis_range(0, 10)
low = drawn()
check(low in (fitted, narrow), False)
graph.set_y_axis_range_auto(True)
check(drawn() == fitted, True)
graph.set_y_axis_range_auto(False)
check(drawn() == low, True)

unset = vantrel.Graph()
unset.set_x_axis_range_auto(False)   # 0 to 256 until a range is set
graph = vantrel.Graph()
graph.set_x_axis_range(0, 256)
wanted = drawn()
graph = unset
check(drawn() == wanted, True)
)");
}

TEST_F(Graph, RefusesImagesThatAreNotColourBytesAndLeavesThemAsTheyAre)
{
    expectCleanRun(R"(
graph = vantrel.Graph()
for channels, bits in ((1, 8), (2, 8), (5, 8), (3, 16), (3, 12), (4, 16), (3, 32)):
    image = picture(8, 6, channels, bits)
    before = image.tobytes()
    check((channels, bits, raised(graph.draw_into_image, image)),
          (channels, bits, ('Exception', 'Image must have RGB or RGBA format')))
    check(image.tobytes() == before, True)
check(graph.draw_into_image(picture(8, 6, 4, 8)), None)
)");
}

TEST_F(Graph, ReportsAnArgumentThatCarriesNoImage)
{
    expectCleanRun(R"(
graph = vantrel.Graph()
for argument in (None, 5, 'image', graph, vantrel.Image()):
    check(raised(graph.draw_into_image, argument)[0], 'SystemError')
)");
}

TEST_F(Graph, DrawsOddValuesAndColoursWithoutFailing)
{
    expectCleanRun(R"(
nan, inf = float('nan'), float('inf')
graph = vantrel.Graph()
for values in ((nan, nan), (inf, -inf), (-1e308, 1e308)):
    series = graph.add_series()
    for x in values:
        for y in values:
            graph.series_add_point(series, x, y)
series = graph.add_series()
graph.series_set_line_color(series, 0, 200, 100)
graph.series_add_point(series, 0, 0)
graph.series_add_point(series, 1, 1)
graph.set_x_axis_range(nan, inf)
graph.set_y_axis_range(3, 3)
image = picture()
graph.draw_into_image(image)
check(count(image, 100, 200, 0) > 100, True)
graph.set_background_color(-1, 256, 1000)
graph.series_set_line_color(series, 2 ** 31 - 1, -2 ** 31, 0)
graph.draw_into_image(image)
graph.draw_into_image(picture(1, 1))
)");
}

TEST_F(Graph, IsThereAgainAfterTheInterpreterStartedAnew)
{
    expectCleanRun("check(vantrel.Graph().add_series(), 0)");
    host.restart();
    expectCleanRun("check(vantrel.Graph().add_series(), 0)");
}

} // namespace
