// What is the same on every platform.
#include "platform/file.h"

#include <cstdlib>
#include <cstring>

// Two separators at the start would make the name that of a server, on some systems.
static bool Path_IsRoot(const char *path)
{
    return *path != '\0' && path[1] == '\0' && strchr(FileSeparators, *path) != nullptr;
}

char *File_PathIn(const char *directory, const char *name)
{
    const size_t length = strlen(directory);
    const size_t nameSize = strlen(name) + 1;
    auto *path = static_cast<char *>(malloc(length + 1 + nameSize));
    if (path == nullptr)
        return nullptr;
    memcpy(path, directory, length);
    char *end = path + length;
    if (!Path_IsRoot(directory))
        *end++ = FileSeparators[0];
    memcpy(end, name, nameSize);
    return path;
}
