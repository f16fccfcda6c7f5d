// A write of a board: the bytes that differ, brought into the image in the way that its settings say.
#ifndef VELK_IMAGE_UPDATE_H
#define VELK_IMAGE_UPDATE_H

#include "accessors/image/image_map.h"

// Bytes of a board on their way to the image, the span of the map each. `readBack` is room for as many.
struct BoardUpdate {
    const ImageMap *map;
    uint64_t start; // of the board in the image
    const uint8_t *present;
    const uint8_t *next;
    uint8_t *readBack;
};

// Writes; in place, it reads back too. An image with nothing to change is not opened. Gives the statuses of
// ImageSession_Write but -104 for a table.
StatusCode BoardUpdate_Store(const BoardUpdate *update);

#endif
