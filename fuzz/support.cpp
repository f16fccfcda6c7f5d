#include "fuzz/support.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dlfcn.h>
#include <map>

#include "configs/config.h"
#include "engine/config_class.h"
#include "platform/file.h"
#include "platform/module.h"
#include "platform/profile.h"
#include "values/vreg_table.h"

// The time is in nanoseconds.
constexpr int64_t BytesPerInput = 256 << 10;
constexpr int64_t BytesPerByte = 256;
constexpr int64_t TimePerInput = 500000000;
constexpr int64_t TimePerByte = 250000;

static int64_t liveBytes, mostBytes;
static uint64_t allocations; // so far
static unsigned inputsTried, inputsLoaded;
static std::map<std::string, std::string> memoryFiles;
static size_t readSoFar; // of the file opened last

// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the sanitizer's names. Its
// functions are absent in a build without it.
extern "C" {
__attribute__((weak)) void __asan_init();
__attribute__((weak)) int
__sanitizer_install_malloc_and_free_hooks(void (*onAllocation)(const volatile void *, size_t),
                                          void (*onRelease)(const volatile void *));
__attribute__((weak)) size_t __sanitizer_get_allocated_size(const volatile void *block);

const char *__asan_default_options()
{
    return "allocator_may_return_null=1:detect_stack_use_after_return=1:quarantine_size_mb=16:"
           "strict_string_checks=1";
}
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

static void Count_Allocation(const volatile void *, size_t size)
{
    ++allocations;
    liveBytes += static_cast<int64_t>(size);
    mostBytes = std::max(mostBytes, liveBytes);
}

static void Count_Release(const volatile void *block)
{
    if (block != nullptr)
        liveBytes -= static_cast<int64_t>(__sanitizer_get_allocated_size(block));
}

// In the form of the fuzzer's own figures.
static void Counts_Print()
{
    fprintf(stderr, "stat::inputs_tried: %u\nstat::inputs_loaded: %u\n", inputsTried, inputsLoaded);
}

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    if (__sanitizer_install_malloc_and_free_hooks != nullptr)
        __sanitizer_install_malloc_and_free_hooks(Count_Allocation, Count_Release);
    return atexit(Counts_Print);
}

void Check(bool holds, const char *what)
{
    if (holds)
        return;
    fprintf(stderr, "Does not hold: %s\n", what);
    abort();
}

static int64_t Time_Now()
{
    timespec now;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return int64_t{now.tv_sec} * 1000000000 + now.tv_nsec;
}

Bounds::Bounds(size_t size) : size(static_cast<int64_t>(size)), start(Time_Now())
{
    liveBytes = mostBytes = 0;
}

Bounds::~Bounds()
{
    const bool isWatched = __asan_init != nullptr; // whose allocator alone tells
    Check(!isWatched || allocations > 0, "memory is watched");
    Check(mostBytes <= BytesPerInput + BytesPerByte * size, "memory stays in proportion to the input");
    Check(Time_Now() - start <= TimePerInput + TimePerByte * size, "time stays in proportion to the input");
}

void Input_Count(bool isLoaded)
{
    ++inputsTried;
    inputsLoaded += isLoaded ? 1 : 0;
}

std::vector<std::string> Input_Split(const uint8_t *data, size_t size, size_t parts)
{
    static const std::string separator = "====\n";
    std::string rest(reinterpret_cast<const char *>(data), size);
    std::vector<std::string> split(parts);
    for (size_t n = 0; n < parts; ++n) {
        const size_t end = n + 1 < parts ? rest.find(separator) : std::string::npos;
        split[n] = rest.substr(0, end);
        rest.erase(0, end == std::string::npos ? end : end + separator.size());
    }
    return split;
}

uint32_t Bytes_Take(Bytes *bytes)
{
    return bytes->used < bytes->text.size() ? static_cast<uint8_t>(bytes->text[bytes->used++]) : 0;
}

uint32_t Bytes_TakeNumber(Bytes *bytes)
{
    uint32_t number = Bytes_Take(bytes);
    for (int n = number < 0x80 ? 4 : 0; n < 4; ++n)
        number = number << 8 | Bytes_Take(bytes);
    return number;
}

