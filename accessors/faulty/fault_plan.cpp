#include "accessors/faulty/fault_plan.h"

#include "accessors/faulty/table_fault.h"
#include "accessors/setting_text.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

enum class Argument : uint8_t { None, Failure, Warning, Registers };

struct FaultEntry {
    const char *name;
    bool hasTable;  // it hands one over
    bool isClosing; // it reaches the wrapped module always: what was opened is closed
};

struct FaultAction {
    const char *name;
    Argument argument;
    bool isForTable;
    bool isRefusal; // ahead of the wrapped entry
    StatusCode (*act)(VRegTable **place, uint32_t argument);
};

static StatusCode Code_Give(VRegTable ** /*place*/, uint32_t code)
{
    return static_cast<StatusCode>(code);
}

static constexpr FaultEntry entries[EntryCount] = {
    {"InitializeAccessor", false, false},
    {"CloseAccessor", false, true},
    {"CreateSession", false, false},
    {"CloseSession", false, true},
    {"Read", true, false},
    {"Write", false, false},
    {"LoadFromFile", true, false},
    {"SetInternalVRegs", true, false},
};

static constexpr FaultAction actions[] = {
    {"fail", Argument::Failure, false, true, Code_Give},
    {"late", Argument::Failure, false, false, Code_Give},
    {"warn", Argument::Warning, false, false, Code_Give},
    {"short", Argument::Registers, true, false, Table_Shorten},
    {"kinds", Argument::None, true, false, Table_ChangeKinds},
    {"repeat", Argument::None, true, false, Table_RepeatIds},
    {"null", Argument::None, true, false, Table_DropPayloads},
    {"none", Argument::None, true, false, Table_Drop},
};

static bool Entry_Parse(Word word, Entry *entry)
{
    for (uint8_t n = 0; n < EntryCount; ++n) {
        *entry = static_cast<Entry>(n);
        if (Word_Is(word, entries[n].name))
            return true;
    }
    return false;
}

static bool Nth_Parse(Word word, uint32_t *nth)
{
    *nth = 0;
    return Word_Is(word, "*") || (Word_ToNumber(word, nth) && *nth != 0);
}

static const FaultAction *Action_Parse(Word word)
{
    for (const FaultAction &action : actions) {
        if (Word_Is(word, action.name))
            return &action;
    }
    return nullptr;
}

static bool Code_Parse(Word word, bool isNegative, uint32_t *code)
{
    if (isNegative) {
        if (word.length == 0 || *word.start != '-')
            return false;
        word = {word.start + 1, word.length - 1};
    }
    if (!Word_ToNumber(word, code) || *code == 0 || *code > INT32_MAX)
        return false;
    *code = isNegative ? 0 - *code : *code;
    return true;
}

static bool Argument_Parse(const char **text, Argument kind, uint32_t *argument)
{
    if (kind == Argument::None)
        return true;
    const Word word = Setting_NextWord(text);
    if (kind == Argument::Registers)
        return Word_ToNumber(word, argument);
    return Code_Parse(word, kind == Argument::Failure, argument);
}

static bool Fault_Parse(const char **text, Fault *fault)
{
    if (!Entry_Parse(Setting_NextWord(text), &fault->entry) ||
        !Nth_Parse(Setting_NextWord(text), &fault->nth))
        return false;
    fault->action = Action_Parse(Setting_NextWord(text));
    if (fault->action == nullptr || (fault->action->isForTable && !entries[fault->entry].hasTable))
        return false;
    return Argument_Parse(text, fault->action->argument, &fault->argument);
}

static bool FaultPlan_Parse(FaultPlan *plan)
{
    const char *text = plan->text;
    for (size_t n = 0; n < plan->count; ++n) {
        if ((n > 0 && !Setting_TakeComma(&text)) || !Fault_Parse(&text, &plan->faults[n]))
            return false;
    }
    return Setting_IsAtEnd(text);
}

// Takes the texts over, which may be null for want of memory.
static StatusCode FaultPlan_Fill(FaultPlan *plan, char *wraps, char *text)
{
    plan->wraps = wraps;
    plan->text = text;
    if (wraps == nullptr || text == nullptr)
        return StatusOutOfMemory;
    if (!Setting_IsAtEnd(text))
        plan->count = 1 + static_cast<size_t>(std::count(text, text + strlen(text), ','));
    plan->faults = static_cast<Fault *>(calloc(plan->count + 1, sizeof(Fault)));
    if (plan->faults == nullptr)
        return StatusOutOfMemory;
    return FaultPlan_Parse(plan) ? 0 : StatusNoAccessorSettings;
}

StatusCode FaultPlan_Read(ConfigClass *configClass, FaultPlan **out)
{
    const char *wraps;
    const char *text;
    if (CfgClass_GetAccessorData(configClass, "Wraps", &wraps) < 0 || *wraps == '\0' ||
        CfgClass_GetAccessorData(configClass, "Faults", &text) < 0)
        return StatusNoAccessorSettings;
    FaultPlan *plan = static_cast<FaultPlan *>(calloc(1, sizeof(FaultPlan)));
    if (plan == nullptr)
        return StatusOutOfMemory;
    const StatusCode status = FaultPlan_Fill(plan, String_CopyNew(wraps), String_CopyNew(text));
    if (status < 0) {
        FaultPlan_Delete(plan);
        return status;
    }
    *out = plan;
    return 0;
}

void FaultPlan_Delete(FaultPlan *plan)
{
    if (plan == nullptr)
        return;
    String_Delete(plan->wraps);
    String_Delete(plan->text);
    free(plan->faults);
    free(plan);
}

bool FaultPlan_AreEqual(const FaultPlan *first, const FaultPlan *second)
{
    return strcmp(first->wraps, second->wraps) == 0 && strcmp(first->text, second->text) == 0;
}

static bool Fault_IsFor(const Fault *fault, const Call *call)
{
    return fault->entry == call->entry && (fault->nth == 0 || fault->nth == call->nth);
}

StatusCode Call_Refuse(const Call *call)
{
    if (entries[call->entry].isClosing)
        return 0;
    for (size_t n = 0; n < call->plan->count; ++n) {
        const Fault *fault = &call->plan->faults[n];
        if (fault->action->isRefusal && Fault_IsFor(fault, call))
            return static_cast<StatusCode>(fault->argument);
    }
    return 0;
}

StatusCode Call_Spoil(const Call *call, StatusCode status, VRegTable **place)
{
    for (size_t n = 0; n < call->plan->count && status == 0; ++n) {
        const Fault *fault = &call->plan->faults[n];
        if (Fault_IsFor(fault, call))
            status = fault->action->act(place, fault->argument);
    }
    return status;
}
