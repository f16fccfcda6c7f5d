#include "options/option_read.h"

#include "configs/config.h"
#include "engine/config_class.h"
#include "keys/key_access.h"

#include <cstring>

StatusCode Option_Find(const Config *config, const char *name, const OptionDef **option)
{
    *option = OptionTable_Find(&config->configClass->definitions.options, name);
    return *option == nullptr ? StatusUnknownOption : 0;
}

static StatusCode RequireTable(const Config *config)
{
    return config->table == nullptr ? StatusNotLoaded : 0;
}

StatusCode Option_FindOfKind(const Config *config, const char *name, int32_t kind, const OptionDef **option)
{
    StatusCode status = Option_Find(config, name, option);
    if (status < 0)
        return status;
    int32_t optionKind;
    status = Option_Kind(*option, &optionKind);
    if (status < 0)
        return status;
    return optionKind != kind ? StatusWrongKind : RequireTable(config);
}

static bool KeyIsOfKind(const KeyDef *key, int32_t kind)
{
    int32_t keyKind;
    return KeyDef_GetKind(key, &keyKind) == 0 && keyKind == kind;
}

// Where a kind does not fit, the read ends ahead of the key: no reference is ever taken for a number,
// and no number for a reference.
static StatusCode ReadKeyOfKind(Config *config, const KeyDef *key, int32_t kind, VelkWord *value)
{
    if (!KeyIsOfKind(key, kind))
        return StatusKindMismatch;
    return Key_Read(config, key, value);
}

// The value that stands for the option while its get method's test holds.
static StatusCode ReadSource(Config *config, const OptionDef *option, VelkWord *value)
{
    int32_t kind;
    const StatusCode status = Option_Kind(option, &kind);
    if (status < 0)
        return status;
    if (option->getSourceKind == GetSourceKey) {
        const auto *key = reinterpret_cast<const KeyDef *>(option->getSource);
        return ReadKeyOfKind(config, key, kind, value);
    }
    if (kind != ValueKindNumber && option->getSource != 0)
        return StatusKindMismatch;
    *value = option->getSource;
    return 0;
}

StatusCode Option_Read(Config *config, const OptionDef *option, VelkWord *value)
{
    if (option->getTestKey == nullptr)
        return Key_Read(config, option->keys[0].key, value);

    VelkWord tested = 0;
    const StatusCode status = ReadKeyOfKind(config, option->getTestKey, ValueKindNumber, &tested);
    if (status < 0)
        return status;
    if (Condition_Test(&option->getCondition, tested) != 0)
        return ReadSource(config, option, value);
    return Key_Read(config, option->keys[0].key, value);
}

static StatusCode RuleCondition_Test(Config *config, const RuleCondition *condition, bool *holds)
{
    int32_t kind;
    if (Option_Kind(condition->option, &kind) < 0 || kind != ValueKindNumber)
        return StatusKindMismatch;
    VelkWord value = 0;
    const StatusCode status = Option_Read(config, condition->option, &value);
    if (status < 0)
        return status;
    *holds = Condition_Test(&condition->condition, value) != 0;
    return 0;
}

// The conditions behind the first that fails are not read.
static StatusCode OptionRule_Test(Config *config, const OptionRule *rule, bool *holds)
{
    *holds = true;
    for (int32_t n = 0; *holds && n < rule->conditionCount; ++n) {
        const StatusCode status = RuleCondition_Test(config, &rule->conditions[n], holds);
        if (status < 0)
            return status;
    }
    return 0;
}

StatusCode Option_ChooseRule(Config *config, const OptionDef *option, VelkValidRef *validRef)
{
    for (int32_t n = 0; n < option->ruleCount; ++n) {
        bool holds = false;
        const StatusCode status = OptionRule_Test(config, &option->rules[n], &holds);
        if (status < 0)
            return status;
        if (holds) {
            *validRef = &option->rules[n].valid;
            return 0;
        }
    }
    return StatusInternalError;
}

StatusCode VELK_CALL VelkGetOption(Config *config, const char *name, uint32_t *value)
{
    const OptionDef *option;
    StatusCode status = Option_FindOfKind(config, name, ValueKindNumber, &option);
    if (status < 0)
        return status;
    VelkWord word = 0;
    status = Option_Read(config, option, &word);
    if (status < 0)
        return status;
    *value = static_cast<uint32_t>(word);
    return 0;
}

StatusCode VELK_CALL VelkGetOptionEx(Config *config, const char *name, int32_t kind, VelkWord *value,
                                     int32_t *actualKind)
{
    const OptionDef *option;
    StatusCode status = Option_Find(config, name, &option);
    if (status < 0)
        return status;
    int32_t optionKind;
    status = Option_Kind(option, &optionKind);
    if (status < 0)
        return status;
    if (kind != -1 && kind != optionKind)
        return StatusKindMismatch;
    if (actualKind != nullptr)
        *actualKind = optionKind;
    status = RequireTable(config);
    return status < 0 ? status : Option_Read(config, option, value);
}

StatusCode VELK_CALL VelkQueryOptionValidValues(Config *config, const char *name, uint32_t *validKind,
                                                VelkValidRef *validRef)
{
    const OptionDef *option;
    StatusCode status = Option_Find(config, name, &option);
    if (status < 0)
        return status;
    *validKind = option->validKind;
    status = RequireTable(config);
    return status < 0 ? status : Option_ChooseRule(config, option, validRef);
}

StatusCode VELK_CALL VelkRefFromOptionName(Config *config, const char *name, VelkOptionRef *optionRef)
{
    const OptionDef *option;
    const StatusCode status = Option_Find(config, name, &option);
    if (status == 0)
        *optionRef = option;
    return status;
}

static int32_t CountOption(const NameNode * /*node*/, void *context)
{
    ++*static_cast<uint32_t *>(context);
    return 0;
}

StatusCode VELK_CALL VelkNumberOfOptions(Config *config, uint32_t *count)
{
    *count = 0;
    return NameTable_ForEach(&config->configClass->definitions.options, CountOption, count);
}

// The places for names that are still free.
struct NamePlaces {
    const char **next;
    uint32_t left;
};

static int32_t StoreName(const NameNode *node, void *context)
{
    auto *places = static_cast<NamePlaces *>(context);
    if (places->left == 0)
        return -1;
    --places->left;
    *places->next++ = node->name;
    return 0;
}

StatusCode VELK_CALL VelkGetOptionNames(Config *config, const char **names, uint32_t capacity)
{
    NamePlaces places = {names, capacity};
    return NameTable_ForEach(&config->configClass->definitions.options, StoreName, &places) < 0
               ? StatusTooFewPlaces
               : 0;
}

StatusCode VELK_CALL VelkDataFromValueListRef(Config * /*config*/, const uint32_t *listRef, uint32_t *dest,
                                              int32_t count)
{
    for (int32_t n = 0; n < count; ++n)
        dest[n] = listRef[n];
    return 0;
}

StatusCode VELK_CALL VelkDataFromValidValueRef(Config * /*config*/, VelkValidRef validRef, VelkWord *dest)
{
    memcpy(dest, validRef, sizeof *validRef);
    return 0;
}
