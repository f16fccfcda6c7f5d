// The keys whose value is computed: a table of type words and functions.
#ifndef VELK_KEYS_COMPUTED_KEY_H
#define VELK_KEYS_COMPUTED_KEY_H

#include "keys/key_def.h"

// The function of a type word, compared without regard to case, or null.
ComputedKeyFunction ComputedKey_Find(const char *name);

#endif
