// The accessor of the tests: it does what the test's script says, and writes down what it was asked.
#include <dlfcn.h>

#include <filesystem>

#include "tests/support/board.h"
#include "velk32_accessor.h"

static StatusCode Answer(StatusCode planned)
{
    return ++script->entered == script->failing ? scriptedFailure : planned;
}

// A null text leaves the place alone.
static StatusCode Answer(StatusCode planned, const char *registers, VRegTable **place)
{
    const bool isDone = registers == nullptr || Table_Append(registers, place);
    return Answer(isDone ? planned : StatusOutOfMemory);
}

VELK_ACCESSOR_ENTRY int32_t VELK_CALL Cfg_GetVersion(void)
{
    return 1;
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_InitializeAccessor(ConfigClass *configClass,
                                                                const char *directory)
{
    script->configClass = configClass;
    const char *value = "?";
    const StatusCode status = CfgClass_GetAccessorData(configClass, "Private", &value);
    script->calls += "Initialize(" + std::filesystem::path(directory).filename().string() + "," +
                     std::to_string(status) + "," + value + ") ";
    return Answer(script->initialize);
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_CloseAccessor(void)
{
    static const char here = 0; // not an entry point: a copy may lack each of them
    Dl_info module;
    dladdr(&here, &module);
    script->calls += "Close(" + std::filesystem::path(module.dli_fname).stem().string() + ") ";
    return Answer(script->close);
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_CreateSession(uint32_t first, uint32_t second, VelkWord *session)
{
    script->calls += "CreateSession(" + std::to_string(first) + "," + std::to_string(second) + ") ";
    *session = 77;
    return Answer(script->createSession);
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_CloseSession(VelkWord session)
{
    script->calls += "CloseSession(" + std::to_string(session) + ") ";
    return Answer(-99);
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_Read(VelkWord session, Config *config)
{
    script->calls += "Read(" + std::to_string(session) + (TableOf(config) == nullptr ? ") " : ",table) ");
    return Answer(script->read, script->registers, &TableOf(config));
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_Write(VelkWord session, VRegTable *table)
{
    script->calls += "Write(" + std::to_string(session) + ": " + Table_Text(table) + ") ";
    return Answer(script->write);
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_LoadFromFile(ConfigClass * /*configClass*/, const char *file,
                                                          VRegTable **table)
{
    script->calls += "LoadFromFile(" + std::filesystem::path(file).filename().string() +
                     (*table == nullptr ? ") " : ",table) ");
    return Answer(script->loadFromFile, script->oldFile, table);
}

VELK_ACCESSOR_ENTRY StatusCode VELK_CALL Cfg_SetInternalVRegs(void *unused, VRegTable **table)
{
    script->calls += unused == nullptr ? "SetInternal " : "SetInternal(something) ";
    return Answer(script->setInternal, script->internal, table);
}
