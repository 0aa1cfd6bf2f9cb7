#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// Checks whether this process can read memory, by asking the system instead of trying.
///
/// from_array() uses a probe before it reads memory that a script points to. Within the extent that an array describes,
/// from_array() probes the absent pages; outside the extent, all pages. A result holds until the memory is unmapped or
/// protected. Use a probe on one thread at a time.
class MemoryProbe
{
public:
    /// Which pages of a range are probed.
    enum class Pages {
        All,
        Absent, ///< only pages that are not in memory, which is quick for large ranges. A page that was used and then
                ///< protected against reading counts as readable
    };

    MemoryProbe() = default;
    ~MemoryProbe();
    MemoryProbe(const MemoryProbe&) = delete;
    MemoryProbe& operator=(const MemoryProbe&) = delete;

    /// True if all bytes of [begin, end) can be read, or if the range is empty. Also false if no file descriptors are
    /// left for the check.
    bool canRead(std::uint64_t begin, std::uint64_t end, Pages pages = Pages::All);

private:
    bool canReadPages(std::uint64_t begin, std::uint64_t count);

    int m_pipe[2] = {-1, -1};
    std::uint64_t m_readable = 1; ///< address of a page known to be readable; 1 if none is known
};
