#include "configs/config.h"

#include "engine/config_class.h"
#include "values/limits.h"
#include "values/memory.h"
#include "values/vreg_table.h"

#include <cstddef>

static_assert(offsetof(Config, table) == 0);

StatusCode VELK_CALL VelkCreateConfig(ConfigEngine *engine, const char *className, Config **config)
{
    auto *created = Memory_New<Config>();
    *config = nullptr;
    if (created == nullptr)
        return StatusOutOfMemory;

    const StatusCode status = ConfigClass_Open(engine, className, &created->configClass);
    if (status < 0) {
        free(created);
        return status;
    }
    *config = created;
    return 0;
}

StatusCode VELK_CALL VelkDiscardConfig(Config *config)
{
    FreeVRegTable(config->table);
    free(config);
    return 0;
}

void Config_DropTable(Config *config)
{
    FreeVRegTable(config->table);
    config->table = nullptr;
    config->loaded = 0;
}

void Config_TakeTable(Config *config, VRegTable *table)
{
    Config_DropTable(config);
    config->table = table;
    config->loaded = 1;
}

// An empty table with as much room as the header of `table` states, or for the slots in use alone when
// that is all there is.
static VRegTable *AllocateRoomFor(const VRegTable *table)
{
    const uint32_t count = VRegTable_Count(table);
    VRegTable *room = nullptr;
    if (table != nullptr && table->capacity > count)
        room = AllocateVRegTable(table->capacity);
    return room != nullptr ? room : AllocateVRegTable(count);
}

StatusCode VELK_CALL VelkDuplicateConfig(Config *source, Config *destination)
{
    if (source->loaded == 0)
        return 0;
    VRegTable *copy = AllocateRoomFor(source->table);
    if (copy == nullptr)
        return StatusOutOfMemory;
    const uint32_t room = copy->capacity;
    if (source->table != nullptr)
        CopyVRegTable(source->table, copy);
    copy->capacity = room; // which the source's header may overstate
    Config_TakeTable(destination, copy);
    return 0;
}

int32_t VELK_CALL VelkIsConfigLoaded(Config *config)
{
    return config->loaded;
}

int32_t VELK_CALL VelkIsConfigModified(Config *config)
{
    if (config->loaded == 0)
        return 0;
    const uint32_t count = VRegTable_Count(config->table);
    for (uint32_t n = 0; n < count; ++n)
        if ((config->table->regs[n].flags & VRegModified) != 0)
            return 1;
    return 0;
}

// The bits of a word that a mask stands for. The full mask moves a reference whole; on every other
// register, and under every other mask, only the low 32 bits take part.
static VelkWord WidenMask(uint32_t id, uint32_t mask)
{
    return mask == UINT32_MAX && VReg_HasPayload(id) ? ~VelkWord{0} : mask;
}

// Looks at nothing of `config` but its table, as accessors hand over the place of a table.
static StatusCode FindVReg(Config *config, uint32_t id, int32_t instance, VReg **slot)
{
    if (config->table == nullptr)
        return StatusNotLoaded;
    *slot = LookupVReg(config->table, id, instance);
    return *slot == nullptr ? StatusVRegNotFound : 0;
}

StatusCode VELK_CALL VelkGetBits(Config *config, uint32_t id, int32_t instance, uint32_t mask,
                                 VelkWord *value)
{
    VReg *slot;
    const StatusCode status = FindVReg(config, id, instance, &slot);
    if (status < 0)
        return status;
    *value = slot->value & WidenMask(id, mask);
    return 0;
}

StatusCode VELK_CALL VelkSetBits(Config *config, uint32_t id, int32_t instance, uint32_t mask, VelkWord bits)
{
    VReg *slot;
    const StatusCode status = FindVReg(config, id, instance, &slot);
    if (status < 0)
        return status;
    const VelkWord changed = (slot->value ^ bits) & WidenMask(id, mask);
    if (changed == 0)
        return 0;
    slot->flags |= VRegModified;
    slot->value ^= changed;
    return 0;
}

StatusCode Config_ReplacePayload(Config *config, uint32_t id, int32_t instance, VelkWord present,
                                 VelkWord payload)
{
    // The room to remember the old payload is had before the new one is stored.
    RetiredPayload *retired = nullptr;
    if (config->run != nullptr && present != 0) {
        if (config->run->retiredSize <= MaxRetiredSize)
            retired = Memory_New<RetiredPayload>();
        if (retired == nullptr)
            return StatusOutOfMemory;
    }

    const StatusCode status = VelkSetBits(config, id, instance, UINT32_MAX, payload);
    if (status < 0) {
        free(retired);
        return status;
    }
    if (retired == nullptr) { // no set under way, or no payload so far
        VReg_ReleasePayload(id, present);
        return 0;
    }
    *retired = {config->run->retired, id, present};
    config->run->retired = retired;
    config->run->retiredSize += sizeof *retired + VReg_PayloadSize(id, present);
    return 0;
}

void SetRun_ReleaseRetired(SetRun *run)
{
    while (run->retired != nullptr) {
        RetiredPayload *retired = run->retired;
        run->retired = retired->next;
        VReg_ReleasePayload(retired->id, retired->value);
        free(retired);
    }
}
