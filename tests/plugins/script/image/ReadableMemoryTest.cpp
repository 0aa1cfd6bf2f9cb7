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

TEST(ReadableMemory, ContainsObjectsOfThisProcess)
{
    const std::string text(100000, 'x');
    ReadableMemory memory(4);
    EXPECT_TRUE(memory.contains(addressOf(text.data()), text.size()));
    EXPECT_TRUE(memory.contains(addressOf(&text), sizeof(text)));
}

TEST(ReadableMemory, DoesNotContainWhatIsNotMapped)
{
    ReadableMemory memory(4);
    EXPECT_FALSE(memory.contains(0, 1));
    EXPECT_FALSE(memory.contains(UINT64_MAX, 1));
    EXPECT_FALSE(memory.contains(UINT64_MAX - 3, 8));
    EXPECT_FALSE(memory.contains(std::uint64_t(1) << 63, 1));
}

TEST(ReadableMemory, TellsApartThePagesOfOneMapping)
{
    const auto page = std::size_t(sysconf(_SC_PAGESIZE));
    constexpr std::size_t pages = 300;
    auto* start =
        static_cast<std::uint8_t*>(mmap(nullptr, pages * page, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(static_cast<void*>(start), MAP_FAILED);
    for (std::size_t i = 1; i < pages; i += 3)
        ASSERT_EQ(mprotect(start + i * page, page, PROT_NONE), 0);

    ReadableMemory memory(1); // far fewer than are asked about
    for (int round = 0; round < 2; ++round) {
        for (std::size_t i = 0; i < pages; ++i)
            EXPECT_EQ(memory.contains(addressOf(start + i * page), page), i % 3 != 1) << "page " << i;
    }
    EXPECT_TRUE(memory.contains(addressOf(start + page - 4), 4));
    EXPECT_FALSE(memory.contains(addressOf(start + page - 4), 5));
    munmap(start, pages * page);
}

TEST(MemoryIsThere, ForEveryMappedPageUsedOrNot)
{
    constexpr std::size_t size = std::size_t(40) << 20;
    void* start = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(start, MAP_FAILED);
    static_cast<char*>(start)[size / 2] = 1;
    EXPECT_TRUE(memoryIsThere(addressOf(start), addressOf(start) + size));
    EXPECT_TRUE(memoryIsThere(addressOf(start) + 5, addressOf(start) + size - 5));
    munmap(start, size);
    EXPECT_FALSE(memoryIsThere(addressOf(start), addressOf(start) + size));
}

TEST(MemoryIsThere, NotWhereAPageIsMissingOrLocked)
{
    const auto page = std::size_t(sysconf(_SC_PAGESIZE));
    const std::size_t size = 5000 * page;
    auto* start =
        static_cast<std::uint8_t*>(mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(static_cast<void*>(start), MAP_FAILED);
    ASSERT_EQ(mprotect(start + 4500 * page, page, PROT_NONE), 0);
    EXPECT_TRUE(memoryIsThere(addressOf(start), addressOf(start) + 4500 * page));
    EXPECT_FALSE(memoryIsThere(addressOf(start), addressOf(start) + 4500 * page + 1));
    EXPECT_TRUE(memoryIsThere(addressOf(start) + 4501 * page, addressOf(start) + size));
    munmap(start + 100 * page, page);
    EXPECT_TRUE(memoryIsThere(addressOf(start), addressOf(start) + 100 * page));
    EXPECT_FALSE(memoryIsThere(addressOf(start), addressOf(start) + 101 * page));
    munmap(start, size);
}

TEST(MemoryIsThere, NotAtAddressesThatCannotBe)
{
    EXPECT_FALSE(memoryIsThere(0, 100));
    EXPECT_FALSE(memoryIsThere(std::uint64_t(1) << 60, (std::uint64_t(1) << 60) + 1));
    EXPECT_FALSE(memoryIsThere(UINT64_MAX - 100, UINT64_MAX));
    EXPECT_TRUE(memoryIsThere(0, 0));
}

} // namespace
