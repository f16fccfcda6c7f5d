#include "engine/config_class.h"

#include "keys/key_def.h"
#include "options/option_def.h"
#include "platform/file.h"
#include "values/limits.h"
#include "values/memory.h"
#include "values/number_list.h"
#include "values/text.h"

// The longest list of definition files in the catalogue, with its terminator, in bytes.
constexpr int32_t FileListSize = 128;

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

// Loads one definition file into the class.
using FileLoader = StatusCode (*)(ConfigClass *configClass, const char *path, uint32_t *numbersLeft);

// Loads the listed files in order, up to the first that fails.
static StatusCode LoadFiles(ConfigClass *configClass, char *list, FileLoader load, uint32_t *numbersLeft)
{
    char *position = nullptr;
    for (const char *name = Text_NextFileName(list, &position); name != nullptr;
         name = Text_NextFileName(nullptr, &position)) {
        char *path = File_PathIn(configClass->engine->directory, name);
        if (path == nullptr)
            return StatusOutOfMemory;
        const StatusCode status = load(configClass, path, numbersLeft);
        free(path);
        if (status < 0)
            return status;
    }
    return 0;
}

static StatusCode LoadKeyFile(ConfigClass *configClass, const char *path, uint32_t *numbersLeft)
{
    return KeyFile_Load(&configClass->keys, path, numbersLeft);
}

static StatusCode ConfigClass_LoadKeys(ConfigClass *configClass, Profile *catalogue, uint32_t *numbersLeft)
{
    char list[FileListSize];
    if (IniGetStringIntoBuffer(catalogue, configClass->name, "Keys", list, sizeof list) != 1)
        return StatusBadClass;
    if (NameTable_Init(&configClass->keys, NameBuckets) < 0)
        return StatusEngineOutOfMemory;
    if (LoadFiles(configClass, list, LoadKeyFile, numbersLeft) < 0)
        return StatusKeyLoadFailed;
    return 0;
}

static StatusCode LoadOptionFile(ConfigClass *configClass, const char *path, uint32_t *numbersLeft)
{
    return OptionFile_Load(&configClass->options, path, &configClass->keys, numbersLeft);
}

static StatusCode ConfigClass_LoadOptions(ConfigClass *configClass, Profile *catalogue, uint32_t *numbersLeft)
{
    char list[FileListSize];
    if (IniGetStringIntoBuffer(catalogue, configClass->name, "Options", list, sizeof list) != 1)
        return StatusBadClass;
    if (NameTable_Init(&configClass->options, NameBuckets) < 0)
        return StatusEngineOutOfMemory;
    if (LoadFiles(configClass, list, LoadOptionFile, numbersLeft) < 0)
        return StatusOptionLoadFailed;
    return OptionTable_Validate(&configClass->options);
}

// Both name tables may still be without buckets. Options go first, since they refer to keys.
static void ConfigClass_ReleaseTables(ConfigClass *configClass)
{
    OptionTable_Free(&configClass->options);
    KeyTable_Destroy(&configClass->keys);
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

    uint32_t numbersLeft = NumberListLimit;
    StatusCode status = ConfigClass_LoadAccessor(configClass, engine->catalogue);
    if (status == 0)
        status = ConfigClass_LoadKeys(configClass, engine->catalogue, &numbersLeft);
    if (status == 0)
        status = ConfigClass_LoadOptions(configClass, engine->catalogue, &numbersLeft);
    return status;
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
        ConfigClass_ReleaseTables(configClass);
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
    ConfigClass_ReleaseTables(configClass);
    ConfigClass_Delete(configClass);
}
