#include "options/change_list.h"

#include "configs/config.h"
#include "options/option_read.h"
#include "values/memory.h"

#include <cstddef>

// The layout is shared with clients.
static_assert(offsetof(ChangeEntry, optionRef) == sizeof(VelkWord));
static_assert(offsetof(ChangeEntry, flags) == 2 * sizeof(VelkWord));
static_assert(offsetof(ChangeEntry, newValue) == 3 * sizeof(VelkWord));
static_assert(offsetof(ChangeEntry, newValidKind) == 4 * sizeof(VelkWord));
static_assert(offsetof(ChangeEntry, newValidRef) == 5 * sizeof(VelkWord));
static_assert(sizeof(ChangeEntry) == 6 * sizeof(VelkWord));

static StatusCode CaptureEntry(Config *config, ChangeEntry *entry, ChangeSnapshot *snapshot)
{
    entry->flags = 0;
    snapshot->option = entry->optionRef;
    if (snapshot->option == nullptr) {
        const StatusCode status = Option_Find(config, entry->name, &snapshot->option);
        if (status < 0)
            return status;
    }
    const StatusCode status = Option_ChooseRule(config, snapshot->option, &snapshot->validRef);
    return status < 0 ? status : Option_Read(config, snapshot->option, &snapshot->value);
}

StatusCode ChangeList_Capture(Config *config, ChangeEntry *entries, int32_t entryCount,
                              ChangeSnapshot **snapshots)
{
    if (entryCount < 1) {
        *snapshots = nullptr;
        return 0;
    }
    auto *captured = Memory_New<ChangeSnapshot>(static_cast<size_t>(entryCount));
    if (captured == nullptr)
        return StatusOutOfMemory;
    for (int32_t n = 0; n < entryCount; ++n) {
        const StatusCode status = CaptureEntry(config, &entries[n], &captured[n]);
        if (status < 0) {
            free(captured);
            return status;
        }
    }
    *snapshots = captured;
    return 0;
}

// Two rules with the same values are two rules: references are compared, not contents.
static StatusCode CompareEntry(Config *config, ChangeEntry *entry, const ChangeSnapshot *snapshot)
{
    VelkValidRef validRef = nullptr;
    StatusCode status = Option_ChooseRule(config, snapshot->option, &validRef);
    if (status < 0)
        return status;
    if (validRef != snapshot->validRef) {
        entry->flags |= ChangeValidChanged;
        entry->newValidKind = snapshot->option->validKind;
        entry->newValidRef = validRef;
    }

    VelkWord value = 0;
    status = Option_Read(config, snapshot->option, &value);
    if (status < 0)
        return status;
    if (value != snapshot->value) {
        entry->flags |= ChangeValueChanged;
        entry->newValue = value;
    }
    return 0;
}

StatusCode ChangeList_Compare(Config *config, ChangeEntry *entries, int32_t entryCount,
                              const ChangeSnapshot *snapshots)
{
    for (int32_t n = 0; n < entryCount; ++n) {
        const StatusCode status = CompareEntry(config, &entries[n], &snapshots[n]);
        if (status < 0)
            return status;
    }
    return 0;
}
