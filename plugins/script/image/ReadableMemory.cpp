#include "ReadableMemory.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>

#include <sys/mman.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {
// At most 512 KB of memory about pages.
constexpr std::size_t mostSlots = 65536;
constexpr std::size_t fewestSlots = 64;

// A power of two.
std::size_t slotCountFor(std::size_t expectedPages)
{
    return std::bit_ceil(std::clamp(expectedPages, fewestSlots / 2, mostSlots / 2) * 2);
}

/// Collects pages and asks about many at once: a byte of each is read through the system.
class PageProbe
{
public:
    /// False when a page asked about so far cannot be read.
    bool add(std::uint64_t address)
    {
        m_from[m_count++] = {reinterpret_cast<void*>(address), 1};
        return m_count < m_from.size() || ask();
    }

    bool ask()
    {
        if (m_count == 0)
            return true;
        std::array<char, mostAtOnce> bytes;
        const iovec into = {bytes.data(), m_count};
        const ssize_t read = process_vm_readv(getpid(), &into, 1, m_from.data(), m_count, 0);
        const bool refused = read >= 0 ? std::size_t(read) < m_count : errno == EFAULT;
        m_count = 0;
        return !refused;
    }

private:
    static constexpr std::size_t mostAtOnce = 1024; // the system takes no more
    std::array<iovec, mostAtOnce> m_from;
    std::size_t m_count = 0;
};
} // namespace

bool memoryIsThere(std::uint64_t begin, std::uint64_t end)
{
    const auto pageSize = std::uint64_t(sysconf(_SC_PAGESIZE));
    std::array<unsigned char, 4096> inMemory{};
    PageProbe absent;
    begin -= begin % pageSize;
    while (begin < end) {
        const std::uint64_t pages = std::min<std::uint64_t>((end - begin + pageSize - 1) / pageSize, inMemory.size());
        if (mincore(reinterpret_cast<void*>(begin), pages * pageSize, inMemory.data()) != 0)
            return errno != ENOMEM;
        // A page that is not in memory may be one that nobody is allowed to touch.
        for (std::uint64_t i = 0; i < pages; ++i) {
            if (!(inMemory[i] & 1U) && !absent.add(begin + i * pageSize))
                return false;
        }
        begin += pages * pageSize;
    }
    return absent.ask();
}

ReadableMemory::ReadableMemory(std::size_t expectedPages)
    : m_pageSize(std::uint64_t(sysconf(_SC_PAGESIZE)))
    , m_slotShift(64U - unsigned(std::countr_zero(slotCountFor(expectedPages))))
    , m_readablePages(slotCountFor(expectedPages), 0)
{
}

bool ReadableMemory::contains(std::uint64_t address, std::size_t size)
{
    if (size == 0)
        return true;
    const std::uint64_t last = address + (size - 1);
    if (last < address)
        return false;
    for (std::uint64_t page = address / m_pageSize; page <= last / m_pageSize; ++page) {
        if (!pageIsReadable(page))
            return false;
    }
    return true;
}

bool ReadableMemory::pageIsReadable(std::uint64_t page)
{
    if (m_lastPage == page + 1)
        return true;
    // Fibonacci hashing: pages that lie a fixed distance apart, as the rows of an image do, spread over all places.
    std::uint64_t& known = m_readablePages[(page * 0x9E3779B97F4A7C15ULL) >> m_slotShift];
    if (known != page + 1) {
        char byte = 0;
        const iovec into = {&byte, 1};
        const iovec from = {reinterpret_cast<void*>(page * m_pageSize), 1};
        if (process_vm_readv(getpid(), &into, 1, &from, 1, 0) != 1)
            return false;
        known = page + 1;
    }
    m_lastPage = page + 1;
    return true;
}
