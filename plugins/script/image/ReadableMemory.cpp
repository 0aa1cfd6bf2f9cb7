#include "ReadableMemory.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

std::uint64_t pageSize()
{
    static const auto size = std::uint64_t(sysconf(_SC_PAGESIZE));
    return size;
}

} // namespace

MemoryProbe::~MemoryProbe()
{
    for (const int end : m_pipe) {
        if (end >= 0)
            close(end);
    }
}

bool MemoryProbe::canRead(std::uint64_t begin, std::uint64_t end, Pages pages)
{
    if (begin >= end)
        return begin == end;
    const std::uint64_t page = pageSize();
    const std::uint64_t first = begin - begin % page;
    const std::uint64_t count = (end - 1 - first) / page + 1;
    if (count == 1 && first == m_readable)
        return true;
    if (pages == Pages::All)
        return canReadPages(first, count);

    std::array<unsigned char, 4096> inMemory{};
    for (std::uint64_t done = 0; done < count;) {
        const std::uint64_t now = std::min<std::uint64_t>(count - done, inMemory.size());
        if (mincore(reinterpret_cast<void*>(first + done * page), now * page, inMemory.data()) != 0)
            return false; // a page is not mapped
        for (std::uint64_t i = 0; i < now; ++i) {
            if (!(inMemory[i] & 1U) && !canReadPages(first + (done + i) * page, 1))
                return false;
        }
        done += now;
    }
    return true;
}

// Writes one byte of each page into a pipe. The system refuses addresses that cannot be read, without a signal. The
// call goes to the system directly, because a sanitizer would look at the addresses first.
bool MemoryProbe::canReadPages(std::uint64_t begin, std::uint64_t count)
{
    if (m_pipe[0] < 0 && pipe2(m_pipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return false;
    constexpr std::size_t pagesAtOnce = 512; // fewer bytes than any pipe holds
    std::array<iovec, pagesAtOnce> from{};
    std::array<char, pagesAtOnce> discarded{};
    for (std::uint64_t done = 0; done < count;) {
        const auto now = std::size_t(std::min<std::uint64_t>(count - done, from.size()));
        for (std::size_t i = 0; i < now; ++i)
            from[i] = {reinterpret_cast<void*>(begin + (done + i) * pageSize()), 1};
        const ssize_t written = syscall(SYS_writev, m_pipe[1], from.data(), int(now));
        if (written > 0 && read(m_pipe[0], discarded.data(), std::size_t(written)) != written)
            return false;
        if (written != ssize_t(now))
            return false;
        done += now;
    }
    m_readable = begin + (count - 1) * pageSize();
    return true;
}
