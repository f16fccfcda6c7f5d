// The last step of `set` and `load`: what was shown is written, read back and told.
#ifndef VELK_TOOLS_WRITE_H
#define VELK_TOOLS_WRITE_H

#include "tools/velk/arguments.h"
#include "tools/velk/output.h"

// A change that waits to be written.
struct Change {
    const Session &session;
    const Arguments &arguments;
    Place target;
    Config *before;          // what the target holds
    Config *after;           // what it is to hold
    std::string doing;       // "set Speed=20 on board 5"
    std::string loaded = {}; // the save file that `after` comes from, if it does
};

// From here on a failure says that nothing was written, until something may have been.
void Write_Begin(Output *output);

// Refuses, as a matter of usage, a command that could neither ask nor was told not to. What the others come
// to is laid out for where they show it.
void Write_Prepare(const Arguments &arguments, Output *output);

// Shows what `output` has to say so far; unless this is a dry run, asks, saves the backup, writes, reads back
// and compares. What then is true is said behind it. Throws where nothing, or not what was meant, is on the
// target.
void Write_Run(const Change &change, Output *output);

#endif
