// The accessor of the tests: it does what the test's script says, and writes down what it was asked.
#include <dlfcn.h>

#include <filesystem>

#include "tests/support/board.h"
#include "velk32_accessor.h"

VELK_ACCESSOR_ENTRY int32_t VELK_CALL Cfg_GetVersion(void)
{
    return 1;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_InitializeAccessor(ConfigClass *configClass,
                                                                const char *directory)
{
    const char *value = "?";
    const StatusCode status = CfgClass_GetAccessorData(configClass, "Private", &value);
    script->calls += "Initialize(" + std::filesystem::path(directory).filename().string() + "," +
                     std::to_string(status) + "," + value + ") ";
    return script->initialize;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_CloseAccessor(void)
{
    static const char here = 0; // not an entry point: a copy may lack each of them
    Dl_info module;
    dladdr(&here, &module);
    script->calls += "Close(" + std::filesystem::path(module.dli_fname).stem().string() + ") ";
    return script->close;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_CreateSession(uint32_t first, uint32_t second, VelkWord *session)
{
    script->calls += "CreateSession(" + std::to_string(first) + "," + std::to_string(second) + ") ";
    *session = 77;
    return script->createSession;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_CloseSession(VelkWord session)
{
    script->calls += "CloseSession(" + std::to_string(session) + ") ";
    return -99;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_Read(VelkWord session, Config *config)
{
    script->calls += "Read(" + std::to_string(session) + (TableOf(config) == nullptr ? ") " : ",table) ");
    if (script->registers != nullptr)
        TableOf(config) = Table_FromText(script->registers);
    return script->read;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_Write(VelkWord session, VRegTable *table)
{
    script->calls += "Write(" + std::to_string(session) + ": " + Table_Text(table) + ") ";
    return script->write;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_LoadFromFile(ConfigClass * /*configClass*/, const char *file,
                                                          VRegTable **table)
{
    script->calls += "LoadFromFile(" + std::filesystem::path(file).filename().string() +
                     (*table == nullptr ? ") " : ",table) ");
    if (script->oldFile != nullptr)
        *table = Table_FromText(script->oldFile);
    return script->loadFromFile;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_SetInternalVRegs(void *unused, VRegTable **table)
{
    script->calls += unused == nullptr ? "SetInternal " : "SetInternal(something) ";
    if (script->internal != nullptr)
        *table = Table_FromText(script->internal, *table);
    return script->setInternal;
}
