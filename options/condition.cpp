#include "options/condition.h"

#include "values/text.h"

#include <cstring>

const char OperatorCharacters[] = ":!><&`";

constexpr struct {
    char character;
    ConditionOp op;
} Operators[] = {
    {':', OpEqual}, {'!', OpNotEqual}, {'>', OpGreater}, {'<', OpLess}, {'&', OpBitsCommon},
};

static ConditionOp FindOperator(char character)
{
    for (const auto &entry : Operators)
        if (entry.character == character)
            return entry.op;
    return OpPassValue;
}

StatusCode Condition_Parse(const char *text, Condition *condition)
{
    condition->op = OpPassValue;
    if (text == nullptr)
        return 0;
    text = Text_SkipSpace(text);
    condition->op = FindOperator(*text);
    if (condition->op == OpPassValue)
        return StatusBadOptionFile;
    if (Number_Parse(text + strcspn(text, "0123456789-"), 0, &condition->value) < 0)
        return StatusBadOptionFile;
    return 0;
}

VelkWord Condition_Test(const Condition *condition, VelkWord value)
{
    const auto tested = static_cast<uint32_t>(value);
    switch (condition->op) {
    case OpEqual:
        return tested == condition->value;
    case OpNotEqual:
        return tested != condition->value;
    case OpGreater:
        return tested > condition->value;
    case OpLess:
        return tested < condition->value;
    case OpBitsCommon:
        return (tested & condition->value) != 0;
    default:
        return value;
    }
}
