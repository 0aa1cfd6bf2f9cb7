#include "LargeBlocks.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstring>
#include <exception>
#include <mutex>
#include <new>
#include <pthread.h>
#include <sys/mman.h>
#include <thread>
#include <unistd.h>
#include <unordered_map>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t smallestSize = std::size_t(1) << 20;
constexpr std::size_t hugePage = std::size_t(2) << 20;
constexpr std::size_t mostKept = std::size_t(256) << 20;
constexpr std::chrono::seconds keptFor{2};

struct KeptBlock {
    std::uint8_t* memory = nullptr;
    std::size_t bytes = 0;
    Clock::time_point since;
};

struct State {
    std::mutex mutex;
    std::unordered_map<std::uint8_t*, std::size_t> used; ///< the size of each block in use
    std::vector<KeptBlock> kept;                         ///< the longest unused first
    std::size_t keptBytes = 0;
    bool isWatched = false; ///< a thread gives blocks back that nobody wants
};

State& state();

std::size_t pageSize()
{
    static const auto size = std::size_t(sysconf(_SC_PAGESIZE));
    return size;
}

/// Fresh pages, which the system has cleared. They start where a huge page can, because with small pages the system
/// needs longer to supply the memory than an image takes to fill it.
std::uint8_t* mapPages(std::size_t bytes)
{
    const std::size_t spare = bytes < hugePage ? 0 : hugePage - pageSize();
    void* const mapping = mmap(nullptr, bytes + spare, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapping == MAP_FAILED)
        return nullptr;
    auto* const begin = static_cast<std::uint8_t*>(mapping);
    if (spare == 0)
        return begin;
    const std::size_t before = (hugePage - reinterpret_cast<std::uintptr_t>(begin) % hugePage) % hugePage;
    if (before > 0)
        munmap(begin, before);
    if (spare > before)
        munmap(begin + before + bytes, spare - before);
    madvise(begin + before, bytes, MADV_HUGEPAGE);
    return begin + before;
}

// The callers of the following functions hold the mutex.

/// The smallest kept block that is large enough and at most an eighth too large; of equal ones the one used last.
std::uint8_t* takeKept(std::size_t bytes)
{
    auto& kept = state().kept;
    auto best = kept.end();
    for (auto block = kept.begin(); block != kept.end(); ++block) {
        if (block->bytes >= bytes && block->bytes - bytes <= bytes / 8 &&
            (best == kept.end() || block->bytes <= best->bytes))
            best = block;
    }
    if (best == kept.end())
        return nullptr;
    std::uint8_t* const memory = best->memory;
    state().used.emplace(memory, best->bytes);
    state().keptBytes -= best->bytes;
    kept.erase(best);
    return memory;
}

/// Gives the longest unused blocks back to the system. Allocates nothing: memory may be short.
void releaseFirst(std::size_t count)
{
    auto& kept = state().kept;
    for (std::size_t i = 0; i < count; ++i) {
        munmap(kept[i].memory, kept[i].bytes);
        state().keptBytes -= kept[i].bytes;
    }
    kept.erase(kept.begin(), kept.begin() + std::ptrdiff_t(count));
}

void releaseUnwanted()
{
    for (bool isWatched = true; isWatched;) {
        std::this_thread::sleep_for(keptFor / 2);
        const std::lock_guard lock(state().mutex);
        const auto& kept = state().kept;
        const auto limit = Clock::now() - keptFor;
        releaseFirst(std::size_t(
            std::count_if(kept.begin(), kept.end(), [limit](const auto& block) { return block.since <= limit; })));
        isWatched = !kept.empty();
        state().isWatched = isWatched;
    }
}

/// Starts a thread that gives unwanted blocks back and ends when none is left. Signals stay with the other threads:
/// one that arrived here would not wake the thread that waits for it. False if there can be no further thread.
bool startWatching()
{
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    bool started = true;
    try {
        std::thread(releaseUnwanted).detach();
    } catch (const std::exception&) {
        started = false;
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return started;
}

State& state()
{
    // Never destroyed: the last images may be freed when the process already ends.
    static State& blocks = []() -> State& {
        // A process that was forked off has the blocks, but not the thread.
        pthread_atfork([] { state().mutex.lock(); }, [] { state().mutex.unlock(); },
                       [] {
                           state().isWatched = false;
                           state().mutex.unlock();
                       });
        auto* const created = new State;
        created->kept.reserve(mostKept / smallestSize); // a block that is given back needs no memory
        return *created;
    }();
    return blocks;
}

} // namespace

bool isLargeBlock(std::size_t bytes)
{
#if defined(__SANITIZE_ADDRESS__)
    (void)bytes;
    return false; // the sanitizer watches only blocks of the heap
#else
    return bytes >= smallestSize;
#endif
}

std::uint8_t* takeLargeBlock(std::size_t bytes, bool cleared)
{
    bytes = (bytes + pageSize() - 1) / pageSize() * pageSize();
    try {
        std::unique_lock lock(state().mutex);
        if (std::uint8_t* const kept = takeKept(bytes)) {
            lock.unlock();
            if (cleared)
                std::memset(kept, 0, bytes);
            return kept;
        }
    } catch (const std::bad_alloc&) {
        return nullptr;
    }

    std::uint8_t* fresh = mapPages(bytes);
    if (!fresh && releaseKeptBlocks())
        fresh = mapPages(bytes);
    if (!fresh)
        return nullptr;
    try {
        const std::lock_guard lock(state().mutex);
        state().used.emplace(fresh, bytes);
    } catch (const std::bad_alloc&) {
        munmap(fresh, bytes);
        return nullptr;
    }
    // Fresh pages hold zeros, but the system only promises them. An image that is to be cleared gets them now, so that
    // memory that runs short shows in the next allocation and not in the middle of a picture.
    if (cleared && madvise(fresh, bytes, MADV_POPULATE_WRITE) != 0)
        std::memset(fresh, 0, bytes);
    return fresh;
}

bool giveLargeBlockBack(std::uint8_t* block)
{
    if (!block || reinterpret_cast<std::uintptr_t>(block) % pageSize() != 0)
        return false;
    const std::lock_guard lock(state().mutex);
    const auto found = state().used.find(block);
    if (found == state().used.end())
        return false;
    const std::size_t bytes = found->second;
    state().used.erase(found);
    if (bytes <= mostKept && !state().isWatched)
        state().isWatched = startWatching();
    if (bytes > mostKept || !state().isWatched) {
        munmap(block, bytes);
        return true;
    }
    while (state().keptBytes + bytes > mostKept)
        releaseFirst(1);
    state().kept.push_back({block, bytes, Clock::now()});
    state().keptBytes += bytes;
    return true;
}

bool releaseKeptBlocks()
{
    const std::lock_guard lock(state().mutex);
    const std::size_t count = state().kept.size();
    releaseFirst(count);
    return count > 0;
}
