// The configuration: a client's working copy of the settings of one board.
#ifndef VELK_CONFIGS_CONFIG_H
#define VELK_CONFIGS_CONFIG_H

#include "options/option_def.h"
#include "velk32.h"

#include <cstddef>

// A payload that a set has taken out of the table.
struct RetiredPayload {
    RetiredPayload *next;
    uint32_t id; // of its register
    VelkWord value;
};

// What one exported set has under way.
struct SetRun {
    // Payloads replaced by the set live until it has ended and its change list is compared: saved values
    // of dependants refer to them, and no new payload can come at the address of an old one unseen.
    RetiredPayload *retired;
    size_t retiredSize;                   // of them together, in bytes
    uint32_t applications;                // of options, so far
    int32_t depth;                        // entries of `path` in use
    const OptionDef *path[MaxOptionPath]; // from the option that the client set down to the one being applied
};

struct Config {
    VRegTable *table; // owned, or null; first, since accessors take a Config for the place of its table
    int32_t loaded;   // 1 when `table` holds a complete configuration
    ConfigClass *configClass; // the engine's; dead once that is closed
    SetRun *run;              // the set under way, on the stack of its call; else null
};

// Takes over a table in place of the present one, and marks the configuration as loaded.
void Config_TakeTable(Config *config, VRegTable *table);

// Releases the table, loaded or left by a failed read; the configuration is not loaded then.
void Config_DropTable(Config *config);

// Stores `payload` in the register of this id, which takes it over, and releases or retires `present`,
// the register's payload so far. Gives 0, -1, -2 or -3; after a failure nothing has changed, and `payload`
// is still the caller's.
StatusCode Config_ReplacePayload(Config *config, uint32_t id, int32_t instance, VelkWord present,
                                 VelkWord payload);

// Releases the payloads that a set has retired.
void SetRun_ReleaseRetired(SetRun *run);

#endif
