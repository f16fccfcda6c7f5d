// Paths are bytes in the ANSI code page. Inside they are made absolute and wide, so that they may be longer
// than 260 characters.
#include "platform/file.h"

#include "platform/new_file.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <cwchar>

#include <windows.h>

const char FileSeparators[] = "\\/";

constexpr DWORD ShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// A path of as many characters needs the long form; the names of new files beside it fit below that too.
constexpr size_t LongPath = MAX_PATH - 1 - NewFileLength;
constexpr wchar_t LongPrefix[] = L"\\\\?\\";
constexpr wchar_t LongNetworkPrefix[] = L"\\\\?\\UNC";

// One call moves at most as many bytes.
constexpr size_t LargestTransfer = size_t{1} << 30;

// How often a file that somebody else has open is asked for, and the milliseconds between: another save is
// soon done, and so is who looks through new files.
constexpr int BusyAttempts = 50;
constexpr DWORD BusyPause = 10;

// The attributes of an old file that a new one takes.
constexpr DWORD KeptAttributes = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ENCRYPTED;

// The file that is to be replaced: its absolute path, and an open handle of one that exists.
struct Target {
    wchar_t *path; // owned
    HANDLE old;    // INVALID_HANDLE_VALUE: there is none
};

// A path in the directory of the target, with room for the name of a new file at its end.
struct Neighbour {
    wchar_t *path; // owned
    wchar_t *name;
};

struct NewFile {
    HANDLE handle;
    const wchar_t *path;
};

static FileStatus Status_FromError(DWORD error)
{
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_BAD_NETPATH:
    case ERROR_INVALID_DRIVE:
        return FileMissing;
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
        return FileDenied;
    default:
        return FileFailed;
    }
}

static FileStatus Status_OfLastCall()
{
    return Status_FromError(GetLastError());
}

// A place for `count` characters, or null.
static wchar_t *Wide_New(size_t count)
{
    return static_cast<wchar_t *>(malloc(count * sizeof(wchar_t)));
}

// Two texts behind each other, or null.
static wchar_t *Wide_Join(const wchar_t *text, size_t length, const wchar_t *more)
{
    const size_t moreSize = wcslen(more) + 1;
    wchar_t *joined = Wide_New(length + moreSize);
    if (joined == nullptr)
        return nullptr;
    wmemcpy(joined, text, length);
    wmemcpy(joined + length, more, moreSize);
    return joined;
}

// Bytes that mean nothing in the code page name no file.
static FileStatus Wide_FromText(const char *text, wchar_t **wide)
{
    const int size = MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, text, -1, nullptr, 0);
    if (size < 1)
        return FileMissing;
    *wide = Wide_New(static_cast<size_t>(size));
    if (*wide == nullptr)
        return FileNoMemory;
    MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, text, -1, *wide, size);
    return FileDone;
}

// Whether a text stands for just these characters: those that the code page lacks become others.
static bool Text_StandsFor(const char *text, const wchar_t *wide)
{
    wchar_t *again;
    if (Wide_FromText(text, &again) != FileDone)
        return false;
    const bool stands = wcscmp(again, wide) == 0;
    free(again);
    return stands;
}

// Null when memory runs out, or when a character does not stand in the code page.
static char *Text_FromWide(const wchar_t *wide)
{
    const int size = WideCharToMultiByte(CP_ACP, 0, wide, -1, nullptr, 0, nullptr, nullptr);
    char *text = size < 1 ? nullptr : static_cast<char *>(malloc(static_cast<size_t>(size)));
    if (text == nullptr)
        return nullptr;
    WideCharToMultiByte(CP_ACP, 0, wide, -1, text, size, nullptr, nullptr);
    if (Text_StandsFor(text, wide))
        return text;
    free(text);
    return nullptr;
}

