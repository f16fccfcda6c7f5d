#include "accessors/image/image_session.h"

#include "accessors/image/image_board.h"
#include "platform/file.h"

#include <cstdlib>
#include <cstring>

// A stretch of bytes that differ.
struct Run {
    uint32_t start;
    uint32_t end;
};

// Bytes of a board on their way to the image. `readBack` is room for as many.
struct BoardUpdate {
    const uint8_t *present;
    uint8_t *next;
    uint8_t *readBack;
    uint32_t size;
};

static StatusCode OpenStatus_ToStatus(FileStatus status)
{
    switch (status) {
    case FileDone:
        return 0;
    case FileMissing:
        return StatusHardwareAccessFailed;
    case FileDenied:
        return StatusNoPrivilege;
    case FileFailed:
        return StatusHardwareInitFailed;
    case FileNoMemory:
        return StatusOutOfMemory;
    }
    return StatusInternalError;
}

// Gives 1, 0 behind the end of the image, negative on failure. No file reaches beyond 63 bits.
static int64_t Image_Probe(File image, uint64_t position)
{
    uint8_t byte;
    return position > INT64_MAX ? 0 : File_ReadAt(image, position, &byte, 1);
}

// The whole stride has to be there. Its last byte is looked at first, so that no memory is taken for a
// board that the image does not hold.
static StatusCode Image_FindBoard(File image, uint64_t start, uint32_t stride)
{
    const int64_t last = Image_Probe(image, start + stride - 1);
    if (last != 0)
        return last < 0 ? StatusEepromReadFailed : 0;
    const int64_t first = Image_Probe(image, start);
    if (first < 0)
        return StatusEepromReadFailed;
    return first == 0 ? StatusHardwareAccessFailed : StatusEepromInvalid;
}

static StatusCode ImageSession_Read(ImageSession *session, File image)
{
    const StatusCode status = Image_FindBoard(image, session->start, session->map->stride);
    if (status < 0)
        return status;
    const size_t span = session->map->span;
    if (span >= SIZE_MAX / 2) // a write takes room for two boards
        return StatusOutOfMemory;
    session->bytes = static_cast<uint8_t *>(malloc(span + 1));
    if (session->bytes == nullptr)
        return StatusOutOfMemory;
    if (File_ReadAt(image, session->start, session->bytes, span) != static_cast<int64_t>(span))
        return StatusEepromReadFailed;
    return 0;
}

static StatusCode ImageSession_OpenImage(ImageSession *session)
{
    File image;
    StatusCode status = OpenStatus_ToStatus(File_OpenToRead(session->map->path, &image));
    if (status < 0)
        return status;
    status = ImageSession_Read(session, image);
    File_Close(image);
    return status;
}

StatusCode ImageSession_Open(const ImageMap *map, uint32_t board, ImageSession **out)
{
    ImageSession *session = static_cast<ImageSession *>(calloc(1, sizeof(ImageSession)));
    if (session == nullptr)
        return StatusOutOfMemory;
    session->map = map;
    session->start = uint64_t{board} * map->stride;
    const StatusCode status = ImageSession_OpenImage(session);
    if (status < 0) {
        ImageSession_Close(session);
        return status;
    }
    *out = session;
    return 0;
}

void ImageSession_Close(ImageSession *session)
{
    free(session->bytes);
    free(session);
}

// The first run at or behind `from`; it starts at the end of the board if there is none.
static Run BoardUpdate_NextRun(const BoardUpdate *update, uint32_t from)
{
    Run run;
    run.start = from;
    while (run.start < update->size && update->present[run.start] == update->next[run.start])
        ++run.start;
    run.end = run.start;
    while (run.end < update->size && update->present[run.end] != update->next[run.end])
        ++run.end;
    return run;
}

static StatusCode BoardUpdate_Write(const BoardUpdate *update, File image, uint64_t start)
{
    for (Run run = BoardUpdate_NextRun(update, 0); run.start < update->size;
         run = BoardUpdate_NextRun(update, run.end)) {
        if (File_WriteAt(image, start + run.start, update->next + run.start, run.end - run.start) < 0)
            return StatusEepromWriteFailed;
    }
    return File_Flush(image) < 0 ? StatusEepromWriteFailed : 0;
}

// Bytes that were not written are not compared: a board may change some by itself.
static StatusCode BoardUpdate_Verify(const BoardUpdate *update, File image, uint64_t start)
{
    if (File_ReadAt(image, start, update->readBack, update->size) != static_cast<int64_t>(update->size))
        return StatusEepromReadFailed;
    for (Run run = BoardUpdate_NextRun(update, 0); run.start < update->size;
         run = BoardUpdate_NextRun(update, run.end)) {
        if (memcmp(update->readBack + run.start, update->next + run.start, run.end - run.start) != 0)
            return StatusEepromWriteFailed;
    }
    return 0;
}

// An image with nothing to change is not opened, so one that may only be read takes such a write.
static StatusCode ImageSession_Store(const ImageSession *session, const BoardUpdate *update)
{
    if (memcmp(update->present, update->next, update->size) == 0)
        return 0;
    File image;
    StatusCode status = OpenStatus_ToStatus(File_OpenToChange(session->map->path, &image));
    if (status < 0)
        return status;
    status = Image_FindBoard(image, session->start, session->map->stride); // it may have shrunk since
    if (status == 0)
        status = BoardUpdate_Write(update, image, session->start);
    if (status == 0)
        status = BoardUpdate_Verify(update, image, session->start);
    File_Close(image);
    return status;
}

StatusCode ImageSession_Write(ImageSession *session, VRegTable *table)
{
    const size_t span = session->map->span;
    uint8_t *room = static_cast<uint8_t *>(malloc(2 * span));
    if (room == nullptr)
        return StatusOutOfMemory;
    memcpy(room, session->bytes, span);

    StatusCode status = Board_FromTable(session->map, table, room);
    if (status == 0) {
        const BoardUpdate update = {session->bytes, room, room + span, session->map->span};
        status = ImageSession_Store(session, &update);
    }
    free(room);
    return status;
}
