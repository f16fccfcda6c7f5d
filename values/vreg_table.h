// The register table: what the library needs of it beyond its exports.
#ifndef VELK_VALUES_VREG_TABLE_H
#define VELK_VALUES_VREG_TABLE_H

#include "velk32.h"

#include <cstddef>

// The kind nibble of an id, and its two values that stand for a payload, a reference to a block that
// the table owns.
constexpr uint32_t VRegKindMask = 0x0F000000;
constexpr uint32_t VRegStringNibble = 0x0B000000;
constexpr uint32_t VRegListNibble = 0x0F000000;

// The nibbles from here up stand for something else than a number, or for nothing.
constexpr uint32_t VRegFirstOtherNibble = 0x08000000;

constexpr bool VReg_HasPayload(uint32_t id)
{
    const uint32_t nibble = id & VRegKindMask;
    return nibble == VRegStringNibble || nibble == VRegListNibble;
}

// A load from a save file skips such a register.
constexpr bool VReg_IsInternal(uint32_t id)
{
    return (id & 0xF0000000) == 0xF0000000;
}

inline List *Word_AsList(VelkWord word)
{
    return reinterpret_cast<List *>(word);
}

inline char *Word_AsString(VelkWord word)
{
    return reinterpret_cast<char *>(word);
}

inline VelkWord Word_Of(const void *reference)
{
    return reinterpret_cast<VelkWord>(reference);
}

// The ValueKind of a register, or -17 with `kind` unwritten.
inline StatusCode VReg_GetKind(uint32_t id, int32_t *kind)
{
    const uint32_t nibble = id & VRegKindMask;
    if (nibble != VRegStringNibble && nibble != VRegListNibble && nibble >= VRegFirstOtherNibble)
        return StatusWrongKind;
    *kind = ValueKindNumber;
    if (nibble == VRegStringNibble)
        *kind = ValueKindString;
    if (nibble == VRegListNibble)
        *kind = ValueKindList;
    return 0;
}

// A copy of the payload `value` of a string or list register of this id; 0 for null, and when memory runs
// out.
VelkWord VReg_CopyPayload(uint32_t id, VelkWord value);

// The bytes of the payload `value` of a string or list register of this id, the record of a list included;
// 0 for null.
size_t VReg_PayloadSize(uint32_t id, VelkWord value);

// Releases the payload `value` of a register of this id; for a number, and for null, nothing.
void VReg_ReleasePayload(uint32_t id, VelkWord value);

// The slots in use; 0 for a null table.
uint32_t VRegTable_Count(const VRegTable *table);

// A table as it was: its header and slots in use, payloads included, in a block of just that size.
struct TableSnapshot {
    VRegTable *copy;
    bool hasPayloads; // without any, nothing has to be looked for when the copy goes
};

// Takes a snapshot: 0, or -1 when memory runs out, for a payload too, with nothing taken.
StatusCode TableSnapshot_Take(const VRegTable *table, TableSnapshot *snapshot);

// Puts a table back to its snapshot, which is used up: its payloads move. Needs no memory.
void TableSnapshot_Restore(const TableSnapshot *snapshot, VRegTable *table);

// Releases a snapshot that is not needed any more.
void TableSnapshot_Drop(const TableSnapshot *snapshot);

#endif
