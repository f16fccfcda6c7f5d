#include "platform/file.h"

#include "platform/new_file.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

static_assert(sizeof(off_t) == 8, "files over 2 GiB need 64-bit offsets");

const char FileSeparators[] = "/";

constexpr int MostLinks = 40;
constexpr mode_t PermissionBits = 0777;

// The file that is to be replaced: `name` in `directory`, with what is known of an existing one.
struct Target {
    int directory;
    const char *name;
    bool exists;
    struct stat old;
};

struct NewFile {
    int handle;
    char name[NewFileLength + 1];
};

static FileStatus Status_FromError(int error)
{
    switch (error) {
    case ENOENT:
    case ENOTDIR:
        return FileMissing;
    case EACCES:
    case EPERM:
    case EROFS:
        return FileDenied;
    default:
        return FileFailed;
    }
}

// Makes a system call, again for as long as it is interrupted: file systems over a network or in a process
// interrupt others than those that wait. A close is not for this, for its descriptor is gone.
template <typename Call> static auto System_Call(Call call)
{
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

static int Handle_OpenAt(int directory, const char *path, int flags, mode_t mode)
{
    return System_Call([&] { return openat(directory, path, flags | O_CLOEXEC | O_NOCTTY, mode); });
}

static int Handle_Open(const char *path, int flags)
{
    return Handle_OpenAt(AT_FDCWD, path, flags, 0);
}

// A write of nothing is a failure, whatever errno says then: it could come again without end.
static FileStatus Handle_Write(int handle, const void *bytes, size_t size)
{
    const auto *at = static_cast<const char *>(bytes);
    while (size > 0) {
        const ssize_t written = System_Call([&] { return write(handle, at, size); });
        if (written <= 0)
            return Status_FromError(errno);
        at += written;
        size -= static_cast<size_t>(written);
    }
    return FileDone;
}

// EINVAL: this kind of file has nothing to flush to.
static FileStatus Handle_Flush(int handle)
{
    const int result = System_Call([&] { return fsync(handle); });
    return result == 0 || errno == EINVAL ? FileDone : Status_FromError(errno);
}

static bool Handle_Lock(int handle)
{
    return System_Call([&] { return flock(handle, LOCK_EX | LOCK_NB); }) == 0;
}

static int Handle_Look(int handle, struct stat *found)
{
    return System_Call([&] { return fstat(handle, found); });
}

// A symbolic link is not followed.
static int Name_Look(int directory, const char *name, struct stat *found)
{
    return System_Call([&] { return fstatat(directory, name, found, AT_SYMLINK_NOFOLLOW); });
}

static void Name_Remove(int directory, const char *name)
{
    System_Call([&] { return unlinkat(directory, name, 0); });
}

// Whether an open file is still the one of that name in the directory: FileMissing if it is not.
static FileStatus Handle_CheckName(int handle, int directory, const char *name)
{
    struct stat own;
    struct stat named;
    if (Handle_Look(handle, &own) != 0 || Name_Look(directory, name, &named) != 0)
        return Status_FromError(errno);
    return own.st_dev == named.st_dev && own.st_ino == named.st_ino ? FileDone : FileMissing;
}

static FileStatus File_Open(const char *path, int flags, File *file)
{
    const int handle = Handle_Open(path, flags);
    if (handle < 0)
        return Status_FromError(errno);
    file->handle = handle;
    return FileDone;
}

static int File_Handle(File file)
{
    return static_cast<int>(file.handle);
}

// What a symbolic link says, in a block of its own; null if the path is no link, or there is nothing.
static FileStatus Link_Read(const char *path, char **link)
{
    *link = nullptr;
    char *text = nullptr;
    for (size_t size = 256;; size *= 2) {
        auto *grown = static_cast<char *>(realloc(text, size));
        if (grown == nullptr) {
            free(text);
            return FileNoMemory;
        }
        text = grown;
        const ssize_t length = System_Call([&] { return readlink(path, text, size); });
        if (length < 0) {
            const int reason = errno;
            free(text);
            return reason == EINVAL || reason == ENOENT ? FileDone : Status_FromError(reason);
        }
        if (static_cast<size_t>(length) < size) {
            text[length] = '\0';
            *link = text;
            return FileDone;
        }
    }
}

// The bytes of a path up to its last separator and with it.
static size_t Path_DirectoryLength(const char *path)
{
    const char *separator = strrchr(path, '/');
    return separator == nullptr ? 0 : static_cast<size_t>(separator - path) + 1;
}

// The first `length` bytes of a path and another behind them, in a block of its own, or null.
static char *Path_Join(const char *path, size_t length, const char *more)
{
    const size_t moreSize = strlen(more) + 1;
    auto *joined = static_cast<char *>(malloc(length + moreSize));
    if (joined == nullptr)
        return nullptr;
    memcpy(joined, path, length);
    memcpy(joined + length, more, moreSize);
    return joined;
}

// Follows the links that a path ends in to a name that is no link, there or not: a rename over the
// path itself would replace the link. Receives the path in a block of its own.
static FileStatus Path_Resolve(const char *path, char **resolved)
{
    FileStatus status = FileNoMemory;
    char *place = Path_Join("", 0, path);
    for (int links = 0; place != nullptr && links <= MostLinks; ++links) {
        char *link;
        status = Link_Read(place, &link);
        if (status != FileDone)
            break;
        if (link == nullptr) {
            *resolved = place;
            return FileDone;
        }
        char *next = Path_Join(place, *link == '/' ? 0 : Path_DirectoryLength(place), link);
        free(link);
        free(place);
        place = next;
        status = place == nullptr ? FileNoMemory : FileFailed; // the latter of too many links
    }
    free(place);
    return status;
}

static int Directory_OpenOf(char *path)
{
    const size_t length = Path_DirectoryLength(path);
    if (length == 0)
        return Handle_Open(".", O_PATH | O_DIRECTORY);
    const char first = path[length];
    path[length] = 0;
    const int directory = Handle_Open(path, O_PATH | O_DIRECTORY);
    path[length] = first;
    return directory;
}

static void Directory_RemoveIfDead(int directory, const char *name)
{
    struct stat found;
    if (Name_Look(directory, name, &found) != 0 || !S_ISREG(found.st_mode))
        return;
    int handle = Handle_OpenAt(directory, name, O_WRONLY | O_NOFOLLOW | O_NONBLOCK, 0);
    if (handle < 0) // one that already has the permission bits of a file not to be written
        handle = Handle_OpenAt(directory, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK, 0);
    if (handle < 0)
        return;
    if (Handle_Lock(handle) && Handle_CheckName(handle, directory, name) == FileDone)
        Name_Remove(directory, name);
    close(handle);
}

// Removes what dead processes left. A directory that can't be listed stays as it is.
static void Target_Sweep(const Target &target)
{
    const int handle = Handle_OpenAt(target.directory, ".", O_RDONLY | O_DIRECTORY, 0);
    if (handle < 0)
        return;
    DIR *list = fdopendir(handle);
    if (list == nullptr) {
        close(handle);
        return;
    }
    for (const dirent *entry = readdir(list); entry != nullptr; entry = readdir(list))
        if (Name_IsOfNewFile(entry->d_name) && strcmp(entry->d_name, target.name) != 0)
            Directory_RemoveIfDead(target.directory, entry->d_name);
    closedir(list);
}

static void NewFile_Name(NewFile *file, int attempt)
{
    timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    const uint64_t time = static_cast<uint64_t>(now.tv_sec) * 1000000000 + static_cast<uint64_t>(now.tv_nsec);
    NewFile_ComposeName(file->name, static_cast<uint64_t>(getpid()), time, attempt);
}

// Makes an empty file and locks it. Between the two another process may take it for a dead one's and
// remove it: the lock counts unless the file has lost its name. A file system without locks has no
// process that removes either.
static FileStatus NewFile_Make(const Target &target, NewFile *file)
{
    const mode_t mode = target.exists ? 0600 : 0666;
    for (int attempt = 0; attempt < NewFileAttempts; ++attempt) {
        NewFile_Name(file, attempt);
        file->handle =
            Handle_OpenAt(target.directory, file->name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, mode);
        if (file->handle < 0 && errno == EEXIST)
            continue;
        if (file->handle < 0)
            return Status_FromError(errno);
        const bool isLocked = Handle_Lock(file->handle) || errno != EWOULDBLOCK;
        if (isLocked && Handle_CheckName(file->handle, target.directory, file->name) != FileMissing)
            return FileDone;
        close(file->handle);
    }
    return FileFailed;
}

// Only some processes may give a file away; what others make stays theirs. Members of a group that is not the
// old file's were others to it, and get no more than those. The owner comes first, because a change of owner
// may cut permission bits.
static FileStatus NewFile_TakeAttributes(const NewFile &file, const struct stat &old)
{
    constexpr auto anyUser = static_cast<uid_t>(-1);
    mode_t mode = old.st_mode & PermissionBits;
    if (System_Call([&] { return fchown(file.handle, old.st_uid, old.st_gid); }) != 0 &&
        System_Call([&] { return fchown(file.handle, anyUser, old.st_gid); }) != 0)
        mode &= ~mode_t{S_IRWXG} | (mode & S_IRWXO) << 3;
    const int result = System_Call([&] { return fchmod(file.handle, mode); });
    return result == 0 ? FileDone : Status_FromError(errno);
}

static FileStatus NewFile_TakeName(const NewFile &file, const Target &target)
{
    const int result =
        System_Call([&] { return renameat(target.directory, file.name, target.directory, target.name); });
    return result == 0 ? FileDone : Status_FromError(errno);
}

static FileStatus NewFile_Complete(const NewFile &file, const Target &target, const void *bytes, size_t size)
{
    FileStatus status = Handle_Write(file.handle, bytes, size);
    if (status == FileDone && target.exists)
        status = NewFile_TakeAttributes(file, target.old);
    if (status == FileDone)
        status = Handle_Flush(file.handle);
    return status == FileDone ? NewFile_TakeName(file, target) : status;
}

static void Target_FlushDirectory(const Target &target)
{
    const int handle = Handle_OpenAt(target.directory, ".", O_RDONLY | O_DIRECTORY, 0);
    if (handle < 0)
        return;
    Handle_Flush(handle);
    close(handle);
}

static FileStatus Target_Replace(const Target &target, const void *bytes, size_t size)
{
    Target_Sweep(target);
    NewFile file;
    FileStatus status = NewFile_Make(target, &file);
    if (status != FileDone)
        return status;
    status = NewFile_Complete(file, target, bytes, size);
    if (status == FileDone)
        Target_FlushDirectory(target);
    if (status != FileDone)
        Name_Remove(target.directory, file.name);
    close(file.handle);
    return status;
}

// The old file is looked at by its name in the directory: another save may just have replaced the
// one that was opened. None there means a path of the kind that the system makes up for an open file,
// which leads elsewhere than it says.
static FileStatus Directory_Replace(int directory, const char *name, bool exists, const void *bytes,
                                    size_t size)
{
    Target target = {directory, name, exists, {}};
    if (exists && (Name_Look(directory, name, &target.old) != 0 || !S_ISREG(target.old.st_mode)))
        return FileFailed;
    return Target_Replace(target, bytes, size);
}

static FileStatus Path_Replace(const char *path, bool exists, const void *bytes, size_t size)
{
    char *resolved = nullptr;
    FileStatus status = Path_Resolve(path, &resolved);
    if (status != FileDone)
        return status;

    const int directory = Directory_OpenOf(resolved);
    if (directory < 0)
        status = Status_FromError(errno);
    if (directory >= 0) {
        status = Directory_Replace(directory, resolved + Path_DirectoryLength(resolved), exists, bytes, size);
        close(directory);
    }
    free(resolved);
    return status;
}

// In a block of its own, or null.
static char *Path_OfWorkingDirectory()
{
    char *path = nullptr;
    for (size_t size = 256;; size *= 2) {
        auto *grown = static_cast<char *>(realloc(path, size));
        if (grown == nullptr)
            break;
        path = grown;
        if (getcwd(path, size) != nullptr)
            return path;
        if (errno != ERANGE)
            break;
    }
    free(path);
    return nullptr;
}

char *File_AbsolutePath(const char *directory, const char *name)
{
    if (*name == '/')
        return Path_Join("", 0, name);
    if (*directory == '/')
        return File_PathIn(directory, name);
    char *working = Path_OfWorkingDirectory();
    if (working == nullptr)
        return nullptr;
    char *absolute = File_PathIn(working, directory);
    free(working);
    if (absolute == nullptr)
        return nullptr;
    char *path = File_PathIn(absolute, name);
    free(absolute);
    return path;
}

FileStatus File_OpenToRead(const char *path, File *file)
{
    return File_Open(path, O_RDONLY, file);
}

FileStatus File_OpenToChange(const char *path, File *file)
{
    return File_Open(path, O_RDWR, file);
}

void File_Close(File file)
{
    close(File_Handle(file));
}

int64_t File_Size(File file)
{
    struct stat found;
    if (Handle_Look(File_Handle(file), &found) != 0)
        return -1;
    return S_ISREG(found.st_mode) ? found.st_size : 0;
}

int64_t File_ReadNext(File file, void *buffer, size_t size)
{
    return System_Call([&] { return read(File_Handle(file), buffer, size); });
}

int64_t File_ReadAt(File file, uint64_t offset, void *buffer, size_t size)
{
    size_t done = 0;
    while (done < size) {
        const ssize_t got = System_Call([&] {
            return pread(File_Handle(file), static_cast<char *>(buffer) + done, size - done,
                         static_cast<off_t>(offset + done));
        });
        if (got < 0)
            return -1;
        if (got == 0)
            break;
        done += static_cast<size_t>(got);
    }
    return static_cast<int64_t>(done);
}

FileStatus File_WriteAt(File file, uint64_t offset, const void *bytes, size_t size)
{
    size_t done = 0;
    while (done < size) {
        const ssize_t written = System_Call([&] {
            return pwrite(File_Handle(file), static_cast<const char *>(bytes) + done, size - done,
                          static_cast<off_t>(offset + done));
        });
        if (written <= 0)
            return Status_FromError(errno);
        done += static_cast<size_t>(written);
    }
    return FileDone;
}

FileStatus File_Flush(File file)
{
    return Handle_Flush(File_Handle(file));
}

FileStatus File_Replace(const char *path, const void *bytes, size_t size)
{
    const int handle = Handle_Open(path, O_WRONLY);
    if (handle < 0)
        return errno == ENOENT ? Path_Replace(path, false, bytes, size) : Status_FromError(errno);

    struct stat old;
    FileStatus status = Handle_Look(handle, &old) == 0 ? FileDone : FileFailed;
    const bool isInPlace = status == FileDone && !S_ISREG(old.st_mode);
    if (isInPlace)
        status = Handle_Write(handle, bytes, size);
    close(handle);
    return isInPlace || status != FileDone ? status : Path_Replace(path, true, bytes, size);
}
