// Heap blocks of plain records. All memory of the library comes from the C allocation functions, and
// every failure is a null that the caller turns into its status.
#ifndef VELK_VALUES_MEMORY_H
#define VELK_VALUES_MEMORY_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>

// A zero-filled array of `count` records, or null.
template <typename Record> Record *Memory_New(size_t count = 1)
{
    return static_cast<Record *>(calloc(count, sizeof(Record)));
}

// Resizes an array that Memory_New or this made, or makes one of null; null leaves the old one valid.
template <typename Record> Record *Memory_Resize(Record *items, size_t count)
{
    if (count > SIZE_MAX / sizeof(Record))
        return nullptr;
    return static_cast<Record *>(realloc(items, count * sizeof(Record)));
}

#endif
