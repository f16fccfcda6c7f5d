// What is the same on every platform.
#include "platform/file.h"

#include <cstdlib>
#include <cstring>

char *File_PathIn(const char *directory, const char *name)
{
    const size_t length = strlen(directory);
    const size_t nameSize = strlen(name) + 1;
    auto *path = static_cast<char *>(malloc(length + 1 + nameSize));
    if (path == nullptr)
        return nullptr;
    memcpy(path, directory, length);
    path[length] = FileSeparator;
    memcpy(path + length + 1, name, nameSize);
    return path;
}
