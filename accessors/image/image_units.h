// The settings of every class that this module was initialised for, by their units.
//
// A session comes without its class, and the module cannot tell which class goes when an engine closes: so
// settings stay, unchanged, until the module unloads. Any thread may call.
#ifndef VELK_IMAGE_UNITS_H
#define VELK_IMAGE_UNITS_H

#include "accessors/image/image_map.h"

// Takes settings over, whatever the result. Gives 0, also when equal ones are there already; -112 others
// stand under the same unit.
StatusCode ImageUnits_Add(ImageMap *map);

// The settings of a unit, valid until the module unloads, or null.
const ImageMap *ImageUnits_Find(uint32_t unit);

#endif
