// The image as a file.
#ifndef VELK_IMAGE_FILE_H
#define VELK_IMAGE_FILE_H

#include "platform/file.h"
#include "velk32_accessor.h"

// What a status of the file seam means for a board: 0, -1, -101, -102 or -105.
StatusCode Image_Status(FileStatus status);

// Whether a board of `stride` bytes lies at `start` as a whole. Gives 0; -102 the image ends ahead of it;
// -107 reading failed; -108 the image ends within it.
StatusCode Image_FindBoard(File image, uint64_t start, uint32_t stride);

#endif
