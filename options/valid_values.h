// The valid values of a rule: reading them from a definition, and moving a value onto them.
#ifndef VELK_OPTIONS_VALID_VALUES_H
#define VELK_OPTIONS_VALID_VALUES_H

#include "velk32.h"

// Three words, as clients receive them. The option's validKind tells how to read them.
struct ValidValues {
    union {
        VelkWord low;       // "Range"
        VelkWord count;     // "List": an int32_t
        VelkWord listCount; // "ListSet": an int32_t, AnyList or the number of lists
        char *text;         // "String": owned; null for any text
    };
    union {
        VelkWord step;   // "Range": 0 offers no value
        uint32_t *items; // "List": owned
        List *lists;     // "ListSet": owned, with the items of each
    };
    VelkWord high; // "Range"
};

// The listCount under which any list is valid.
constexpr int32_t AnyList = -1;

// Reads the notation of `validKind` from a text, which is cut up, into zeroed `valid`. Gives 0; -8
// malformed; -10 malformed number list; -1 out of memory, or `numbersLeft` used up. What it has read
// until a failure is released by ValidValues_Free.
StatusCode ValidValues_Parse(char *text, ValidValues *valid, uint32_t validKind, uint32_t *numbersLeft);

// Releases what `valid` owns.
void ValidValues_Free(ValidValues *valid, uint32_t validKind);

// Moves a value onto the valid ones. Gives 0; -12 there are none; -16 two or more lists. A list or text
// that takes the value's place is the rule's own.
StatusCode ValidValues_Coerce(uint32_t validKind, const ValidValues *valid, VelkWord value,
                              VelkWord *coerced);

#endif
