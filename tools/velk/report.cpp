#include "tools/velk/report.h"

#include "tools/velk/bytes.h"

#include <fmt/format.h>

namespace
{

OptionChange Compare(const OptionState &before, const OptionState &after)
{
    const bool isMoved =
        before.status != after.status || (before.status == 0 && !Value_IsSame(before.value, after.value));
    const bool isValidMoved = before.validStatus != after.validStatus ||
                              (before.validStatus == 0 && !(before.valid == after.valid));
    return {before, after, isMoved, isValidMoved};
}

Reading ValueOf(const OptionState &state)
{
    return {state.status, state.value};
}

std::string ValidOf(const OptionState &state, const Words &words)
{
    return state.validStatus == 0 ? Valid_Shown(state.valid, words, false) : Status_Text(state.validStatus);
}

std::vector<std::string> ChangeRow(const OptionChange &change, const Words &words)
{
    const std::string now = Reading_Shown(ValueOf(change.after), words);
    return {Bytes_Shown(change.after.name),
            change.isMoved ? Reading_Shown(ValueOf(change.before), words) : "as now", now,
            change.isValidMoved ? ValidOf(change.after, words) : "as before"};
}

void PutValid(Json *object, const std::string &member, const OptionState &state, const Words &words)
{
    (*object)[member] = state.validStatus == 0 ? Json_OfValid(state.valid, words) : Json();
    (*object)[member + "Error"] = state.validStatus == 0 ? Json() : Json_OfStatus(state.validStatus);
}

Json ChangeJson(const OptionChange &change, const Words &words)
{
    Json json = Json::object();
    Json_PutText(&json, "name", change.after.name);
    json["moved"] = change.isMoved;
    json["validMoved"] = change.isValidMoved;
    Json_PutReading(&json, "before", ValueOf(change.before), words);
    Json_PutReading(&json, "after", ValueOf(change.after), words);
    PutValid(&json, "validBefore", change.before, words);
    PutValid(&json, "validAfter", change.after, words);
    return json;
}

} // namespace

Report Report_Make(const Session &session, Config *before, Config *after, const std::set<std::string> &apart)
{
    Report report;
    for (const std::string &name : Session_OptionNames(session)) {
        const OptionChange change = Compare(Config_Option(before, name), Config_Option(after, name));
        if (change.after.status < 0)
            report.unreadable.push_back(change.after);
        if ((change.isMoved || change.isValidMoved) && !apart.contains(name))
            report.changes.push_back(change);
    }
    return report;
}

void Report_Show(const Report &report, const Session &session, const char *wasHead, const char *nowHead,
                 Output *output)
{
    Table table = {{"Option", wasHead, nowHead, "Valid now"}, {}};
    for (const OptionChange &change : report.changes)
        table.rows.push_back(
            ChangeRow(change, Catalogue_Words(session.catalogue, session.className, change.after.name)));
    if (!table.rows.empty())
        Output_Table(output, table);
    for (const OptionState &state : report.unreadable)
        Output_Line(output, fmt::format("{} cannot be read: {}.", Bytes_Shown(state.name),
                                        Status_Text(state.status)));
}

void Report_PutJson(const Report &report, const Session &session, Output *output)
{
    Json *document = &output->document;
    (*document)["changes"] = Json::array();
    for (const OptionChange &change : report.changes)
        (*document)["changes"].push_back(
            ChangeJson(change, Catalogue_Words(session.catalogue, session.className, change.after.name)));
    (*document)["unreadable"] = Json::array();
    for (const OptionState &state : report.unreadable) {
        Json json = Json::object();
        Json_PutText(&json, "name", state.name);
        json["error"] = Json_OfStatus(state.status);
        (*document)["unreadable"].push_back(json);
    }
}
