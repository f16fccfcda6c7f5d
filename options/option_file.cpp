#include "options/option_def.h"
#include "platform/profile.h"
#include "values/memory.h"
#include "values/text.h"
#include "values/vreg_table.h"

#include <cstring>

// What a section is read with.
struct OptionReader {
    NameTable *options;
    const NameTable *keys;
    Profile *file;
    const char *section;
    uint32_t *numbersLeft;
};

// The name is trimmed in place.
static const KeyDef *FindKey(const OptionReader *reader, char *name)
{
    return KeyTable_Find(reader->keys, Text_Trim(name));
}

// An entry is the name of a key, with a condition in parentheses or none.
static StatusCode OptionKeys_ParseEntry(const OptionReader *reader, char *entry, OptionDef *option)
{
    if (option->keyCount == MaxOptionKeys)
        return StatusBadOptionFile;
    char *condition = strchr(entry, '(');
    if (condition != nullptr)
        *condition++ = '\0';

    KeyBinding *binding = &option->keys[option->keyCount];
    binding->key = FindKey(reader, entry);
    if (binding->key == nullptr || Condition_Parse(condition, &binding->condition) < 0)
        return StatusBadOptionFile;
    ++option->keyCount;
    return 0;
}

static StatusCode OptionKeys_Parse(const OptionReader *reader, OptionDef *option)
{
    char text[DefinitionTextSize];
    if (IniGetStringIntoBuffer(reader->file, reader->section, "Keys", text, sizeof text) != 1)
        return StatusBadOptionFile;
    option->keyCount = 0;
    char *position = text;
    for (char *entry = Text_NextPiece(&position, ","); entry != nullptr;
         entry = Text_NextPiece(&position, ",")) {
        const StatusCode status = OptionKeys_ParseEntry(reader, entry, option);
        if (status < 0)
            return status;
    }
    return 0;
}

// The option reads as its first key, always.
static void OptionGetMethod_SetNone(OptionDef *option)
{
    option->getTestKey = nullptr;
    option->getCondition.op = OpPassValue;
    option->getSourceKind = GetSourceKey;
    option->getSource = Word_Of(option->keys[0].key);
}

// A source that begins with a number is one; any other is the name of a key.
static StatusCode OptionGetMethod_ParseSource(const OptionReader *reader, char *source, OptionDef *option)
{
    uint32_t number;
    if (Number_Parse(source, 0, &number) == 0) {
        option->getSourceKind = GetSourceConstant;
        option->getSource = number;
        return 0;
    }
    const KeyDef *key = FindKey(reader, source);
    if (key == nullptr)
        return StatusBadOptionFile;
    option->getSourceKind = GetSourceKey;
    option->getSource = Word_Of(key);
    return 0;
}

// Test key, condition, question mark, source.
static StatusCode OptionGetMethod_Parse(const OptionReader *reader, OptionDef *option)
{
    char text[DefinitionTextSize];
    if (IniGetStringIntoBuffer(reader->file, reader->section, "GetMethod", text, sizeof text) != 1) {
        if (IniItemExists(reader->file, reader->section, "GetMethod") != 0)
            return StatusBadOptionFile; // too long
        OptionGetMethod_SetNone(option);
        return 0;
    }

    char *condition = strpbrk(text, OperatorCharacters);
    char *question = condition == nullptr ? nullptr : strchr(condition, '?');
    if (question == nullptr)
        return StatusBadOptionFile;
    *question = '\0';
    if (OptionGetMethod_ParseSource(reader, question + 1, option) < 0)
        return StatusBadOptionFile;
    if (Condition_Parse(condition, &option->getCondition) < 0)
        return StatusBadOptionFile;
    *condition = '\0';
    option->getTestKey = FindKey(reader, text);
    return option->getTestKey == nullptr ? StatusBadOptionFile : 0;
}

