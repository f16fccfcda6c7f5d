#include "tools/velk/bytes.h"
#include "tools/velk/commands.h"
#include "tools/velk/definitions.h"

#include <fmt/format.h>

namespace
{

struct ClassState {
    std::string name, accessor;
    std::vector<std::string> keyFiles, optionFiles;
    StatusCode status; // of loading its definitions; the counts hold if it is 0
    size_t keys, options;
    std::string next; // what to do about the status
};

ClassState Look(const Catalogue &catalogue, const std::string &name)
{
    ClassState state = {name,
                        Catalogue_Item(catalogue, name, "Accessor").value_or(""),
                        Catalogue_Files(catalogue, name, "Keys"),
                        Catalogue_Files(catalogue, name, "Options"),
                        0,
                        0,
                        0,
                        ""};
    DefinitionsHandle definitions;
    state.status = Definitions_Read(catalogue, name, &definitions);
    if (state.status == 0) {
        state.keys = Definitions_Count(definitions->keys);
        state.options = Definitions_Count(definitions->options);
    } else {
        state.next = Definitions_Explain(catalogue, name, state.status);
    }
    return state;
}

Json AsJson(const ClassState &state)
{
    Json json = Json::object();
    Json_PutText(&json, "name", state.name);
    Json_PutText(&json, "accessor", state.accessor);
    const auto putFiles = [&](const char *member, const std::vector<std::string> &files) {
        json[member] = Json::array();
        for (const std::string &file : files) {
            Json entry = Json::object();
            Json_PutText(&entry, "name", file);
            json[member].push_back(entry);
        }
    };
    putFiles("keyFiles", state.keyFiles);
    putFiles("optionFiles", state.optionFiles);
    const bool isLoaded = state.status == 0;
    json["keys"] = isLoaded ? Json(state.keys) : Json();
    json["options"] = isLoaded ? Json(state.options) : Json();
    json["error"] = isLoaded ? Json() : Json_OfStatus(state.status);
    return json;
}

std::vector<std::string> AsRow(const ClassState &state)
{
    std::string defines = fmt::format("{} keys, {} options", state.keys, state.options);
    if (state.status < 0)
        defines =
            "cannot be loaded: " + Status_Text(state.status) + (state.next.empty() ? "" : "; " + state.next);
    return {Bytes_Shown(state.name), Bytes_Shown(state.accessor), Names_Join(state.keyFiles, ", "),
            Names_Join(state.optionFiles, ", "), defines};
}

} // namespace

ExitStatus Run_Classes(const Arguments &arguments, Output *output)
{
    const Catalogue catalogue = Arguments_Catalogue(arguments);
    Table table = {{"Class", "Accessor", "Key files", "Option files", "Defines"}, {}};
    if (output->isJson) {
        Json_PutText(&output->document, "definitions", catalogue.directory);
        output->document["classes"] = Json::array();
    }
    for (const std::string &name : Catalogue_Classes(catalogue)) {
        const ClassState state = Look(catalogue, name);
        if (output->isJson)
            output->document["classes"].push_back(AsJson(state));
        table.rows.push_back(AsRow(state));
    }
    Output_Line(output, fmt::format("The catalogue of {}:", Bytes_Shown(catalogue.directory)));
    if (table.rows.empty())
        Output_Line(output, "No class: none of its sections names an Accessor.");
    else
        Output_Table(output, table);
    return ExitDone;
}
