// What the definition files of a class define: its keys, and its options over them. Read-only once loaded.
#ifndef VELK_ENGINE_DEFINITIONS_H
#define VELK_ENGINE_DEFINITIONS_H

#include "keys/key_def.h"
#include "platform/profile.h"
#include "values/name_table.h"
#include "velk32.h"

// The buckets of a class's name tables; clients see them in the order of option names.
constexpr int32_t NameBuckets = 29;

struct Definitions {
    NameTable keys;    // of KeyDef
    NameTable options; // of OptionDef, which refer to keys
};

// Where the definitions of a class come from.
struct DefinitionSource {
    Profile *catalogue;
    const char *directory;
    const char *className; // the section of the catalogue that lists the files
    ComputedKeyFinder findComputed;
};

// Loads the files that the catalogue lists into zeroed `definitions`. Gives 0; -201 out of memory; -203 a
// list is missing or too long; -205 or -206 a key or option file cannot be loaded; -9 the options do not fit
// together. Definitions_Release is due after a failure, too.
StatusCode Definitions_Load(Definitions *definitions, const DefinitionSource *source);

void Definitions_Release(Definitions *definitions);

#endif
