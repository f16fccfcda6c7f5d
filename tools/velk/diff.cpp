#include "tools/velk/bytes.h"
#include "tools/velk/commands.h"
#include "tools/velk/key_state.h"
#include "tools/velk/report.h"
#include "tools/velk/save_check.h"

#include <fmt/format.h>

#include <map>

namespace
{

// One side of the comparison, and what is compared.
struct Comparison {
    const Session &session;
    Config *first, *second;
    std::string firstName, secondName;
    Output *output;
};

Place PlaceOf(const Arguments &arguments, const Session &session, const std::string &text)
{
    Place place;
    if (Place_ReadBoard(text, &place))
        return place;
    place = {};
    place.kind = Place::SaveFile;
    place.file = text;
    place.key = arguments.hasKey ? arguments.key : session.className;
    return place;
}

// The rows of a layer that differ.
struct Rows {
    Table table;
    Json list = Json::array();
};

void Compare(const Comparison &comparison, const std::string &name, const Reading &first,
             const Reading &second, Rows *rows)
{
    if (first.status == second.status && (first.status < 0 || Value_IsSame(first.value, second.value)))
        return;
    const Words words = Catalogue_Words(comparison.session.catalogue, comparison.session.className, name);
    rows->table.rows.push_back(
        {Bytes_Shown(name), Reading_Shown(first, words), Reading_Shown(second, words)});
    Json json = Json::object();
    Json_PutText(&json, "name", name);
    Json_PutReading(&json, "a", first, words);
    Json_PutReading(&json, "b", second, words);
    rows->list.push_back(json);
}

void ShowTable(const Comparison &comparison, const char *what, const Table &table)
{
    if (table.rows.empty())
        Output_Line(comparison.output, fmt::format("No {} differs.", what));
    else
        Output_Table(comparison.output, table);
}

Rows MakeRows(const Comparison &comparison, const char *head)
{
    return {{{head, comparison.firstName, comparison.secondName}, {}}, Json::array()};
}

void DiffOptions(const Comparison &comparison)
{
    Rows rows = MakeRows(comparison, "Option");
    for (const std::string &name : Session_OptionNames(comparison.session)) {
        const OptionState first = Config_Option(comparison.first, name);
        const OptionState second = Config_Option(comparison.second, name);
        Compare(comparison, name, {first.status, first.value}, {second.status, second.value}, &rows);
    }
    comparison.output->document["options"] = rows.list;
    ShowTable(comparison, "option", rows.table);
}

void DiffKeys(const Comparison &comparison)
{
    const Session &session = comparison.session;
    const DefinitionsHandle definitions = Session_Definitions(session);
    Rows rows = MakeRows(comparison, "Key");
    for (const NamedKey &key : Definitions_Keys(*definitions, session.catalogue, session.className))
        Compare(comparison, key.name, Config_Key(comparison.first, key), Config_Key(comparison.second, key),
                &rows);
    comparison.output->document["keys"] = rows.list;
    ShowTable(comparison, "key", rows.table);
}

using RegisterMap = std::map<std::pair<uint32_t, uint32_t>, Value>;

RegisterMap ByName(Config *config)
{
    RegisterMap registers;
    for (const Register &slot : Config_Registers(config))
        registers.emplace(std::pair(slot.id, slot.instance), slot.value);
    return registers;
}

struct RegisterDifference {
    std::pair<uint32_t, uint32_t> name;
    const Value *first, *second; // null: no such register
};

std::vector<RegisterDifference> Differences(const RegisterMap &first, const RegisterMap &second)
{
    std::vector<RegisterDifference> differences;
    for (const auto &[name, value] : first) {
        const auto other = second.find(name);
        if (other == second.end())
            differences.push_back({name, &value, nullptr});
        else if (!Value_IsSame(value, other->second))
            differences.push_back({name, &value, &other->second});
    }
    for (const auto &[name, value] : second)
        if (!first.contains(name))
            differences.push_back({name, nullptr, &value});
    return differences;
}

std::string RegisterShown(const Value *value)
{
    if (value == nullptr)
        return "not there";
    return value->kind == ValueKindNumber ? fmt::format("0x{:08X}", value->number) : Value_Shown(*value, {});
}

void DiffRegisters(const Comparison &comparison, const std::vector<RegisterDifference> &differences)
{
    const std::map<uint32_t, std::string> symbols =
        Catalogue_Symbols(comparison.session.catalogue, comparison.session.className);
    Table table = {{"Register", "Name", comparison.firstName, comparison.secondName}, {}};
    Json list = Json::array();
    for (const RegisterDifference &difference : differences) {
        const auto &[id, instance] = difference.name;
        const auto symbol = symbols.find(id);
        table.rows.push_back(
            {instance == 1 ? fmt::format("0x{:08X}", id) : fmt::format("0x{:08X}:{}", id, instance),
             symbol == symbols.end() ? "" : Bytes_Shown(symbol->second), RegisterShown(difference.first),
             RegisterShown(difference.second)});
        Json json = {{"id", id}, {"instance", instance}};
        Json_PutText(&json, "name", symbol == symbols.end() ? "" : symbol->second);
        json["a"] = difference.first == nullptr ? Json() : Json_OfValue(*difference.first, {});
        json["b"] = difference.second == nullptr ? Json() : Json_OfValue(*difference.second, {});
        list.push_back(json);
    }
    Table_RemoveEmptyColumns(&table);
    comparison.output->document["registers"] = list;
    ShowTable(comparison, "register", table);
}

} // namespace

ExitStatus Run_Diff(const Arguments &arguments, Output *output)
{
    const Session session = Arguments_Session(arguments);
    const Place first = PlaceOf(arguments, session, arguments.names[0]);
    const Place second = PlaceOf(arguments, session, arguments.names[1]);
    const ConfigHandle firstConfig = Place_Load(session, arguments, first, output);
    const ConfigHandle secondConfig = Place_Load(session, arguments, second, output);
    const RegisterMap firstRegisters = ByName(firstConfig.get());
    const RegisterMap secondRegisters = ByName(secondConfig.get());
    const std::vector<RegisterDifference> differences = Differences(firstRegisters, secondRegisters);

    output->document["a"] = Json_OfPlace(session, first);
    output->document["b"] = Json_OfPlace(session, second);
    output->document["differ"] = !differences.empty();
    Output_Line(output, fmt::format("{} and {}:", Place_Heading(session, first), Place_Shown(second)));
    const Comparison comparison = {
        session, firstConfig.get(), secondConfig.get(), Place_Shown(first), Place_Shown(second), output};
    DiffOptions(comparison);
    if (arguments.areKeys)
        DiffKeys(comparison);
    if (arguments.areRegisters)
        DiffRegisters(comparison, differences);
    else if (!differences.empty())
        Output_Line(output, fmt::format("{} register{} in all; --registers shows them.", differences.size(),
                                        differences.size() == 1 ? " differs" : "s differ"));
    return differences.empty() ? ExitDone : ExitDiffers;
}
