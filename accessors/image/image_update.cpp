#include "accessors/image/image_update.h"

#include "accessors/image/image_file.h"
#include "platform/lock.h"

#include <cstdlib>
#include <cstring>

// A stretch of bytes that differ.
struct Run {
    uint32_t start;
    uint32_t end;
};

// The whole of an image, in a block of its own.
struct ImageBytes {
    uint8_t *bytes;
    size_t size;
};

// Two threads that replace one image would each bring back what the other has changed.
static constinit Lock replacing;

// The first run at or behind `from`; it starts at the end of the board if there is none.
static Run BoardUpdate_NextRun(const BoardUpdate *update, uint32_t from)
{
    Run run;
    run.start = from;
    while (run.start < update->map->span && update->present[run.start] == update->next[run.start])
        ++run.start;
    run.end = run.start;
    while (run.end < update->map->span && update->present[run.end] != update->next[run.end])
        ++run.end;
    return run;
}

static StatusCode BoardUpdate_Write(const BoardUpdate *update, File image)
{
    for (Run run = BoardUpdate_NextRun(update, 0); run.start < update->map->span;
         run = BoardUpdate_NextRun(update, run.end)) {
        const FileStatus status =
            File_WriteAt(image, update->start + run.start, update->next + run.start, run.end - run.start);
        if (status < 0)
            return StatusEepromWriteFailed;
    }
    return File_Flush(image) < 0 ? StatusEepromWriteFailed : 0;
}

// Bytes that were not written are not compared: a board may change some by itself.
static StatusCode BoardUpdate_Verify(const BoardUpdate *update, File image)
{
    if (File_ReadAt(image, update->start, update->readBack, update->map->span) !=
        static_cast<int64_t>(update->map->span))
        return StatusEepromReadFailed;
    for (Run run = BoardUpdate_NextRun(update, 0); run.start < update->map->span;
         run = BoardUpdate_NextRun(update, run.end)) {
        if (memcmp(update->readBack + run.start, update->next + run.start, run.end - run.start) != 0)
            return StatusEepromWriteFailed;
    }
    return 0;
}

static StatusCode BoardUpdate_WriteInPlace(const BoardUpdate *update)
{
    File image;
    StatusCode status = Image_Status(File_OpenToChange(update->map->path, &image));
    if (status < 0)
        return status;
    status = Image_FindBoard(image, update->start, update->map->stride); // it may have shrunk since
    if (status == 0)
        status = BoardUpdate_Write(update, image);
    if (status == 0)
        status = BoardUpdate_Verify(update, image);
    File_Close(image);
    return status;
}

// What states no size is no regular file, and cannot be replaced.
static StatusCode Image_ReadWhole(File image, ImageBytes *whole)
{
    const int64_t size = File_Size(image);
    if (size < 0)
        return StatusEepromReadFailed;
    if (size == 0)
        return StatusEepromWriteFailed;
    if (static_cast<uint64_t>(size) > SIZE_MAX)
        return StatusOutOfMemory;
    whole->size = static_cast<size_t>(size);
    whole->bytes = static_cast<uint8_t *>(malloc(whole->size));
    if (whole->bytes == nullptr)
        return StatusOutOfMemory;
    return File_ReadAt(image, 0, whole->bytes, whole->size) == size ? 0 : StatusEepromReadFailed;
}

// The image as it is now, and not as the session found it: other boards may have changed meanwhile.
static StatusCode BoardUpdate_ReadImage(const BoardUpdate *update, ImageBytes *whole)
{
    File image;
    StatusCode status = Image_Status(File_OpenToRead(update->map->path, &image));
    if (status < 0)
        return status;
    status = Image_FindBoard(image, update->start, update->map->stride);
    if (status == 0)
        status = Image_ReadWhole(image, whole);
    File_Close(image);
    if (status == 0 && update->start + update->map->span > whole->size)
        return StatusEepromInvalid; // it has shrunk since
    return status;
}

static StatusCode BoardUpdate_ReplaceBytes(const BoardUpdate *update, const ImageBytes *whole)
{
    for (Run run = BoardUpdate_NextRun(update, 0); run.start < update->map->span;
         run = BoardUpdate_NextRun(update, run.end))
        memcpy(whole->bytes + update->start + run.start, update->next + run.start, run.end - run.start);
    switch (File_Replace(update->map->path, whole->bytes, whole->size)) {
    case FileDone:
        return 0;
    case FileDenied:
        return StatusNoPrivilege;
    case FileNoMemory:
        return StatusOutOfMemory;
    default:
        return StatusEepromWriteFailed;
    }
}

static StatusCode BoardUpdate_Replace(const BoardUpdate *update)
{
    const LockGuard guard(&replacing);
    ImageBytes whole = {nullptr, 0};
    StatusCode status = BoardUpdate_ReadImage(update, &whole);
    if (status == 0)
        status = BoardUpdate_ReplaceBytes(update, &whole);
    free(whole.bytes);
    return status;
}

StatusCode BoardUpdate_Store(const BoardUpdate *update)
{
    if (memcmp(update->present, update->next, update->map->span) == 0)
        return 0;
    switch (update->map->write) {
    case WriteReplace:
        return BoardUpdate_Replace(update);
    case WriteInPlace:
        return BoardUpdate_WriteInPlace(update);
    case WriteNever:
        return StatusNoPrivilege;
    }
    return StatusInternalError;
}
