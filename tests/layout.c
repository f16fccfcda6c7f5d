/* The records that programs share with the library, by the numbers: their sizes with references of 4 bytes
 * and of 8. With 4 none has a gap, so that the order of the fields tells their places; those with 8 are in
 * tests/abi. */
#include "velk32.h"

#define SIZE(type, narrow, wide)                                                                             \
    _Static_assert(sizeof(type) == (sizeof(void *) == 8 ? (wide) : (narrow)), #type)

SIZE(StatusCode, 4, 4);
SIZE(VelkWord, 4, 8);
SIZE(VelkOptionRef, 4, 8);
SIZE(VelkValidRef, 4, 8);
SIZE(List, 8, 16);
SIZE(VReg, 12, 24);
SIZE(VRegTable, 12, 16);
SIZE(ChangeEntry, 24, 48);
