#include "tests/support/allocations.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>

namespace
{

constexpr int64_t never = INT64_MAX;

// New blocks are filled, so that nobody comes to rely on zeros; huge ones at their start only, so that
// a test may ask for much and use little.
constexpr size_t filledBytes = 65536;

// Relaxed throughout: counting that ordered the threads would hide their races from the thread sanitizer.
constexpr auto relaxed = std::memory_order_relaxed;

std::atomic<int64_t> liveBlocks;
std::atomic<int64_t> calls;
std::atomic<int64_t> firstFailing{never}; // of `calls`
std::atomic<int64_t> lastFailing;
std::atomic<int64_t> furtherFailing{never};

bool Refuse()
{
    const int64_t call = calls.fetch_add(1, relaxed) + 1;
    const bool isChosen = call >= firstFailing.load(relaxed) && call <= lastFailing.load(relaxed);
    if (!isChosen && call != furtherFailing.load(relaxed))
        return false;
    errno = ENOMEM;
    return true;
}

void *Counted(void *block)
{
    if (block != nullptr)
        liveBlocks.fetch_add(1, relaxed);
    return block;
}

} // namespace

// What the linker puts in the place of the functions that they are named after.
extern "C" {

void *__wrap_malloc(size_t size)
{
    void *block = Refuse() ? nullptr : Counted(malloc(size));
    if (block != nullptr)
        memset(block, 0xA5, std::min(size, filledBytes));
    return block;
}

void *__wrap_calloc(size_t count, size_t size)
{
    return Refuse() ? nullptr : Counted(calloc(count, size));
}

void *__wrap_realloc(void *block, size_t size)
{
    if (Refuse())
        return nullptr;
    void *moved = realloc(block, size); // to nothing it is never called
    return block == nullptr ? Counted(moved) : moved;
}

void __wrap_free(void *block)
{
    if (block != nullptr)
        liveBlocks.fetch_sub(1, relaxed);
    free(block);
}
}

int64_t LiveAllocations()
{
    return liveBlocks;
}

int64_t AllocationCalls()
{
    return calls;
}

FailAllocations::FailAllocations(int64_t nth, int64_t count, int64_t further)
{
    firstFailing = calls + nth;
    lastFailing = firstFailing + count - 1;
    furtherFailing = further == 0 ? never : calls + further;
}

FailAllocations::~FailAllocations()
{
    firstFailing = furtherFailing = never;
}

bool FailAllocations::Fired() const
{
    return calls >= firstFailing;
}