// The number of a word of "ValidValuesType", or -8.
static StatusCode ParseValidKind(const char *word, uint32_t *validKind)
{
    static constexpr const char *words[] = {"Range", "List", "ListSet", "String"};
    for (uint32_t kind = ValidKindRange; kind <= ValidKindString; ++kind)
        if (Text_EqualsIgnoringCase(word, words[kind])) {
            *validKind = kind;
            return 0;
        }
    return StatusBadOptionFile;
}

// All keys of an option are of its own kind.
static StatusCode OptionValidType_Parse(const OptionReader *reader, OptionDef *option)
{
    char *word;
    if (IniGetPointerToString(reader->file, reader->section, "ValidValuesType", &word) != 1)
        return StatusBadOptionFile;
    if (ParseValidKind(word, &option->validKind) < 0)
        return StatusBadOptionFile;

    int32_t optionKind;
    StatusCode status = Option_Kind(option, &optionKind);
    if (status < 0)
        return status;
    for (int32_t n = 0; n < option->keyCount; ++n) {
        int32_t keyKind;
        status = KeyDef_GetKind(option->keys[n].key, &keyKind);
        if (status < 0)
            return status;
        if (keyKind != optionKind)
            return StatusKindMismatch;
    }
    return 0;
}

// A rule refers to an option that no section has defined yet; one that does later fills this record.
static StatusCode Option_Declare(NameTable *options, const char *name, OptionDef **out)
{
    auto *option = Memory_New<OptionDef>();
    if (option == nullptr)
        return StatusOutOfMemory;
    if (NameTable_Insert(options, name, option) == nullptr) {
        free(option);
        return StatusOutOfMemory;
    }
    *out = option;
    return 0;
}

static StatusCode Option_AddDependant(OptionDef *option, OptionDef *dependant)
{
    for (int32_t n = 0; n < option->dependantCount; ++n)
        if (option->dependants[n] == dependant)
            return 0;
    if (option->dependantCount == MaxDependants)
        return StatusTooManyDependants;

    const auto count = static_cast<size_t>(option->dependantCount);
    OptionDef **dependants = Memory_Resize(option->dependants, count + 1);
    if (dependants == nullptr)
        return StatusOutOfMemory;
    dependants[count] = dependant;
    option->dependants = dependants;
    ++option->dependantCount;
    return 0;
}

// The name of an option, and a condition text.
static StatusCode OptionRuleHead_ParseCondition(const OptionReader *reader, char *text,
                                                RuleCondition *condition, OptionDef *dependant)
{
    char *operation = strpbrk(text, OperatorCharacters);
    if (operation == nullptr || Condition_Parse(operation, &condition->condition) < 0)
        return StatusBadOptionFile;
    *operation = '\0';
    const char *name = Text_Trim(text);

    condition->option = OptionTable_Find(reader->options, name);
    if (condition->option == nullptr) {
        const StatusCode status = Option_Declare(reader->options, name, &condition->option);
        if (status < 0)
            return status;
    }
    return Option_AddDependant(condition->option, dependant);
}

static size_t CountCommas(const char *text)
{
    size_t count = 0;
    for (; *text != '\0'; ++text)
        count += *text == ',';
    return count;
}

// There is one condition more than there are commas. A piece skips runs of commas, so that an empty
// condition shows as a piece that is missing. What a failure leaves is released with the rule.
static StatusCode OptionRuleHead_Parse(const OptionReader *reader, char *text, OptionRule *rule,
                                       OptionDef *option)
{
    if (Text_EqualsIgnoringCase(text, "default"))
        return 0;
    const size_t room = CountCommas(text) + 1;
    rule->conditions = Memory_New<RuleCondition>(room);
    if (rule->conditions == nullptr)
        return StatusOutOfMemory;

    char *position = text;
    for (size_t n = 0; n < room; ++n) {
        char *piece = Text_NextPiece(&position, ",");
        if (piece == nullptr)
            return StatusBadOptionFile;
        const StatusCode status = OptionRuleHead_ParseCondition(reader, piece, &rule->conditions[n], option);
        if (status < 0)
            return status;
        ++rule->conditionCount;
    }
    return 0;
}

