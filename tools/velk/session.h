// The live side: an engine, the class that a command works on, and configurations of it.
#ifndef VELK_TOOLS_SESSION_H
#define VELK_TOOLS_SESSION_H

#include "tools/velk/catalogue.h"
#include "tools/velk/failure.h"
#include "tools/velk/value.h"
#include "velk32.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

// Where a configuration comes from.
struct Place {
    enum Kind { Nowhere, Board, SaveFile } kind = Nowhere;
    uint32_t first = 0, second = 0; // the client words of a board
    std::string file = {};
    std::string key = {}; // that the save file was saved with
};

// "board 5", "board 5,1", "save file x.cfg".
std::string Place_Shown(const Place &place);

struct EngineCloser {
    void operator()(ConfigEngine *engine) const
    {
        VelkCloseConfigEngine(engine);
    }
};
struct ConfigDiscarder {
    void operator()(Config *config) const
    {
        VelkDiscardConfig(config);
    }
};
using EngineHandle = std::unique_ptr<ConfigEngine, EngineCloser>;
using ConfigHandle = std::unique_ptr<Config, ConfigDiscarder>;

struct Session {
    Catalogue catalogue;
    std::string className;
    EngineHandle engine;
    ConfigHandle first; // loads the class, and stays empty
};

// What was read, or why it could not be.
struct Reading {
    StatusCode status; // `value` holds if it is 0
    Value value;
};

// For a person: the value, or the message of the status.
std::string Reading_Shown(const Reading &reading, const Words &words);

// An option, as a configuration has it.
struct OptionState {
    std::string name;
    StatusCode status; // of reading it; `value` holds if it is 0
    Value value;
    StatusCode validStatus;
    ValidNow valid; // its kind holds always, the rest if `validStatus` is 0
};

struct Register {
    uint32_t id;
    uint32_t instance; // from 1, in the order of the table
    Value value;
    bool isModified;
};

// The class to work on: the one named, or the only one of the catalogue.
std::string Catalogue_Choose(const Catalogue &catalogue, const std::string &className);

// Opens the engine and loads the class. Throws a Failure.
Session Session_Open(Catalogue catalogue, const std::string &className);

// An empty configuration of the class.
ConfigHandle Session_NewConfig(const Session &session);

// Fills a configuration. Gives 0 or the warning of the engine or the accessor.
StatusCode Config_Load(Config *config, const Place &place);

// The present registers as a working copy.
ConfigHandle Config_Copy(const Session &session, Config *config);

// The names of the options, in the order of the option files.
std::vector<std::string> Session_OptionNames(const Session &session);

OptionState Config_Option(Config *config, const std::string &name);
std::vector<Register> Config_Registers(Config *config);

// The registers of the second that are others than in the first, or missing there.
std::vector<Register> Registers_Changed(const std::vector<Register> &before,
                                        const std::vector<Register> &after);

// Fails with the names that are nearest to one that `what` ("option", "key") does not have.
[[noreturn]] void Fail_Unknown(const char *what, const std::string &name,
                               const std::vector<std::string> &names, StatusCode code);

// The same of an option; of a name that is a key's it says so, and `ofKeys`.
[[noreturn]] void Fail_UnknownOption(const Session &session, const std::string &name, const char *ofKeys);

#endif
