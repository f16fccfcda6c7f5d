#include "engine/engine.h"

#include "configs/config.h"
#include "engine/config_class.h"
#include "platform/file.h"
#include "values/memory.h"

#include <cstdio>

// Releases an engine without classes, complete or not.
static void Engine_Delete(ConfigEngine *engine)
{
    if (engine->catalogue != nullptr)
        IniDispose(engine->catalogue);
    free(engine->directory);
    free(engine);
}

static StatusCode Engine_ReadCatalogue(ConfigEngine *engine)
{
    char *path = File_PathIn(engine->directory, "CfgClass.ini");
    if (path == nullptr)
        return StatusEngineOutOfMemory;
    const int32_t result = IniReadFromFile(engine->catalogue, path);
    free(path);
    return result < 0 ? StatusNoCatalogue : 0;
}

static StatusCode Engine_Fill(ConfigEngine *engine, const char *directory)
{
    engine->directory = String_CopyNew(directory);
    if (engine->directory == nullptr)
        return StatusEngineOutOfMemory;
    engine->catalogue = IniNew(1);
    if (engine->catalogue == nullptr)
        return StatusEngineOutOfMemory;
    return Engine_ReadCatalogue(engine);
}

StatusCode VELK_CALL VelkInitializeConfigEngine(const char *directory, ConfigEngine **engine)
{
    auto *opened = Memory_New<ConfigEngine>();
    if (opened == nullptr)
        return StatusEngineOutOfMemory;
    const StatusCode status = Engine_Fill(opened, directory);
    if (status < 0) {
        Engine_Delete(opened);
        return status;
    }
    *engine = opened;
    return 0;
}

StatusCode VELK_CALL VelkCloseConfigEngine(ConfigEngine *engine)
{
    while (engine->classes != nullptr) {
        ConfigClass *closed = engine->classes;
        engine->classes = closed->next;
        ConfigClass_Close(closed);
    }
    Engine_Delete(engine);
    return 0;
}

StatusCode VELK_CALL CfgClass_GetAccessorData(ConfigClass *configClass, const char *item, const char **value)
{
    char *text;
    if (IniGetPointerToString(configClass->engine->catalogue, configClass->name, item, &text) != 1)
        return StatusBadClass;
    *value = text;
    return 0;
}

StatusCode VELK_CALL VelkTranslateValue(Config *config, const char *section, uint32_t value, char *buffer,
                                        int32_t size)
{
    char item[16];
    snprintf(item, sizeof item, "0x%X", value);
    Profile *catalogue = config->configClass->engine->catalogue;
    return IniGetStringIntoBuffer(catalogue, section, item, buffer, size) == 1 ? 0 : StatusBadClass;
}
