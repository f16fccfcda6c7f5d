#include "accessors/image/image_session.h"

#include "accessors/image/image_board.h"
#include "accessors/image/image_file.h"
#include "accessors/image/image_update.h"

#include <cstdlib>
#include <cstring>

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
    StatusCode status = Image_Status(File_OpenToRead(session->map->path, &image));
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

StatusCode ImageSession_Write(ImageSession *session, VRegTable *table)
{
    const size_t span = session->map->span;
    uint8_t *room = static_cast<uint8_t *>(malloc(2 * span));
    if (room == nullptr)
        return StatusOutOfMemory;
    memcpy(room, session->bytes, span);

    StatusCode status = Board_FromTable(session->map, table, room);
    if (status == 0) {
        const BoardUpdate update = {session->map, session->start, session->bytes, room, room + span};
        status = BoardUpdate_Store(&update);
    }
    free(room);
    return status;
}
