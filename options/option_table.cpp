#include "options/option_def.h"
#include "values/memory.h"

// OptionDef.height while a walk is under way below the option.
constexpr int32_t HeightPending = -1;

StatusCode Option_Kind(const OptionDef *option, int32_t *kind)
{
    switch (option->validKind) {
    case ValidKindRange:
    case ValidKindList:
        *kind = ValueKindNumber;
        return 0;
    case ValidKindListSet:
        *kind = ValueKindList;
        return 0;
    case ValidKindString:
        *kind = ValueKindString;
        return 0;
    default:
        return StatusInternalError;
    }
}

OptionDef *OptionTable_Find(const NameTable *options, const char *name)
{
    return static_cast<OptionDef *>(NameTable_GetValue(options, name));
}

// Finds the height of an option: 1 if its rules test none, else 1 more than the highest that they test.
// Each option is walked once, however many paths lead to it; one that is met again below itself closes
// a circle. `depth` counts the options above, so that a long path ends the recursion too.
static StatusCode Option_WalkConditions(OptionDef *option, int32_t depth)
{
    if (depth >= MaxOptionPath || option->height == HeightPending)
        return StatusUnknownOption;
    if (option->height > 0)
        return 0;

    option->height = HeightPending;
    int32_t height = 1;
    for (const OptionRule *rule = option->rules; rule != option->rules + option->ruleCount; ++rule)
        for (int32_t n = 0; n < rule->conditionCount; ++n) {
            OptionDef *tested = rule->conditions[n].option;
            if (Option_WalkConditions(tested, depth + 1) < 0)
                return StatusUnknownOption;
            if (tested->height >= height)
                height = tested->height + 1;
        }
    option->height = height;
    return height > MaxOptionPath ? StatusUnknownOption : 0;
}

static int32_t Option_Validate(const NameNode *node, void * /*context*/)
{
    auto *option = static_cast<OptionDef *>(node->value);
    int32_t kind;
    if (option->keyCount == 0 || option->ruleCount == 0 || Option_Kind(option, &kind) < 0)
        return StatusUnknownOption;
    return Option_WalkConditions(option, 0);
}

StatusCode OptionTable_Validate(NameTable *options)
{
    return options == nullptr ? 0 : NameTable_ForEach(options, Option_Validate, nullptr);
}

void OptionRule_Free(OptionRule *rule, uint32_t validKind)
{
    free(rule->conditions);
    ValidValues_Free(&rule->valid, validKind);
}

void OptionRules_Free(OptionDef *option)
{
    for (int32_t n = 0; n < option->ruleCount; ++n)
        OptionRule_Free(&option->rules[n], option->validKind);
    free(option->rules);
    option->rules = nullptr;
    option->ruleCount = 0;
}

void Option_Free(void *record)
{
    auto *option = static_cast<OptionDef *>(record);
    OptionRules_Free(option);
    free(option->dependants);
    free(option);
}

void OptionTable_Free(NameTable *options)
{
    if (options != nullptr)
        NameTable_Destroy(options, Option_Free);
}
