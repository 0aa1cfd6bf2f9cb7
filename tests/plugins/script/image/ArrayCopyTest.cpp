#include "image/ArrayCopy.h"

#include "PicBufHolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <random>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

namespace {

using Bytes = std::vector<std::uint8_t>;

const ExImageDataType typesOfEverySize[] = {ExImageDataType::None,   ExImageDataType::Int8,   ExImageDataType::UInt8,
                                            ExImageDataType::Int16,  ExImageDataType::UInt16, ExImageDataType::Int32,
                                            ExImageDataType::UInt32, ExImageDataType::Int64,  ExImageDataType::UInt64,
                                            ExImageDataType::Float,  ExImageDataType::Double};

// The definition: the plain walk, every value for itself, with indices into two byte arrays in place of addresses.
Bytes copiedByValues(const Bytes& memory, long start, const ArrayLayout& layout, const SxPicBuf& shape)
{
    Bytes result(shape.dataSize(), 0);
    const long size = long(SxPicBufInfo::bytesPerValue(shape.dataType));
    for (long y = 0; y < long(shape.height); ++y) {
        long to = y * long(shape.lineStride);
        for (long x = 0; x < long(shape.width); ++x) {
            for (long c = 0; c < long(shape.channels); ++c) {
                const long from = start + y * layout.yStride + x * layout.xStride + c * layout.channelStride;
                if (to >= 0 && to + size <= long(result.size())) {
                    for (long i = 0; i < size; ++i)
                        result[std::size_t(to + i)] = memory.at(std::size_t(from + i));
                }
                to += layout.channelStride;
            }
        }
    }
    return result;
}

Bytes randomBytes(std::size_t count, std::mt19937& random)
{
    Bytes bytes(count);
    std::generate(bytes.begin(), bytes.end(), [&] { return std::uint8_t(random()); });
    return bytes;
}

struct Case {
    ExImageDataType type;
    unsigned width, height, channels, lineStride;
    std::array<std::int64_t, 3> strides; // x, y, channel

