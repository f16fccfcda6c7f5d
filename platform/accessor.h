// The seam to a hardware accessor: its entry points, resolved from its module.
#ifndef VELK_PLATFORM_ACCESSOR_H
#define VELK_PLATFORM_ACCESSOR_H

#include "platform/module.h"
#include "velk32_accessor.h"

struct Accessor {
    Module module;
    decltype(&Cfg_GetVersion) getVersion;
    decltype(&Cfg_InitializeAccessor) initializeAccessor;
    decltype(&Cfg_CloseAccessor) closeAccessor;
    decltype(&Cfg_CreateSession) createSession;
    decltype(&Cfg_CloseSession) closeSession;
    decltype(&Cfg_Read) read;
    decltype(&Cfg_Write) write;
    decltype(&Cfg_LoadFromFile) loadFromFile;         // null where the module lacks it
    decltype(&Cfg_SetInternalVRegs) setInternalVRegs; // likewise
};

// Loads a module by its name and resolves its entry points. Gives 0; -204 it cannot be loaded or lacks an
// entry point that has to be there, and no module is held. The reference to the module is the caller's.
StatusCode Accessor_Load(const char *name, Accessor *accessor);

#endif
