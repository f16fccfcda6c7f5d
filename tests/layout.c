/* The records that programs share with the library, by the numbers: their sizes and the places of their
 * fields, with references of 4 bytes and of 8. */
#include "velk32.h"

#include <stddef.h>

#define IS(narrow, wide) ((narrow) + (sizeof(void *) == 8) * ((wide) - (narrow)))
#define SIZE(type, narrow, wide) _Static_assert(sizeof(type) == IS(narrow, wide), #type)
#define PLACE(record, field, narrow, wide)                                                                   \
    _Static_assert(offsetof(record, field) == IS(narrow, wide), #record "." #field)

SIZE(StatusCode, 4, 4);
SIZE(VelkWord, 4, 8);
SIZE(VelkOptionRef, 4, 8);
SIZE(VelkValidRef, 4, 8);

SIZE(List, 8, 16);
PLACE(List, count, 0, 0);
PLACE(List, items, 4, 8);

SIZE(VReg, 12, 24);
PLACE(VReg, id, 0, 0);
PLACE(VReg, value, 4, 8);
PLACE(VReg, flags, 8, 16);

SIZE(VRegTable, 12, 16);
PLACE(VRegTable, count, 0, 0);
PLACE(VRegTable, capacity, 4, 4);
PLACE(VRegTable, regs, 8, 8);

SIZE(ChangeEntry, 24, 48);
PLACE(ChangeEntry, name, 0, 0);
PLACE(ChangeEntry, optionRef, 4, 8);
PLACE(ChangeEntry, flags, 8, 16);
PLACE(ChangeEntry, newValue, 12, 24);
PLACE(ChangeEntry, newValidKind, 16, 32);
PLACE(ChangeEntry, newValidRef, 20, 40);
