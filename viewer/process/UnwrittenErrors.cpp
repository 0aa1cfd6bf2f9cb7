#include "UnwrittenErrors.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <memory>
#include <new>
#include <unistd.h>

namespace {

/// A signal handler may read the blocks at any moment, so a byte is counted only when it is there, and a block is
/// linked only when it is complete.
struct Block {
    std::array<char, 16384> text;
    std::atomic<std::size_t> used = 0;
    std::atomic<Block*> next = nullptr;
};

Block first;
Block* last = &first;
std::atomic<bool> isWritten = false;
const pid_t viewerProcess = getpid();

void writeBlock(const Block& block)
{
    const char* next = block.text.data();
    std::size_t left = block.used;
    while (left > 0) {
        const ssize_t written = ::write(STDERR_FILENO, next, left);
        if (written < 0)
            return; // nothing can be done for a dying process
        next += written;
        left -= std::size_t(written);
    }
}

} // namespace

void UnwrittenErrors::add(const char* text, std::size_t size)
{
    while (size > 0) {
        const std::size_t used = last->used;
        const std::size_t part = std::min(size, last->text.size() - used);
        if (part == 0) {
            auto* block = new (std::nothrow) Block;
            if (!block)
                return; // the language has the text
            last->next = block;
            last = block;
            continue;
        }
        std::memcpy(last->text.data() + used, text, part);
        last->used = used + part;
        text += part;
        size -= part;
    }
}

void UnwrittenErrors::forget()
{
    first.used = 0;
    last = &first;
    Block* block = first.next.exchange(nullptr);
    if (isWritten)
        return; // the writing thread may be reading the blocks
    while (block)
        block = std::unique_ptr<Block>(block)->next;
}

void UnwrittenErrors::write() noexcept
{
    if (getpid() != viewerProcess || isWritten.exchange(true))
        return;
    for (const Block* block = &first; block; block = block->next)
        writeBlock(*block);
}
