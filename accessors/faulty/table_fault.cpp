#include "accessors/faulty/table_fault.h"

// The part of an id that says what its register holds.
constexpr uint32_t KindMask = 0x0F000000;
constexpr uint32_t NumberKind = 0;
constexpr uint32_t TextKind = 0x0B000000;
constexpr uint32_t ListKind = 0x0F000000;

// What is neither text nor list is a number.
static uint32_t Register_Kind(const VReg *reg)
{
    const uint32_t kind = reg->id & KindMask;
    return kind == TextKind || kind == ListKind ? kind : NumberKind;
}

static void Register_DropPayload(VReg *reg)
{
    const uint32_t kind = Register_Kind(reg);
    if (kind == NumberKind)
        return;
    if (kind == TextKind)
        String_Delete(reinterpret_cast<char *>(reg->value));
    else if (reg->value != 0)
        List_Delete(reinterpret_cast<List *>(reg->value));
    reg->value = 0;
}

static StatusCode Register_Become(VReg *reg, uint32_t kind, const void *payload)
{
    if (payload == nullptr)
        return StatusOutOfMemory;
    Register_DropPayload(reg);
    reg->id = (reg->id & ~KindMask) | kind;
    reg->value = reinterpret_cast<VelkWord>(payload);
    return 0;
}

static StatusCode Register_ChangeKind(VReg *reg)
{
    const uint32_t kind = Register_Kind(reg);
    if (kind == TextKind)
        return Register_Become(reg, ListKind, List_New(0));
    if (kind == NumberKind)
        return Register_Become(reg, TextKind, String_CopyNew(""));
    Register_DropPayload(reg);
    reg->id &= ~KindMask;
    return 0;
}

static int32_t Table_Count(const VRegTable *table)
{
    return table == nullptr ? 0 : table->count;
}

StatusCode Table_Shorten(VRegTable **place, uint32_t argument)
{
    VRegTable *table = *place;
    while (Table_Count(table) > static_cast<int64_t>(argument)) {
        Register_DropPayload(&table->regs[table->count - 1]);
        --table->count;
    }
    return 0;
}

StatusCode Table_Drop(VRegTable **place, uint32_t /*argument*/)
{
    FreeVRegTable(*place);
    *place = nullptr;
    return 0;
}

StatusCode Table_ChangeKinds(VRegTable **place, uint32_t /*argument*/)
{
    for (int32_t n = 0; n < Table_Count(*place); ++n) {
        const StatusCode status = Register_ChangeKind(&(*place)->regs[n]);
        if (status < 0) {
            Table_Drop(place, 0);
            return status;
        }
    }
    return 0;
}

StatusCode Table_RepeatIds(VRegTable **place, uint32_t /*argument*/)
{
    const VReg *firsts[16] = {};
    for (int32_t n = 0; n < Table_Count(*place); ++n) {
        VReg *reg = &(*place)->regs[n];
        const VReg **first = &firsts[Register_Kind(reg) >> 24];
        if (*first == nullptr)
            *first = reg;
        reg->id = (*first)->id;
    }
    return 0;
}

StatusCode Table_DropPayloads(VRegTable **place, uint32_t /*argument*/)
{
    for (int32_t n = 0; n < Table_Count(*place); ++n)
        Register_DropPayload(&(*place)->regs[n]);
    return 0;
}