std::string &MemoryFile(const std::string &name)
{
    return memoryFiles[name];
}

void MemoryFiles_Clear()
{
    memoryFiles.clear();
}

Desk Desk_Open()
{
    Desk desk = {};
    if (VelkInitializeConfigEngine("", &desk.engine) != 0)
        return desk;
    char *name;
    if (IniNthSectionName(desk.engine->catalogue, 1, &name) == 0 ||
        VelkCreateConfig(desk.engine, name, &desk.config) != 0)
        return desk;
    Check(VelkCreateConfig(desk.engine, name, &desk.other) == 0, "a class that is loaded is found");
    return desk;
}

void Desk_Close(const Desk *desk)
{
    if (desk->engine != nullptr)
        VelkCloseConfigEngine(desk->engine);
    for (Config *config : {desk->config, desk->other})
        if (config != nullptr)
            VelkDiscardConfig(config);
}

std::string Registers_Text(const Config *config, uint32_t flags)
{
    std::string text;
    const uint32_t count = VRegTable_Count(config->table);
    for (uint32_t n = 0; n < count; ++n) {
        const VReg &slot = config->table->regs[n];
        const uint32_t kind = slot.id & VRegKindMask;
        const List *list = kind == VRegListNibble ? Word_AsList(slot.value) : nullptr;
        text += std::to_string(slot.id) + (slot.flags & flags ? "*=" : "=");
        if (kind == VRegStringNibble && slot.value != 0)
            text += Word_AsString(slot.value);
        for (int32_t i = 0; list != nullptr && i < list->count; ++i)
            text += std::to_string(list->items[i]) + ",";
        text += (VReg_HasPayload(slot.id) ? "" : std::to_string(slot.value)) + "\n";
    }
    return text;
}

// The seam of modules: every name is the target itself, but for the empty one.
int32_t Module_Load(const char *name, Module *module)
{
    *module = *name == '\0' ? nullptr : &inputsTried;
    return *module != nullptr ? 0 : -1;
}

void *Module_Resolve(Module, const char *entry)
{
    return dlsym(RTLD_DEFAULT, entry);
}

void Module_Release(Module)
{
}

// The seam of files. A handle is the address of the file's bytes; no two files are read on at once.
static std::string &File_Bytes(File file)
{
    return *reinterpret_cast<std::string *>(file.handle);
}

char *File_PathIn(const char *, const char *name)
{
    return strdup(name);
}

char *File_AbsolutePath(const char *, const char *name)
{
    return strdup(name);
}

FileStatus File_OpenToRead(const char *path, File *file)
{
    const auto found = memoryFiles.find(path);
    if (found == memoryFiles.end())
        return FileMissing;
    file->handle = reinterpret_cast<intptr_t>(&found->second);
    readSoFar = 0;
    return FileDone;
}

FileStatus File_OpenToChange(const char *path, File *file)
{
    return File_OpenToRead(path, file);
}

void File_Close(File)
{
}

int64_t File_Size(File file)
{
    return static_cast<int64_t>(File_Bytes(file).size());
}

int64_t File_ReadAt(File file, uint64_t offset, void *buffer, size_t size)
{
    const std::string &bytes = File_Bytes(file);
    return offset > bytes.size()
               ? 0
               : static_cast<int64_t>(bytes.copy(static_cast<char *>(buffer), size, offset));
}

int64_t File_ReadNext(File file, void *buffer, size_t size)
{
    const int64_t got = File_ReadAt(file, readSoFar, buffer, size);
    readSoFar += static_cast<size_t>(got);
    return got;
}

FileStatus File_WriteAt(File file, uint64_t offset, const void *bytes, size_t size)
{
    File_Bytes(file).replace(offset, size, static_cast<const char *>(bytes), size);
    return FileDone;
}

FileStatus File_Flush(File)
{
    return FileDone;
}

FileStatus File_Replace(const char *path, const void *bytes, size_t size)
{
    memoryFiles[path].assign(static_cast<const char *>(bytes), size);
    return FileDone;
}
