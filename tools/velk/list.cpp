#include "tools/velk/bytes.h"
#include "tools/velk/commands.h"
#include "tools/velk/key_state.h"
#include "tools/velk/save_check.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>

#include <fnmatch.h>

namespace
{

// What `list` works on. Without values `config` is the session's empty one.
struct Listing {
    const Session &session;
    const Arguments &arguments;
    Config *config;
    bool hasValues;
    Output *output;
};

constexpr char LabelHead[] = "Label";

bool Matches(const std::string &pattern, const std::string &name)
{
    return fnmatch(pattern.c_str(), name.c_str(), FNM_CASEFOLD) == 0;
}

bool MatchesAny(const std::vector<std::string> &patterns, const std::string &name)
{
    return patterns.empty() || std::any_of(patterns.begin(), patterns.end(), [&](const std::string &pattern) {
               return Matches(pattern, name);
           });
}

// A pattern that matches nothing is a mistyped name or, since `velk diff` takes one so, a board.
void RequireMatches(const std::vector<std::string> &names, const Arguments &arguments, const char *what,
                    StatusCode code)
{
    for (const std::string &pattern : arguments.names) {
        if (std::any_of(names.begin(), names.end(),
                        [&](const std::string &name) { return Matches(pattern, name); }))
            continue;
        Place place;
        if (!arguments.board.empty() || !arguments.file.empty() || !Place_ReadBoard(pattern, &place))
            Fail_Unknown(what, pattern, names, code);
        Failure failure = Failure_Of(ExitEngine, fmt::format("find the {} '{}'", what, pattern), code);
        failure.next = fmt::format("did you mean --board {}?", pattern);
        Fail(failure);
    }
}

std::vector<std::string> Matching(std::vector<std::string> names, const Arguments &arguments)
{
    RequireMatches(names, arguments, arguments.areKeys ? "key" : "option",
                   arguments.areKeys ? StatusUnknownKey : StatusUnknownOption);
    std::erase_if(names, [&](const std::string &name) { return !MatchesAny(arguments.names, name); });
    return names;
}

// Labels are the first to go where lines would be broken.
void RemoveLabelsWithoutRoom(Table *table, size_t width)
{
    if (table->heads.size() > 1 && table->heads[1] == LabelHead && Table_Width(*table) > width)
        Table_RemoveColumn(table, 1);
}

// Without a row the heads would stand alone.
void Show(Table *table, const char *what, Output *output)
{
    Table_RemoveEmptyColumns(table);
    RemoveLabelsWithoutRoom(table, output->width);
    if (table->rows.empty())
        Output_Line(output, fmt::format("There are no {}.", what));
    else
        Output_Table(output, *table);
}

// A number without a word may be an address or a code, which people know in base 16.
std::string ValueCell(const Value &value, const Words &words)
{
    const std::string shown = Value_Shown(value, words);
    const bool isPlain = value.kind == ValueKindNumber && Words_Of(words, value.number).empty();
    return isPlain && value.number > 0xFF ? fmt::format("{} (0x{:X})", shown, value.number) : shown;
}

std::vector<std::string> OptionRow(const OptionState &state, const Words &words, bool hasValues)
{
    const std::string name = Bytes_Shown(state.name);
    const std::string label = Bytes_Shown(words.label);
    if (!hasValues)
        return {name, label, "", "", Valid_KindName(state.valid.kind)};
    const std::string value = state.status == 0 ? ValueCell(state.value, words) : Status_Text(state.status);
    if (state.validStatus < 0)
        return {name, label, value, Status_Text(state.validStatus), ""};
    const bool isOut = state.status == 0 && !Valid_Admits(state.valid, state.value);
    return {name, label, isOut && !Valid_IsNone(state.valid) ? value + " - not valid now" : value,
            Valid_Shown(state.valid, words, false), ""};
}

Json OptionJson(const OptionState &state, const Words &words, bool hasValues)
{
    Json json = Json::object();
    Json_PutText(&json, "name", state.name);
    Json_PutText(&json, "label", words.label);
    Json_PutText(&json, "unit", words.unit);
    Json_PutText(&json, "help", words.help);
    json["validKind"] = Valid_KindName(state.valid.kind);
    const bool isRead = hasValues && state.status == 0;
    const bool isValidKnown = hasValues && state.validStatus == 0;
    json["value"] = isRead ? Json_OfValue(state.value, words) : Json();
    json["valid"] = isValidKnown ? Json_OfValid(state.valid, words) : Json();
    json["isValid"] = isRead && isValidKnown ? Json(Valid_Admits(state.valid, state.value)) : Json();
    json["error"] = hasValues && state.status < 0 ? Json_OfStatus(state.status) : Json();
    json["validError"] = hasValues && state.validStatus < 0 ? Json_OfStatus(state.validStatus) : Json();
    return json;
}

void ListOptions(const Listing &listing)
{
    Table table = {{"Option", LabelHead, "Value", "Valid now", "Kind"}, {}};
    Json *document = &listing.output->document;
    if (listing.output->isJson)
        (*document)["options"] = Json::array();
    for (const std::string &name : Matching(Session_OptionNames(listing.session), listing.arguments)) {
        const OptionState state = Config_Option(listing.config, name);
        const Words words = Catalogue_Words(listing.session.catalogue, listing.session.className, name);
        table.rows.push_back(OptionRow(state, words, listing.hasValues));
        if (listing.output->isJson)
            (*document)["options"].push_back(OptionJson(state, words, listing.hasValues));
    }
    Show(&table, "options", listing.output);
}

std::string RegisterName(uint32_t id, uint32_t instance, const std::map<uint32_t, std::string> &symbols)
{
    const auto symbol = symbols.find(id);
    std::string name = symbol == symbols.end() ? fmt::format("0x{:08X}", id) : Bytes_Shown(symbol->second);
    return instance == 1 ? name : fmt::format("{}:{}", name, instance);
}

std::vector<std::string> KeyRow(const KeyState &state, const Words &words,
                                const std::map<uint32_t, std::string> &symbols, bool hasValues)
{
    const bool isNumber = state.value.kind == ValueKindNumber;
    std::vector<std::string> row = {Bytes_Shown(state.name), Key_TypeName(state.key),
                                    RegisterName(state.key->vregId, state.key->instance, symbols),
                                    isNumber ? Mask_Shown(state.key->mask) : "all"};
    if (!hasValues) {
        row.insert(row.end(), {"", "", ""});
        return row;
    }
    row.push_back(isNumber && state.rawStatus == 0 ? fmt::format("0x{:X}", state.raw) : "");
    row.push_back(state.status == 0 ? Value_Shown(state.value, words) : Status_Text(state.status));
    row.push_back(state.isModified ? "modified" : "");
    return row;
}

Json KeyJson(const KeyState &state, const Words &words, bool hasValues)
{
    Json json = Json::object();
    Json_PutText(&json, "name", state.name);
    json["type"] = Key_TypeName(state.key);
    json["register"] = state.key->vregId;
    json["instance"] = state.key->instance;
    json["mask"] = state.key->mask;
    const bool isNumber = state.value.kind == ValueKindNumber;
    json["raw"] = hasValues && isNumber && state.rawStatus == 0 ? Json(state.raw) : Json();
    json["value"] = hasValues && state.status == 0 ? Json_OfValue(state.value, words) : Json();
    json["modified"] = state.isModified;
    json["error"] = hasValues && state.status < 0 ? Json_OfStatus(state.status) : Json();
    return json;
}

void ListKeys(const Listing &listing)
{
    const Session &session = listing.session;
    const DefinitionsHandle definitions = Session_Definitions(session);
    std::vector<std::string> names;
    for (const NamedKey &key : Definitions_Keys(*definitions, session.catalogue, session.className))
        names.push_back(key.name);
    std::vector<NamedKey> keys;
    for (const std::string &name : Matching(names, listing.arguments))
        keys.push_back({name, KeyTable_Find(&definitions->keys, name.c_str())});

    const std::map<uint32_t, std::string> symbols = Catalogue_Symbols(session.catalogue, session.className);
    Table table = {{"Key", "Type", "Register", "Bits", "Raw", "Value", "Mark"}, {}};
    if (listing.output->isJson)
        listing.output->document["keys"] = Json::array();
    for (const KeyState &state : Config_Keys(listing.config, keys)) {
        const Words words = Catalogue_Words(session.catalogue, session.className, state.name);
        table.rows.push_back(KeyRow(state, words, symbols, listing.hasValues));
        if (listing.output->isJson)
            listing.output->document["keys"].push_back(KeyJson(state, words, listing.hasValues));
    }
    Show(&table, "keys", listing.output);
}

// A pattern is for the id of a register or for its name.
std::vector<Register> MatchingRegisters(const Listing &listing,
                                        const std::map<uint32_t, std::string> &symbols)
{
    const std::vector<std::string> &patterns = listing.arguments.names;
    std::vector<Register> matching;
    std::vector<std::string> names;
    for (const Register &slot : Config_Registers(listing.config)) {
        const std::string id = RegisterName(slot.id, slot.instance, {});
        const std::string name = RegisterName(slot.id, slot.instance, symbols);
        if (MatchesAny(patterns, id) || MatchesAny(patterns, name))
            matching.push_back(slot);
        names.insert(names.end(), {id, name});
    }
    RequireMatches(names, listing.arguments, "register", StatusVRegNotFound);
    return matching;
}

void ListRegisters(const Listing &listing)
{
    const std::map<uint32_t, std::string> symbols =
        Catalogue_Symbols(listing.session.catalogue, listing.session.className);
    Table table = {{"Register", "Name", "Kind", "Value", "Mark"}, {}};
    if (listing.output->isJson)
        listing.output->document["registers"] = Json::array();
    for (const Register &slot : MatchingRegisters(listing, symbols)) {
        static constexpr const char *kinds[] = {"number", "list", "text"};
        const auto symbol = symbols.find(slot.id);
        const bool isNumber = slot.value.kind == ValueKindNumber;
        table.rows.push_back(
            {RegisterName(slot.id, slot.instance, {}),
             symbol == symbols.end() ? "" : Bytes_Shown(symbol->second), kinds[slot.value.kind],
             isNumber ? fmt::format("0x{:08X}", slot.value.number) : Value_Shown(slot.value, {}),
             slot.isModified ? "modified" : ""});
        if (listing.output->isJson) {
            Json json = {{"id", slot.id}, {"instance", slot.instance}};
            Json_PutText(&json, "name", symbol == symbols.end() ? "" : symbol->second);
            json["value"] = Json_OfValue(slot.value, {});
            json["modified"] = slot.isModified;
            listing.output->document["registers"].push_back(json);
        }
    }
    Show(&table, "registers", listing.output);
}

} // namespace

ExitStatus Run_List(const Arguments &arguments, Output *output)
{
    if (arguments.areKeys && arguments.areRegisters)
        throw Failure{ExitUsage, "cannot list keys and registers at once", "give --keys or --registers"};
    const Session session = Arguments_Session(arguments);
    const Place place = Arguments_Place(arguments, session.className, arguments.areRegisters);
    const bool hasValues = place.kind != Place::Nowhere;
    const ConfigHandle config =
        hasValues ? Place_Load(session, arguments, place, output) : Session_NewConfig(session);
    if (output->isJson)
        output->document["source"] = Json_OfPlace(session, place);
    Output_Line(output, Place_Heading(session, place) + ":");
    const Listing listing = {session, arguments, config.get(), hasValues, output};
    if (arguments.areRegisters)
        ListRegisters(listing);
    else if (arguments.areKeys)
        ListKeys(listing);
    else
        ListOptions(listing);
    return ExitDone;
}
