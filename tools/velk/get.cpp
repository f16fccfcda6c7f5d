#include "tools/velk/bytes.h"
#include "tools/velk/commands.h"
#include "tools/velk/key_state.h"
#include "tools/velk/save_check.h"

#include <fmt/format.h>

namespace
{

struct Found {
    bool isKey;
    Reading reading;
};

// The definitions are read when the first key is asked for.
struct Getter {
    const Session &session;
    Config *config;
    DefinitionsHandle definitions;
};

Found GetKey(Getter *getter, const std::string &name, bool mayBeOption)
{
    if (getter->definitions == nullptr)
        getter->definitions = Session_Definitions(getter->session);
    const KeyDef *key = KeyTable_Find(&getter->definitions->keys, name.c_str());
    if (key == nullptr) {
        std::vector<std::string> names;
        if (mayBeOption)
            names = Session_OptionNames(getter->session);
        for (const std::string &defined :
             Catalogue_DefinedNames(getter->session.catalogue, getter->session.className, "Keys"))
            names.push_back(defined);
        Fail_Unknown(mayBeOption ? "option or key" : "key", name, names,
                     mayBeOption ? StatusUnknownOption : StatusUnknownKey);
    }
    return {true, Config_Key(getter->config, {name, key})};
}

Found GetOption(Getter *getter, const std::string &name)
{
    VelkWord word = 0;
    int32_t kind = ValueKindNumber;
    const StatusCode status = VelkGetOptionEx(getter->config, name.c_str(), -1, &word, &kind);
    if (status == StatusUnknownOption)
        return GetKey(getter, name, true);
    return {false, {status, Value_Copy(kind, status == 0 ? word : 0)}};
}

} // namespace

ExitStatus Run_Get(const Arguments &arguments, Output *output)
{
    const Session session = Arguments_Session(arguments);
    const Place place = Arguments_Place(arguments, session.className, true);
    const ConfigHandle config = Place_Load(session, arguments, place, output);
    Getter getter = {session, config.get(), nullptr};
    if (output->isJson) {
        output->document["source"] = Json_OfPlace(session, place);
        output->document["values"] = Json::array();
    }
    for (const std::string &name : arguments.names) {
        const Found found = arguments.areKeys ? GetKey(&getter, name, false) : GetOption(&getter, name);
        if (found.reading.status < 0)
            throw Failure_Of(ExitEngine, fmt::format("read {} of {}", Bytes_Shown(name), Place_Shown(place)),
                             found.reading.status);
        output->text += Value_Plain(found.reading.value) + "\n";
        if (output->isJson) {
            Json json = Json::object();
            Json_PutText(&json, "name", name);
            json["layer"] = found.isKey ? "key" : "option";
            json["value"] = Json_OfValue(found.reading.value,
                                         Catalogue_Words(session.catalogue, session.className, name));
            output->document["values"].push_back(json);
        }
    }
    return ExitDone;
}
