#include "image/ReadableMemory.h"

#include <gtest/gtest.h>

#include <string>

#include <sys/mman.h>
#include <unistd.h>

namespace {

std::uint64_t addressOf(const void* pointer)
{
    return reinterpret_cast<std::uint64_t>(pointer);
}

bool canRead(MemoryProbe& probe, std::uint64_t address, std::size_t size)
{
    // A range that wraps around the end of memory has its end before its begin.
    return probe.canRead(address, address + size);
}

bool absentPagesAreReadable(std::uint64_t begin, std::uint64_t end)
{
    return MemoryProbe().canRead(begin, end, MemoryProbe::Pages::Absent);
}

TEST(MemoryProbe, ContainsObjectsOfThisProcess)
{
    const std::string text(100000, 'x');
    MemoryProbe memory;
    EXPECT_TRUE(canRead(memory, addressOf(text.data()), text.size()));
    EXPECT_TRUE(canRead(memory, addressOf(&text), sizeof(text)));
}

TEST(MemoryProbe, DoesNotContainWhatIsNotMapped)
{
    MemoryProbe memory;
    EXPECT_FALSE(canRead(memory, 0, 1));
    EXPECT_FALSE(canRead(memory, UINT64_MAX, 1));
    EXPECT_FALSE(canRead(memory, UINT64_MAX - 3, 8));
    EXPECT_FALSE(canRead(memory, std::uint64_t(1) << 63, 1));
}

TEST(MemoryProbe, TellsApartThePagesOfOneMapping)
{
    const auto page = std::size_t(sysconf(_SC_PAGESIZE));
    constexpr std::size_t pages = 300;
    auto* start =
        static_cast<std::uint8_t*>(mmap(nullptr, pages * page, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(static_cast<void*>(start), MAP_FAILED);
    for (std::size_t i = 1; i < pages; i += 3)
        ASSERT_EQ(mprotect(start + i * page, page, PROT_NONE), 0);

    MemoryProbe memory;
    for (int round = 0; round < 2; ++round) {
        for (std::size_t i = 0; i < pages; ++i)
            EXPECT_EQ(canRead(memory, addressOf(start + i * page), page), i % 3 != 1) << "page " << i;
    }
    EXPECT_TRUE(canRead(memory, addressOf(start + page - 4), 4));
    EXPECT_FALSE(canRead(memory, addressOf(start + page - 4), 5));
    munmap(start, pages * page);
}

TEST(MemoryProbe, FindsEveryMappedPageUsedOrNot)
{
    constexpr std::size_t size = std::size_t(40) << 20;
    void* start = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(start, MAP_FAILED);
    static_cast<char*>(start)[size / 2] = 1;
    EXPECT_TRUE(absentPagesAreReadable(addressOf(start), addressOf(start) + size));
    EXPECT_TRUE(absentPagesAreReadable(addressOf(start) + 5, addressOf(start) + size - 5));
    munmap(start, size);
    EXPECT_FALSE(absentPagesAreReadable(addressOf(start), addressOf(start) + size));
}

TEST(MemoryProbe, OfAbsentPagesRefusesWhereAPageIsMissingOrLocked)
{
    const auto page = std::size_t(sysconf(_SC_PAGESIZE));
    const std::size_t size = 5000 * page;
    auto* start =
        static_cast<std::uint8_t*>(mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(static_cast<void*>(start), MAP_FAILED);
    ASSERT_EQ(mprotect(start + 4500 * page, page, PROT_NONE), 0);
    EXPECT_TRUE(absentPagesAreReadable(addressOf(start), addressOf(start) + 4500 * page));
    EXPECT_FALSE(absentPagesAreReadable(addressOf(start), addressOf(start) + 4500 * page + 1));
    EXPECT_TRUE(absentPagesAreReadable(addressOf(start) + 4501 * page, addressOf(start) + size));
    munmap(start + 100 * page, page);
    EXPECT_TRUE(absentPagesAreReadable(addressOf(start), addressOf(start) + 100 * page));
    EXPECT_FALSE(absentPagesAreReadable(addressOf(start), addressOf(start) + 101 * page));
    munmap(start, size);
}

TEST(MemoryProbe, OfAbsentPagesRefusesAddressesThatCannotBe)
{
    EXPECT_FALSE(absentPagesAreReadable(0, 100));
    EXPECT_FALSE(absentPagesAreReadable(std::uint64_t(1) << 60, (std::uint64_t(1) << 60) + 1));
    EXPECT_FALSE(absentPagesAreReadable(UINT64_MAX - 100, UINT64_MAX));
    EXPECT_TRUE(absentPagesAreReadable(0, 0));
}

} // namespace
