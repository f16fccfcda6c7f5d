#include "configs/config.h"
#include "engine/config_class.h"

// A warning of the session stands unless the transfer has an answer of its own.
static StatusCode Combine(StatusCode session, StatusCode transfer)
{
    return transfer == 0 ? session : transfer;
}

StatusCode VELK_CALL VelkLoadCurrentConfig(Config *config, uint32_t first, uint32_t second)
{
    const Accessor *accessor = &config->configClass->accessor;
    VelkWord session = 0;
    const StatusCode opened = accessor->createSession(first, second, &session);
    if (opened < 0)
        return opened;

    Config_DropTable(config);
    const StatusCode read = accessor->read(session, config);
    if (read == 0)
        config->loaded = 1;
    accessor->closeSession(session);
    return Combine(opened, read);
}

StatusCode VELK_CALL VelkSaveCurrentConfig(Config *config, uint32_t first, uint32_t second)
{
    if (config->loaded == 0)
        return StatusNotLoaded;
    const Accessor *accessor = &config->configClass->accessor;
    VelkWord session = 0;
    const StatusCode opened = accessor->createSession(first, second, &session);
    if (opened < 0)
        return opened;

    const StatusCode written = accessor->write(session, config->table);
    accessor->closeSession(session);
    return Combine(opened, written);
}
