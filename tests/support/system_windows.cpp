#include "tests/support/system.h"

#include <filesystem>

#include <gtest/gtest.h>

#include <windows.h>

const char nullDevice[] = "NUL";
const char moduleSuffix[] = ".DLL";

// Numbers of processes come again, and with them what a process that died has left.
std::string System_MakeDirectory()
{
    static int number;
    std::string path;
    do
        path = testing::TempDir() + "velk-" + std::to_string(GetCurrentProcessId()) + "-" +
               std::to_string(++number);
    while (!std::filesystem::create_directory(path));
    return path;
}

bool System_HasSanitizer(const std::string & /*name*/)
{
    return false;
}

bool Module_IsLoaded(const std::string &module)
{
    return GetModuleHandleA((module + moduleSuffix).c_str()) != nullptr;
}

void File_Extend(const std::string &path, int64_t size)
{
    HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    LARGE_INTEGER end;
    end.QuadPart = size;
    EXPECT_TRUE(SetFilePointerEx(file, end, nullptr, FILE_BEGIN) && SetEndOfFile(file));
    CloseHandle(file);
}
