#include "tools/velk/bytes.h"
#include "tools/velk/commands.h"
#include "tools/velk/key_state.h"
#include "tools/velk/report.h"
#include "tools/velk/save_check.h"
#include "tools/velk/valid_notes.h"
#include "tools/velk/write.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>

namespace
{

// One NAME=VALUE.
struct Assignment {
    std::string name, text;
    std::string line; // "line 2 of settings", or nothing: of the command line
    Words words;
    Value asked;
    Reading old, stored;
    Reading atEnd; // what stands when all assignments are made
};

// What cannot be read is not known to be moved.
bool IsMoved(const Value &from, const Reading &to)
{
    return to.status == 0 && !Value_IsSame(from, to.value);
}

struct Setting {
    const Session &session;
    const Arguments &arguments;
    std::string target;            // "board 5"
    Config *config;                // the working copy
    DefinitionsHandle definitions; // with --keys
    Output *output;
};

Assignment Split(const std::string &text)
{
    const size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0)
        throw Failure{ExitUsage, fmt::format("cannot read '{}'", Bytes_Shown(text)), "give NAME=VALUE"};
    Assignment assignment = {};
    assignment.name = Bytes_Trimmed(std::string_view(text).substr(0, equals));
    assignment.text = text.substr(equals + 1);
    return assignment;
}

// A line each; empty ones and those that begin with # are none.
void ReadLines(std::istream &stream, const std::string &name, std::vector<Assignment> *assignments)
{
    std::string line;
    for (int number = 1; std::getline(stream, line); ++number) {
        if (line.ends_with('\r'))
            line.pop_back();
        const std::string_view trimmed = Bytes_Trimmed(line);
        if (trimmed.empty() || trimmed.starts_with('#'))
            continue;
        const std::string place = fmt::format("line {} of {}", number, Bytes_Shown(name));
        try {
            assignments->push_back(Split(std::string(trimmed)));
        } catch (Failure &failure) {
            failure.message += " in " + place;
            throw;
        }
        assignments->back().text = Bytes_Trimmed(assignments->back().text);
        assignments->back().line = place;
    }
    if (stream.bad())
        throw Failure{ExitUsage, fmt::format("cannot read {}: {}", Bytes_Shown(name), strerror(errno)),
                      "give a file of NAME=VALUE lines"};
}

std::vector<Assignment> ReadAssignments(const Arguments &arguments)
{
    std::vector<Assignment> assignments;
    if (arguments.from == "-") {
        ReadLines(std::cin, "standard input", &assignments);
    } else if (!arguments.from.empty()) {
        std::ifstream file(arguments.from, std::ios::binary);
        if (!file)
            throw Failure{ExitUsage,
                          fmt::format("cannot open {}: {}", Bytes_Shown(arguments.from), strerror(errno)),
                          "give a file of NAME=VALUE lines"};
        ReadLines(file, arguments.from, &assignments);
    }
    for (const std::string &text : arguments.names)
        assignments.push_back(Split(text));
    return assignments;
}

std::string Doing(const Setting &setting, const Assignment &assignment)
{
    return fmt::format("set {}={} on {}", Bytes_Shown(assignment.name), Bytes_Shown(assignment.text),
                       setting.target);
}

// A value that is not stored as it was asked for.
void TellMoved(const Setting &setting, const std::string &message, const std::string &details)
{
    if (setting.arguments.isStrict)
        throw Failure{
            ExitDiffers, message, "", 0,
            details + "  --strict lets nothing be moved: give a value that stays, or leave --strict out.\n"};
    Output_Warn(setting.output, message, details);
}

std::string ValidLine(const Setting &setting, const OptionState &state, const Words &words)
{
    if (state.validStatus < 0)
        return "";
    return Text_Wrapped("Valid: " + Valid_Shown(state.valid, words, true) + ".", setting.output->width, 2, 2);
}

