#include "bench/floors.h"

#include <cstdlib>
#include <cstring>

VReg *Floor_Scan(const VRegTable *table, uint32_t id, int32_t instance)
{
    VReg *end = table->regs + table->count;
    for (VReg *slot = table->regs; slot != end; ++slot)
        if (slot->id == id && --instance == 0)
            return slot;
    return nullptr;
}

const void *Floor_FindName(const NameTable *names, const char *name)
{
    uint32_t hash = 0;
    for (const char *at = name; *at != '\0'; ++at)
        hash ^= static_cast<uint32_t>(static_cast<int8_t>(*at)) << 3;
    const NameNode *head = &names->buckets[hash % static_cast<uint32_t>(names->bucketCount)];
    for (const NameNode *node = head->next; node != head; node = node->next)
        if (strcmp(node->name, name) == 0)
            return node->value;
    return nullptr;
}

static bool IsText(const VReg *slot)
{
    return (slot->id & 0x0F000000) == 0x0B000000;
}

static bool HasPayload(const VReg *slot)
{
    return IsText(slot) || (slot->id & 0x0F000000) == 0x0F000000;
}

VReg *Floor_CopySlots(const VRegTable *table)
{
    const auto count = static_cast<size_t>(table->count);
    auto *slots = static_cast<VReg *>(malloc(count * sizeof(VReg)));
    memcpy(slots, table->regs, count * sizeof(VReg));
    for (VReg *slot = slots; slot != slots + count; ++slot)
        if (HasPayload(slot))
            slot->value = reinterpret_cast<VelkWord>(strdup(reinterpret_cast<const char *>(slot->value)));
    return slots;
}

void Floor_FreeSlots(VReg *slots, int32_t count)
{
    for (const VReg *slot = slots; slot != slots + count; ++slot)
        if (IsText(slot))
            free(reinterpret_cast<char *>(slot->value));
    free(slots);
}