// The absolute form of a path, in a block of its own.
static FileStatus Path_MakeAbsolute(const char *path, wchar_t **absolute)
{
    wchar_t *wide;
    *absolute = nullptr;
    FileStatus status = Wide_FromText(path, &wide);
    if (status != FileDone)
        return status;
    const DWORD size = GetFullPathNameW(wide, 0, nullptr, nullptr);
    status = size == 0 ? Status_OfLastCall() : FileNoMemory;
    *absolute = size == 0 ? nullptr : Wide_New(size);
    if (*absolute != nullptr) {
        // It grows only if another thread changes the working directory meanwhile.
        const DWORD length = GetFullPathNameW(wide, size, *absolute, nullptr);
        status = length > 0 && length < size ? FileDone : FileFailed;
    }
    free(wide);
    if (status != FileDone) {
        free(*absolute);
        *absolute = nullptr;
    }
    return status;
}

// Takes over an absolute path and gives it in the form that may be long; null without memory.
static wchar_t *Path_Lengthen(wchar_t *path)
{
    const bool isNetwork = path[0] == L'\\' && path[1] == L'\\';
    const bool isOfDevice = isNetwork && (path[2] == L'?' || path[2] == L'.');
    if (wcslen(path) < LongPath || isOfDevice)
        return path;
    wchar_t *lengthened = isNetwork ? Wide_Join(LongNetworkPrefix, wcslen(LongNetworkPrefix), path + 1)
                                    : Wide_Join(LongPrefix, wcslen(LongPrefix), path);
    free(path);
    return lengthened;
}

static FileStatus Path_Widen(const char *path, wchar_t **wide)
{
    const FileStatus status = Path_MakeAbsolute(path, wide);
    if (status != FileDone)
        return status;
    *wide = Path_Lengthen(*wide);
    return *wide != nullptr ? FileDone : FileNoMemory;
}

static bool Error_IsOfBusyFile(DWORD error)
{
    return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION;
}

// A directory opens for reading only, and fails when it is read.
static FileStatus Path_Open(const wchar_t *path, DWORD access, HANDLE *handle)
{
    const DWORD flags = access == GENERIC_READ ? FILE_FLAG_BACKUP_SEMANTICS : FILE_ATTRIBUTE_NORMAL;
    *handle = CreateFileW(path, access, ShareAll, nullptr, OPEN_EXISTING, flags, nullptr);
    return *handle != INVALID_HANDLE_VALUE ? FileDone : Status_OfLastCall();
}

// The characters of a path up to its last separator and with it.
static size_t Path_DirectoryLength(const wchar_t *path)
{
    const wchar_t *separator = wcsrchr(path, L'\\');
    return separator == nullptr ? 0 : static_cast<size_t>(separator - path) + 1;
}

static FileStatus Handle_Write(HANDLE handle, const void *bytes, size_t size)
{
    const auto *at = static_cast<const char *>(bytes);
    while (size > 0) {
        DWORD written = 0;
        const auto piece = static_cast<DWORD>(std::min(size, LargestTransfer));
        if (WriteFile(handle, at, piece, &written, nullptr) == 0)
            return Status_OfLastCall();
        if (written == 0)
            return FileFailed;
        at += written;
        size -= written;
    }
    return FileDone;
}

// What has nothing to flush to says that it knows no such call.
static FileStatus Handle_Flush(HANDLE handle)
{
    if (FlushFileBuffers(handle) != 0)
        return FileDone;
    const DWORD error = GetLastError();
    return error == ERROR_INVALID_HANDLE || error == ERROR_INVALID_FUNCTION ? FileDone
                                                                            : Status_FromError(error);
}

// A file system without access lists has none to give.
static bool Error_IsOfNoLists(DWORD error)
{
    return error == ERROR_INVALID_FUNCTION || error == ERROR_NOT_SUPPORTED ||
           error == ERROR_CALL_NOT_IMPLEMENTED;
}

// Gives a new file the access list of an old one.
static FileStatus Handle_TakeAccess(HANDLE handle, HANDLE old)
{
    DWORD size = 0;
    if (GetKernelObjectSecurity(old, DACL_SECURITY_INFORMATION, nullptr, 0, &size) == 0 &&
        GetLastError() != ERROR_INSUFFICIENT_BUFFER)
        return Error_IsOfNoLists(GetLastError()) ? FileDone : Status_OfLastCall();
    void *list = malloc(size);
    if (list == nullptr)
        return FileNoMemory;
    const bool isDone = GetKernelObjectSecurity(old, DACL_SECURITY_INFORMATION, list, size, &size) != 0 &&
                        SetKernelObjectSecurity(handle, DACL_SECURITY_INFORMATION, list) != 0;
    const DWORD error = GetLastError();
    free(list);
    return isDone || Error_IsOfNoLists(error) ? FileDone : Status_FromError(error);
}

