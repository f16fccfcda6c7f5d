// The configuration class: one kind of board, loaded once per engine, by its first configuration.
#ifndef VELK_ENGINE_CONFIG_CLASS_H
#define VELK_ENGINE_CONFIG_CLASS_H

#include "engine/definitions.h"
#include "engine/engine.h"
#include "platform/accessor.h"
#include "velk32.h"

// Read-only once it is on its engine's chain. Configurations refer to it without being counted.
struct ConfigClass {
    ConfigClass *next;
    ConfigEngine *engine;
    char *name; // owned; also the name of the class's section in the catalogue
    Accessor accessor;
    Definitions definitions;
};

// The class of that name, exactly, of an engine; loaded if it is not yet. All or nothing. Gives 0, -201,
// -203 to -206, -9, or the negative answer of Cfg_InitializeAccessor.
StatusCode ConfigClass_Open(ConfigEngine *engine, const char *name, ConfigClass **out);

// Closes the accessor of a class that is off its engine's chain, and releases the class.
void ConfigClass_Close(ConfigClass *configClass);

#endif
