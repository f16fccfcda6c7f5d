// The seam to the platform's loadable modules.
#ifndef VELK_PLATFORM_MODULE_H
#define VELK_PLATFORM_MODULE_H

#include <cstdint>

// A module that the loader counts a reference of; null when there is none.
using Module = void *;

// Loads the module `name` with the platform's module suffix behind it, always, and finds it by the
// platform's own rule. `module` receives null on failure. Gives 0 or -1.
int32_t Module_Load(const char *name, Module *module);

// The address of an entry point, or null.
void *Module_Resolve(Module module, const char *entry);

// Gives a reference back.
void Module_Release(Module module);

#endif