    std::string text() const
    {
        return "type " + std::to_string(unsigned(type)) + ", " + std::to_string(width) + " x " +
               std::to_string(height) + " x " + std::to_string(channels) + ", line stride " +
               std::to_string(lineStride) + ", strides x " + std::to_string(strides[0]) + " y " +
               std::to_string(strides[1]) + " c " + std::to_string(strides[2]);
    }
};

// Copies from memory that holds every value the strides lead to, of which the given share at either end is not part of
// the described extent.
void expectAsDefined(const Case& test, std::mt19937& random, long hiddenAtStart = 0, long hiddenAtEnd = 0)
{
    SCOPED_TRACE(test.text());
    PicBufHolder image(test.width, test.height, test.channels, test.type, test.lineStride);
    ASSERT_NE(image.buffer.data, nullptr);

    const long reach[] = {long(test.width - 1) * test.strides[0], long(test.height - 1) * test.strides[1],
                          long(test.channels - 1) * test.strides[2]};
    long lowest = 0;
    long highest = long(SxPicBufInfo::bytesPerValue(test.type));
    for (const long r : reach)
        (r < 0 ? lowest : highest) += r;
    // One byte more in front makes the source unaligned in half of the cases.
    const long shift = long(random() % 2);
    const Bytes memory = randomBytes(std::size_t(highest - lowest + shift), random);
    const long start = shift - lowest;

    ArrayLayout layout;
    layout.address = reinterpret_cast<std::uint64_t>(memory.data() + start);
    layout.xStride = test.strides[0];
    layout.yStride = test.strides[1];
    layout.channelStride = test.strides[2];
    layout.extent.begin = reinterpret_cast<std::uint64_t>(memory.data()) + std::uint64_t(hiddenAtStart);
    layout.extent.end = reinterpret_cast<std::uint64_t>(memory.data() + memory.size()) - std::uint64_t(hiddenAtEnd);
    if (layout.extent.end < layout.extent.begin)
        layout.extent = {};

    ASSERT_TRUE(copyArray(layout, image.buffer));
    EXPECT_EQ(image.bytes(), copiedByValues(memory, start, layout, image.buffer));
}

long between(std::mt19937& random, long low, long high)
{
    return std::uniform_int_distribution<long>(low, high)(random);
}

TEST(ArrayCopy, CopiesLargeArraysInEveryWay)
{
    std::mt19937 random(64);
    const auto run = [&random](unsigned channels, unsigned lineStride, std::array<std::int64_t, 3> strides) {
        expectAsDefined({ExImageDataType::UInt16, 301, 333, channels, lineStride, strides}, random);
    };
    run(1, 602, {2, 602, 2});
    run(1, 640, {2, 602, 2});
    run(1, 602, {2, 800, 2});
    run(1, 602, {666, 2, 2});
    run(1, 602, {-2, -602, 2});
    run(3, 1806, {6, 1806, 2});
    run(3, 1806, {1998, 6, 2});
    run(3, 1806, {6, 1806, -2});
}

TEST(ArrayCopy, CopiesDenseArraysOfEveryTypeAndChannelCount)
{
    std::mt19937 random(1);
    for (const auto type : typesOfEverySize) {
        const auto size = std::int64_t(SxPicBufInfo::bytesPerValue(type));
        for (unsigned channels = 1; channels <= 5; ++channels) {
            // 16 pixels make rows without padding, 7 rows with.
            for (const unsigned width : {1U, 7U, 16U}) {
                const std::int64_t pixel = size * channels;
                expectAsDefined({type, width, 5, channels, 0, {pixel, pixel * width, size}}, random);
            }
        }
    }
}

TEST(ArrayCopy, FollowsStridesOfEveryKindForEveryType)
{
    std::mt19937 random(2);
    for (const auto type : typesOfEverySize) {
        const auto size = std::int64_t(SxPicBufInfo::bytesPerValue(type));
        for (const unsigned channels : {1U, 2U, 3U, 4U}) {
            const std::int64_t pixel = size * channels;
            const std::int64_t row = pixel * 6;
            const std::int64_t strides[][3] = {
                {pixel, row + 5, size},      // rows with padding
                {row, pixel, size},          // axes exchanged
                {2 * pixel, 2 * row, size},  // every second pixel and row
                {-pixel, row, size},         // mirrored
                {pixel, -row, size},         // upside down
                {-pixel, -row, -size},       // all backwards
                {0, row, size},              // one pixel for the whole row
                {0, 0, 0},                   // one value for all
                {pixel, row, -size},         // channels reversed
                {size, size * 6, size * 30}, // channel after channel
                {pixel, row, size + 1},      // the destination gets gaps
                {1, 3, 1},                   // values that overlap
                {row, row, row},             // one stride for all
            };
            for (const auto& s : strides)
                expectAsDefined({type, 6, 5, channels, 0, {s[0], s[1], s[2]}}, random);
        }
    }
}

// Axes exchanged, in pictures that are not a whole number of the squares that such arrays are copied in.
TEST(ArrayCopy, FollowsExchangedAxesForEverySizeOfPixel)
{
    std::mt19937 random(6);
    for (const auto type : typesOfEverySize) {
        const auto size = std::int64_t(SxPicBufInfo::bytesPerValue(type));
        for (unsigned channels = 1; channels <= 5; ++channels) {
            const std::int64_t pixel = size * channels;
            for (const unsigned width : {1U, 3U, 63U, 64U, 66U, 131U}) {
                const unsigned height = unsigned(between(random, 1, 140));
                const long side = channels % 2 ? 1 : -1;
                const std::int64_t column = pixel * height * 2 + between(random, 0, 3);
                expectAsDefined({type, width, height, channels, 0, {column, pixel * 2, size}}, random);
                expectAsDefined({type, width, height, channels, 0, {-column, pixel * side, size}}, random);
                expectAsDefined({type, width, height, channels, 0, {column, 0, size}}, random, 0, 40);
            }
        }
    }
}

TEST(ArrayCopy, AgreesWithTheDefinitionOnRandomGeometry)
{
    std::mt19937 random(3);
    for (int i = 0; i < 4000; ++i) {
        Case test{};
        test.type = typesOfEverySize[random() % std::size(typesOfEverySize)];
        test.width = unsigned(between(random, 1, 20));
        test.height = unsigned(between(random, 1, 12));
        test.channels = unsigned(between(random, 1, 5));
        const long size = long(SxPicBufInfo::bytesPerValue(test.type));
        if (random() % 2)
            test.lineStride = unsigned(size * test.width * test.channels + between(random, 0, 40));
        for (auto& stride : test.strides)
            stride = random() % 3 ? size * between(random, -30, 30) : between(random, -200, 200);
        if (random() % 2)
            test.strides[2] = size;
        if (random() % 4 == 0)
            test.strides[0] = size * test.channels;
        expectAsDefined(test, random);
        if (HasFailure())
            return;
    }
}

TEST(ArrayCopy, ReadsReadableMemoryOutsideTheDescribedExtent)
{
    std::mt19937 random(4);
    for (int i = 0; i < 500; ++i) {
        const auto type = typesOfEverySize[random() % std::size(typesOfEverySize)];
        const long size = long(SxPicBufInfo::bytesPerValue(type));
        const Case test{type, unsigned(between(random, 1, 20)),
                        9,    3,
                        0,    {size * between(random, -9, 9), size * between(random, -9, 9), size}};
        expectAsDefined(test, random, between(random, 0, 60), between(random, 0, 60));
        if (HasFailure())
            return;
    }
}

// Three pages of which only the first and the last can be read.
class PagesWithAHole : public testing::Test
{
protected:
    void SetUp() override
    {
        page = std::size_t(sysconf(_SC_PAGESIZE));
        void* memory = mmap(nullptr, 3 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        ASSERT_NE(memory, MAP_FAILED);
        start = static_cast<std::uint8_t*>(memory);
        std::memset(start, 7, 3 * page);
        ASSERT_EQ(mprotect(start + page, page, PROT_NONE), 0);
    }
    void TearDown() override { munmap(start, 3 * page); }

    ArrayLayout layoutAt(const std::uint8_t* first, std::int64_t xStride, std::int64_t yStride) const
    {
        ArrayLayout layout;
        layout.address = reinterpret_cast<std::uint64_t>(first);
        layout.xStride = xStride;
        layout.yStride = yStride;
        layout.channelStride = 1;
        layout.extent = {layout.address, layout.address + 1};
        return layout;
    }

    std::size_t page = 0;
    std::uint8_t* start = nullptr;
};

TEST_F(PagesWithAHole, AreRefusedWhenAValueLiesInTheHole)
{
    PicBufHolder image(2, 1, 1, ExImageDataType::UInt8);
    EXPECT_FALSE(copyArray(layoutAt(start + page - 1, 1, 0), image.buffer));
}

TEST_F(PagesWithAHole, AreReadWhenTheStridesStepOverTheHole)
{
    PicBufHolder image(2, 2, 1, ExImageDataType::UInt8);
    EXPECT_TRUE(copyArray(layoutAt(start, std::int64_t(2 * page), 1), image.buffer));
    EXPECT_EQ(image.buffer.row(1)[1], 7);
}

TEST_F(PagesWithAHole, AreRefusedWhenAValueReachesIntoTheHole)
{
    PicBufHolder image(1, 1, 1, ExImageDataType::UInt32);
    ArrayLayout layout = layoutAt(start + page - 3, 4, 4);
    layout.channelStride = 4;
    EXPECT_FALSE(copyArray(layout, image.buffer));
}

TEST(ArrayCopy, IgnoresTheStrideOfAnAxisOfOne)
{
    const std::uint8_t values[] = {5, 6, 7};
    for (const std::int64_t stride : {INT64_MAX, INT64_MIN, std::int64_t(1) << 62}) {
        PicBufHolder image(1, 3, 1, ExImageDataType::UInt8);
        ArrayLayout layout;
        layout.address = reinterpret_cast<std::uint64_t>(values);
        layout.extent = {layout.address, layout.address + 3};
        layout.xStride = stride;
        layout.yStride = 1;
        layout.channelStride = 1;
        EXPECT_TRUE(copyArray(layout, image.buffer));
        EXPECT_EQ(image.buffer.row(2)[0], 7);
    }
}

TEST(ArrayCopy, ReadsTheNeighboursOfABlockFromTheHeap)
{
    const auto block = std::make_unique<std::uint8_t[]>(64);
    std::memset(block.get(), 9, 64);
    PicBufHolder image(200, 1, 1, ExImageDataType::UInt8);
    ArrayLayout layout;
    layout.address = reinterpret_cast<std::uint64_t>(block.get());
    layout.extent = {layout.address, layout.address + 64};
    layout.xStride = layout.yStride = layout.channelStride = 1;
    // What lies there is not told, only that it can be read.
    EXPECT_TRUE(copyArray(layout, image.buffer));
    EXPECT_EQ(image.buffer.row(0)[63], 9);
}

TEST(ArrayCopy, RefusesStridesThatLeaveMemory)
{
    const std::uint8_t value = 5;
    for (const std::int64_t stride : {std::int64_t(1) << 40, INT64_MAX, INT64_MIN, std::int64_t(-1) << 46}) {
        PicBufHolder image(3, 3, 3, ExImageDataType::UInt8);
        ArrayLayout layout;
        layout.address = reinterpret_cast<std::uint64_t>(&value);
        layout.extent = {layout.address, layout.address + 1};
        layout.xStride = layout.yStride = layout.channelStride = stride;
        EXPECT_FALSE(copyArray(layout, image.buffer)) << stride;
    }
}

TEST(ArrayInPlace, IsAPictureOnlyWithRowsOfWholePixelsInTheExtent)
{
    alignas(4) std::uint16_t memory[64] = {};
    PicBufHolder image(5, 3, 2, ExImageDataType::UInt16);
    ArrayLayout good;
    good.address = reinterpret_cast<std::uint64_t>(memory);
    good.xStride = 4;
    good.yStride = 24;
    good.channelStride = 2;
    good.extent = {good.address, good.address + 2 * 24 + 20};

    const std::optional<SxPicBuf> array = arrayInPlace(good, image.buffer);
    ASSERT_TRUE(array);
    EXPECT_EQ(array->data, reinterpret_cast<std::uint8_t*>(memory));
    EXPECT_EQ(array->lineStride, 24U);
    EXPECT_EQ(array->width, 5U);
    EXPECT_EQ(array->dataType, ExImageDataType::UInt16);

    const auto refused = [&](auto change) {
        ArrayLayout layout = good;
        change(layout);
        return !arrayInPlace(layout, image.buffer);
    };
    EXPECT_TRUE(refused([](ArrayLayout& l) { l.xStride = 6; }));
    EXPECT_TRUE(refused([](ArrayLayout& l) { l.xStride = -4; }));
    EXPECT_TRUE(refused([](ArrayLayout& l) { l.channelStride = -2; }));
    EXPECT_TRUE(refused([](ArrayLayout& l) { l.yStride = 18; }));
    EXPECT_TRUE(refused([](ArrayLayout& l) { l.yStride = -24; }));
    EXPECT_TRUE(refused([](ArrayLayout& l) { l.yStride = 0; }));
    EXPECT_TRUE(refused([](ArrayLayout& l) { l.yStride = (std::int64_t(1) << 32) + 24; }));
    EXPECT_TRUE(refused([](ArrayLayout& l) { --l.extent.end; }));
    EXPECT_TRUE(refused([](ArrayLayout& l) { l.extent = {}; }));
    EXPECT_FALSE(refused([](ArrayLayout& l) { l.yStride = 20; }));
}

TEST(DescribedExtent, CoversEveryValueInEitherDirection)
{
    const std::int64_t shape[] = {4, 3};
    const std::int64_t forward[] = {6, 2};
    ArrayExtent extent = describedExtent(1000, shape, forward, 2);
    EXPECT_EQ(extent.begin, 1000U);
    EXPECT_EQ(extent.end, 1000U + 3 * 6 + 2 * 2 + 2);

    const std::int64_t mixed[] = {-6, 2};
    extent = describedExtent(1000, shape, mixed, 2);
    EXPECT_EQ(extent.begin, 1000U - 3 * 6);
    EXPECT_EQ(extent.end, 1000U + 2 * 2 + 2);
}

TEST(DescribedExtent, IsEmptyForShapesAndStridesThatCannotBe)
{
    const std::int64_t huge[] = {INT64_MAX, INT64_MAX};
    EXPECT_EQ(describedExtent(1000, huge, huge, 8).end, 0U);
    const std::int64_t back[] = {INT64_MIN, 1};
    EXPECT_EQ(describedExtent(1000, huge, back, 8).end, 0U);
    const std::int64_t none[] = {0, 5};
    EXPECT_EQ(describedExtent(1000, none, none, 8).end, 0U);
}

} // namespace
