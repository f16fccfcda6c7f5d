// The accessor of targets that have none to test. A board has the registers of its class's keys. The
// first few boards have all of them, and every number is the board's; of the others the number is the seed of
// what they hold, and of which ones are missing.
#include <algorithm>

#include "configs/config.h"
#include "engine/config_class.h"
#include "keys/key_def.h"
#include "values/vreg_table.h"
#include "velk32_accessor.h"

constexpr uint32_t MaxInstances = 3;
constexpr uint32_t InternalId = 0xF0000001;

constexpr uint32_t PlainBoards = 4;

static uint32_t board;
static uint32_t seed;

static uint32_t NextRandom()
{
    seed = seed * 1664525 + 1013904223;
    return seed >> 16;
}

static VelkWord MakeUpValue(uint32_t id)
{
    if (!VReg_HasPayload(id) && board < PlainBoards)
        return board;
    if (!VReg_HasPayload(id))
        return NextRandom() % 2 == 0 ? NextRandom() % 4 : NextRandom() * NextRandom();
    if (NextRandom() % 8 == 0)
        return 0;
    if ((id & VRegKindMask) == VRegStringNibble)
        return Word_Of(String_CopyNew(NextRandom() % 2 == 0 ? "" : "text"));
    List *list = List_New(0);
    for (uint32_t n = NextRandom() % 4; n > 0; --n)
        List_Append(list, n);
    return Word_Of(list);
}

static void AddRegister(VRegTable **table, uint32_t id)
{
    *table = GrowVRegTable(*table, 1);
    (*table)->regs[(*table)->count++] = {id, MakeUpValue(id), NextRandom() % 2};
}

static int32_t AddRegistersOfKey(const NameNode *node, void *context)
{
    auto *table = static_cast<VRegTable **>(context);
    const auto *key = static_cast<const KeyDef *>(node->value);
    for (uint32_t n = 1; n <= std::min(key->instance, MaxInstances); ++n)
        if (LookupVReg(*table, key->vregId, static_cast<int32_t>(n)) == nullptr &&
            (board < PlainBoards || NextRandom() % 32 != 0))
            AddRegister(table, key->vregId);
    return 0;
}

VELK_ACCESSOR_ENTRY int32_t VELK_CALL Cfg_GetVersion(void)
{
    return 1;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_InitializeAccessor(ConfigClass *configClass, const char *)
{
    const char *value;
    return CfgClass_GetAccessorData(configClass, "Refuse", &value) == 0 ? StatusNoAccessorSettings : 0;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_CloseAccessor(void)
{
    return 0;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_CreateSession(uint32_t first, uint32_t, VelkWord *session)
{
    *session = first;
    return first == 255 ? StatusWrongHardware : 0;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_CloseSession(VelkWord)
{
    return 0;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_Read(VelkWord session, Config *config)
{
    board = seed = static_cast<uint32_t>(session);
    config->table = AllocateVRegTable(0);
    return NameTable_ForEach(&config->configClass->definitions.keys, AddRegistersOfKey, &config->table);
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_Write(VelkWord session, VRegTable *)
{
    return session % 2 == 0 ? 0 : StatusEepromWriteFailed;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_SetInternalVRegs(void *, VRegTable **table)
{
    board = seed = 1;
    AddRegister(table, InternalId);
    return 0;
}