void TellOptionMoved(const Setting &setting, const Assignment &assignment, const OptionState &before)
{
    const std::string note = Valid_NoteOnMove(before.valid, assignment.asked, assignment.stored.value);
    const std::string details = ValidLine(setting, before, assignment.words) +
                                (note.empty() ? "" : Text_Wrapped(note, setting.output->width, 2));
    const std::string stored = Reading_Shown(assignment.stored, assignment.words);
    if (Valid_IsNone(before.valid))
        TellMoved(
            setting,
            fmt::format("{}: no value is valid now, so it would stay {}", Doing(setting, assignment), stored),
            details);
    else
        TellMoved(setting,
                  fmt::format("{}: {} {} and would become {}", Doing(setting, assignment),
                              Value_Shown(assignment.asked, assignment.words),
                              Valid_Admits(before.valid, assignment.asked)
                                  ? "is valid now, but its keys cannot hold it,"
                                  : "is not valid now",
                              stored),
                  details);
}

Reading Read(const Setting &setting, Config *config, const std::string &name)
{
    if (setting.definitions == nullptr) {
        const OptionState state = Config_Option(config, name);
        return {state.status, state.value};
    }
    return Config_Key(config, {name, KeyTable_Find(&setting.definitions->keys, name.c_str())});
}

// The option as it stands is what the rules are told of, since an earlier assignment may have moved them.
void SetOption(const Setting &setting, Assignment *assignment)
{
    const OptionState before = Config_Option(setting.config, assignment->name);
    if (before.status == StatusUnknownOption)
        Fail_UnknownOption(setting.session, assignment->name, "which --keys sets");
    assignment->asked =
        Value_Parse(assignment->text, before.value.kind, assignment->words, Bytes_Shown(assignment->name));
    ValueWord lent;
    Value_Lend(assignment->asked, &lent);
    const StatusCode status =
        VelkSetOptionEx(setting.config, assignment->name.c_str(), before.value.kind, lent.word);
    if (status < 0) {
        Failure failure = Failure_Of(ExitEngine, Doing(setting, *assignment), status);
        failure.details = ValidLine(setting, before, assignment->words);
        Fail(failure);
    }
    assignment->stored = Read(setting, setting.config, assignment->name);
    if (IsMoved(assignment->asked, assignment->stored))
        TellOptionMoved(setting, *assignment, before);
}

// The engine has one code for a value that a key has no bits for and for its own mistakes.
Failure KeyFailure(const Setting &setting, const Assignment &assignment, const KeyDef &key, StatusCode status)
{
    Failure failure = Failure_Of(ExitEngine, Doing(setting, assignment), status);
    if (status != StatusInternalError)
        return failure;
    failure.next = "give a value that the key can hold";
    if (key.type == KeyTypeIndex) {
        OptionState state = {};
        state.valid.kind = ValidKindList;
        state.valid.numbers.assign(key.array, key.array + key.arrayCount);
        failure.details = ValidLine(setting, state, assignment.words);
    }
    return failure;
}

void SetKey(const Setting &setting, Assignment *assignment)
{
    const NamedKey named = {assignment->name,
                            KeyTable_Find(&setting.definitions->keys, assignment->name.c_str())};
    if (named.key == nullptr)
        Fail_Unknown("key", assignment->name,
                     Catalogue_DefinedNames(setting.session.catalogue, setting.session.className, "Keys"),
                     StatusUnknownKey);
    int32_t kind = ValueKindNumber;
    KeyDef_GetKind(named.key, &kind);
    assignment->asked = Value_Parse(assignment->text, kind, assignment->words, Bytes_Shown(assignment->name));
    ValueWord lent;
    Value_Lend(assignment->asked, &lent);
    const StatusCode status = VelkSetKey(setting.config, assignment->name.c_str(), lent.word);
    if (status < 0)
        throw KeyFailure(setting, *assignment, *named.key, status);
    assignment->stored = Read(setting, setting.config, assignment->name);
    if (IsMoved(assignment->asked, assignment->stored))
        TellMoved(setting,
                  fmt::format("{}: the key cannot hold it, and would become {}", Doing(setting, *assignment),
                              Reading_Shown(assignment->stored, assignment->words)),
                  "");
}

void AssignOne(const Setting &setting, Assignment *assignment)
{
    assignment->words =
        Catalogue_Words(setting.session.catalogue, setting.session.className, assignment->name);
    try {
        if (setting.definitions != nullptr)
            SetKey(setting, assignment);
        else
            SetOption(setting, assignment);
    } catch (Failure &failure) {
        if (!assignment->line.empty())
            failure.message += fmt::format(" ({})", assignment->line);
        throw;
    }
}

