// What the engine does not look at in a save file: its class, its version, and whether its registers are
// those that the keys of the class need.
#ifndef VELK_TOOLS_SAVE_CHECK_H
#define VELK_TOOLS_SAVE_CHECK_H

#include "tools/velk/arguments.h"
#include "tools/velk/output.h"

// Loads a configuration from a place, with warnings. A save file of another class or version is a failure
// unless it is forced; one with other registers than the keys have is a warning or, where that is strict, a
// failure. A file that only the accessor can read is not looked at.
ConfigHandle Place_Load(const Session &session, const Arguments &arguments, const Place &place,
                        Output *output);

#endif
