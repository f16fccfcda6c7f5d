#include "platform/accessor.h"

template <typename Function> static bool Resolve(Module module, const char *entry, Function *function)
{
    *function = reinterpret_cast<Function>(Module_Resolve(module, entry));
    return *function != nullptr;
}

static bool Accessor_ResolveMandatory(Accessor *accessor)
{
    const Module module = accessor->module;
    return Resolve(module, "Cfg_GetVersion", &accessor->getVersion) &&
           Resolve(module, "Cfg_InitializeAccessor", &accessor->initializeAccessor) &&
           Resolve(module, "Cfg_CloseAccessor", &accessor->closeAccessor) &&
           Resolve(module, "Cfg_CreateSession", &accessor->createSession) &&
           Resolve(module, "Cfg_CloseSession", &accessor->closeSession) &&
           Resolve(module, "Cfg_Read", &accessor->read) && Resolve(module, "Cfg_Write", &accessor->write);
}

StatusCode Accessor_Load(const char *name, Accessor *accessor)
{
    if (Module_Load(name, &accessor->module) < 0)
        return StatusAccessorLoadFailed;
    if (!Accessor_ResolveMandatory(accessor)) {
        Module_Release(accessor->module);
        accessor->module = nullptr;
        return StatusAccessorLoadFailed;
    }
    Resolve(accessor->module, "Cfg_LoadFromFile", &accessor->loadFromFile);
    Resolve(accessor->module, "Cfg_SetInternalVRegs", &accessor->setInternalVRegs);
    return 0;
}