// The conditions are the item's name, the valid values its value.
static StatusCode OptionRule_Parse(const OptionReader *reader, const char *item, OptionRule *rule,
                                   OptionDef *option)
{
    char text[DefinitionTextSize];
    const size_t size = strlen(item) + 1;
    if (size > sizeof text)
        return StatusBadOptionFile;
    memcpy(text, item, size);
    const StatusCode status = OptionRuleHead_Parse(reader, text, rule, option);
    if (status < 0)
        return status;
    if (IniGetStringIntoBuffer(reader->file, reader->section, item, text, sizeof text) != 1)
        return StatusBadOptionFile;
    return ValidValues_Parse(text, &rule->valid, option->validKind, reader->numbersLeft);
}

// Rules are the items behind the fixed ones, by position.
static StatusCode OptionRules_Parse(const OptionReader *reader, OptionDef *option)
{
    const int32_t first = IniItemExists(reader->file, reader->section, "GetMethod") != 0 ? 4 : 3;
    const int32_t count = IniNumberOfItems(reader->file, reader->section) - first + 1;
    if (count < 1)
        return 0;
    option->rules = Memory_New<OptionRule>(static_cast<size_t>(count));
    if (option->rules == nullptr)
        return StatusOutOfMemory;

    char *item;
    for (int32_t n = first; IniNthItemName(reader->file, reader->section, n, &item) != 0; ++n) {
        OptionRule *rule = &option->rules[option->ruleCount];
        const StatusCode status = OptionRule_Parse(reader, item, rule, option);
        if (status < 0) {
            OptionRule_Free(rule, option->validKind);
            return status;
        }
        ++option->ruleCount;
    }
    return 0;
}

static StatusCode OptionSection_Parse(const OptionReader *reader, OptionDef *option)
{
    StatusCode status = OptionKeys_Parse(reader, option);
    if (status == 0)
        status = OptionGetMethod_Parse(reader, option);
    if (status == 0)
        status = OptionValidType_Parse(reader, option);
    if (status == 0)
        status = OptionRules_Parse(reader, option);
    return status;
}

// Fills a new record, or the one that stands under the section's name: declared, or defined before,
// whose definition is replaced while its dependants stay.
static StatusCode OptionSection_Load(const OptionReader *reader)
{
    NameNode *node = NameTable_Find(reader->options, reader->section);
    auto *option = node != nullptr ? static_cast<OptionDef *>(node->value) : Memory_New<OptionDef>();
    if (option == nullptr)
        return StatusOutOfMemory;

    OptionRules_Free(option); // ahead of the new definition, which may change how they are released
    StatusCode status = OptionSection_Parse(reader, option);
    if (status == 0 && node == nullptr)
        status =
            NameTable_Insert(reader->options, reader->section, option) != nullptr ? 0 : StatusOutOfMemory;
    if (status < 0) {
        if (node != nullptr)
            NameTable_Remove(node);
        Option_Free(option);
    }
    return status;
}

static StatusCode LoadSections(OptionReader *reader)
{
    char *section;
    for (int32_t n = 1; IniNthSectionName(reader->file, n, &section) != 0; ++n) {
        if (Text_EqualsIgnoringCase(section, "Information"))
            continue;
        reader->section = section;
        const StatusCode status = OptionSection_Load(reader);
        if (status < 0)
            return status;
    }
    return 0;
}

StatusCode OptionFile_Load(NameTable *options, const char *path, const NameTable *keys, uint32_t *numbersLeft)
{
    Profile *file = IniNew(0);
    if (file == nullptr)
        return StatusOutOfMemory;
    StatusCode status = StatusBadOptionFile;
    if (IniReadFromFile(file, path) == 0) {
        OptionReader reader = {options, keys, file, nullptr, numbersLeft};
        status = LoadSections(&reader);
    }
    IniDispose(file);
    return status;
}
