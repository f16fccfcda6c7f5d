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

#endif