void Assign(const Setting &setting, Config *before, std::vector<Assignment> *assignments)
{
    for (Assignment &assignment : *assignments)
        AssignOne(setting, &assignment);
    for (Assignment &assignment : *assignments) {
        assignment.old = Read(setting, before, assignment.name);
        assignment.atEnd = Read(setting, setting.config, assignment.name);
        if (assignment.stored.status == 0 && IsMoved(assignment.stored.value, assignment.atEnd))
            TellMoved(setting,
                      fmt::format("{}: {} was taken, and a later assignment makes it {}",
                                  Doing(setting, assignment),
                                  Reading_Shown(assignment.stored, assignment.words),
                                  Reading_Shown(assignment.atEnd, assignment.words)),
                      "");
    }
}

void ShowAssignments(const Setting &setting, const std::vector<Assignment> &assignments)
{
    Table table = {{setting.definitions == nullptr ? "Option" : "Key", "Asked", "Stored", "Was"}, {}};
    for (const Assignment &assignment : assignments)
        table.rows.push_back({Bytes_Shown(assignment.name), Value_Shown(assignment.asked, assignment.words),
                              Reading_Shown(assignment.atEnd, assignment.words),
                              Reading_Shown(assignment.old, assignment.words)});
    if (assignments.empty())
        Output_Line(setting.output, "Nothing is asked for.");
    else
        Output_Table(setting.output, table);
}

void PutAssignments(const Setting &setting, const std::vector<Assignment> &assignments)
{
    Json list = Json::array();
    for (const Assignment &assignment : assignments) {
        Json json = Json::object();
        Json_PutText(&json, "name", assignment.name);
        json["layer"] = setting.definitions == nullptr ? "option" : "key";
        json["asked"] = Json_OfValue(assignment.asked, assignment.words);
        Json_PutReading(&json, "stored", assignment.atEnd, assignment.words);
        Json_PutReading(&json, "old", assignment.old, assignment.words);
        json["moved"] = IsMoved(assignment.asked, assignment.atEnd);
        list.push_back(json);
    }
    setting.output->document["assignments"] = list;
}

std::string AllOf(const std::vector<Assignment> &assignments, const std::string &target)
{
    std::string all = "set";
    for (const Assignment &assignment : assignments)
        all += fmt::format(" {}={}", Bytes_Shown(assignment.name), Bytes_Shown(assignment.text));
    return all + " on " + target;
}

void Tell(const Setting &setting, const Place &place, const std::vector<Assignment> &assignments,
          Config *before)
{
    std::set<std::string> apart;
    if (setting.definitions == nullptr)
        for (const Assignment &assignment : assignments)
            apart.insert(assignment.name);
    const Report report = Report_Make(setting.session, before, setting.config, apart);
    Output_Line(setting.output, "Working copy of " + Place_Shown(place) +
                                    fmt::format(", class {} ({}):", Bytes_Shown(setting.session.className),
                                                Bytes_Shown(setting.session.catalogue.directory)));
    ShowAssignments(setting, assignments);
    if (!report.changes.empty())
        Output_Line(setting.output, "What moves with it:");
    Report_Show(report, setting.session, "Was", "Is", setting.output);
    if (setting.output->isJson) {
        setting.output->document["source"] = Json_OfPlace(setting.session, place);
        setting.output->document["dryRun"] = setting.arguments.isDryRun;
        PutAssignments(setting, assignments);
        Report_PutJson(report, setting.session, setting.output);
    }
}

} // namespace

ExitStatus Run_Set(const Arguments &arguments, Output *output)
{
    const Session session = Arguments_Session(arguments);
    const Place place = Arguments_Place(arguments, session.className, true);
    Write_Prepare(arguments, output);
    std::vector<Assignment> assignments = ReadAssignments(arguments);
    const ConfigHandle before = Place_Load(session, arguments, place, output);
    const ConfigHandle working = Config_Copy(session, before.get());
    const Setting setting = {session,
                             arguments,
                             Place_Shown(place),
                             working.get(),
                             arguments.areKeys ? Session_Definitions(session) : nullptr,
                             output};
    Assign(setting, before.get(), &assignments);
    Tell(setting, place, assignments, before.get());
    Write_Run({session, arguments, place, before.get(), working.get(), AllOf(assignments, setting.target)},
              output);
    return ExitDone;
}
