#include "configs/config.h"
#include "engine/config_class.h"
#include "platform/profile.h"
#include "values/limits.h"
#include "values/list.h"
#include "values/memory.h"
#include "values/number_list.h"
#include "values/text.h"
#include "values/vreg_table.h"

#include <cstring>

constexpr char InformationSection[] = "Information";
constexpr char DataSection[] = "Data";
constexpr uint32_t InformationItems = 3;

// The digits of the numbers that stand for registers and for what they hold.
constexpr int32_t WordDigits = 8;

// The longest element of a list text with its separator, in bytes.
constexpr size_t ElementTextSize = sizeof "0xFFFFFFFF, " - 1;

// The text of a list, in a block of its own; null when memory runs out.
static char *ComposeList(const List *list)
{
    const size_t count = List_Length(list);
    if (count > (SIZE_MAX - 1) / ElementTextSize)
        return nullptr;
    auto *text = static_cast<char *>(malloc(count * ElementTextSize + 1));
    if (text == nullptr)
        return nullptr;
    char *end = text;
    *end = '\0';
    for (size_t n = 0; n < count; ++n) {
        if (n > 0) {
            *end++ = ',';
            *end++ = ' ';
        }
        end = Number_Compose(end, list->items[n], 1);
    }
    return text;
}

static int32_t PutList(Profile *file, const char *item, const List *list)
{
    char *text = ComposeList(list);
    if (text == nullptr)
        return -1;
    const int32_t result = IniPutString(file, DataSection, item, text);
    free(text);
    return result;
}

// A register without a payload is saved as an empty text.
static int32_t PutVReg(Profile *file, const VReg *slot)
{
    char item[NumberTextSize];
    Number_Compose(item, slot->id, WordDigits);
    if (VReg_HasPayload(slot->id) && slot->value == 0)
        return IniPutString(file, DataSection, item, "");
    if ((slot->id & VRegKindMask) == VRegListNibble)
        return PutList(file, item, Word_AsList(slot->value));
    if ((slot->id & VRegKindMask) == VRegStringNibble)
        return IniPutString(file, DataSection, item, Word_AsString(slot->value));

    char number[NumberTextSize];
    Number_Compose(number, static_cast<uint32_t>(slot->value), WordDigits);
    return IniPutString(file, DataSection, item, number);
}

static int32_t PutConfig(Profile *file, const Config *config, const char *key)
{
    const uint32_t count = VRegTable_Count(config->table);
    if (IniReserveItems(file, InformationItems + count) < 0 ||
        IniPutString(file, InformationSection, "Class", config->configClass->name) < 0 ||
        IniPutString(file, InformationSection, "Key", key) < 0 ||
        IniPutString(file, InformationSection, "Version", "1.0") < 0)
        return -1;
    for (uint32_t n = 0; n < count; ++n)
        if (PutVReg(file, &config->table->regs[n]) < 0)
            return -1;
    return 0;
}

StatusCode VELK_CALL VelkSaveToFile(Config *config, const char *file, const char *key)
{
    if (config->loaded == 0)
        return StatusNotLoaded;
    Profile *profile = IniNew(0);
    if (profile == nullptr)
        return StatusOutOfMemory;
    IniSetDuplicateChecking(profile, 0); // several registers may bear one id

    StatusCode status = 0;
    if (PutConfig(profile, config, key) < 0)
        status = StatusOutOfMemory;
    else if (IniWriteToFile(profile, file) < 0)
        status = StatusFileWriteFailed;
    IniDispose(profile);
    return status;
}

static StatusCode ParseListPayload(char *text, VelkWord *value, uint32_t *numbersLeft)
{
    List *list = List_New(0);
    if (list == nullptr)
        return StatusOutOfMemory;
    const StatusCode status = NumberList_Parse(text, list, List_AppendNumber, numbersLeft);
    if (status < 0) {
        List_Delete(list);
        return status;
    }
    *value = Word_Of(list);
    return 0;
}

