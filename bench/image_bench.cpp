// Copying arrays and drawing lines without an interpreter: the fast code beside the simple loops, the C library and
// OpenCV.

#include "CxPicBufAPI.h"
#include "image/ArrayCopy.h"
#include "image/LineDrawing.h"

#include <benchmark/benchmark.h>
#include <opencv2/imgproc.hpp>

#include <cstring>
#include <vector>

namespace {

constexpr unsigned width = 1920;
constexpr unsigned height = 1200;

struct Picture {
    Picture(unsigned channels, ExImageDataType type)
    {
        CxPicBufAPI::AllocPicBufFromHeap(buffer, width, height, channels, type, 0, 0, 8,
                                         ExDataStorageFormat::Interleaved, ExColorFilterArray::None, channels == 3,
                                         true, 0);
        memory.assign(buffer.dataSize() * 2, 7);
    }
    ~Picture() { CxPicBufAPI::FreePicBuf(buffer, true); }
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;

    /// The layout of an array in `memory`, with rowGap bytes after each row.
    ArrayLayout layout(std::int64_t rowGap) const
    {
        const auto pixelBytes = std::int64_t(buffer.bytesPerPixel());
        ArrayLayout array;
        array.address = reinterpret_cast<std::uint64_t>(memory.data());
        array.xStride = pixelBytes;
        array.yStride = pixelBytes * width + rowGap;
        array.channelStride = std::int64_t(SxPicBufInfo::bytesPerValue(buffer.dataType));
        array.extent = {array.address, array.address + memory.size()};
        return array;
    }

    SxPicBuf buffer;
    std::vector<std::uint8_t> memory;
};

void copy(benchmark::State& state, unsigned channels, ExImageDataType type, bool transposed, std::int64_t rowGap)
{
    Picture picture(channels, type);
    ArrayLayout layout = picture.layout(rowGap);
    if (transposed) {
        layout.xStride = layout.channelStride * channels * height;
        layout.yStride = layout.channelStride * channels;
    }
    for (auto _ : state) {
        if (!copyArray(layout, picture.buffer))
            state.SkipWithError("refused");
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(std::int64_t(state.iterations() * picture.buffer.dataSize()));
}

void plainMemcpy(benchmark::State& state)
{
    Picture picture(1, ExImageDataType::UInt8);
    for (auto _ : state) {
        std::memcpy(picture.buffer.data, picture.memory.data(), picture.buffer.dataSize());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(std::int64_t(state.iterations() * picture.buffer.dataSize()));
}

void line(benchmark::State& state)
{
    Picture picture(1, ExImageDataType::UInt8);
    for (auto _ : state)
        fx_drawPicPixelLine(picture.buffer, 10, 20, 1009, 620, 0, 255);
}

void lineByOpenCv(benchmark::State& state)
{
    cv::Mat picture(int(height), int(width), CV_8U);
    for (auto _ : state)
        cv::line(picture, {10, 20}, {1009, 620}, 255);
}

constexpr auto u8 = ExImageDataType::UInt8;
constexpr auto u16 = ExImageDataType::UInt16;

BENCHMARK(plainMemcpy);
BENCHMARK_CAPTURE(copy, block_8bit, 1, u8, false, 0);
BENCHMARK_CAPTURE(copy, rows_8bit, 1, u8, false, 64);
BENCHMARK_CAPTURE(copy, block_16bit, 1, u16, false, 0);
BENCHMARK_CAPTURE(copy, block_3x8bit, 3, u8, false, 0);
BENCHMARK_CAPTURE(copy, transposed_8bit, 1, u8, true, 0);
BENCHMARK_CAPTURE(copy, transposed_16bit, 1, u16, true, 0);
BENCHMARK_CAPTURE(copy, by_values_4x8bit, 4, u8, true, 0);
BENCHMARK(line);
BENCHMARK(lineByOpenCv);

} // namespace

BENCHMARK_MAIN();
