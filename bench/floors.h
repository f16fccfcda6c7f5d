// What the least code for a task would cost: the library's times stand beside these. They are compiled with
// aligned loops, since a badly aligned start makes such a loop half as fast.
#ifndef VELK_BENCH_FLOORS_H
#define VELK_BENCH_FLOORS_H

#include "values/name_table.h"
#include "velk32.h"

// The register of this id and instance, one slot after the other; or null.
VReg *Floor_Scan(const VRegTable *table, uint32_t id, int32_t instance);

// The value of a name: its chain walked from the head; or null.
const void *Floor_FindName(const NameTable *names, const char *name);

// A copy of the slots in use, of which each is tested for a text or list; texts are copied. One block, that
// the second frees with the texts.
VReg *Floor_CopySlots(const VRegTable *table);
void Floor_FreeSlots(VReg *slots, int32_t count);

#endif
