#include "engine/definitions.h"

#include "options/option_def.h"
#include "platform/file.h"
#include "values/limits.h"
#include "values/text.h"

#include <cstdlib>

// The longest list of definition files in the catalogue, with its terminator, in bytes.
constexpr int32_t FileListSize = 128;

// A load under way.
struct Loading {
    Definitions *definitions;
    const DefinitionSource *source;
    uint32_t numbersLeft; // that number lists may still hold
};

// Loads one definition file.
using FileLoader = StatusCode (*)(Loading *loading, const char *path);

// Loads the listed files in order, up to the first that fails.
static StatusCode LoadFiles(Loading *loading, char *list, FileLoader load)
{
    char *position = nullptr;
    for (const char *name = Text_NextFileName(list, &position); name != nullptr;
         name = Text_NextFileName(nullptr, &position)) {
        char *path = File_PathIn(loading->source->directory, name);
        if (path == nullptr)
            return StatusOutOfMemory;
        const StatusCode status = load(loading, path);
        free(path);
        if (status < 0)
            return status;
    }
    return 0;
}

static StatusCode LoadKeyFile(Loading *loading, const char *path)
{
    return KeyFile_Load(&loading->definitions->keys, path, loading->source->findComputed,
                        &loading->numbersLeft);
}

static StatusCode LoadOptionFile(Loading *loading, const char *path)
{
    return OptionFile_Load(&loading->definitions->options, path, &loading->definitions->keys,
                           &loading->numbersLeft);
}

static bool GetFileList(const DefinitionSource *source, const char *item, char *list)
{
    return IniGetStringIntoBuffer(source->catalogue, source->className, item, list, FileListSize) == 1;
}

static StatusCode LoadKeys(Loading *loading)
{
    char list[FileListSize];
    if (!GetFileList(loading->source, "Keys", list))
        return StatusBadClass;
    if (NameTable_Init(&loading->definitions->keys, NameBuckets) < 0)
        return StatusEngineOutOfMemory;
    return LoadFiles(loading, list, LoadKeyFile) < 0 ? StatusKeyLoadFailed : 0;
}

static StatusCode LoadOptions(Loading *loading)
{
    char list[FileListSize];
    if (!GetFileList(loading->source, "Options", list))
        return StatusBadClass;
    if (NameTable_Init(&loading->definitions->options, NameBuckets) < 0)
        return StatusEngineOutOfMemory;
    if (LoadFiles(loading, list, LoadOptionFile) < 0)
        return StatusOptionLoadFailed;
    return OptionTable_Validate(&loading->definitions->options);
}

StatusCode Definitions_Load(Definitions *definitions, const DefinitionSource *source)
{
    Loading loading = {definitions, source, NumberListLimit};
    const StatusCode status = LoadKeys(&loading);
    return status < 0 ? status : LoadOptions(&loading);
}

// Both name tables may still be without buckets. Options go first, since they refer to keys.
void Definitions_Release(Definitions *definitions)
{
    OptionTable_Free(&definitions->options);
    KeyTable_Destroy(&definitions->keys);
}
