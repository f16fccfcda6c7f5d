#include "accessors/image/image_board.h"

#include <cstring>

static uint32_t Number_Get(const Place *place, const uint8_t *bytes)
{
    uint32_t number = 0;
    for (uint32_t i = 0; i < place->width; ++i)
        number = number << 8 | bytes[place->isBig ? i : place->width - 1 - i];
    return number;
}

// True if the bytes were others.
static bool Number_Put(const Place *place, uint32_t number, uint8_t *bytes)
{
    bool isChanged = false;
    for (uint32_t i = 0; i < place->width; ++i) {
        uint8_t *byte = &bytes[place->isBig ? place->width - 1 - i : i];
        const uint8_t next = static_cast<uint8_t>(number >> 8 * i);
        isChanged = isChanged || *byte != next;
        *byte = next;
    }
    return isChanged;
}

// A text that fills its room has no zero behind it; the byte there, of another place or of none, makes
// room for one.
static StatusCode Text_Get(const Place *place, uint8_t *bytes, VelkWord *value)
{
    uint8_t *end = bytes + place->room;
    const uint8_t behind = *end;
    *end = '\0';
    char *text = String_CopyNew(reinterpret_cast<const char *>(bytes));
    *end = behind;
    *value = reinterpret_cast<VelkWord>(text);
    return text == nullptr ? StatusOutOfMemory : 0;
}

static StatusCode Text_Put(const Place *place, VelkWord value, uint8_t *bytes)
{
    const char *text = value == 0 ? "" : reinterpret_cast<const char *>(value);
    const size_t length = strlen(text);
    if (length > place->room)
        return StatusBadHardwareConfig;
    if (strnlen(reinterpret_cast<const char *>(bytes), place->room) == length &&
        memcmp(bytes, text, length) == 0)
        return 0;
    memset(bytes, 0, place->room);
    memcpy(bytes, text, length);
    return 0;
}

static StatusCode List_Get(const Place *place, const uint8_t *bytes, VelkWord *value)
{
    uint32_t count = place->room;
    if (place->form == PlaceForm::List) {
        count = Number_Get(place, bytes);
        bytes += place->width;
    }
    if (count > place->room)
        return StatusEepromInvalid;

    List *list = List_New(static_cast<int32_t>(count));
    if (list == nullptr)
        return StatusOutOfMemory;
    for (size_t i = 0; i < count; ++i)
        list->items[i] = Number_Get(place, bytes + i * place->width);
    list->count = static_cast<int32_t>(count);
    *value = reinterpret_cast<VelkWord>(list);
    return 0;
}

static bool List_Fits(const Place *place, const uint32_t *items, uint32_t count)
{
    if (place->form == PlaceForm::Array ? count != place->room : count > place->room)
        return false;
    for (uint32_t i = 0; i < count; ++i) {
        if (items[i] > Width_Largest(place->width))
            return false;
    }
    return true;
}

static StatusCode List_Put(const Place *place, VelkWord value, uint8_t *bytes)
{
    const List *list = reinterpret_cast<const List *>(value);
    const uint32_t count = list == nullptr || list->count < 0 ? 0 : static_cast<uint32_t>(list->count);
    const uint32_t *items = count == 0 ? nullptr : list->items;
    if (!List_Fits(place, items, count))
        return StatusBadHardwareConfig;

    bool isChanged = false;
    if (place->form == PlaceForm::List) {
        isChanged = Number_Put(place, count, bytes);
        bytes += place->width;
    }
    for (uint32_t i = 0; i < count; ++i)
        isChanged = Number_Put(place, items[i], bytes + size_t{i} * place->width) || isChanged;
    if (isChanged)
        memset(bytes + size_t{count} * place->width, 0, size_t{place->room - count} * place->width);
    return 0;
}

static StatusCode Place_Get(const Place *place, uint8_t *board, VelkWord *value)
{
    uint8_t *bytes = board + place->offset;
    switch (place->form) {
    case PlaceForm::Number:
        *value = Number_Get(place, bytes);
        return 0;
    case PlaceForm::Text:
        return Text_Get(place, bytes, value);
    case PlaceForm::Array:
    case PlaceForm::List:
        return List_Get(place, bytes, value);
    }
    return StatusInternalError;
}

static StatusCode Place_Put(const Place *place, VelkWord value, uint8_t *board)
{
    uint8_t *bytes = board + place->offset;
    switch (place->form) {
    case PlaceForm::Number:
        if (static_cast<uint32_t>(value) > Width_Largest(place->width))
            return StatusBadHardwareConfig;
        Number_Put(place, static_cast<uint32_t>(value), bytes);
        return 0;
    case PlaceForm::Text:
        return Text_Put(place, value, bytes);
    case PlaceForm::Array:
    case PlaceForm::List:
        return List_Put(place, value, bytes);
    }
    return StatusInternalError;
}

// A register counts once its payload is there: what is released after a failure is what was made.
static StatusCode Table_Fill(const ImageMap *map, uint8_t *bytes, VRegTable *table)
{
    for (size_t i = 0; i < map->count; ++i) {
        VReg *reg = &table->regs[i];
        const StatusCode status = Place_Get(&map->places[i], bytes, &reg->value);
        if (status < 0)
            return status;
        reg->id = map->places[i].id;
        ++table->count;
    }
    return 0;
}

StatusCode Board_ToTable(const ImageMap *map, uint8_t *bytes, VRegTable **out)
{
    VRegTable *table = AllocateVRegTable(static_cast<uint32_t>(map->count));
    if (table == nullptr)
        return StatusOutOfMemory;
    const StatusCode status = Table_Fill(map, bytes, table);
    if (status < 0) {
        FreeVRegTable(table);
        return status;
    }
    *out = table;
    return 0;
}

StatusCode Board_FromTable(const ImageMap *map, VRegTable *table, uint8_t *bytes)
{
    if (table == nullptr)
        return StatusBadHardwareConfig;
    int32_t found = 0;
    for (size_t i = 0; i < map->count; ++i) {
        const Place *place = &map->places[i];
        const VReg *reg = LookupVReg(table, place->id, static_cast<int32_t>(place->instance));
        if (reg == nullptr && Place_IsInternal(place))
            continue;
        if (reg == nullptr)
            return StatusBadHardwareConfig;
        const StatusCode status = Place_Put(place, reg->value, bytes);
        if (status < 0)
            return status;
        ++found;
    }
    return found == table->count ? 0 : StatusBadHardwareConfig;
}
