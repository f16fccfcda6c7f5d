#include "accessors/image/image_file.h"

StatusCode Image_Status(FileStatus status)
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
StatusCode Image_FindBoard(File image, uint64_t start, uint32_t stride)
{
    const int64_t last = Image_Probe(image, start + stride - 1);
    if (last != 0)
        return last < 0 ? StatusEepromReadFailed : 0;
    const int64_t first = Image_Probe(image, start);
    if (first < 0)
        return StatusEepromReadFailed;
    return first == 0 ? StatusHardwareAccessFailed : StatusEepromInvalid;
}
