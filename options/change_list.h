// Change lists: what a set has moved among the options that its caller listed.
#ifndef VELK_OPTIONS_CHANGE_LIST_H
#define VELK_OPTIONS_CHANGE_LIST_H

#include "options/option_def.h"
#include "velk32.h"

// A listed option before the set.
struct ChangeSnapshot {
    const OptionDef *option;
    VelkWord value; // only compared afterwards: a payload that it refers to can be gone by then
    VelkValidRef validRef;
};

// Clears the flags of the entries and takes their snapshots, in an array that the caller frees; null
// for no entries. Gives 0; -1; -9 an entry names no option; or why one cannot be read. After a failure
// there is no array.
StatusCode ChangeList_Capture(Config *config, ChangeEntry *entries, int32_t entryCount,
                              ChangeSnapshot **snapshots);

// Reports in the entries what has moved since. Gives 0, or why an option cannot be read.
StatusCode ChangeList_Compare(Config *config, ChangeEntry *entries, int32_t entryCount,
                              const ChangeSnapshot *snapshots);

#endif
