#pragma once

/// The C++ heap of the whole process, plugin included: HeapWatch.cpp replaces the global operators new and delete.
class HeapWatch
{
public:
    /// From now on wasFreed() tells about this block; one block at a time.
    static void watch(const void* block);
    static bool wasFreed();

    /// Lets the next allocation of this thread throw std::bad_alloc.
    static void failNext();
};
