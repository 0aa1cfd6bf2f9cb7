// What pictures of graphs show.

#include "DrawnGraph.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>

#include <gtest/gtest.h>

#include <malloc.h>

#include <vector>

namespace {

std::vector<std::uint8_t> bytesOf(const DrawnGraph& drawn)
{
    return {drawn.buffer().data, drawn.buffer().data + drawn.buffer().dataSize()};
}

void expectBackgroundInTheCorners(const DrawnGraph& drawn, const QColor& color)
{
    const int right = drawn.width() - 1;
    const int bottom = drawn.height() - 1;
    for (const QPoint corner : {QPoint(0, 0), QPoint(right, 0), QPoint(0, bottom), QPoint(right, bottom)})
        EXPECT_EQ(drawn.at(corner.x(), corner.y()).name().toStdString(), color.name().toStdString())
            << corner.x() << ", " << corner.y();
}

TEST(GraphPainting, AcceptsColourImagesOfBytesOnly)
{
    SxPicBuf buffer;
    buffer.channels = 3;
    buffer.dataType = ExImageDataType::UInt8;
    buffer.storageFormat = ExDataStorageFormat::Interleaved;
    buffer.isColor = true;
    EXPECT_TRUE(fx_graph_canDrawInto(buffer));
    for (const unsigned channels : {0U, 1U, 2U, 3U, 4U, 5U}) {
        SxPicBuf other = buffer;
        other.channels = channels;
        EXPECT_EQ(fx_graph_canDrawInto(other), channels == 3 || channels == 4) << channels;
    }
    for (unsigned type = 0; type <= 12; ++type) {
        SxPicBuf other = buffer;
        other.dataType = ExImageDataType(type);
        EXPECT_EQ(fx_graph_canDrawInto(other), type < 3 || type > 11) << type;
    }
    for (unsigned format = 0; format <= 3; ++format) {
        SxPicBuf other = buffer;
        other.storageFormat = ExDataStorageFormat(format);
        EXPECT_EQ(fx_graph_canDrawInto(other), format == 1) << format;
    }
    buffer.isColor = false;
    EXPECT_FALSE(fx_graph_canDrawInto(buffer));
}

TEST(GraphPainting, ShowsBackgroundAxesAndGridWithoutASeries)
{
    CxGraphData graph;
    graph.backgroundColor = QColor(10, 20, 30);
    graph.axesColor = QColor(200, 100, 50);
    graph.gridColor = QColor(0, 90, 180);
    const DrawnGraph drawn(graph);
    expectBackgroundInTheCorners(drawn, graph.backgroundColor);
    EXPECT_GT(drawn.right - drawn.left, 500);
    EXPECT_GT(drawn.bottom - drawn.top, 380);
    // The grid's pen is solid: five and more lines through the whole plot.
    EXPECT_GT(drawn.count(graph.gridColor, {drawn.left, drawn.top}, {drawn.right, drawn.bottom}), 4000);
    EXPECT_EQ(drawn.count(graph.gridColor, {0, 0}, {drawn.left - 1, drawn.height()}), 0);
}

TEST(GraphPainting, DrawsEachSeriesInItsColour)
{
    CxGraphData graph;
    for (int i = 0; i < 12; ++i)
        graph.series[graph.addSeries()].points = {{0.0, double(i)}, {1.0, double(i)}};
    graph.series[3].lineColor = QColor(1, 2, 3);
    graph.autoY = false;
    graph.yMin = -1;
    graph.yMax = 12;
    const DrawnGraph drawn(graph);
    for (const CxGraphData::CxSeries& series : graph.series)
        EXPECT_GT(drawn.count(series.lineColor), 500) << series.lineColor.name().toStdString();
    EXPECT_EQ(drawn.count(QColor(Qt::cyan)), 0);
}

TEST(GraphPainting, DrawsTheLineThroughItsPoints)
{
    const DrawnGraph drawn(graphOf({{0, 0}, {10, 100}, {20, 50}}));
    for (const QPointF place : {QPointF(0.1, 0.2), QPointF(0.25, 0.5), QPointF(0.5, 1.0), QPointF(0.75, 0.75)})
        EXPECT_TRUE(drawn.passes(Qt::red, place.x(), place.y())) << place.x() << ", " << place.y();
    EXPECT_FALSE(drawn.passes(Qt::red, 0.25, 0.25));
    EXPECT_FALSE(drawn.passes(Qt::red, 0.9, 0.9));
}

TEST(GraphPainting, DrawsPointsInTheOrderOfX)
{
    const DrawnGraph drawn(graphOf({{3, 0}, {1, 0}, {2, 1}}));
    EXPECT_TRUE(drawn.passes(Qt::red, 0.25, 0.5));
    EXPECT_TRUE(drawn.passes(Qt::red, 0.75, 0.5));
    EXPECT_FALSE(drawn.passes(Qt::red, 0.5, 0.0)) << "a line from x = 3 straight to x = 1";
}

TEST(GraphPainting, ShowsAFixedRangeWhateverTheData)
{
    CxGraphData graph = graphOf({{0, 0}, {20, 20}});
    graph.autoX = false;
    graph.xMin = 0;
    graph.xMax = 10;
    const DrawnGraph fixedX(graph);
    EXPECT_TRUE(fixedX.passes(Qt::red, 0.99, 0.495));
    graph.autoY = false;
    graph.yMin = -10;
    graph.yMax = 10;
    const DrawnGraph fixedBoth(graph);
    EXPECT_TRUE(fixedBoth.passes(Qt::red, 0.5, 0.75));
    graph.autoX = true;
    graph.autoY = true;
    const DrawnGraph fitted(graph);
    EXPECT_TRUE(fitted.passes(Qt::red, 0.99, 0.99));
    EXPECT_EQ(bytesOf(fitted), bytesOf(DrawnGraph(graphOf({{0, 0}, {20, 20}}))));
}

TEST(GraphPainting, LeavesNothingOfTheOldPictureAndTouchesNoPadding)
{
    CxGraphData graph = graphOf({{0, 0}, {1, 1}});
    const DrawnGraph first(graph, 101, 80, 3, 320);
    auto second = makeTestImage(101, 80, 3, ExImageDataType::UInt8, 8, 320);
    std::fill_n(second->picBuf()->data, second->picBuf()->dataSize(), std::uint8_t(0x77));
    fx_script_DrawIntoImage(&graph, second.get());
    for (unsigned y = 0; y < 80; ++y) {
        EXPECT_TRUE(std::equal(first.buffer().row(y), first.buffer().row(y) + 303, second->picBuf()->row(y))) << y;
        for (unsigned i = 303; i < 320; ++i)
            EXPECT_EQ(second->picBuf()->row(y)[i], 0x77) << y << ", " << i;
    }
}

TEST(GraphPainting, KeepsTheImagesGeometryAndItsOrderOfBlueFirst)
{
    const DrawnGraph drawn(graphOf({{0, 0}, {1, 1}}), 300, 200);
    EXPECT_EQ(drawn.buffer().width, 300U);
    EXPECT_EQ(drawn.buffer().height, 200U);
    EXPECT_EQ(drawn.buffer().channels, 3U);
    EXPECT_TRUE(drawn.buffer().isColor);
    EXPECT_GT(drawn.count(Qt::red), 100);
    EXPECT_EQ(drawn.count(Qt::blue), 0);
}

TEST(GraphPainting, ExchangesRedAndBlueWithFourChannels)
{
    const DrawnGraph drawn(graphOf({{0, 0}, {1, 1}}), 300, 200, 4);
    EXPECT_GT(drawn.count(Qt::blue), 100);
    EXPECT_EQ(drawn.count(Qt::red), 0);
    for (unsigned y = 0; y < 200; ++y)
        for (unsigned x = 0; x < 300; ++x)
            ASSERT_EQ(drawn.buffer().row(y)[x * 4 + 3], 255) << x << ", " << y;
}

TEST(GraphPainting, DrawsIntoRowsThatStartBetweenWords)
{
    const CxGraphData graph = graphOf({{0, 0}, {1, 1}});
    const DrawnGraph even(graph, 301, 200, 4);
    const DrawnGraph odd(graph, 301, 200, 4, 301 * 4 + 1);
    for (unsigned y = 0; y < 200; ++y)
        EXPECT_TRUE(std::equal(odd.buffer().row(y), odd.buffer().row(y) + 301 * 4, even.buffer().row(y))) << y;
}

TEST(GraphPainting, ShowsTheDarkTheme)
{
    CxGraphData graph = graphOf({{0, 0}, {1, 1}});
    graph.setDarkColorTheme(true);
    const DrawnGraph drawn(graph);
    expectBackgroundInTheCorners(drawn, QColor(55, 55, 55));
    EXPECT_GT(drawn.count(QColor(230, 230, 230)), 900);
    EXPECT_GT(drawn.count(QColor(80, 80, 80)), 4000);
    EXPECT_GT(drawn.count(Qt::red), 500);
}

TEST(GraphPainting, DrawsFiftySeries)
{
    CxGraphData graph;
    for (int i = 0; i < 50; ++i)
        graph.series[graph.addSeries()].points = {{0.0, double(i)}, {1.0, double(i)}};
    const DrawnGraph drawn(graph);
    for (int i = 1; i < 49; ++i)
        EXPECT_TRUE(drawn.passes(graph.series[i].lineColor, 0.5, i / 49.0)) << i;
}

TEST(GraphPainting, DrawsAMillionPoints)
{
    CxGraphData graph;
    QList<QPointF>& points = graph.series[graph.addSeries()].points;
    for (int i = 0; i < 1'000'000; ++i)
        points.append({double(i), double(i < 500'000 ? i : 1'000'000 - i)});
    const DrawnGraph drawn(graph);
    for (const double x : {0.1, 0.25, 0.4})
        EXPECT_TRUE(drawn.passes(Qt::red, x, 2 * x)) << x;
    for (const double x : {0.6, 0.75, 0.9})
        EXPECT_TRUE(drawn.passes(Qt::red, x, 2 - 2 * x)) << x;
}

TEST(GraphPainting, DrawsIntoImagesOfAnySize)
{
    const CxGraphData graph = graphOf({{0, 0}, {1, 1}});
    const std::vector<std::pair<unsigned, unsigned>> sizes = {{1, 1},    {2, 1},     {1, 300},   {16, 16},
                                                              {300, 20}, {40000, 8}, {8, 40000}, {8000, 6000}};
    for (const auto& [width, height] : sizes) {
        for (const unsigned channels : {3U, 4U}) {
            const DrawnGraph drawn(graph, width, height, channels);
            // In one row or column the frame itself may reach the corners.
            if (width > 2 && height > 2)
                expectBackgroundInTheCorners(drawn, Qt::white);
        }
    }
    EXPECT_TRUE(DrawnGraph(graph, 8000, 6000).passes(Qt::red, 0.5, 0.5));
}

TEST(GraphPainting, DrawsInColoursThatAreNone)
{
    CxGraphData graph = graphOf({{0, 0}, {1, 1}});
    graph.backgroundColor = QColor();
    graph.axesColor = QColor();
    graph.gridColor = QColor();
    graph.series[0].lineColor = QColor();
    const DrawnGraph drawn(graph);
    expectBackgroundInTheCorners(drawn, Qt::black);
}

TEST(GraphPainting, WritesNoLogLineForOrdinaryAndOddGraphs)
{
    static int lines = 0;
    const QtMessageHandler before =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text) {
            ++lines;
            std::fprintf(stderr, "%s\n", qPrintable(text));
        });
    const DrawnGraph ordinary(graphOf({{0, 0}, {1, 1}}));
    const DrawnGraph tiny(graphOf({{0, 0}, {1, 1}}), 1, 1);
    const DrawnGraph odd(graphOf({{0, qQNaN()}, {1, qInf()}, {qInf(), 2}, {2, 3}}));
    qInstallMessageHandler(before);
    EXPECT_EQ(lines, 0);
}

TEST(GraphPainting, KeepsNoMemoryAfterAThousandDrawings)
{
    CxGraphData graph = graphOf({{0, 0}, {1, 1}, {2, 0}});
    const auto image = makeTestImage(200, 150, 3);
    const auto draw = [&](int times) {
        for (int i = 0; i < times; ++i)
            fx_script_DrawIntoImage(&graph, image.get());
        // What is to be deleted later is deleted, as in an application's event loop.
        QCoreApplication::sendPostedEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return mallinfo2().uordblks;
    };
    const std::size_t before = draw(20);
    const std::size_t after = draw(1000);
    EXPECT_LT(after, before + 64 * 1024);
}

} // namespace
