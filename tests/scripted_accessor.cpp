// The accessor of the tests: it does what the script of the test program says, and tells it what it is asked.
#include <cstdio>

#include "tests/support/script.h"
#include "velk32_accessor.h"

// What the catalogue calls this copy. No text here may be an entry point's name: a copy may lack each of
// them.
static char ownName[512];

VELK_ACCESSOR_ENTRY int32_t VELK_CALL Cfg_GetVersion(void)
{
    return 1;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_InitializeAccessor(ConfigClass *configClass,
                                                                const char *directory)
{
    script->configClass = configClass;
    const char *value = "?";
    CfgClass_GetAccessorData(configClass, "Accessor", &value);
    snprintf(ownName, sizeof ownName, "%s", value);
    value = "?";
    const StatusCode status = CfgClass_GetAccessorData(configClass, "Private", &value);
    Script_Note("Initialize(", directory, ",", status, ",", value, ") ");
    return script->initialize;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_CloseAccessor(void)
{
    Script_Note("Close(", ownName, ") ");
    return script->close;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_CreateSession(uint32_t first, uint32_t second, VelkWord *session)
{
    Script_Note("CreateSession(", first, ",", second, ") ");
    *session = 77;
    return script->createSession;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_CloseSession(VelkWord session)
{
    Script_Note("CloseSession(", static_cast<uint32_t>(session), ") ");
    return -99;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_Read(VelkWord session, Config *config)
{
    VRegTable **place = &TableOf(config);
    Script_Note("Read(", static_cast<uint32_t>(session), *place == nullptr ? ") " : ",table) ");
    return Script_Fill(script->registers, place) ? script->read : StatusOutOfMemory;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_Write(VelkWord session, VRegTable *table)
{
    Script_Note("Write(", static_cast<uint32_t>(session), ": ", table, ") ");
    return script->write;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_LoadFromFile(ConfigClass * /*configClass*/, const char *file,
                                                          VRegTable **table)
{
    Script_Note("LoadFromFile(", file, *table == nullptr ? ") " : ",table) ");
    return Script_Fill(script->oldFile, table) ? script->loadFromFile : StatusOutOfMemory;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_SetInternalVRegs(void *unused, VRegTable **table)
{
    Script_Note(unused == nullptr ? "SetInternal " : "SetInternal(something) ");
    return Script_Fill(script->internal, table) ? script->setInternal : StatusOutOfMemory;
}
