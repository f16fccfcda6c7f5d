// What the tests ask of the platform.
#ifndef VELK_TESTS_SUPPORT_SYSTEM_H
#define VELK_TESTS_SUPPORT_SYSTEM_H

#include <cstdint>
#include <string>

// What is written to it is gone.
extern const char nullDevice[];

// What a module's file has behind the name that a catalogue gives.
extern const char moduleSuffix[];

std::string System_MakeDirectory();

// Whether the program runs with a sanitizer: "asan" or "tsan".
bool System_HasSanitizer(const std::string &name);

bool Module_IsLoaded(const std::string &module);

// Makes a file larger, by zeros that take no room.
void File_Extend(const std::string &path, int64_t size);

#endif
