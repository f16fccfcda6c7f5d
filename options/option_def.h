// Options: the settings that a user sees, as a class's option files define them over its keys.
#ifndef VELK_OPTIONS_OPTION_DEF_H
#define VELK_OPTIONS_OPTION_DEF_H

#include "keys/key_def.h"
#include "options/condition.h"
#include "options/valid_values.h"
#include "values/name_table.h"
#include "velk32.h"

constexpr int32_t MaxOptionKeys = 8;
constexpr int32_t MaxDependants = 32;

// Options on one path through the conditions of rules, and on one path of a set through dependants.
constexpr int32_t MaxOptionPath = 16;

// One key of an option. When the option is set, the key receives what the condition makes of the new
// value: the value itself, or 1 or 0.
struct KeyBinding {
    const KeyDef *key;
    Condition condition;
};

// What a rule tests: an option, declared or defined, of the same class.
struct RuleCondition {
    OptionDef *option;
    Condition condition;
};

// Holds when every condition holds; one without conditions always does.
struct OptionRule {
    int32_t conditionCount;
    RuleCondition *conditions; // owned
    ValidValues valid;
};

enum GetSourceKind : uint32_t { GetSourceKey = 1, GetSourceConstant = 2 };

// One option. Belongs to its class's option table, under its name, and is read-only once the class is
// loaded. A record that rules refer to ahead of its definition is declared: all zero but its dependants.
struct OptionDef {
    int32_t keyCount;
    KeyBinding keys[MaxOptionKeys]; // the option reads from the first, and is written to all
    Condition getCondition;
    const KeyDef *getTestKey; // while its value passes, the option reads from the source; null: never
    uint32_t getSourceKind;   // GetSourceKind
    VelkWord getSource;       // a KeyDef, or a number
    uint32_t validKind;       // tells how to read the valid values of every rule
    int32_t ruleCount;
    OptionRule *rules; // owned, in file order: the first that holds is in force
    int32_t dependantCount;
    OptionDef **dependants; // owned: the options whose rules test this one, or did until redefined, each once
    int32_t height; // 1 if its rules test no option, else 1 more than the highest tested; 0 until validated
};

// The ValueKind of an option: 0, or -99.
StatusCode Option_Kind(const OptionDef *option, int32_t *kind);

// The option of that name, or null.
OptionDef *OptionTable_Find(const NameTable *options, const char *name);

// Checks the options of a class when all its files are read: 0, or -9 if one lacks keys, rules or its
// definition, or if rules test options in a circle or over a path of more than 16. Null is fine.
StatusCode OptionTable_Validate(NameTable *options);

// Releases an option table with its options. Null is ignored.
void OptionTable_Free(NameTable *options);

// Reads an option file into a class's option table. `numbersLeft` is what number lists may still hold.
// Gives 0, or the status of the first failure: -1, -8, -10, -11, -18 or -99. What stands in the table
// then is of no use but to OptionTable_Free.
StatusCode OptionFile_Load(NameTable *options, const char *path, const NameTable *keys,
                           uint32_t *numbersLeft);

// Releases what a rule owns.
void OptionRule_Free(OptionRule *rule, uint32_t validKind);

// Releases the rules of an option, which then has none.
void OptionRules_Free(OptionDef *option);

// Releases an option with what it owns.
void Option_Free(void *record);

#endif
