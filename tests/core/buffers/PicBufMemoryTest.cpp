// Where pixels come from: sizes large and small, what is kept after use, and what goes back to the system.

#include "OwnedPicBuf.h"

#include <gtest/gtest.h>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <thread>
#include <vector>

namespace {

constexpr std::size_t megabyte = std::size_t(1) << 20;

#if defined(__SANITIZE_ADDRESS__)
constexpr bool keepsBlocks = false; // nor does it give freed memory back at once
#else
constexpr bool keepsBlocks = true;
#endif

#if defined(__SANITIZE_THREAD__)
constexpr bool watchesThreads = true; // with memory of its own, and without threads in forked processes
#else
constexpr bool watchesThreads = false;
#endif

// One byte per pixel, and rows without padding.
SxPicBuf allocated(std::size_t bytes, bool uninitialized = true, unsigned long alignment = 0)
{
    SxPicBufInfo info;
    info.width = 1024;
    info.height = std::uint32_t(bytes / 1024);
    info.channels = 1;
    info.dataType = ExImageDataType::UInt8;
    SxPicBuf buffer;
    CxPicBufAPI::AllocPicBufFromHeap(buffer, info, uninitialized, alignment);
    return buffer;
}

OwnedPicBuf touched(std::size_t bytes, bool uninitialized = true)
{
    OwnedPicBuf pixels(allocated(bytes, uninitialized));
    if (pixels.buffer.data)
        std::memset(pixels.buffer.data, 0xA5, bytes);
    return pixels;
}

std::size_t residentBytes()
{
    std::ifstream file("/proc/self/statm");
    std::size_t all = 0;
    std::size_t resident = 0;
    file >> all >> resident;
    return resident * std::size_t(sysconf(_SC_PAGESIZE));
}

bool isMapped(const void* page)
{
    unsigned char inMemory = 0;
    return mincore(const_cast<void*>(page), 1, &inMemory) == 0;
}

// Waits until nothing is kept that an earlier test has left.
bool becomesUnmapped(const void* page)
{
    for (int i = 0; i < 100 && isMapped(page); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    return !isMapped(page);
}

TEST(PicBufMemory, IsClearedWhereverItComesFrom)
{
    for (const std::size_t bytes :
         {std::size_t(1024), 300 * std::size_t(1024), megabyte, 3 * megabyte, 20 * megabyte}) {
        for (int round = 0; round < 3; ++round) {
            OwnedPicBuf pixels(allocated(bytes, false));
            ASSERT_NE(pixels.buffer.data, nullptr);
            const std::uint8_t* const data = pixels.buffer.data;
            EXPECT_TRUE(data[0] == 0 && std::memcmp(data, data + 1, bytes - 1) == 0);
            std::memset(pixels.buffer.data, 0xA5, bytes); // the next round may get this memory
        }
    }
}

TEST(PicBufMemory, StartsWhereTheCallerWants)
{
    for (const std::size_t bytes : {std::size_t(1024), 5 * megabyte}) {
        for (const unsigned long alignment : {1UL, 16UL, 64UL, 4096UL, 8192UL, 4UL << 20}) {
            if (alignment < sizeof(void*))
                continue; // the C library wants at least the size of a pointer
            OwnedPicBuf pixels(allocated(bytes, true, alignment));
            ASSERT_NE(pixels.buffer.data, nullptr) << alignment;
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(pixels.buffer.data) % alignment, 0U);
        }
    }
}

TEST(PicBufMemory, OfImagesThatReplaceEachOtherIsThatOfTwo)
{
    if (!keepsBlocks || watchesThreads)
        GTEST_SKIP() << "the sanitizer uses memory itself";
    const std::size_t before = residentBytes();
    OwnedPicBuf image;
    std::size_t most = 0;
    for (int i = 0; i < 100; ++i) {
        OwnedPicBuf next = touched(16 * megabyte, false);
        image = std::move(next);
        most = std::max(most, residentBytes());
    }
    EXPECT_LE(most - before, 33 * megabyte);
}

TEST(PicBufMemory, OfDifferentSizesIsNotMixedUp)
{
    std::vector<OwnedPicBuf> images;
    for (int round = 0; round < 3; ++round) {
        for (std::size_t i = 1; i <= 12; ++i) {
            images.push_back(touched(i * 700 * 1024));
            ASSERT_NE(images.back().buffer.data, nullptr);
            images.back().buffer.data[0] = std::uint8_t(images.size());
        }
        for (std::size_t i = 0; i < images.size(); ++i)
            EXPECT_EQ(images[i].buffer.data[0], std::uint8_t(i + 1));
        images.erase(images.begin(), images.begin() + 6);
        for (std::size_t i = 0; i < images.size(); ++i)
            images[i].buffer.data[0] = std::uint8_t(i + 1);
    }
}

TEST(PicBufMemory, GoesBackWhenNothingUsesItForAWhile)
{
    if (!keepsBlocks)
        GTEST_SKIP() << "the sanitizer uses memory itself";
    std::vector<const void*> starts;
    {
        std::vector<OwnedPicBuf> images;
        for (int i = 0; i < 3; ++i) {
            images.push_back(touched(8 * megabyte));
            starts.push_back(images.back().buffer.data);
        }
    }
    for (const void* start : starts)
        EXPECT_TRUE(becomesUnmapped(start));

    // The thread that gives memory back has ended by now; the next image needs it again.
    const void* start = nullptr;
    {
        const OwnedPicBuf image = touched(8 * megabyte);
        start = image.buffer.data;
    }
    EXPECT_TRUE(becomesUnmapped(start));
}

TEST(PicBufMemory, IsKeptOnlyUpToALimit)
{
    if (!keepsBlocks || watchesThreads)
        GTEST_SKIP() << "the sanitizer uses memory itself";
    const std::size_t before = residentBytes();
    {
        std::vector<OwnedPicBuf> images;
        for (int i = 0; i < 12; ++i)
            images.push_back(touched(32 * megabyte));
        images.push_back(touched(300 * megabyte));
        EXPECT_GE(residentBytes() - before, 600 * megabyte);
    }
    EXPECT_LE(residentBytes() - before, 260 * megabyte);
}

TEST(PicBufMemory, MayBeFreedOnAnotherThread)
{
    std::vector<std::thread> threads;
    std::atomic<int> wrong = 0;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([t, &wrong] {
            for (int i = 0; i < 60; ++i) {
                OwnedPicBuf image(allocated((1 + std::size_t(t + i) % 3) * megabyte, i % 2 == 0));
                const auto value = std::uint8_t(t * 60 + i);
                image.buffer.data[0] = value;
                image.buffer.data[megabyte - 1] = value;
                std::thread([&] {
                    wrong += image.buffer.data[0] != value || image.buffer.data[megabyte - 1] != value;
                    image.free();
                }).join();
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
}

TEST(PicBufMemory, WorksInAProcessThatWasForkedOff)
{
    if (watchesThreads)
        GTEST_SKIP() << "the sanitizer allows no thread there";
    OwnedPicBuf held = touched(4 * megabyte);
    touched(4 * megabyte).free(); // is kept, and a thread waits to give it back
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        alarm(20);
        held.free();
        const void* start = nullptr;
        {
            const OwnedPicBuf image = touched(4 * megabyte, false);
            start = image.buffer.data;
        }
        _exit(start && (!keepsBlocks || becomesUnmapped(start)) ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    EXPECT_EQ(held.buffer.data[0], 0xA5);
}

} // namespace
