#pragma once

#include "HostGlobal.h"

/// Sets whether CxPicBufAPI::AllocPicBufFromHeap() leaves memory as it is on this thread, even where it is asked to
/// clear the memory. Use UnclearedAllocations instead. A host need not define the function; its address is then null.
extern "C" VANTREL_HOST_EXPORT void vantrel_leaveClearingToCaller(bool leave) __attribute__((weak));

/// While an object of this class lives, the calling thread clears picture buffers itself: allocations leave the memory
/// as it is, if the host can do that. For an operation whose buffer is to be cleared, but that then writes most of it.
/// Clearing all of it first would take as long as the operation.
class UnclearedAllocations
{
public:
    UnclearedAllocations() { leaveClearingToCaller(true); }
    ~UnclearedAllocations() { leaveClearingToCaller(false); }

    UnclearedAllocations(const UnclearedAllocations&) = delete;
    UnclearedAllocations& operator=(const UnclearedAllocations&) = delete;

private:
    static void leaveClearingToCaller(bool leave)
    {
        if (vantrel_leaveClearingToCaller)
            vantrel_leaveClearingToCaller(leave);
    }
};
