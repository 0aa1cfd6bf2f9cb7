#pragma once

/// While it lives, one allocation of the interpreter fails: the n-th (from 1) that is made. Needs a running
/// interpreter; one object at a time.
class AllocationFault
{
public:
    explicit AllocationFault(long n);
    ~AllocationFault();
    AllocationFault(const AllocationFault&) = delete;
    AllocationFault& operator=(const AllocationFault&) = delete;

    /// Whether so many allocations were made that one failed.
    bool happened() const;
};
