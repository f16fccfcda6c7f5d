// Conditions: one comparison with a constant, on the value of a key or an option.
#ifndef VELK_OPTIONS_CONDITION_H
#define VELK_OPTIONS_CONDITION_H

#include "velk32.h"

enum ConditionOp : uint32_t {
    OpPassValue = 1, // no comparison: the value itself
    OpEqual = 2,
    OpNotEqual = 3,
    OpGreater = 4,
    OpLess = 5,
    OpBitsCommon = 6
};

struct Condition {
    uint32_t op; // ConditionOp
    uint32_t value;
};

// The operator characters of condition texts, and a backtick, which ends a name like one of them and
// which Condition_Parse refuses.
extern const char OperatorCharacters[];

// Reads an operator character behind any white space, then anything that is neither digit nor minus
// sign, then a number. Null is OpPassValue. Gives 0, or -8.
StatusCode Condition_Parse(const char *text, Condition *condition);

// What a condition makes of a value: the value itself for OpPassValue, else 1 or 0. Comparisons are
// unsigned and of the low 32 bits.
VelkWord Condition_Test(const Condition *condition, VelkWord value);

#endif
