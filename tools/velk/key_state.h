// The keys of a class, as a configuration has them.
#ifndef VELK_TOOLS_KEY_STATE_H
#define VELK_TOOLS_KEY_STATE_H

#include "tools/velk/definitions.h"
#include "tools/velk/session.h"

struct KeyState {
    std::string name;
    const KeyDef *key; // lives as long as the definitions
    StatusCode status; // of reading it; `value` holds if it is 0
    Value value;
    StatusCode rawStatus;
    uint32_t raw;    // the field's bits, shifted down; 0 for texts and lists
    bool isModified; // of its register
};

// The definitions of a session's class. Throws a Failure.
DefinitionsHandle Session_Definitions(const Session &session);

Reading Config_Key(Config *config, const NamedKey &named);

std::vector<KeyState> Config_Keys(Config *config, const std::vector<NamedKey> &keys);

// "15..12", "0" or "4, 2..0": the bits of a mask.
std::string Mask_Shown(uint32_t mask);

#endif
