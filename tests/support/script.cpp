// What the scripted accessor does. It stands in the test program: a module that brings the C++ library along
// takes a place of the process on Windows at each of the many times that it is loaded.
#include "tests/support/script.h"

#include <filesystem>

#include "tests/support/board.h"

// A null text leaves the place alone.
static StatusCode Answer(StatusCode planned, const char *registers, VRegTable **place)
{
    const bool isDone = registers == nullptr || Table_Append(registers, place);
    return isDone ? planned : StatusOutOfMemory;
}

StatusCode Script_InitializeAccessor(ConfigClass *configClass, const char *directory)
{
    script->configClass = configClass;
    const char *value = "?";
    const StatusCode status = CfgClass_GetAccessorData(configClass, "Private", &value);
    script->calls += "Initialize(" + std::filesystem::path(directory).filename().string() + "," +
                     std::to_string(status) + "," + value + ") ";
    return script->initialize;
}

StatusCode Script_CloseAccessor(const void *module)
{
    script->calls += "Close(" + std::filesystem::path(Module_FileOf(module)).stem().string() + ") ";
    return script->close;
}

StatusCode Script_CreateSession(uint32_t first, uint32_t second, VelkWord *session)
{
    script->calls += "CreateSession(" + std::to_string(first) + "," + std::to_string(second) + ") ";
    *session = 77;
    return script->createSession;
}

StatusCode Script_CloseSession(VelkWord session)
{
    script->calls += "CloseSession(" + std::to_string(session) + ") ";
    return -99;
}

StatusCode Script_Read(VelkWord session, Config *config)
{
    script->calls += "Read(" + std::to_string(session) + (TableOf(config) == nullptr ? ") " : ",table) ");
    return Answer(script->read, script->registers, &TableOf(config));
}

StatusCode Script_Write(VelkWord session, VRegTable *table)
{
    script->calls += "Write(" + std::to_string(session) + ": " + Table_Text(table) + ") ";
    return script->write;
}

StatusCode Script_LoadFromFile(ConfigClass * /*configClass*/, const char *file, VRegTable **table)
{
    script->calls += "LoadFromFile(" + std::filesystem::path(file).filename().string() +
                     (*table == nullptr ? ") " : ",table) ");
    return Answer(script->loadFromFile, script->oldFile, table);
}

StatusCode Script_SetInternalVRegs(void *unused, VRegTable **table)
{
    script->calls += unused == nullptr ? "SetInternal " : "SetInternal(something) ";
    return Answer(script->setInternal, script->internal, table);
}
