// The commands, a file each. They throw what ends them before their time.
#ifndef VELK_TOOLS_COMMANDS_H
#define VELK_TOOLS_COMMANDS_H

#include "tools/velk/arguments.h"
#include "tools/velk/output.h"

ExitStatus Run_Classes(const Arguments &arguments, Output *output);
ExitStatus Run_List(const Arguments &arguments, Output *output);
ExitStatus Run_Get(const Arguments &arguments, Output *output);
ExitStatus Run_Values(const Arguments &arguments, Output *output);
ExitStatus Run_Set(const Arguments &arguments, Output *output);
ExitStatus Run_Diff(const Arguments &arguments, Output *output);
ExitStatus Run_Save(const Arguments &arguments, Output *output);
ExitStatus Run_Load(const Arguments &arguments, Output *output);
ExitStatus Run_Status(const Arguments &arguments, Output *output);

#endif
