// The engine: the catalogue of a definition directory and the classes loaded from it.
#ifndef VELK_ENGINE_ENGINE_H
#define VELK_ENGINE_ENGINE_H

#include "platform/profile.h"
#include "velk32.h"

struct ConfigEngine {
    char *directory;      // owned
    ConfigClass *classes; // the most recently loaded first
    Profile *catalogue;   // "CfgClass.ini" as it was when the engine was opened
};

// Composes the path of a file in a directory, in a block of its own that the caller frees; null when
// memory runs out.
char *Path_Compose(const char *directory, const char *file);

#endif
