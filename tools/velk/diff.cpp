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

std::string Shown(StatusCode status, const Value &value, const Words &words)
{
    return status == 0 ? Value_Shown(value, words) : Status_Text(status);
}

Json ValueOrNull(StatusCode status, const Value &value, const Words &words)
{
    return status == 0 ? Json_OfValue(value, words) : Json();
}

// A row of two values; true: they differ, and are shown.
bool CompareValues(const Comparison &comparison, const std::string &name, StatusCode firstStatus,
                   const Value &first, StatusCode secondStatus, const Value &second, Table *table, Json *list)
{
    if (firstStatus == secondStatus && (firstStatus < 0 || Value_IsSame(first, second)))
        return false;
    const Words words = Catalogue_Words(comparison.session.catalogue, comparison.session.className, name);
    table->rows.push_back(
        {Bytes_Shown(name), Shown(firstStatus, first, words), Shown(secondStatus, second, words)});
    Json json = Json::object();
    Json_PutText(&json, "name", name);
    json["a"] = ValueOrNull(firstStatus, first, words);
    json["b"] = ValueOrNull(secondStatus, second, words);
    json["aError"] = firstStatus < 0 ? Json_OfStatus(firstStatus) : Json();
    json["bError"] = secondStatus < 0 ? Json_OfStatus(secondStatus) : Json();
    list->push_back(json);
    return true;
}

void ShowTable(const Comparison &comparison, const char *what, const Table &table)
{
    if (table.rows.empty())
        Output_Line(comparison.output, fmt::format("No {} differs.", what));
    else
        Output_Table(comparison.output, table);
}

void DiffOptions(const Comparison &comparison)
{
    Table table = {{"Option", comparison.firstName, comparison.secondName}, {}};
    Json list = Json::array();
    for (const std::string &name : Session_OptionNames(comparison.session)) {
        const OptionState first = Config_Option(comparison.first, name);
        const OptionState second = Config_Option(comparison.second, name);
        CompareValues(comparison, name, first.status, first.value, second.status, second.value, &table,
                      &list);
    }
    comparison.output->document["options"] = list;
    ShowTable(comparison, "option", table);
}

void DiffKeys(const Comparison &comparison)
{
    const Session &session = comparison.session;
    const DefinitionsHandle definitions = Session_Definitions(session);
    Table table = {{"Key", comparison.firstName, comparison.secondName}, {}};
    Json list = Json::array();
    for (const NamedKey &key : Definitions_Keys(*definitions, session.catalogue, session.className)) {
        Value first, second;
        const StatusCode firstStatus = Config_Key(comparison.first, key, &first);
        const StatusCode secondStatus = Config_Key(comparison.second, key, &second);
        CompareValues(comparison, key.name, firstStatus, first, secondStatus, second, &table, &list);
    }
    comparison.output->document["keys"] = list;
    ShowTable(comparison, "key", table);
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
    Table table = {{"Register", comparison.firstName, comparison.secondName}, {}};
    Json list = Json::array();
    for (const RegisterDifference &difference : differences) {
        const auto &[id, instance] = difference.name;
        table.rows.push_back(
            {instance == 1 ? fmt::format("0x{:08X}", id) : fmt::format("0x{:08X}:{}", id, instance),
             RegisterShown(difference.first), RegisterShown(difference.second)});
        Json json = {{"id", id}, {"instance", instance}};
        json["a"] = difference.first == nullptr ? Json() : Json_OfValue(*difference.first, {});
        json["b"] = difference.second == nullptr ? Json() : Json_OfValue(*difference.second, {});
        list.push_back(json);
    }
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
