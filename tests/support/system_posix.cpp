#include "tests/support/system.h"

#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <unistd.h>

#include <gtest/gtest.h>

const char nullDevice[] = "/dev/null";
const char moduleSuffix[] = ".so";

std::string System_MakeDirectory()
{
    return mkdtemp((testing::TempDir() + "velk-XXXXXX").data());
}

bool System_HasSanitizer(const std::string &name)
{
    return dlsym(RTLD_DEFAULT, ("__" + name + "_init").c_str()) != nullptr;
}

bool Module_IsLoaded(const std::string &module)
{
    void *const loaded = dlopen((module + moduleSuffix).c_str(), RTLD_LAZY | RTLD_NOLOAD);
    return loaded != nullptr && dlclose(loaded) == 0;
}

void File_Extend(const std::string &path, int64_t size)
{
    EXPECT_EQ(truncate(path.c_str(), size), 0);
}
