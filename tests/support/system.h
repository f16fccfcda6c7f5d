// What the tests ask of the platform.
#ifndef VELK_TESTS_SUPPORT_SYSTEM_H
#define VELK_TESTS_SUPPORT_SYSTEM_H

#include <string>

// What is written to it is gone.
extern const char nullDevice[];

// What a module's file has behind the name that a catalogue gives.
extern const char moduleSuffix[];

bool Module_IsLoaded(const std::string &module);

#endif
