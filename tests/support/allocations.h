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

// While it stands, the nth call from now on of malloc, calloc or realloc fails, n from 1.
class FailNthAllocation
{
  public:
    explicit FailNthAllocation(int64_t nth);
    ~FailNthAllocation();
    FailNthAllocation(const FailNthAllocation &) = delete;
    FailNthAllocation &operator=(const FailNthAllocation &) = delete;

    // Whether a call has failed by it.
    [[nodiscard]] bool Fired() const;
};

// Like FailNthAllocation, but every later call fails too.
class FailAllocationsFrom : public FailNthAllocation
{
  public:
    explicit FailAllocationsFrom(int64_t nth);
};

#endif
