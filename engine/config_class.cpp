#include "engine/config_class.h"

#include "keys/computed_key.h"
#include "values/memory.h"

// A failure leaves a module that is loaded to ConfigClass_Open.
static StatusCode ConfigClass_LoadAccessor(ConfigClass *configClass, Profile *catalogue)
{
    Accessor *accessor = &configClass->accessor;
    char *moduleName;
    if (IniGetPointerToString(catalogue, configClass->name, "Accessor", &moduleName) != 1)
        return StatusBadClass;
    StatusCode status = Accessor_Load(moduleName, accessor);
    if (status < 0)
        return status;
    status = accessor->initializeAccessor(configClass, configClass->engine->directory);
    return status < 0 ? status : 0;
}

static void ConfigClass_Delete(ConfigClass *configClass)
{
    free(configClass->name);
    free(configClass);
}

static StatusCode ConfigClass_Load(ConfigClass *configClass, ConfigEngine *engine, const char *name)
{
    configClass->engine = engine;
    configClass->name = String_CopyNew(name);
    if (configClass->name == nullptr)
        return StatusEngineOutOfMemory;

    const StatusCode status = ConfigClass_LoadAccessor(configClass, engine->catalogue);
    if (status < 0)
        return status;
    const DefinitionSource source = {engine->catalogue, engine->directory, name, ComputedKey_Find};
    return Definitions_Load(&configClass->definitions, &source);
}

static ConfigClass *FindLoaded(const ConfigEngine *engine, const char *name)
{
    for (ConfigClass *loaded = engine->classes; loaded != nullptr; loaded = loaded->next)
        if (String_AreEqual(loaded->name, name) != 0)
            return loaded;
    return nullptr;
}

StatusCode ConfigClass_Open(ConfigEngine *engine, const char *name, ConfigClass **out)
{
    ConfigClass *loaded = FindLoaded(engine, name);
    if (loaded != nullptr) {
        *out = loaded;
        return 0;
    }
    if (IniSectionExists(engine->catalogue, name) == 0)
        return StatusBadClass;

    auto *configClass = Memory_New<ConfigClass>();
    if (configClass == nullptr)
        return StatusEngineOutOfMemory;
    const StatusCode status = ConfigClass_Load(configClass, engine, name);
    if (status < 0) {
        // The accessor is not closed, only let go: Cfg_CloseAccessor belongs to the engine's close.
        Definitions_Release(&configClass->definitions);
        if (configClass->accessor.module != nullptr)
            Module_Release(configClass->accessor.module);
        ConfigClass_Delete(configClass);
        return status;
    }
    configClass->next = engine->classes;
    engine->classes = configClass;
    *out = configClass;
    return 0;
}

static StatusCode ConfigClass_CloseAccessor(ConfigClass *configClass)
{
    const StatusCode status = configClass->accessor.closeAccessor();
    if (status == 0)
        Module_Release(configClass->accessor.module);
    return status;
}

void ConfigClass_Close(ConfigClass *configClass)
{
    ConfigClass_CloseAccessor(configClass); // a module that refuses stays loaded
    Definitions_Release(&configClass->definitions);
    ConfigClass_Delete(configClass);
}
