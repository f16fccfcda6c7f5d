// A session: one board, read when the session opens and written at most once.
#ifndef VELK_IMAGE_SESSION_H
#define VELK_IMAGE_SESSION_H

#include "accessors/image/image_map.h"

struct ImageSession {
    const ImageMap *map; // lives until the module unloads
    uint64_t start;      // of the board in the image
    uint8_t *bytes;      // of the board: the span of the map, and room for one more byte
};

// Opens a session for a board and reads its bytes. Gives 0; -1 out of memory; -101 the image cannot be
// opened; -102 there is no image, or it ends ahead of the board; -105 it may not be read; -107 reading it
// failed; -108 it ends within the board. ImageSession_Close ends the session.
StatusCode ImageSession_Open(const ImageMap *map, uint32_t board, ImageSession **out);

void ImageSession_Close(ImageSession *session);

// Writes the values of a table to the board: of its bytes those that differ, in the way of the settings.
// All that can be refused is refused ahead of the first byte. Gives 0; -1, -101, -102, -105, -107,
// -108 as above; -104 the table does not fit the board; -106 writing failed, or what was read back is
// something else.
StatusCode ImageSession_Write(ImageSession *session, VRegTable *table);

#endif
