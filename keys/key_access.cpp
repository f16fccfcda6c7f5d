#include "keys/key_access.h"

#include "configs/config.h"
#include "engine/config_class.h"
#include "values/vreg_table.h"

#include <bit>

static StatusCode ReadBits(Config *config, const KeyDef *key, VelkWord *bits)
{
    return VelkGetBits(config, key->vregId, static_cast<int32_t>(key->instance), key->mask, bits);
}

// Places between a field's lowest bit and bit 0.
static int32_t FieldShift(const KeyDef *key)
{
    return std::countr_zero(key->mask);
}

static StatusCode DecodeBool(const KeyDef *key, uint32_t field, VelkWord *value)
{
    if (field != key->encodedFalse && field != key->encodedTrue)
        return StatusInternalError;
    *value = field != key->encodedFalse;
    return 0;
}

static StatusCode DecodeIndex(const KeyDef *key, uint32_t field, VelkWord *value)
{
    if (field >= key->arrayCount)
        return StatusInternalError;
    *value = key->array[field];
    return 0;
}

static StatusCode DecodeComputed(Config *config, const KeyDef *key, uint32_t field, VelkWord *value)
{
    uint32_t computed = 0;
    const StatusCode status = key->compute(ComputeRead, field, &computed, config);
    if (status >= 0)
        *value = computed;
    return status;
}

StatusCode Key_Read(Config *config, const KeyDef *key, VelkWord *value)
{
    VelkWord bits;
    const StatusCode status = ReadBits(config, key, &bits);
    if (status < 0)
        return status;
    if (key->type == KeyTypeString || key->type == KeyTypeList) {
        *value = bits;
        return 0;
    }

    const uint32_t field = static_cast<uint32_t>(bits) >> FieldShift(key);
    switch (key->type) {
    case KeyTypeValue:
        *value = field;
        return 0;
    case KeyTypeBool:
        return DecodeBool(key, field, value);
    case KeyTypeIndex:
        return DecodeIndex(key, field, value);
    case KeyTypeComputed:
        return DecodeComputed(config, key, field, value);
    default:
        return StatusInternalError;
    }
}

static StatusCode EncodeIndex(const KeyDef *key, uint32_t value, uint32_t *field)
{
    for (uint32_t n = 0; n < key->arrayCount; ++n)
        if (key->array[n] == value) {
            *field = n;
            return 0;
        }
    return StatusInternalError;
}

static StatusCode EncodeField(Config *config, const KeyDef *key, uint32_t value, uint32_t *field)
{
    switch (key->type) {
    case KeyTypeValue:
        *field = value;
        return 0;
    case KeyTypeBool:
        *field = value != 0 ? key->encodedTrue : key->encodedFalse;
        return 0;
    case KeyTypeIndex:
        return EncodeIndex(key, value, field);
    case KeyTypeComputed:
        return key->compute(ComputeWrite, value, field, config);
    default:
        return StatusInternalError;
    }
}

static StatusCode WriteNumber(Config *config, const KeyDef *key, uint32_t value)
{
    uint32_t field = 0;
    const StatusCode status = EncodeField(config, key, value, &field);
    if (status < 0)
        return status;
    return VelkSetBits(config, key->vregId, static_cast<int32_t>(key->instance), key->mask,
                       field << FieldShift(key));
}

static bool PayloadsAreEqual(const KeyDef *key, VelkWord first, VelkWord second)
{
    if (key->type == KeyTypeString)
        return String_AreEqual(Word_AsString(first), Word_AsString(second)) != 0;
    return List_AreEqual(Word_AsList(first), Word_AsList(second)) != 0;
}

// The new payload is stored before the present one goes, so `value` may refer to or into that.
static StatusCode WritePayload(Config *config, const KeyDef *key, VelkWord value)
{
    VelkWord present;
    StatusCode status = ReadBits(config, key, &present);
    if (status < 0)
        return status;
    if (present != 0 && value != 0 && PayloadsAreEqual(key, present, value))
        return 0;

    const VelkWord copy = VReg_CopyPayload(key->vregId, value);
    if (copy == 0)
        return StatusOutOfMemory;
    status = Config_ReplacePayload(config, key->vregId, static_cast<int32_t>(key->instance), present, copy);
    if (status < 0)
        VReg_ReleasePayload(key->vregId, copy);
    return status;
}

StatusCode Key_Write(Config *config, const KeyDef *key, VelkWord value)
{
    if (key->type == KeyTypeString || key->type == KeyTypeList)
        return WritePayload(config, key, value);
    return WriteNumber(config, key, static_cast<uint32_t>(value));
}

// Finds a key for a client: -13 there is none; -2 the configuration has no table.
static StatusCode FindKey(const Config *config, const char *name, const KeyDef **key)
{
    *key = KeyTable_Find(&config->configClass->definitions.keys, name);
    if (*key == nullptr)
        return StatusUnknownKey;
    return config->table == nullptr ? StatusNotLoaded : 0;
}

StatusCode VELK_CALL VelkGetKey(Config *config, const char *name, VelkWord *value)
{
    const KeyDef *key;
    const StatusCode status = FindKey(config, name, &key);
    return status < 0 ? status : Key_Read(config, key, value);
}

StatusCode VELK_CALL VelkSetKey(Config *config, const char *name, VelkWord value)
{
    const KeyDef *key;
    const StatusCode status = FindKey(config, name, &key);
    return status < 0 ? status : Key_Write(config, key, value);
}
