// The hook behind the allocation functions of the library and the accessors that tests link: it counts
// blocks and makes chosen allocations fail. The test program's own blocks do not pass through it.
//
// The counts are right under threads; a failure is asked for by one test at a time, on any thread.
#ifndef VELK_TESTS_SUPPORT_ALLOCATIONS_H
#define VELK_TESTS_SUPPORT_ALLOCATIONS_H

#include <cstdint>

// Blocks made and not yet freed. A test compares the number before with the number after.
int64_t LiveAllocations();

// Calls so far of malloc, calloc and realloc, failed ones included.
int64_t AllocationCalls();

// While it stands, `count` calls of malloc, calloc or realloc fail, from the nth from now on, n from 1; and
// the one called `further`, if it is not 0.
struct FailAllocations {
    explicit FailAllocations(int64_t nth, int64_t count = 1, int64_t further = 0);
    ~FailAllocations();
    FailAllocations(const FailAllocations &) = delete;
    FailAllocations &operator=(const FailAllocations &) = delete;

    // Whether a call has failed by it.
    [[nodiscard]] bool Fired() const;
};

#endif
