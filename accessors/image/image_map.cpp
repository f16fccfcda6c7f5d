#include "accessors/image/image_map.h"

#include "accessors/setting_text.h"
#include "platform/file.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

// Room for the name of a place: an id of up to 10 characters, a colon, an instance.
constexpr size_t PlaceNameSize = 24;

// Absolute, so that no change of the working directory leads to another board.
static StatusCode ImageMap_ReadPath(ConfigClass *configClass, const char *directory, ImageMap *map)
{
    const char *image;
    if (CfgClass_GetAccessorData(configClass, "Image", &image) < 0 || *image == '\0')
        return StatusNoAccessorSettings;
    map->path = File_AbsolutePath(directory, image);
    return map->path == nullptr ? StatusOutOfMemory : 0;
}

static bool Setting_ToNumber(const char *text, uint32_t *value)
{
    return Word_ToNumber(Setting_NextWord(&text), value) && Setting_IsAtEnd(text);
}

static StatusCode ImageMap_ReadNumbers(ConfigClass *configClass, ImageMap *map)
{
    const char *text;
    if (CfgClass_GetAccessorData(configClass, "Stride", &text) < 0 || !Setting_ToNumber(text, &map->stride) ||
        map->stride == 0)
        return StatusNoAccessorSettings;
    if (CfgClass_GetAccessorData(configClass, "Unit", &text) == 0 && !Setting_ToNumber(text, &map->unit))
        return StatusNoAccessorSettings;
    return 0;
}

static StatusCode ImageMap_ReadWriteMode(ConfigClass *configClass, ImageMap *map)
{
    static constexpr struct {
        const char *word;
        WriteMode mode;
    } modes[] = {{"replace", WriteReplace}, {"inplace", WriteInPlace}, {"never", WriteNever}};
    const char *text;
    if (CfgClass_GetAccessorData(configClass, "Write", &text) < 0)
        return 0; // it is replaced
    const Word word = Setting_NextWord(&text);
    for (const auto &entry : modes)
        if (Word_Is(word, entry.word) && Setting_IsAtEnd(text)) {
            map->write = entry.mode;
            return 0;
        }
    return StatusNoAccessorSettings;
}

static StatusCode ImageMap_ReadIds(const char *registers, ImageMap *map)
{
    map->count = 1 + static_cast<size_t>(std::count(registers, registers + strlen(registers), ','));
    map->places = static_cast<Place *>(calloc(map->count, sizeof(Place)));
    if (map->places == nullptr)
        return StatusOutOfMemory;

    for (size_t i = 0; i < map->count; ++i) {
        const bool isId = Word_ToNumber(Setting_NextWord(&registers), &map->places[i].id);
        if (!isId || map->places[i].id == 0)
            return StatusNoAccessorSettings;
        const bool isLast = i + 1 == map->count;
        if (isLast ? !Setting_IsAtEnd(registers) : !Setting_TakeComma(&registers))
            return StatusNoAccessorSettings;
    }
    return 0;
}

// Equal ids stand in the order of the table.
static bool Place_IsBeforeById(const Place *first, const Place *second)
{
    return first->id != second->id ? first->id < second->id : first < second;
}

static void ImageMap_CountInstances(const ImageMap *map, Place **order)
{
    std::sort(order, order + map->count, Place_IsBeforeById);
    for (size_t i = 0; i < map->count; ++i) {
        const bool isRepeated = i > 0 && order[i]->id == order[i - 1]->id;
        order[i]->instance = isRepeated ? order[i - 1]->instance + 1 : 1;
    }
}

// The place of the first register of an id is called by the id as "Registers" writes it, that of a
// further one has its instance behind a colon.
static StatusCode Place_Read(ConfigClass *configClass, Word id, Place *place)
{
    char name[PlaceNameSize];
    const int length = static_cast<int>(id.length);
    if (place->instance == 1)
        snprintf(name, sizeof name, "%.*s", length, id.start);
    else
        snprintf(name, sizeof name, "%.*s:%u", length, id.start, place->instance);

    const char *text;
    if (CfgClass_GetAccessorData(configClass, name, &text) < 0 || !Place_Parse(text, place))
        return StatusNoAccessorSettings;
    return 0;
}

static StatusCode ImageMap_ReadEachPlace(ConfigClass *configClass, const char *registers, ImageMap *map)
{
    for (size_t i = 0; i < map->count; ++i) {
        const StatusCode status = Place_Read(configClass, Setting_NextWord(&registers), &map->places[i]);
        if (status < 0)
            return status;
        Setting_TakeComma(&registers);
    }
    return 0;
}

static bool Place_IsBeforeByOffset(const Place *first, const Place *second)
{
    return first->offset < second->offset;
}

// Two registers on one byte would write over each other.
static StatusCode ImageMap_CheckPlaces(ImageMap *map, Place **order)
{
    std::sort(order, order + map->count, Place_IsBeforeByOffset);
    uint64_t end = 0;
    for (size_t i = 0; i < map->count; ++i) {
        if (order[i]->offset < end)
            return StatusNoAccessorSettings;
        end = order[i]->offset + Place_Size(order[i]);
    }
    if (end > map->stride)
        return StatusNoAccessorSettings;
    map->span = static_cast<uint32_t>(end);
    return 0;
}

static StatusCode ImageMap_ReadPlaces(ConfigClass *configClass, const char *registers, ImageMap *map)
{
    Place **order = static_cast<Place **>(malloc(map->count * sizeof(Place *)));
    if (order == nullptr)
        return StatusOutOfMemory;
    for (size_t i = 0; i < map->count; ++i)
        order[i] = &map->places[i];

    ImageMap_CountInstances(map, order);
    StatusCode status = ImageMap_ReadEachPlace(configClass, registers, map);
    if (status == 0)
        status = ImageMap_CheckPlaces(map, order);
    free(order);
    return status;
}

static StatusCode ImageMap_Fill(ConfigClass *configClass, const char *directory, ImageMap *map)
{
    StatusCode status = ImageMap_ReadPath(configClass, directory, map);
    if (status < 0)
        return status;
    status = ImageMap_ReadNumbers(configClass, map);
    if (status == 0)
        status = ImageMap_ReadWriteMode(configClass, map);
    if (status < 0)
        return status;

    const char *registers;
    if (CfgClass_GetAccessorData(configClass, "Registers", &registers) < 0)
        return StatusNoAccessorSettings;
    status = ImageMap_ReadIds(registers, map);
    if (status < 0)
        return status;
    return ImageMap_ReadPlaces(configClass, registers, map);
}

StatusCode ImageMap_Read(ConfigClass *configClass, const char *directory, ImageMap **out)
{
    ImageMap *map = static_cast<ImageMap *>(calloc(1, sizeof(ImageMap)));
    if (map == nullptr)
        return StatusOutOfMemory;
    const StatusCode status = ImageMap_Fill(configClass, directory, map);
    if (status < 0) {
        ImageMap_Delete(map);
        return status;
    }
    *out = map;
    return 0;
}

void ImageMap_Delete(ImageMap *map)
{
    if (map == nullptr)
        return;
    free(map->path);
    free(map->places);
    free(map);
}

bool ImageMap_AreEqual(const ImageMap *first, const ImageMap *second)
{
    return first->unit == second->unit && first->write == second->write && first->stride == second->stride &&
           first->count == second->count && strcmp(first->path, second->path) == 0 &&
           std::equal(first->places, first->places + first->count, second->places);
}
