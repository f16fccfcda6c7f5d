// The keys and options of a class as records to look at: what the engine's exports do not tell. They are read
// by the engine's own loaders, and nothing passes from them to the engine.
#ifndef VELK_TOOLS_DEFINITIONS_H
#define VELK_TOOLS_DEFINITIONS_H

#include "engine/definitions.h"
#include "keys/key_def.h"
#include "tools/velk/catalogue.h"

#include <map>
#include <string>
#include <vector>

struct DefinitionsReleaser {
    void operator()(Definitions *definitions) const;
};
using DefinitionsHandle = std::unique_ptr<Definitions, DefinitionsReleaser>;

struct NamedKey {
    std::string name;
    const KeyDef *key; // lives as long as the definitions
};

// Reads the definition files of a class. Gives the status of Definitions_Load.
StatusCode Definitions_Read(const Catalogue &catalogue, const std::string &className, DefinitionsHandle *out);

// All keys, in the order of the files.
std::vector<NamedKey> Definitions_Keys(const Definitions &definitions, const Catalogue &catalogue,
                                       const std::string &className);

// Keys and options, names that were defined twice counted once.
size_t Definitions_Count(const NameTable &table);

// "value", "bool" and so on.
const char *Key_TypeName(const KeyDef *key);

// The symbols of the key files for registers, by id.
std::map<uint32_t, std::string> Catalogue_Symbols(const Catalogue &catalogue, const std::string &className);

// Which file stands behind a failure to load the definitions, and where, or an empty text.
std::string Definitions_Explain(const Catalogue &catalogue, const std::string &className, StatusCode status);

#endif
