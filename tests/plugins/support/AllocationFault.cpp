#include "AllocationFault.h"

// The allocators are no part of the limited interface: this file alone sees the whole one.
#include <Python.h>

#include <array>
#include <atomic>

namespace {

constexpr std::array domains = {PYMEM_DOMAIN_RAW, PYMEM_DOMAIN_MEM, PYMEM_DOMAIN_OBJ};
std::array<PyMemAllocatorEx, domains.size()> real;
std::atomic<long> left = 0; // allocations until the one that fails

bool fails()
{
    return left.fetch_sub(1) == 1;
}

const PyMemAllocatorEx& behind(void* context)
{
    return *static_cast<const PyMemAllocatorEx*>(context);
}

void* allocate(void* context, size_t size)
{
    return fails() ? nullptr : behind(context).malloc(behind(context).ctx, size);
}

void* allocateCleared(void* context, size_t count, size_t size)
{
    return fails() ? nullptr : behind(context).calloc(behind(context).ctx, count, size);
}

void* reallocate(void* context, void* block, size_t size)
{
    return fails() ? nullptr : behind(context).realloc(behind(context).ctx, block, size);
}

void release(void* context, void* block)
{
    behind(context).free(behind(context).ctx, block);
}

} // namespace

AllocationFault::AllocationFault(long n)
{
    left = n;
    for (std::size_t i = 0; i < domains.size(); ++i) {
        PyMem_GetAllocator(domains[i], &real[i]);
        PyMemAllocatorEx faulty = {&real[i], allocate, allocateCleared, reallocate, release};
        PyMem_SetAllocator(domains[i], &faulty);
    }
}

AllocationFault::~AllocationFault()
{
    for (std::size_t i = 0; i < domains.size(); ++i)
        PyMem_SetAllocator(domains[i], &real[i]);
}

bool AllocationFault::happened() const
{
    return left <= 0;
}
