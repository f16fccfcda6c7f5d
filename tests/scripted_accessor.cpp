// The accessor of the tests: a way from the library to the test program.
#include "tests/support/script.h"
#include "velk32_accessor.h"

VELK_ACCESSOR_ENTRY int32_t VELK_CALL Cfg_GetVersion(void)
{
    return 1;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_InitializeAccessor(ConfigClass *configClass,
                                                                const char *directory)
{
    return Script_InitializeAccessor(configClass, directory);
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_CloseAccessor(void)
{
    static const char here = 0; // not an entry point: a copy may lack each of them
    return Script_CloseAccessor(&here);
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_CreateSession(uint32_t first, uint32_t second, VelkWord *session)
{
    return Script_CreateSession(first, second, session);
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_CloseSession(VelkWord session)
{
    return Script_CloseSession(session);
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_Read(VelkWord session, Config *config)
{
    return Script_Read(session, config);
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_Write(VelkWord session, VRegTable *table)
{
    return Script_Write(session, table);
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_LoadFromFile(ConfigClass *configClass, const char *file,
                                                          VRegTable **table)
{
    return Script_LoadFromFile(configClass, file, table);
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_SetInternalVRegs(void *unused, VRegTable **table)
{
    return Script_SetInternalVRegs(unused, table);
}
