// Drawing graphs into images, beside the same plot by the plotting library alone. Swapping red and blue, beside
// OpenCV.

#include "CxImageData.h"
#include "CxPicBufAPI.h"
#include "graph/CxGraphData.h"
#include "graph/GraphPainting.h"
#include "graph/PlotLibrary.h"

#include <QtGui/QImage>
#include <QtWidgets/QApplication>

#include <benchmark/benchmark.h>
#include <opencv2/imgproc.hpp>

#include <cmath>

namespace {

constexpr int width = 1280;
constexpr int height = 720;

CxGraphData makeGraph(int seriesCount, int pointCount)
{
    CxGraphData graph;
    for (int s = 0; s < seriesCount; ++s) {
        QList<QPointF>& points = graph.series[graph.addSeries()].points;
        points.reserve(pointCount);
        for (int i = 0; i < pointCount; ++i) {
            const double x = 100.0 * i / pointCount;
            points.append({x, s + std::sin(x + s) + 0.1 * std::sin(37 * x)});
        }
    }
    return graph;
}

SxPicBuf makeBuffer(unsigned channels)
{
    SxPicBuf buffer;
    CxPicBufAPI::AllocPicBufFromHeap(buffer, width, height, channels, ExImageDataType::UInt8, 0, 0, 8,
                                     ExDataStorageFormat::Interleaved, ExColorFilterArray::None, true, true, 0);
    return buffer;
}

void seriesAndPoints(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Args({10, 10'000})->Args({1, 1'000'000})->ArgNames({"series", "points"});
    benchmark->Unit(benchmark::kMillisecond);
}

void drawGraph(benchmark::State& state)
{
    CxGraphData graph = makeGraph(int(state.range(0)), int(state.range(1)));
    CxImageData image;
    image.setPicBuf(makeBuffer(3));
    for ([[maybe_unused]] auto _ : state)
        fx_script_DrawIntoImage(&graph, &image);
}
BENCHMARK(drawGraph)->Apply(seriesAndPoints);

void drawBarePlot(benchmark::State& state)
{
    const CxGraphData graph = makeGraph(int(state.range(0)), int(state.range(1)));
    QImage image(width, height, QImage::Format_RGB888);
    for ([[maybe_unused]] auto _ : state) {
        QCustomPlot plot;
        for (const CxGraphData::CxSeries& series : graph.series) {
            QList<QCPGraphData> entries;
            entries.reserve(series.points.size());
            for (const QPointF& point : series.points)
                entries.append(QCPGraphData(point.x(), point.y()));
            QCPGraph* line = plot.addGraph();
            line->data()->set(entries, false);
            line->setPen(QPen(series.lineColor, 2.0, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
        }
        plot.rescaleAxes(false);
        plot.resize(width, height);
        QCPPainter painter(&image);
        plot.toPainter(&painter);
        painter.end();
    }
}
BENCHMARK(drawBarePlot)->Apply(seriesAndPoints);

void swapRedAndBlue(benchmark::State& state)
{
    SxPicBuf buffer = makeBuffer(unsigned(state.range(0)));
    for ([[maybe_unused]] auto _ : state)
        CxPicBufAPI::SwapRedAndBlue(buffer);
    state.SetBytesProcessed(state.iterations() * std::int64_t(buffer.dataSize()));
    CxPicBufAPI::FreePicBuf(buffer, true);
}
BENCHMARK(swapRedAndBlue)->Arg(3)->Arg(4)->ArgName("channels")->Unit(benchmark::kMicrosecond);

void cvtColor(benchmark::State& state)
{
    // On one thread, like SwapRedAndBlue().
    cv::setNumThreads(1);
    SxPicBuf buffer = makeBuffer(unsigned(state.range(0)));
    cv::Mat pixels(height, width, CV_8UC(int(buffer.channels)), buffer.data, buffer.lineStride);
    cv::Mat swapped = pixels; // a second header: with one header for both, OpenCV makes a copy first
    const int code = buffer.channels == 4 ? cv::COLOR_BGRA2RGBA : cv::COLOR_BGR2RGB;
    for ([[maybe_unused]] auto _ : state)
        cv::cvtColor(pixels, swapped, code);
    state.SetBytesProcessed(state.iterations() * std::int64_t(buffer.dataSize()));
    CxPicBufAPI::FreePicBuf(buffer, true);
}
BENCHMARK(cvtColor)->Arg(3)->Arg(4)->ArgName("channels")->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