static StatusCode ParseValue(char *text, VReg *slot, uint32_t *numbersLeft)
{
    if ((slot->id & VRegKindMask) == VRegListNibble)
        return ParseListPayload(text, &slot->value, numbersLeft);
    if ((slot->id & VRegKindMask) == VRegStringNibble) {
        slot->value = Word_Of(String_CopyNew(text));
        return slot->value == 0 ? StatusOutOfMemory : 0;
    }
    uint32_t number;
    if (Number_Parse(text, 16, &number) < 0)
        return StatusBadFile;
    slot->value = number;
    return 0;
}

// Reads an item into the next free slot. An internal register leaves the slot free.
static StatusCode ReadItem(char *name, char *text, VRegTable *table, uint32_t *numbersLeft)
{
    VReg *slot = &table->regs[table->count];
    if (Number_Parse(name, 16, &slot->id) < 0 || slot->id == 0)
        return StatusBadFile;
    if (VReg_IsInternal(slot->id))
        return 0;
    const StatusCode status = ParseValue(text, slot, numbersLeft);
    if (status < 0)
        return status;
    slot->flags = VRegModified;
    ++table->count;
    return 0;
}

static StatusCode ReadItems(Profile *file, IniItems items, VRegTable *table)
{
    uint32_t numbersLeft = NumberListLimit;
    char *name;
    char *text;
    while (IniTakeItem(file, &items, &name, &text) == 1) {
        const StatusCode status = ReadItem(name, text, table, &numbersLeft);
        if (status < 0)
            return status;
    }
    return 0;
}

static StatusCode ReadTable(Profile *file, VRegTable **out)
{
    const IniItems items = IniItemsOf(file, DataSection);
    if (items.count == 0)
        return StatusBadFile;
    VRegTable *table = AllocateVRegTable(items.count);
    if (table == nullptr)
        return StatusOutOfMemory;
    const StatusCode status = ReadItems(file, items, table);
    if (status < 0) {
        FreeVRegTable(table);
        return status;
    }
    *out = table;
    return 0;
}

static StatusCode ReadWithKey(Profile *file, const char *path, const char *key, VRegTable **out)
{
    char *savedKey;
    if (IniReadFromFile(file, path) < 0)
        return StatusBadFile;
    if (IniGetPointerToString(file, InformationSection, "Key", &savedKey) != 1)
        return StatusBadFile;
    if (strcmp(savedKey, key) != 0)
        return StatusIncompatibleFile;
    return ReadTable(file, out);
}

static StatusCode SaveFile_Read(VRegTable **out, const char *path, const char *key)
{
    Profile *file = IniNew(0);
    if (file == nullptr)
        return StatusOutOfMemory;
    IniSetDuplicateChecking(file, 0); // several registers may bear one id
    const StatusCode status = ReadWithKey(file, path, key, out);
    IniDispose(file);
    return status;
}

// What the library cannot read is offered to the accessor, and the accessor supplies what save files
// leave out. A table that is there after a failure is the caller's to release.
static StatusCode ReadForClass(ConfigClass *configClass, const char *path, const char *key, VRegTable **table)
{
    const Accessor *accessor = &configClass->accessor;
    StatusCode status = SaveFile_Read(table, path, key);
    if (status == StatusBadFile && accessor->loadFromFile != nullptr &&
        accessor->loadFromFile(configClass, path, table) == 0)
        status = StatusOldFileFormat;
    if (status < 0 || accessor->setInternalVRegs == nullptr)
        return status;

    const StatusCode supplied = accessor->setInternalVRegs(nullptr, table);
    return supplied < 0 ? supplied : status;
}

StatusCode VELK_CALL VelkLoadFromFile(Config *config, const char *file, const char *key)
{
    VRegTable *table = nullptr;
    const StatusCode status = ReadForClass(config->configClass, file, key, &table);
    if (status < 0) {
        FreeVRegTable(table);
        return status;
    }
    Config_TakeTable(config, table);
    return status;
}
