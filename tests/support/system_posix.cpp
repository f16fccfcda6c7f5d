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

int64_t System_ResidentBytes()
{
    int64_t size = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> size >> resident;
    return resident * sysconf(_SC_PAGESIZE);
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

std::string Module_FileOf(const void *address)
{
    Dl_info module;
    return dladdr(address, &module) != 0 ? module.dli_fname : "";
}

HeldModule::HeldModule(const std::string &module) : handle(dlopen((module + moduleSuffix).c_str(), RTLD_NOW))
{
}

HeldModule::~HeldModule()
{
    dlclose(handle);
}

void *HeldModule::Find(const char *entry) const
{
    return dlsym(handle, entry);
}

struct TextPipe::Ends {
    int reading, writing;
};

TextPipe::TextPipe(const std::string &text) : ends(new Ends)
{
    EXPECT_EQ(pipe(&ends->reading), 0);
    EXPECT_EQ(write(ends->writing, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    close(ends->writing);
    path = "/dev/fd/" + std::to_string(ends->reading);
}

TextPipe::~TextPipe()
{
    close(ends->reading);
}

void File_Extend(const std::string &path, int64_t size)
{
    EXPECT_EQ(truncate(path.c_str(), size), 0);
}

std::string Directory_Link(const std::string &directory)
{
    std::filesystem::create_symlink("file", directory + "/link");
    return "link";
}
