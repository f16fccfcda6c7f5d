// The seam to the platform's files, for the library and the accessors that ship with it. A call goes
// on after an interrupt by itself, and all but File_ReadNext after a short transfer.
#ifndef VELK_PLATFORM_FILE_H
#define VELK_PLATFORM_FILE_H

#include <cstddef>
#include <cstdint>

enum FileStatus : int32_t {
    FileDone = 0,
    FileMissing = -1, // there is no such file
    FileDenied = -2,  // this process may not
    FileFailed = -3,  // anything else
    FileNoMemory = -4 // there is no memory for the path
};

// An open file, to be passed by value and closed once. `handle` is the platform's.
struct File {
    intptr_t handle;
};

FileStatus File_OpenToRead(const char *path, File *file);

// Opens an existing file for reading and changing in place.
FileStatus File_OpenToChange(const char *path, File *file);

void File_Close(File file);

// The size in bytes; 0 for what states none (a pipe, most files that the kernel makes up), negative on
// failure.
int64_t File_Size(File file);

// What may stand between a directory and a name. The first does in the paths that are composed.
extern const char FileSeparators[];

// The path of a file in a directory, in a block of its own that the caller frees; null when memory runs
// out.
char *File_PathIn(const char *directory, const char *name);

// The absolute path of a file that is named relative to a directory, which may itself be relative to the
// working directory; an absolute name stands as it is. In a block of its own that the caller frees; null
// when memory runs out, or the working directory has no name.
char *File_AbsolutePath(const char *directory, const char *name);

// Reads on from where the last call stopped, up to `size` bytes, or as many as are there by now: their
// number, 0 at the end of the file only, negative on failure.
int64_t File_ReadNext(File file, void *buffer, size_t size);

// Reads `size` bytes from `offset`, or fewer at the end of the file: their number, negative on failure.
int64_t File_ReadAt(File file, uint64_t offset, void *buffer, size_t size);

// Writes all of `size` bytes at `offset`.
FileStatus File_WriteAt(File file, uint64_t offset, const void *bytes, size_t size);

// Has the system put on disk what was written.
FileStatus File_Flush(File file);

// Replaces a file as a whole, or makes it. The bytes go to a new file in the same directory, which is
// flushed and renamed over the old one; so a reader sees the old contents or the new ones, and a
// failure leaves the old file and nothing else. A file that this process may not write is such a
// failure. The permission bits are the old file's, and its owner and group as far as this process may
// give them; a group that is another gets no more than others had. A new file has 0666 less the umask.
// A symbolic link is followed, one to nothing too. What is no regular file (a pipe, a terminal) is
// written in place. What a process that died in here has left in the directory is removed.
//
// On Windows the access list stands for owner, group and permission bits, a link to nothing is refused, and
// so may be a file that another program has open.
FileStatus File_Replace(const char *path, const void *bytes, size_t size);

#endif
