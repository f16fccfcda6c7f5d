#include "values/list.h"
#include "values/memory.h"
#include "velk32.h"

#include <cstring>

List *VELK_CALL List_New(int32_t capacity)
{
    List *list = Memory_New<List>();
    if (list == nullptr || capacity < 1)
        return list;

    list->items = Memory_New<uint32_t>(static_cast<size_t>(capacity));
    if (list->items == nullptr) {
        free(list);
        return nullptr;
    }
    return list;
}

List *VELK_CALL List_CopyNew(const List *list)
{
    List *copy = List_New(list->count);
    const size_t length = List_Length(list);
    if (copy == nullptr || length == 0)
        return copy;

    memcpy(copy->items, list->items, length * sizeof *list->items);
    copy->count = list->count;
    return copy;
}

int32_t VELK_CALL List_AreEqual(const List *first, const List *second)
{
    const size_t length = List_Length(first);
    if (length != List_Length(second))
        return 0;
    return length == 0 || memcmp(first->items, second->items, length * sizeof *first->items) == 0;
}

StatusCode VELK_CALL List_Append(List *list, uint32_t value)
{
    const size_t length = List_Length(list);
    if (length == INT32_MAX)
        return StatusOutOfMemory;

    uint32_t *items = Memory_Resize(list->items, length + 1);
    if (items == nullptr)
        return StatusOutOfMemory;
    items[length] = value;
    list->items = items;
    list->count = static_cast<int32_t>(length + 1);
    return 0;
}

void VELK_CALL List_Delete(List *list)
{
    free(list->items);
    free(list);
}

char *VELK_CALL String_CopyNew(const char *text)
{
    if (text == nullptr)
        return nullptr;
    const size_t size = strlen(text) + 1;
    char *copy = static_cast<char *>(malloc(size));
    return copy == nullptr ? nullptr : static_cast<char *>(memcpy(copy, text, size));
}

int32_t VELK_CALL String_AreEqual(const char *first, const char *second)
{
    return strcmp(first, second) == 0;
}

char *VELK_CALL String_Append(char *text, const char *more)
{
    const size_t length = strlen(text);
    const size_t added = strlen(more) + 1;
    char *longer = Memory_Resize(text, length + added);
    if (longer == nullptr)
        return nullptr;
    memcpy(longer + length, more, added);
    return longer;
}

void VELK_CALL String_Delete(char *text)
{
    free(text);
}
