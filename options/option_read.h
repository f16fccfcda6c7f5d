// Reading options: the value of one, and the rule in force for it, worked out from the keys each time.
#ifndef VELK_OPTIONS_OPTION_READ_H
#define VELK_OPTIONS_OPTION_READ_H

#include "options/option_def.h"

// The option of a configuration's class that a client names, or -9.
StatusCode Option_Find(const Config *config, const char *name, const OptionDef **option);

// The same for an operation on options of one kind, that works on the registers: then -17 the option is
// of another kind; then -2 the configuration has no table.
StatusCode Option_FindOfKind(const Config *config, const char *name, int32_t kind, const OptionDef **option);

// Reads an option of a configuration with a table. A list or string is the table's own. Gives 0; -18 the
// get method leads to a key or constant of another kind; or the status of Key_Read.
StatusCode Option_Read(Config *config, const OptionDef *option, VelkWord *value);

// Finds the first rule whose conditions all hold, and gives its valid values. Gives 0; -99 no rule
// holds; -18 a condition tests an option that is no number; or why an option cannot be read.
StatusCode Option_ChooseRule(Config *config, const OptionDef *option, VelkValidRef *validRef);

#endif
