// The entry points of the scripted accessor, which do what the test's script says and write down what they
// were asked.
#ifndef VELK_TESTS_SUPPORT_SCRIPT_H
#define VELK_TESTS_SUPPORT_SCRIPT_H

#include "velk32.h"

StatusCode Script_InitializeAccessor(ConfigClass *configClass, const char *directory);
StatusCode Script_CloseAccessor(const void *module); // an address in it
StatusCode Script_CreateSession(uint32_t first, uint32_t second, VelkWord *session);
StatusCode Script_CloseSession(VelkWord session);
StatusCode Script_Read(VelkWord session, Config *config);
StatusCode Script_Write(VelkWord session, VRegTable *table);
StatusCode Script_LoadFromFile(ConfigClass *configClass, const char *file, VRegTable **table);
StatusCode Script_SetInternalVRegs(void *unused, VRegTable **table);

#endif
