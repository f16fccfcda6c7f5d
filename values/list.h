// Lists: what the library needs of them beyond its exports.
#ifndef VELK_VALUES_LIST_H
#define VELK_VALUES_LIST_H

#include "velk32.h"

#include <cstddef>

// Elements in use of a list: a negative count counts as 0.
inline size_t List_Length(const List *list)
{
    return list->count < 1 ? 0 : static_cast<size_t>(list->count);
}

#endif
