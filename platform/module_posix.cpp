#include "platform/module.h"

#include <cstdlib>
#include <cstring>
#include <dlfcn.h>

constexpr char ModuleSuffix[] = ".so";

int32_t Module_Load(const char *name, Module *module)
{
    *module = nullptr;
    const size_t length = strlen(name);
    auto *file = static_cast<char *>(malloc(length + sizeof ModuleSuffix));
    if (file == nullptr)
        return -1;
    memcpy(file, name, length);
    memcpy(file + length, ModuleSuffix, sizeof ModuleSuffix);
    *module = dlopen(file, RTLD_NOW | RTLD_LOCAL);
    free(file);
    return *module != nullptr ? 0 : -1;
}

void *Module_Resolve(Module module, const char *entry)
{
    return dlsym(module, entry);
}

void Module_Release(Module module)
{
    dlclose(module);
}
