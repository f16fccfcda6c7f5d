#include "values/vreg_table.h"

#include "values/list.h"
#include "values/memory.h"

#include <cstddef>
#include <cstring>

// The layout is shared with clients and accessors.
static_assert(sizeof(VelkWord) == sizeof(void *));
static_assert(sizeof(List) == 2 * sizeof(VelkWord) && offsetof(List, items) == sizeof(VelkWord));
static_assert(sizeof(VReg) == 3 * sizeof(VelkWord));
static_assert(offsetof(VReg, value) == sizeof(VelkWord) && offsetof(VReg, flags) == 2 * sizeof(VelkWord));
static_assert(sizeof(VRegTable) == 8 + sizeof(VReg *) && offsetof(VRegTable, capacity) == 4);
static_assert(offsetof(VRegTable, regs) == 8);
static_assert(sizeof(VRegTable) <= sizeof(VReg));

// A block is the header, as wide as one slot, and the slots.
static VReg *FirstSlot(VRegTable *table)
{
    return reinterpret_cast<VReg *>(table) + 1;
}

// Bytes of a block for `slots` slots; 0 when the size overflows.
static size_t BlockSize(uint64_t slots)
{
    return slots < SIZE_MAX / sizeof(VReg) ? (static_cast<size_t>(slots) + 1) * sizeof(VReg) : 0;
}

VRegTable *VELK_CALL AllocateVRegTable(uint32_t capacity)
{
    const size_t size = BlockSize(capacity);
    VRegTable *table = size == 0 ? nullptr : static_cast<VRegTable *>(calloc(1, size));
    if (table == nullptr)
        return nullptr;
    table->capacity = capacity;
    table->regs = FirstSlot(table);
    return table;
}

VRegTable *VELK_CALL GrowVRegTable(VRegTable *table, uint32_t extra)
{
    const uint32_t capacity = table->capacity;
    const uint64_t wanted = uint64_t{capacity} + extra;
    const size_t size = wanted > UINT32_MAX ? 0 : BlockSize(wanted);
    VRegTable *grown = size == 0 ? nullptr : static_cast<VRegTable *>(realloc(table, size));
    if (grown == nullptr)
        return nullptr;
    grown->regs = FirstSlot(grown);
    grown->capacity = capacity + extra;
    memset(grown->regs + capacity, 0, extra * sizeof(VReg));
    return grown;
}

uint32_t VRegTable_Count(const VRegTable *table)
{
    return table == nullptr || table->count < 0 ? 0 : static_cast<uint32_t>(table->count);
}

static void CopySlots(const VRegTable *source, VRegTable *destination)
{
    memcpy(static_cast<void *>(destination), source, BlockSize(VRegTable_Count(source)));
    destination->regs = FirstSlot(destination);
}

VelkWord VReg_CopyPayload(uint32_t id, VelkWord value)
{
    if (value == 0)
        return 0;
    if ((id & VRegKindMask) == VRegStringNibble)
        return Word_Of(String_CopyNew(Word_AsString(value)));
    return Word_Of(List_CopyNew(Word_AsList(value)));
}

struct PayloadCount {
    uint32_t referred;
    uint32_t copied;
};

// Gives each slot a payload of its own in place of the one that it refers to; null where memory runs out.
static PayloadCount OwnPayloads(VRegTable *table)
{
    PayloadCount payloads = {0, 0};
    VReg *end = table->regs + VRegTable_Count(table);
    for (VReg *slot = table->regs; slot != end; ++slot) {
        if (!VReg_HasPayload(slot->id) || slot->value == 0)
            continue;
        slot->value = VReg_CopyPayload(slot->id, slot->value);
        ++payloads.referred;
        payloads.copied += slot->value != 0;
    }
    return payloads;
}

void VELK_CALL CopyVRegTable(const VRegTable *source, VRegTable *destination)
{
    CopySlots(source, destination);
    OwnPayloads(destination);
}

size_t VReg_PayloadSize(uint32_t id, VelkWord value)
{
    if (value == 0)
        return 0;
    if ((id & VRegKindMask) == VRegStringNibble)
        return strlen(Word_AsString(value)) + 1;
    return sizeof(List) + List_Length(Word_AsList(value)) * sizeof(uint32_t);
}

void VReg_ReleasePayload(uint32_t id, VelkWord value)
{
    if (value == 0)
        return;
    const uint32_t nibble = id & VRegKindMask;
    if (nibble == VRegStringNibble)
        String_Delete(Word_AsString(value));
    if (nibble == VRegListNibble)
        List_Delete(Word_AsList(value));
}

static void ReleasePayloads(const VRegTable *table)
{
    const VReg *end = table->regs + VRegTable_Count(table);
    for (const VReg *slot = table->regs; slot != end; ++slot)
        VReg_ReleasePayload(slot->id, slot->value);
}

void VELK_CALL FreeVRegTable(VRegTable *table)
{
    if (table == nullptr)
        return;
    ReleasePayloads(table);
    free(table);
}

StatusCode TableSnapshot_Take(const VRegTable *table, TableSnapshot *snapshot)
{
    // Not zero-filled: clearing it first would touch every byte twice.
    auto *copy = static_cast<VRegTable *>(malloc(BlockSize(VRegTable_Count(table))));
    if (copy == nullptr)
        return StatusOutOfMemory;
    CopySlots(table, copy);
    const PayloadCount payloads = OwnPayloads(copy);
    if (payloads.copied != payloads.referred) {
        FreeVRegTable(copy);
        return StatusOutOfMemory;
    }
    *snapshot = {copy, payloads.copied != 0};
    return 0;
}

void TableSnapshot_Restore(const TableSnapshot *snapshot, VRegTable *table)
{
    ReleasePayloads(table);
    CopySlots(snapshot->copy, table);
    free(snapshot->copy);
}

void TableSnapshot_Drop(const TableSnapshot *snapshot)
{
    if (snapshot->hasPayloads)
        ReleasePayloads(snapshot->copy);
    free(snapshot->copy);
}

// The first slot of that id from `slot` on, or `end`. Eight slots a round: their compares do not wait for
// each other, nor the loop for each of them.
static VReg *SkipToId(VReg *slot, const VReg *end, uint32_t id)
{
    while (end - slot >= 8) {
        const bool isAmong = slot[0].id == id || slot[1].id == id || slot[2].id == id || slot[3].id == id ||
                             slot[4].id == id || slot[5].id == id || slot[6].id == id || slot[7].id == id;
        if (isAmong)
            break;
        slot += 8;
    }
    while (slot != end && slot->id != id)
        ++slot;
    return slot;
}

VReg *VELK_CALL LookupVReg(VRegTable *table, uint32_t id, int32_t instance)
{
    if (instance < 1)
        return nullptr;
    VReg *end = table->regs + VRegTable_Count(table);
    for (VReg *slot = SkipToId(table->regs, end, id); slot != end; slot = SkipToId(slot + 1, end, id))
        if (--instance == 0)
            return slot;
    return nullptr;
}
