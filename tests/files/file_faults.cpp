// Stands between a program and the file functions of the C library, for the library and the image accessor:
// counts their calls and makes a chosen one go wrong. What is interposed is what they call; a check of what
// the system sees of them finds a function that is missing here. VELK_FILE_FAULTS_WITHOUT names a function
// that is to pass uncounted, which shows that the check sees it.
//
// The headers that declare these functions stay out, for their declarations say more than is needed here.
#include "tests/files/file_faults.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <sys/types.h>

extern "C" {
FileFaults fileFaults;
}

namespace
{

constexpr int MostFiles = 1024;

enum class Turn { Pass, Fail, Halve };

// The last part of the path that each descriptor was opened by.
char objects[MostFiles][sizeof FileCall::object];

char *Object_Of(int file)
{
    static char none[sizeof FileCall::object];
    return file >= 0 && file < MostFiles ? objects[file] : none;
}

// Whether this is the first further call on what was moved in half.
bool Call_GoesOn(const FileCall &call)
{
    if (!fileFaults.isShort || fileFaults.failed != 0 || fileFaults.nth >= fileFaults.count)
        return false;
    const FileCall &chosen = fileFaults.calls[fileFaults.nth - 1];
    return strcmp(chosen.name, call.name) == 0 && strcmp(chosen.object, call.object) == 0;
}

Turn Call_Turn(const char *name, const char *object)
{
    FileFaults &faults = fileFaults;
    const char *without = getenv("VELK_FILE_FAULTS_WITHOUT");
    if (!faults.isArmed || (without != nullptr && strcmp(name, without) == 0))
        return Turn::Pass;
    if (faults.count == MostFileCalls)
        abort();
    FileCall &call = faults.calls[faults.count++];
    call.name = name;
    strncpy(call.object, object, sizeof call.object - 1);

    if (faults.count == faults.nth && faults.isShort)
        return Turn::Halve;
    if (faults.error == 0 || !(faults.count == faults.nth || Call_GoesOn(call)))
        return Turn::Pass;
    faults.failed = faults.count;
    errno = faults.error;
    return Turn::Fail;
}

template <typename Function> Function *Next(Function *, const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

} // namespace

// A function of the C library: its name, the object of a call, type and value of a failed call, parameters,
// arguments.
#define CALL(name, object, Result, failure, parameters, ...)                                                 \
    Result name parameters                                                                                   \
    {                                                                                                        \
        return Call_Turn(#name, object) == Turn::Fail ? (failure) : Next(name, #name)(__VA_ARGS__);          \
    }

// One that moves `size` bytes.
#define TRANSFER(name, parameters, ...)                                                                      \
    ssize_t name parameters                                                                                  \
    {                                                                                                        \
        const Turn turn = Call_Turn(#name, Object_Of(file));                                                 \
        size = turn == Turn::Halve ? (size + 1) / 2 : size;                                                  \
        return turn == Turn::Fail ? -1 : Next(name, #name)(__VA_ARGS__);                                     \
    }

// One whose descriptor is gone all the same.
#define CLOSE(name, object, Parameter)                                                                       \
    int name(Parameter closed)                                                                               \
    {                                                                                                        \
        const Turn turn = Call_Turn(#name, object);                                                          \
        const int error = errno;                                                                             \
        const int result = Next(name, #name)(closed);                                                        \
        errno = turn == Turn::Fail ? error : errno;                                                          \
        return turn == Turn::Fail ? -1 : result;                                                             \
    }

extern "C" {

CALL(fstat64, Object_Of(file), int, -1, (int file, void *found), file, found)
CALL(fstatat64, basename(path), int, -1, (int at, const char *path, void *found, int how), at, path, found,
     how)
CALL(fsync, Object_Of(file), int, -1, (int file), file)
CALL(flock, Object_Of(file), int, -1, (int file, int how), file, how)
CALL(fchmod, Object_Of(file), int, -1, (int file, mode_t mode), file, mode)
CALL(fchown, Object_Of(file), int, -1, (int file, uid_t user, gid_t group), file, user, group)
CALL(renameat, basename(path), int, -1, (int at, const char *path, int to, const char *name), at, path, to,
     name)
CALL(unlinkat, basename(path), int, -1, (int at, const char *path, int how), at, path, how)
CALL(readlink, basename(path), ssize_t, -1, (const char *path, char *text, size_t size), path, text, size)
CALL(getcwd, "", char *, nullptr, (char *path, size_t size), path, size)
CALL(fdopendir, Object_Of(file), void *, nullptr, (int file), file)
CALL(readdir64, "", void *, nullptr, (void *list), list)
CLOSE(close, Object_Of(closed), int)
CLOSE(closedir, "", void *)
TRANSFER(read, (int file, void *bytes, size_t size), file, bytes, size)
TRANSFER(write, (int file, const void *bytes, size_t size), file, bytes, size)
TRANSFER(pread64, (int file, void *bytes, size_t size, off_t place), file, bytes, size, place)
TRANSFER(pwrite64, (int file, const void *bytes, size_t size, off_t place), file, bytes, size, place)

int openat64(int at, const char *path, int how, mode_t mode)
{
    if (Call_Turn("openat64", basename(path)) == Turn::Fail)
        return -1;
    const int file = Next(openat64, "openat64")(at, path, how, mode);
    if (file >= 0)
        strncpy(Object_Of(file), basename(path), sizeof FileCall::object - 1);
    return file;
}
}
