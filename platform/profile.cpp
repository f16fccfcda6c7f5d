#include "platform/profile.h"

#include "platform/profile_store.h"

#include <cstring>

static const Section *Section_Find(Profile *profile, const char *section)
{
    const uint32_t number = Profile_Find(profile, 0, section);
    return number == 0 ? nullptr : Profile_Section(profile, number);
}

static const Record *Item_Find(Profile *profile, const char *section, const char *item)
{
    const uint32_t number = Profile_Find(profile, 0, section);
    const uint32_t record = number == 0 ? 0 : Profile_Find(profile, number, item);
    return record == 0 ? nullptr : Profile_Record(profile, record);
}

static const Record *Item_Nth(Profile *profile, const char *section, int32_t n)
{
    const Section *found = Section_Find(profile, section);
    if (found == nullptr || n < 1 || static_cast<uint32_t>(n) > found->count)
        return nullptr;
    return Section_Item(profile, found, static_cast<uint32_t>(n));
}

Profile *IniNew(int32_t)
{
    auto *profile = static_cast<Profile *>(calloc(1, sizeof(Profile)));
    if (profile == nullptr)
        return nullptr;
    if (!Profile_Prepare(profile)) {
        IniDispose(profile);
        return nullptr;
    }
    return profile;
}

void IniDispose(Profile *profile)
{
    Profile_Release(profile);
    free(profile);
}

void IniSetDuplicateChecking(Profile *profile, int32_t on)
{
    profile->keepsDuplicates = on == 0;
}

void IniSortSectionList(Profile *)
{
}

void IniSortSection(Profile *, const char *)
{
}

int32_t IniNthSectionName(Profile *profile, int32_t n, char **name)
{
    if (n < 1 || static_cast<size_t>(n) > profile->sections.count)
        return 0;
    *name = Profile_Section(profile, static_cast<uint32_t>(n))->name;
    return 1;
}

int32_t IniNumberOfItems(Profile *profile, const char *section)
{
    const Section *found = Section_Find(profile, section);
    return found == nullptr ? 0 : static_cast<int32_t>(found->count);
}

int32_t IniNthItemName(Profile *profile, const char *section, int32_t n, char **name)
{
    const Record *item = Item_Nth(profile, section, n);
    if (item == nullptr)
        return 0;
    *name = item->name;
    return 1;
}

int32_t IniNthItemPointerToString(Profile *profile, const char *section, int32_t n, char **value)
{
    const Record *item = Item_Nth(profile, section, n);
    if (item == nullptr)
        return 0;
    *value = item->value;
    return 1;
}

IniItems IniItemsOf(Profile *profile, const char *section)
{
    const uint32_t number = Profile_Find(profile, 0, section);
    if (number == 0)
        return {0, 0, 0};
    return {number, Profile_Section(profile, number)->count, 0};
}

int32_t IniTakeItem(Profile *profile, IniItems *items, char **name, char **value)
{
    if (items->taken == items->count)
        return 0;
    const Record *item = Section_Item(profile, Profile_Section(profile, items->section), ++items->taken);
    *name = item->name;
    *value = item->value;
    return 1;
}

int32_t IniGetPointerToString(Profile *profile, const char *section, const char *item, char **value)
{
    const Record *found = Item_Find(profile, section, item);
    if (found == nullptr)
        return 0;
    *value = found->value;
    return 1;
}

int32_t IniGetStringIntoBuffer(Profile *profile, const char *section, const char *item, char *buffer,
                               int32_t size)
{
    const Record *found = Item_Find(profile, section, item);
    if (found == nullptr)
        return 0;
    const size_t needed = strlen(found->value) + 1;
    if (size < 0 || needed > static_cast<size_t>(size))
        return 0;
    memcpy(buffer, found->value, needed);
    return 1;
}

int32_t IniReserveItems(Profile *profile, uint32_t count)
{
    const bool isReserved =
        Array_ReserveExactly(&profile->records, count) && Array_ReserveExactly(&profile->places, count);
    return isReserved ? 0 : -1;
}

// Most items are put into the section that was made last.
static uint32_t Section_FindToPut(Profile *profile, const char *section)
{
    const auto last = static_cast<uint32_t>(profile->sections.count);
    if (last > 0 && strcmp(Profile_Section(profile, last)->name, section) == 0)
        return last;
    return Profile_FindExactly(profile, 0, section);
}

// What can fail comes first: with room reserved, nothing else can in a section that is new.
int32_t IniPutString(Profile *profile, const char *section, const char *item, const char *value)
{
    uint32_t number = Section_FindToPut(profile, section);
    if (number == 0 && !Profile_ReservePut(profile))
        return -1;
    const bool mayReplace = number != 0 && !profile->keepsDuplicates;
    const uint32_t first = mayReplace ? Profile_FindExactly(profile, number, item) : 0;

    const size_t itemLength = strlen(item);
    char *valueText = Profile_CopyText(profile, value, strlen(value));
    char *itemText =
        first != 0 ? Profile_Record(profile, first)->name : Profile_CopyText(profile, item, itemLength);
    if (valueText == nullptr || itemText == nullptr)
        return -1;
    if (number == 0) {
        const size_t sectionLength = strlen(section);
        char *sectionText = Profile_CopyText(profile, section, sectionLength);
        if (sectionText == nullptr)
            return -1;
        number = Profile_OpenSection(profile, sectionText, sectionLength, 0);
    }
    return Profile_AddItem(profile, {itemText, valueText, number, 0}, itemLength) ? 0 : -1;
}

int32_t IniSectionExists(Profile *profile, const char *section)
{
    return Section_Find(profile, section) != nullptr ? 1 : 0;
}

int32_t IniItemExists(Profile *profile, const char *section, const char *item)
{
    return Item_Find(profile, section, item) != nullptr ? 1 : 0;
}

int32_t IniFailedLine(const Profile *profile)
{
    return profile->failedLine;
}

int32_t IniSectionLine(Profile *profile, const char *section)
{
    const Section *found = Section_Find(profile, section);
    return found == nullptr ? 0 : found->line;
}

int32_t IniNthItemLine(Profile *profile, const char *section, int32_t n)
{
    const Record *item = Item_Nth(profile, section, n);
    return item == nullptr ? 0 : item->line;
}
