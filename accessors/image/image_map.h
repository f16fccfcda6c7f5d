// The settings of a class, read once: where its boards lie in which file, and the registers of a board.
#ifndef VELK_IMAGE_MAP_H
#define VELK_IMAGE_MAP_H

#include "accessors/image/image_place.h"
#include "velk32_accessor.h"

#include <cstddef>

// How changed bytes come into the image: the setting "Write".
enum WriteMode { WriteReplace, WriteInPlace, WriteNever };

struct ImageMap {
    ImageMap *next; // in the chain of units
    char *path;     // of the image, absolute
    uint32_t unit;  // what a session calls these settings
    WriteMode write;
    uint32_t stride; // bytes that a board takes
    uint32_t span;   // bytes up to the end of the last place, at most `stride`
    size_t count;    // at least 1
    Place *places;   // in the order of the table; no two share a byte
};

// Reads the settings of a class and keeps no reference to it. The new map is the caller's. Gives 0; -1 out
// of memory; -111 a setting is missing or malformed, or places lie outside the board or on each other.
StatusCode ImageMap_Read(ConfigClass *configClass, const char *directory, ImageMap **out);

// Null is ignored.
void ImageMap_Delete(ImageMap *map);

// Whether both say the same of everything, the unit included.
bool ImageMap_AreEqual(const ImageMap *first, const ImageMap *second);

#endif
