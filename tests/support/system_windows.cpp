#include "tests/support/system.h"

#include <filesystem>
#include <thread>

#include <gtest/gtest.h>

#include <windows.h>

#include <psapi.h>

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

int64_t System_ResidentBytes()
{
    PROCESS_MEMORY_COUNTERS counters = {};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return static_cast<int64_t>(counters.WorkingSetSize);
}

bool System_HasSanitizer(const std::string & /*name*/)
{
    return false;
}

bool Module_IsLoaded(const std::string &module)
{
    return GetModuleHandleA((module + moduleSuffix).c_str()) != nullptr;
}

std::string Module_FileOf(const void *address)
{
    HMODULE module = nullptr;
    char path[MAX_PATH] = "";
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       static_cast<const char *>(address), &module);
    GetModuleFileNameA(module, path, sizeof path);
    return path;
}

HeldModule::HeldModule(const std::string &module) : handle(LoadLibraryA((module + moduleSuffix).c_str()))
{
}

HeldModule::~HeldModule()
{
    FreeLibrary(static_cast<HMODULE>(handle));
}

void *HeldModule::Find(const char *entry) const
{
    return reinterpret_cast<void *>(GetProcAddress(static_cast<HMODULE>(handle), entry));
}

struct TextPipe::Ends {
    HANDLE writing;
    std::jthread writer;
};

// A named pipe gives its text to whoever opens it, so somebody has to wait for that.
TextPipe::TextPipe(const std::string &text) : ends(new Ends)
{
    static int number;
    path = R"(\\.\pipe\velk-)" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++number);
    ends->writing = CreateNamedPipeA(path.c_str(), PIPE_ACCESS_OUTBOUND, PIPE_TYPE_BYTE | PIPE_WAIT, 1,
                                     static_cast<DWORD>(text.size()), 0, 0, nullptr);
    EXPECT_NE(ends->writing, INVALID_HANDLE_VALUE);
    ends->writer = std::jthread([pipe = ends->writing, text] {
        DWORD written;
        ConnectNamedPipe(pipe, nullptr);
        WriteFile(pipe, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
        CloseHandle(pipe);
    });
}

// Where nobody has opened it, this does, so that the writer comes to its end.
TextPipe::~TextPipe()
{
    HANDLE reading = CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (reading != INVALID_HANDLE_VALUE)
        CloseHandle(reading);
}

void File_Extend(const std::string &path, int64_t size)
{
    HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    LARGE_INTEGER end;
    end.QuadPart = size;
    EXPECT_TRUE(SetFilePointerEx(file, end, nullptr, FILE_BEGIN) && SetEndOfFile(file));
    CloseHandle(file);
}

std::string Directory_Link(const std::string & /*directory*/)
{
    return "file";
}
