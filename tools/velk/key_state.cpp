#include "tools/velk/key_state.h"

#include <fmt/format.h>

#include <bit>
#include <map>

DefinitionsHandle Session_Definitions(const Session &session)
{
    DefinitionsHandle definitions;
    const StatusCode status = Definitions_Read(session.catalogue, session.className, &definitions);
    if (status < 0)
        throw Failure_Of(ExitEngine, "read the definitions once more", status);
    return definitions;
}

Reading Config_Key(Config *config, const NamedKey &named)
{
    int32_t kind = ValueKindNumber;
    KeyDef_GetKind(named.key, &kind);
    VelkWord word = 0;
    const StatusCode status = VelkGetKey(config, named.name.c_str(), &word);
    return {status, Value_Copy(kind, status == 0 ? word : 0)};
}

std::vector<KeyState> Config_Keys(Config *config, const std::vector<NamedKey> &keys)
{
    std::map<std::pair<uint32_t, uint32_t>, bool> modified;
    for (const Register &slot : Config_Registers(config))
        modified.emplace(std::pair(slot.id, slot.instance), slot.isModified);
    std::vector<KeyState> states;
    for (const NamedKey &named : keys) {
        const Reading reading = Config_Key(config, named);
        KeyState state = {named.name, named.key, reading.status, reading.value, 0, 0, false};
        VelkWord bits = 0;
        const KeyDef &key = *named.key;
        state.rawStatus =
            VelkGetBits(config, key.vregId, static_cast<int32_t>(key.instance), key.mask, &bits);
        if (state.rawStatus == 0 && state.value.kind == ValueKindNumber)
            state.raw = static_cast<uint32_t>(bits) >> std::countr_zero(key.mask);
        const auto found = modified.find({key.vregId, key.instance});
        state.isModified = found != modified.end() && found->second;
        states.push_back(state);
    }
    return states;
}

std::string Mask_Shown(uint32_t mask)
{
    std::string shown;
    for (int high = 31; high >= 0; --high) {
        if ((mask >> high & 1) == 0)
            continue;
        int low = high;
        while (low > 0 && (mask >> (low - 1) & 1) != 0)
            --low;
        shown += shown.empty() ? "" : ", ";
        shown += low == high ? std::to_string(high) : fmt::format("{}..{}", high, low);
        high = low;
    }
    return shown;
}
