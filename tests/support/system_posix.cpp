#include "tests/support/system.h"

#include <dlfcn.h>

const char nullDevice[] = "/dev/null";
const char moduleSuffix[] = ".so";

bool Module_IsLoaded(const std::string &module)
{
    void *const loaded = dlopen((module + moduleSuffix).c_str(), RTLD_LAZY | RTLD_NOLOAD);
    return loaded != nullptr && dlclose(loaded) == 0;
}
