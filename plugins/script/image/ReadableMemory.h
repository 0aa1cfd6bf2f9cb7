#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// False when the system says that a page of [begin, end) cannot be read. Quick enough to ask about a whole array
/// before it is copied. Where the system does not answer, and for pages that were used once and locked since, true.
bool memoryIsThere(std::uint64_t begin, std::uint64_t end);

/// Answers whether addresses of this process can be read, by asking the system and not by trying.
///
/// The answer holds for as long as nobody unmaps the memory. One object remembers the pages it has asked about, so it
/// serves one walk over the data and is then thrown away. One thread at a time.
class ReadableMemory
{
public:
    /// expectedPages  how many different pages the walk returns to; more are allowed and cost a question each.
    explicit ReadableMemory(std::size_t expectedPages);

    /// True when every byte of [address, address + size) can be read. Where the system does not answer the question
    /// (a sandbox may forbid it), nothing counts as readable. An area that wraps around the end of memory is not.
    bool contains(std::uint64_t address, std::size_t size);

private:
    bool pageIsReadable(std::uint64_t page);

    std::uint64_t m_pageSize;
    unsigned m_slotShift;
    std::vector<std::uint64_t> m_readablePages; ///< page number + 1 at a place given by its hash, 0 for none
    std::uint64_t m_lastPage = 0;               ///< page number + 1 of the last answer that was yes
};
