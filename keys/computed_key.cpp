#include "keys/computed_key.h"

#include "configs/config.h"
#include "engine/config_class.h"
#include "keys/key_access.h"
#include "values/text.h"

#include <bit>

// The address-space code of a VXIbus device that has no memory of its own.
constexpr uint32_t SpaceA16Only = 3;

// The amount that stands for what the key "TotalMemory" says.
constexpr uint32_t AllMemory = 0xFFFFFFFF;

// Reads a key that a computed one needs: -99 if the class lacks it or it is no number.
static StatusCode ReadNeededKey(Config *config, const KeyDef *key, uint32_t *value)
{
    int32_t kind;
    if (key == nullptr || KeyDef_GetKind(key, &kind) < 0 || kind != ValueKindNumber)
        return StatusInternalError;
    VelkWord word = 0;
    const StatusCode status = Key_Read(config, key, &word);
    if (status < 0)
        return status;
    *value = static_cast<uint32_t>(word);
    return 0;
}

static StatusCode ReadAddressSpace(Config *config, uint32_t *space)
{
    const KeyDef *key = KeyTable_Find(&config->configClass->definitions.keys, "AddressSpace");
    if (key == nullptr || key->type != KeyTypeComputed)
        return ReadNeededKey(config, key, space);

    // Computed itself, it would ask for itself without end.
    VelkWord bits;
    const StatusCode status =
        VelkGetBits(config, key->vregId, static_cast<int32_t>(key->instance), key->mask, &bits);
    return status < 0 ? status : StatusInternalError;
}

// The position of the highest set bit; 0 for 0.
static uint32_t FloorLog2(uint32_t value)
{
    return static_cast<uint32_t>(std::bit_width(value | 1)) - 1;
}

// The field for an amount of bytes, which is taken up to the next power of 2. An amount above
// 0x80000000 gives a word that the field's mask cuts down.
static uint32_t EncodeMemory(uint32_t space, uint32_t amount)
{
    uint32_t log = FloorLog2(amount);
    if (uint32_t{1} << log < amount)
        ++log;
    return 8 * space + 23 - log;
}

// The required memory of a VXIbus device: a field of m stands for 2 to the power of 23 - m bytes of A24
// space, or 31 - m of A32 space. The caller's value is the amount in bytes.
static StatusCode VxiRequiredMemory(int32_t mode, uint32_t value, uint32_t *out, Config *config)
{
    uint32_t space = 0;
    StatusCode status = ReadAddressSpace(config, &space);
    if (status < 0)
        return status;
    if (space == SpaceA16Only) {
        *out = 0;
        return 0;
    }
    if (mode == ComputeRead) {
        *out = uint32_t{1} << ((8 * space + 23 - value) % 32);
        return 0;
    }

    if (value == AllMemory)
        status = ReadNeededKey(config, KeyTable_Find(&config->configClass->definitions.keys, "TotalMemory"),
                               &value);
    if (status < 0)
        return status;
    *out = EncodeMemory(space, value);
    return 0;
}

constexpr struct {
    const char *name;
    ComputedKeyFunction compute;
} ComputedKeys[] = {
    {"VxiRequiredMemory", VxiRequiredMemory},
    {nullptr, nullptr},
};

ComputedKeyFunction ComputedKey_Find(const char *name)
{
    for (const auto *entry = ComputedKeys; entry->name != nullptr; ++entry)
        if (Text_EqualsIgnoringCase(entry->name, name))
            return entry->compute;
    return nullptr;
}