static bool Entry_IsOfNewFile(const WIN32_FIND_DATAW &entry)
{
    char name[NewFileLength + 1] = {};
    if (wcslen(entry.cFileName) != NewFileLength ||
        (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0)
        return false;
    for (size_t at = 0; at < NewFileLength; ++at)
        name[at] = entry.cFileName[at] < 0x80 ? static_cast<char>(entry.cFileName[at]) : '?';
    return Name_IsOfNewFile(name);
}

// A living process does not share the file for writing, so that this fails.
static void Path_RemoveIfDead(const wchar_t *path)
{
    HANDLE handle = CreateFileW(path, GENERIC_WRITE | DELETE, 0, nullptr, OPEN_EXISTING,
                                FILE_FLAG_DELETE_ON_CLOSE | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (handle != INVALID_HANDLE_VALUE)
        CloseHandle(handle);
}

// Without memory its path is null.
static Neighbour Target_Neighbour(const Target &target)
{
    const size_t length = Path_DirectoryLength(target.path);
    wchar_t *path = Wide_New(length + NewFileLength + 1);
    if (path == nullptr)
        return {nullptr, nullptr};
    wmemcpy(path, target.path, length);
    return {path, path + length};
}

// Removes what dead processes left. A directory that can't be listed stays as it is.
static void Target_Sweep(const Target &target, const Neighbour &place)
{
    const wchar_t *name = target.path + Path_DirectoryLength(target.path);
    wcscpy(place.name, L".velk-save-*");
    WIN32_FIND_DATAW entry;
    HANDLE list = FindFirstFileW(place.path, &entry);
    if (list == INVALID_HANDLE_VALUE)
        return;
    do {
        if (!Entry_IsOfNewFile(entry) || _wcsicmp(entry.cFileName, name) == 0)
            continue;
        wcscpy(place.name, entry.cFileName);
        Path_RemoveIfDead(place.path);
    } while (FindNextFileW(list, &entry) != 0);
    FindClose(list);
}

static void NewFile_Name(wchar_t *wide, int attempt)
{
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    const uint64_t time = uint64_t{now.dwHighDateTime} << 32 | now.dwLowDateTime;
    char name[NewFileLength + 1];
    NewFile_ComposeName(name, GetCurrentProcessId(), time, attempt);
    std::copy(name, name + sizeof name, wide);
}

static DWORD Target_Attributes(const Target &target)
{
    const DWORD found = GetFileAttributesW(target.path);
    const DWORD kept = found == INVALID_FILE_ATTRIBUTES ? 0 : found & KeptAttributes;
    return kept != 0 ? kept : FILE_ATTRIBUTE_NORMAL;
}

// Makes an empty file. While it is open nobody else may write to it, which tells others that it lives; it may
// be read and renamed.
static FileStatus NewFile_Make(const Target &target, const Neighbour &place, NewFile *file)
{
    // A shared directory may grant all but the change of access lists, which a file without an old one needs
    // not.
    const DWORD access = GENERIC_WRITE | DELETE | (target.old != INVALID_HANDLE_VALUE ? WRITE_DAC : 0);
    file->path = place.path;
    for (int attempt = 0; attempt < NewFileAttempts; ++attempt) {
        NewFile_Name(place.name, attempt);
        file->handle = CreateFileW(file->path, access, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                                   CREATE_NEW, Target_Attributes(target), nullptr);
        if (file->handle != INVALID_HANDLE_VALUE)
            return FileDone;
        if (GetLastError() != ERROR_FILE_EXISTS)
            return Status_OfLastCall();
    }
    return FileFailed;
}

static FileStatus NewFile_TakeName(const NewFile &file, const Target &target)
{
    constexpr DWORD flags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    DWORD error = 0;
    for (int attempt = 0; attempt < BusyAttempts; ++attempt) {
        if (MoveFileExW(file.path, target.path, flags) != 0)
            return FileDone;
        error = GetLastError();
        if (error != ERROR_ACCESS_DENIED && !Error_IsOfBusyFile(error))
            break;
        Sleep(BusyPause);
    }
    return Status_FromError(error);
}

// The old file is closed as soon as it has told its access list: an open one would refuse the rename, also
// that of another save, which does not wait for as long as a flush may take.
static FileStatus NewFile_TakeAccess(const NewFile &file, Target *target)
{
    if (target->old == INVALID_HANDLE_VALUE)
        return FileDone;
    const FileStatus status = Handle_TakeAccess(file.handle, target->old);
    CloseHandle(target->old);
    target->old = INVALID_HANDLE_VALUE;
    return status;
}

static FileStatus NewFile_Complete(const NewFile &file, Target *target, const void *bytes, size_t size)
{
    FileStatus status = NewFile_TakeAccess(file, target);
    if (status == FileDone)
        status = Handle_Write(file.handle, bytes, size);
    if (status == FileDone)
        status = Handle_Flush(file.handle);
    return status == FileDone ? NewFile_TakeName(file, *target) : status;
}

// By its handle: the access list that it has taken may not grant this by its name.
static void NewFile_Remove(const NewFile &file)
{
    FILE_DISPOSITION_INFO removal = {};
    removal.DeleteFile = TRUE;
    SetFileInformationByHandle(file.handle, FileDispositionInfo, &removal, sizeof removal);
}

static FileStatus Neighbour_Replace(const Neighbour &place, Target *target, const void *bytes, size_t size)
{
    Target_Sweep(*target, place);
    NewFile file;
    FileStatus status = NewFile_Make(*target, place, &file);
    if (status != FileDone)
        return status;
    status = NewFile_Complete(file, target, bytes, size);
    if (status != FileDone)
        NewFile_Remove(file);
    CloseHandle(file.handle);
    return status;
}

static FileStatus Target_Replace(Target *target, const void *bytes, size_t size)
{
    const Neighbour place = Target_Neighbour(*target);
    if (place.path == nullptr)
        return FileNoMemory;
    const FileStatus status = Neighbour_Replace(place, target, bytes, size);
    free(place.path);
    return status;
}

// Opens an old file, which has to be one that this process may write to.
static FileStatus Target_OpenOld(Target *target)
{
    FileStatus status = FileFailed;
    for (int attempt = 0; attempt < BusyAttempts; ++attempt) {
        status = Path_Open(target->path, GENERIC_WRITE | READ_CONTROL, &target->old);
        if (status == FileDone || !Error_IsOfBusyFile(GetLastError()))
            break;
        Sleep(BusyPause);
    }
    return status;
}

// The path that an open file really has, links followed, in place of the one that led there.
static FileStatus Target_Resolve(Target *target)
{
    const DWORD size = GetFinalPathNameByHandleW(target->old, nullptr, 0, FILE_NAME_NORMALIZED);
    if (size == 0)
        return FileDone; // not every file system tells
    wchar_t *path = Wide_New(size);
    if (path == nullptr)
        return FileNoMemory;
    const DWORD length = GetFinalPathNameByHandleW(target->old, path, size, FILE_NAME_NORMALIZED);
    if (length == 0 || length >= size) {
        free(path);
        return FileFailed;
    }
    free(target->path);
    target->path = path;
    return FileDone;
}

static FileStatus Target_WriteOver(Target *target, const void *bytes, size_t size)
{
    if (GetFileType(target->old) != FILE_TYPE_DISK)
        return Handle_Write(target->old, bytes, size);
    const FileStatus status = Target_Resolve(target);
    return status == FileDone ? Target_Replace(target, bytes, size) : status;
}

// Where a path leads to nothing but is there, it is a link to nothing: replacing the link would not make what
// it leads to.
static FileStatus Target_Make(Target *target, const void *bytes, size_t size)
{
    constexpr DWORD refused = FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_DIRECTORY;
    const DWORD found = GetFileAttributesW(target->path);
    if (found != INVALID_FILE_ATTRIBUTES && (found & refused) != 0)
        return FileFailed;
    return Target_Replace(target, bytes, size);
}

FileStatus File_Replace(const char *path, const void *bytes, size_t size)
{
    Target target = {nullptr, INVALID_HANDLE_VALUE};
    FileStatus status = Path_Widen(path, &target.path);
    if (status != FileDone)
        return status;
    status = Target_OpenOld(&target);
    if (status == FileDone)
        status = Target_WriteOver(&target, bytes, size);
    else if (status == FileMissing)
        status = Target_Make(&target, bytes, size);
    if (target.old != INVALID_HANDLE_VALUE)
        CloseHandle(target.old);
    free(target.path);
    return status;
}

static bool Name_IsAbsolute(const char *name)
{
    return *name == '\\' || *name == '/' || (*name != '\0' && name[1] == ':');
}

char *File_AbsolutePath(const char *directory, const char *name)
{
    char *path = Name_IsAbsolute(name) ? nullptr : File_PathIn(directory, name);
    if (path == nullptr && !Name_IsAbsolute(name))
        return nullptr;
    wchar_t *absolute;
    const FileStatus status = Path_MakeAbsolute(path != nullptr ? path : name, &absolute);
    free(path);
    if (status != FileDone)
        return nullptr;
    char *text = Text_FromWide(absolute);
    free(absolute);
    return text;
}

static FileStatus File_Open(const char *path, DWORD access, File *file)
{
    wchar_t *wide;
    FileStatus status = Path_Widen(path, &wide);
    if (status != FileDone)
        return status;
    HANDLE handle;
    status = Path_Open(wide, access, &handle);
    free(wide);
    if (status == FileDone)
        file->handle = reinterpret_cast<intptr_t>(handle);
    return status;
}

static HANDLE File_Handle(File file)
{
    return reinterpret_cast<HANDLE>(file.handle);
}

FileStatus File_OpenToRead(const char *path, File *file)
{
    return File_Open(path, GENERIC_READ, file);
}

FileStatus File_OpenToChange(const char *path, File *file)
{
    return File_Open(path, GENERIC_READ | GENERIC_WRITE, file);
}

void File_Close(File file)
{
    CloseHandle(File_Handle(file));
}

int64_t File_Size(File file)
{
    if (GetFileType(File_Handle(file)) != FILE_TYPE_DISK)
        return 0;
    LARGE_INTEGER size;
    return GetFileSizeEx(File_Handle(file), &size) != 0 ? size.QuadPart : -1;
}

// The bytes read; 0 at the end, which a pipe tells by breaking; -1 on failure.
static int64_t Handle_Read(HANDLE handle, void *buffer, size_t size, OVERLAPPED *place)
{
    DWORD got = 0;
    if (ReadFile(handle, buffer, static_cast<DWORD>(std::min(size, LargestTransfer)), &got, place) != 0)
        return got;
    const DWORD error = GetLastError();
    return error == ERROR_HANDLE_EOF || error == ERROR_BROKEN_PIPE ? 0 : -1;
}

int64_t File_ReadNext(File file, void *buffer, size_t size)
{
    return Handle_Read(File_Handle(file), buffer, size, nullptr);
}

static OVERLAPPED Place_At(uint64_t offset)
{
    OVERLAPPED place = {};
    place.Offset = static_cast<DWORD>(offset);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return place;
}

int64_t File_ReadAt(File file, uint64_t offset, void *buffer, size_t size)
{
    size_t done = 0;
    while (done < size) {
        OVERLAPPED place = Place_At(offset + done);
        const int64_t got =
            Handle_Read(File_Handle(file), static_cast<char *>(buffer) + done, size - done, &place);
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
        OVERLAPPED place = Place_At(offset + done);
        DWORD written = 0;
        const auto piece = static_cast<DWORD>(std::min(size - done, LargestTransfer));
        if (WriteFile(File_Handle(file), static_cast<const char *>(bytes) + done, piece, &written, &place) ==
            0)
            return Status_OfLastCall();
        if (written == 0)
            return FileFailed;
        done += written;
    }
    return FileDone;
}

FileStatus File_Flush(File file)
{
    return Handle_Flush(File_Handle(file));
}
