// What the test program and the scripted accessor share. The latter brings no C++ library along: that takes a
// place of the process on Windows at each of the many times that the module is loaded.
#ifndef VELK_TESTS_SUPPORT_SCRIPT_H
#define VELK_TESTS_SUPPORT_SCRIPT_H

#include <string>

#include "velk32.h"

// The answers of the scripted accessor, and what it was asked.
struct Script {
    StatusCode initialize, close, createSession, read, write, loadFromFile, setInternal;
    const char *registers; // what Cfg_Read leaves in its place; null: nothing
    const char *oldFile;   // what Cfg_LoadFromFile leaves
    const char *internal;  // what Cfg_SetInternalVRegs adds, growing the table
    std::string calls;     // in order, a blank behind each
    ConfigClass *configClass;
};
extern Script *script; // in force: that of the latest desk

// What the scripted accessor does with it, beyond answering: writes down a call, piece by piece, and fills a
// place as Table_Append does, but leaves it alone for null.
void Script_Append(const char *text);
void Script_Append(int64_t number);
void Script_Append(const VRegTable *table);
template <typename... Pieces> void Script_Note(Pieces... pieces)
{
    (Script_Append(pieces), ...);
}
bool Script_Fill(const char *registers, VRegTable **place);

// The place of the table, with which a configuration begins.
inline VRegTable *&TableOf(Config *config)
{
    return *reinterpret_cast<VRegTable **>(config);
}

#endif
