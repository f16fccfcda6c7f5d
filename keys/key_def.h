// Keys: named and typed bit-fields of virtual registers, as a class's key files define them.
#ifndef VELK_KEYS_KEY_DEF_H
#define VELK_KEYS_KEY_DEF_H

#include "values/name_table.h"
#include "velk32.h"

// 5 is no type.
enum KeyType : int32_t {
    KeyTypeValue = 1,
    KeyTypeBool = 2,
    KeyTypeIndex = 3,
    KeyTypeComputed = 4,
    KeyTypeString = 6,
    KeyTypeList = 7
};

enum ComputeMode : int32_t { ComputeRead = 0, ComputeWrite = 1 };

// Turns a field's contents, shifted down to bit 0, into the caller's value, or the caller's value into
// the contents, still unshifted. May read other keys of `config`. A negative result stops the access
// and is its result, with `out` unwritten.
using ComputedKeyFunction = StatusCode (*)(int32_t mode, uint32_t value, uint32_t *out, Config *config);

// Gives the function of a type word, or null: the word is none of a computed key. The loader of key files
// gets it from its caller, since the functions need the engine.
using ComputedKeyFinder = ComputedKeyFunction (*)(const char *word);

// One key. Belongs to its class's key table, under its name, and is read-only once loaded.
struct KeyDef {
    uint32_t vregId;
    uint32_t instance; // counts from 1; 0 never matches a register
    uint32_t mask;     // never 0; 0xFFFFFFFF for strings and lists
    int32_t type;      // KeyType
    union {
        uint32_t encodedFalse; // Bool: field contents, counted from the field's lowest bit
        uint32_t arrayCount;   // Index
        ComputedKeyFunction compute;
    };
    union {
        uint32_t encodedTrue; // Bool
        uint32_t *array;      // Index: owned; the field holds a position in it
    };
};

// The ValueKind of a key: 0, or -99 for a type without one.
StatusCode KeyDef_GetKind(const KeyDef *key, int32_t *kind);

// Reads a key file into a class's key table. `numbersLeft` is what number lists may still hold. Gives
// 0, -1 or -7; the keys ahead of a failure stay in the table, which the caller then destroys.
StatusCode KeyFile_Load(NameTable *keys, const char *path, ComputedKeyFinder findComputed,
                        uint32_t *numbersLeft);

// The key of that name, exactly, or null.
const KeyDef *KeyTable_Find(const NameTable *keys, const char *name);

// Releases a key table with its keys. Null is ignored.
void KeyTable_Destroy(NameTable *keys);

#endif
