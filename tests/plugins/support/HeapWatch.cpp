#include "HeapWatch.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<const void*> watched = nullptr;
std::atomic<bool> freed = false;
thread_local bool fails = false;

void release(void* block) noexcept
{
    if (block && block == watched) {
        watched = nullptr;
        freed = true;
    }
    std::free(block);
}

} // namespace

void HeapWatch::watch(const void* block)
{
    watched = block;
    freed = false;
}

bool HeapWatch::wasFreed()
{
    return freed;
}

void HeapWatch::failNext()
{
    fails = true;
}

void* operator new(std::size_t size)
{
    if (fails) {
        fails = false;
        throw std::bad_alloc();
    }
    if (void* block = std::malloc(size ? size : 1))
        return block;
    throw std::bad_alloc();
}

void operator delete(void* block) noexcept
{
    release(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept
{
    release(block);
}
