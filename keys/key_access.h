// The way between a caller's value of a key and the bits of its register.
#ifndef VELK_KEYS_KEY_ACCESS_H
#define VELK_KEYS_KEY_ACCESS_H

#include "keys/key_def.h"

// Reads a key of a configuration with a table. A string or list is the table's own. Gives 0; -3 the
// register is missing; -99 its bits fit none of the key's values; or a computed key's failure.
StatusCode Key_Read(Config *config, const KeyDef *key, VelkWord *value);

// Writes a key. A string or list is copied, and the payload that it replaces released, or kept by the
// set under way until its end. Gives 0; -3; -99 not a value of this key; -1 out of memory or a null
// string or list; or a computed key's failure. Nothing is changed by a failure.
StatusCode Key_Write(Config *config, const KeyDef *key, VelkWord value);

#endif
