#include "configs/config.h"
#include "keys/key_access.h"
#include "options/change_list.h"
#include "options/option_def.h"
#include "options/option_read.h"
#include "values/limits.h"
#include "values/vreg_table.h"

#include <cstdlib>

// The present value of each dependant of an option. A list or string stays readable while the set is
// under way, whatever is written in between.
static StatusCode ReadDependants(Config *config, const OptionDef *option, VelkWord *savedValues)
{
    for (int32_t n = 0; n < option->dependantCount; ++n) {
        const StatusCode status = Option_Read(config, option->dependants[n], &savedValues[n]);
        if (status < 0)
            return status;
    }
    return 0;
}

static StatusCode Coerce(Config *config, const OptionDef *option, VelkWord *value)
{
    VelkValidRef valid;
    const StatusCode status = Option_ChooseRule(config, option, &valid);
    if (status < 0)
        return status;
    return ValidValues_Coerce(option->validKind, valid, *value, value);
}

// A condition makes 1 or 0 of a value, which a list or string key cannot take.
static StatusCode CheckBindings(const OptionDef *option)
{
    int32_t kind;
    const StatusCode status = Option_Kind(option, &kind);
    if (status < 0 || kind == ValueKindNumber)
        return status;
    for (int32_t n = 0; n < option->keyCount; ++n)
        if (option->keys[n].condition.op != OpPassValue)
            return StatusKindMismatch;
    return 0;
}

static StatusCode WriteKeys(Config *config, const OptionDef *option, VelkWord value)
{
    for (const KeyBinding *binding = option->keys; binding != option->keys + option->keyCount; ++binding) {
        const StatusCode status = Key_Write(config, binding->key, Condition_Test(&binding->condition, value));
        if (status < 0)
            return status;
    }
    return 0;
}

static StatusCode Option_Apply(Config *config, const OptionDef *option, VelkWord value, bool takeSnapshot);

static StatusCode ApplyDependants(Config *config, const OptionDef *option, const VelkWord *savedValues)
{
    for (int32_t n = 0; n < option->dependantCount; ++n) {
        const StatusCode status = Option_Apply(config, option->dependants[n], savedValues[n], false);
        if (status < 0)
            return status;
    }
    return 0;
}

static StatusCode WriteThrough(Config *config, const OptionDef *option, VelkWord value,
                               const VelkWord *savedValues)
{
    const StatusCode status = WriteKeys(config, option, value);
    return status < 0 ? status : ApplyDependants(config, option, savedValues);
}

static StatusCode WriteOrRestore(Config *config, const OptionDef *option, VelkWord value,
                                 const VelkWord *savedValues)
{
    TableSnapshot snapshot;
    StatusCode status = TableSnapshot_Take(config->table, &snapshot);
    if (status < 0)
        return status;
    status = WriteThrough(config, option, value, savedValues);
    if (status < 0)
        TableSnapshot_Restore(&snapshot, config->table);
    else
        TableSnapshot_Drop(&snapshot);
    return status;
}

static StatusCode ApplyOnPath(Config *config, const OptionDef *option, VelkWord value, bool takeSnapshot)
{
    VelkWord savedValues[MaxDependants];
    StatusCode status = ReadDependants(config, option, savedValues);
    if (status < 0)
        return status;
    status = Coerce(config, option, &value);
    if (status == StatusNoValidValue)
        return 0; // the keys keep what they hold
    if (status == 0)
        status = CheckBindings(option);
    if (status < 0)
        return status;
    if (takeSnapshot)
        return WriteOrRestore(config, option, value, savedValues);
    return WriteThrough(config, option, value, savedValues);
}

// Puts an option on the path of applications. The rules of a class form no circle and no longer path,
// but dependants of a definition that a later one replaced can.
static StatusCode EnterPath(SetRun *run, const OptionDef *option)
{
    if (run->depth == MaxOptionPath || run->applications == MaxApplications)
        return StatusInternalError;
    for (int32_t n = 0; n < run->depth; ++n)
        if (run->path[n] == option)
            return StatusInternalError;
    run->path[run->depth++] = option;
    ++run->applications;
    return 0;
}

// Moves a value onto the values that are valid now, writes it to the option's keys, and applies the
// present value of each dependant in the same way, depth-first. A rule that offers no value makes this a
// success that writes nothing. With `takeSnapshot`, which only the outermost call gives, a failure leaves
// the table as it was.
static StatusCode Option_Apply(Config *config, const OptionDef *option, VelkWord value, bool takeSnapshot)
{
    StatusCode status = EnterPath(config->run, option);
    if (status < 0)
        return status;
    status = ApplyOnPath(config, option, value, takeSnapshot);
    --config->run->depth;
    return status;
}

static StatusCode ApplyAndCompare(Config *config, const OptionDef *option, VelkWord value,
                                  ChangeEntry *entries, int32_t entryCount, const ChangeSnapshot *snapshots)
{
    SetRun run = {};
    config->run = &run;
    StatusCode status = Option_Apply(config, option, value, true);
    if (status >= 0)
        status = ChangeList_Compare(config, entries, entryCount, snapshots);
    config->run = nullptr;
    SetRun_ReleaseRetired(&run);
    return status;
}

static StatusCode SetAndReport(Config *config, const char *name, int32_t kind, VelkWord value,
                               ChangeEntry *entries, int32_t entryCount)
{
    const OptionDef *option;
    StatusCode status = Option_FindOfKind(config, name, kind, &option);
    if (status < 0)
        return status;
    if (kind == ValueKindNumber)
        value = static_cast<uint32_t>(value);

    ChangeSnapshot *snapshots = nullptr;
    status = ChangeList_Capture(config, entries, entryCount, &snapshots);
    if (status < 0)
        return status;
    status = ApplyAndCompare(config, option, value, entries, entryCount, snapshots);
    free(snapshots);
    return status;
}

StatusCode VELK_CALL VelkSetOption(Config *config, const char *name, uint32_t value)
{
    return SetAndReport(config, name, ValueKindNumber, value, nullptr, 0);
}

StatusCode VELK_CALL VelkSetOptionEx(Config *config, const char *name, int32_t kind, VelkWord value)
{
    return SetAndReport(config, name, kind, value, nullptr, 0);
}

StatusCode VELK_CALL VelkSetOptionWithChangeList(Config *config, const char *name, uint32_t value,
                                                 ChangeEntry *entries, int32_t entryCount)
{
    return SetAndReport(config, name, ValueKindNumber, value, entries, entryCount);
}

StatusCode VELK_CALL VelkSetOptionExWithChangeList(Config *config, const char *name, int32_t kind,
                                                   VelkWord value, ChangeEntry *entries, int32_t entryCount)
{
    return SetAndReport(config, name, kind, value, entries, entryCount);
}
