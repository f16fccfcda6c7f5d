// The bytes of a board and its register table, each worked out from the other. No file is touched here.
#ifndef VELK_IMAGE_BOARD_H
#define VELK_IMAGE_BOARD_H

#include "accessors/image/image_map.h"

// Makes the table of a board. `bytes` holds the span of the map and has room for one more byte, for the
// end of a text; it is the same after the call. Gives 0; -1 out of memory; -108 a list counts more numbers
// than it has room for. The table is the caller's.
StatusCode Board_ToTable(const ImageMap *map, uint8_t *bytes, VRegTable **out);

// Puts the values of a table into the bytes of its board, which come in as they are on the board. What no
// register has a place on stays, and so does the unused rest of a text or list that is the same already.
// Gives 0; -104 the registers are not those of the map, or a value does not fit its place: `bytes` may then
// hold a part of the new values. A null table has no registers.
StatusCode Board_FromTable(const ImageMap *map, VRegTable *table, uint8_t *bytes);

#endif
