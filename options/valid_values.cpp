#include "options/valid_values.h"

#include "values/memory.h"
#include "values/number_list.h"
#include "values/text.h"
#include "values/vreg_table.h"

#include <cstring>

static_assert(sizeof(ValidValues) == 3 * sizeof(VelkWord)); // clients copy it as three words

// Counts are stored as numbers are: 32 bits, zero-extended.
static int32_t ReadCount(VelkWord word)
{
    return static_cast<int32_t>(static_cast<uint32_t>(word));
}

static VelkWord CountWord(int32_t count)
{
    return static_cast<uint32_t>(count);
}

static StatusCode ParseRange(char *text, ValidValues *valid)
{
    uint32_t words[3] = {};
    char *position = text;
    for (int32_t n = 0; n < 3; ++n) {
        const char *piece = Text_NextPiece(&position, ":");
        if (piece == nullptr && n == 0)
            return 0; // nothing at all: a step of 0
        if (piece == nullptr || Number_Parse(piece, 0, &words[n]) < 0)
            return StatusBadOptionFile;
    }
    valid->low = words[0];
    valid->step = words[1];
    valid->high = words[2];
    return 0;
}

static StatusCode ParseList(char *text, ValidValues *valid, uint32_t *numbersLeft)
{
    List list = {0, nullptr};
    const StatusCode status = NumberList_Parse(text, &list, List_AppendNumber, numbersLeft);
    valid->count = CountWord(list.count);
    valid->items = list.items;
    return status;
}

// The next element of a "ListSet" value, cut out of it; null behind the last. A piece that opens a list
// and does not close it goes on through the closing parenthesis, whatever separates the numbers in it.
static char *NextElement(char **position)
{
    static constexpr char separators[] = "][, ";
    char *element = *position + strspn(*position, separators);
    if (*element == '\0')
        return nullptr;
    char *end = element + strcspn(element, separators);
    char *closing = strchr(element, ')');
    if (*element == '(' && (closing == nullptr || closing > end))
        end = closing != nullptr ? closing : end + strlen(end);

    *position = *end == '\0' ? end : end + 1;
    *end = '\0'; // in place of a closing parenthesis, too: the number list ends there all the same
    return Text_Trim(element);
}

static StatusCode AppendList(char *text, ValidValues *valid, uint32_t *numbersLeft)
{
    const int32_t count = ReadCount(valid->listCount);
    List *lists = Memory_Resize(valid->lists, static_cast<size_t>(count) + 1);
    if (lists == nullptr)
        return StatusOutOfMemory;
    valid->lists = lists;
    lists[count] = {0, nullptr};
    const StatusCode status = NumberList_Parse(text, &lists[count], List_AppendNumber, numbersLeft);
    if (status < 0) {
        free(lists[count].items);
        return status;
    }
    valid->listCount = CountWord(count + 1);
    return 0;
}

static StatusCode ParseListSet(char *text, ValidValues *valid, uint32_t *numbersLeft)
{
    char *position = text;
    char *element = NextElement(&position);
    if (element == nullptr || *element == '\0')
        return 0;
    if (*element == '*') {
        valid->listCount = CountWord(AnyList);
        return 0;
    }
    for (; element != nullptr; element = NextElement(&position)) {
        if (*element == '*')
            continue;
        if (*element != '(')
            return StatusBadOptionFile;
        const StatusCode status = AppendList(element, valid, numbersLeft);
        if (status < 0)
            return status;
    }
    return 0;
}

static StatusCode ParseString(const char *text, ValidValues *valid)
{
    if (*text == '*')
        return 0;
    valid->text = String_CopyNew(text);
    return valid->text == nullptr ? StatusOutOfMemory : 0;
}

StatusCode ValidValues_Parse(char *text, ValidValues *valid, uint32_t validKind, uint32_t *numbersLeft)
{
    Text_Trim(text);
    switch (validKind) {
    case ValidKindRange:
        return ParseRange(text, valid);
    case ValidKindList:
        return ParseList(text, valid, numbersLeft);
    case ValidKindListSet:
        return ParseListSet(text, valid, numbersLeft);
    default:
        return ParseString(text, valid);
    }
}

void ValidValues_Free(ValidValues *valid, uint32_t validKind)
{
    if (validKind == ValidKindList)
        free(valid->items);
    if (validKind == ValidKindListSet) {
        for (int32_t n = 0; n < ReadCount(valid->listCount); ++n)
            free(valid->lists[n].items);
        free(valid->lists);
    }
    if (validKind == ValidKindString)
        String_Delete(valid->text);
}

// Down onto the grid that starts at low; what lies above high becomes high, on the grid or not.
static StatusCode ValidValues_CoerceRange(const ValidValues *valid, VelkWord value, VelkWord *coerced)
{
    const auto number = static_cast<uint32_t>(value);
    const auto low = static_cast<uint32_t>(valid->low);
    const auto step = static_cast<uint32_t>(valid->step);
    const auto high = static_cast<uint32_t>(valid->high);
    if (step == 0)
        return StatusNoValidValue;
    if (number < low)
        *coerced = low;
    else if (number > high)
        *coerced = high;
    else
        *coerced = number - (number - low) % step;
    return 0;
}

// A value that is no element becomes the next larger one, or the largest.
static StatusCode ValidValues_CoerceList(const ValidValues *valid, VelkWord value, VelkWord *coerced)
{
    const auto number = static_cast<uint32_t>(value);
    const int32_t count = ReadCount(valid->count);
    if (count < 1)
        return StatusNoValidValue;

    uint32_t largest = valid->items[0];
    const uint32_t *above = nullptr;
    for (const uint32_t *item = valid->items; item != valid->items + count; ++item) {
        if (*item > largest)
            largest = *item;
        if (*item >= number && (above == nullptr || *item < *above))
            above = item;
    }
    *coerced = above != nullptr ? *above : largest;
    return 0;
}

// The caller's list is not looked at.
static StatusCode ValidValues_CoerceListSet(const ValidValues *valid, VelkWord value, VelkWord *coerced)
{
    switch (ReadCount(valid->listCount)) {
    case 0:
        return StatusNoValidValue;
    case AnyList:
        *coerced = value;
        return 0;
    case 1:
        *coerced = Word_Of(valid->lists);
        return 0;
    default:
        return StatusSeveralLists;
    }
}

static StatusCode ValidValues_CoerceString(const ValidValues *valid, VelkWord value, VelkWord *coerced)
{
    *coerced = valid->text == nullptr ? value : Word_Of(valid->text);
    return 0;
}

StatusCode ValidValues_Coerce(uint32_t validKind, const ValidValues *valid, VelkWord value, VelkWord *coerced)
{
    switch (validKind) {
    case ValidKindRange:
        return ValidValues_CoerceRange(valid, value, coerced);
    case ValidKindList:
        return ValidValues_CoerceList(valid, value, coerced);
    case ValidKindListSet:
        return ValidValues_CoerceListSet(valid, value, coerced);
    default:
        return ValidValues_CoerceString(valid, value, coerced);
    }
}
