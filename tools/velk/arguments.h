// The command line.
#ifndef VELK_TOOLS_ARGUMENTS_H
#define VELK_TOOLS_ARGUMENTS_H

#include "tools/velk/session.h"

#include <string>
#include <vector>

struct Arguments {
    std::string command = {}; // empty: none
    std::vector<std::string> names = {};
    std::string definitions = {};
    std::string className = {};
    std::string board = {};
    std::string file = {};
    std::string key = {};
    std::string from = {};
    std::string backup = {};
    bool hasKey = false; // --key was given, with a text behind it or none
    bool isJson = false;
    bool areKeys = false;
    bool areRegisters = false;
    bool isYes = false;
    bool isDryRun = false;
    bool isStrict = false;
    bool isForced = false;
    bool wantsHelp = false;
    bool wantsVersion = false;
};

// Throws a Failure of usage.
Arguments Arguments_Parse(int argc, char **argv);

// The command that is called, or an empty text: none that there is. Known ahead of any failure, too.
std::string Arguments_Command(int argc, char **argv);

// Whether --json is among them: known ahead of any failure.
bool Arguments_WantJson(int argc, char **argv);

// The place that --board or --file names. Throws if both or, where it `isNeeded`, neither is given.
Place Arguments_Place(const Arguments &arguments, const std::string &className, bool isNeeded);

// "N" or "N,M" as a board. False: it is none.
bool Place_ReadBoard(const std::string &text, Place *place);

// The definition directory and the class: from the command line, else the environment.
Catalogue Arguments_Catalogue(const Arguments &arguments);
std::string Arguments_Class(const Arguments &arguments);
Session Arguments_Session(const Arguments &arguments);

// The help of a command, or of them all for an empty name. Throws if there is no such command.
std::string Help_Text(const std::string &command, size_t width);

// What the program says when it is called without a command.
std::string Help_Greeting(size_t width);

#endif
