#include "tests/support/system.h"

#include <windows.h>

const char nullDevice[] = "NUL";
const char moduleSuffix[] = ".DLL";

bool Module_IsLoaded(const std::string &module)
{
    return GetModuleHandleA((module + moduleSuffix).c_str()) != nullptr;
}
