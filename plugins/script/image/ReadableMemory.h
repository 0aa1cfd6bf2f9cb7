#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// Answers whether memory of this process can be read, by asking the system and not by trying.
///
/// from_array() asks before it reads memory that a script points to: about the absent pages of the extent that an array
/// describes, and about all pages of what lies outside of that extent. An answer holds as long as nobody unmaps the
/// memory. One thread at a time.
class MemoryProbe
{
public:
    /// Which pages of a range are probed.
    enum class Pages {
        All,
        Absent, ///< those not in memory; quick for large ranges. A page that was used and then locked counts as
                ///< readable
    };

    MemoryProbe() = default;
    ~MemoryProbe();
    MemoryProbe(const MemoryProbe&) = delete;
    MemoryProbe& operator=(const MemoryProbe&) = delete;

    /// True if all bytes of [begin, end) can be read; true for an empty range. False when the system has no file
    /// descriptors left to ask with.
    bool canRead(std::uint64_t begin, std::uint64_t end, Pages pages = Pages::All);

private:
    bool canReadPages(std::uint64_t begin, std::uint64_t count);

    int m_pipe[2] = {-1, -1};
    std::uint64_t m_readable = 1; ///< a page that was found readable; 1 is the address of none
};
