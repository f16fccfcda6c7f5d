#include "platform/module.h"

#include <cstdlib>
#include <cstring>

#include <windows.h>

constexpr char ModuleSuffix[] = ".DLL";

// The file of a module in a block of its own, or null. The loader wants its own separator.
static char *Module_FileName(const char *name)
{
    const size_t length = strlen(name);
    auto *file = static_cast<char *>(malloc(length + sizeof ModuleSuffix));
    if (file == nullptr)
        return nullptr;
    for (size_t at = 0; at < length; ++at)
        file[at] = name[at] == '/' ? '\\' : name[at];
    memcpy(file + length, ModuleSuffix, sizeof ModuleSuffix);
    return file;
}

int32_t Module_Load(const char *name, Module *module)
{
    *module = nullptr;
    char *file = Module_FileName(name);
    if (file == nullptr)
        return -1;
    // What a module lacks is the client's to tell, not for a box on the screen.
    const DWORD mode = GetThreadErrorMode();
    SetThreadErrorMode(mode | SEM_FAILCRITICALERRORS, nullptr);
    *module = LoadLibraryA(file);
    SetThreadErrorMode(mode, nullptr);
    free(file);
    return *module != nullptr ? 0 : -1;
}

void *Module_Resolve(Module module, const char *entry)
{
    return reinterpret_cast<void *>(GetProcAddress(static_cast<HMODULE>(module), entry));
}

void Module_Release(Module module)
{
    FreeLibrary(static_cast<HMODULE>(module));
}
