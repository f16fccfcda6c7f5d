#include "tools/velk/bytes.h"
#include "tools/velk/commands.h"
#include "tools/velk/save_check.h"
#include "tools/velk/valid_notes.h"

#include <fmt/format.h>

namespace
{

void ShowNumbers(const ValidNow &valid, const Words &words, Output *output)
{
    Table table = {{"Valid now", "Word"}, {}};
    for (const uint32_t number : valid.numbers)
        table.rows.push_back(
            {fmt::format("{}{}", number, words.unit.empty() ? "" : " " + Bytes_Shown(words.unit)),
             Bytes_Shown(Words_Of(words, number))});
    Output_Table(output, table);
}

void Show(const OptionState &state, const Words &words, Output *output)
{
    if (!words.label.empty())
        Output_Line(output, Bytes_Shown(words.label));
    if (!words.help.empty())
        Output_Line(output, Bytes_Shown(words.help));
    if (state.status == 0)
        Output_Line(output, "It is " + Value_Shown(state.value, words) +
                                (Valid_Admits(state.valid, state.value) || Valid_IsNone(state.valid)
                                     ? "."
                                     : ", which is not valid now."));
    else
        Output_Line(output, "It cannot be read: " + Status_Text(state.status) + ".");
    if (state.valid.kind == ValidKindList && !Valid_IsNone(state.valid))
        ShowNumbers(state.valid, words, output);
    else
        Output_Line(output, "Valid now: " + Valid_Shown(state.valid, words, true) + ".");
    // The words of a range stand apart, since nobody counts up to them.
    if (state.valid.kind == ValidKindRange)
        for (const auto &[number, word] : words.byNumber)
            if (Valid_Admits(state.valid, Value_Copy(ValueKindNumber, number)))
                Output_Line(output, fmt::format("{} is {}.", number, Bytes_Shown(word)));
    for (const std::string &note : Valid_Notes(state.valid))
        Output_Line(output, note);
}

} // namespace

ExitStatus Run_Values(const Arguments &arguments, Output *output)
{
    const Session session = Arguments_Session(arguments);
    const Place place = Arguments_Place(arguments, session.className, true);
    const ConfigHandle config = Place_Load(session, arguments, place, output);
    const std::string &name = arguments.names[0];
    const OptionState state = Config_Option(config.get(), name);
    if (state.validStatus == StatusUnknownOption)
        Fail_UnknownOption(session, name, "and no rule guards keys");
    if (state.validStatus < 0)
        throw Failure_Of(
            ExitEngine,
            fmt::format("tell the valid values of {} on {}", Bytes_Shown(name), Place_Shown(place)),
            state.validStatus);
    const Words words = Catalogue_Words(session.catalogue, session.className, name);
    Output_Line(output, fmt::format("{} of {}:", Bytes_Shown(name), Place_Shown(place)));
    Show(state, words, output);
    if (output->isJson) {
        Json *document = &output->document;
        (*document)["source"] = Json_OfPlace(session, place);
        Json_PutText(document, "name", name);
        Json_PutText(document, "label", words.label);
        Json_PutText(document, "unit", words.unit);
        Json_PutText(document, "help", words.help);
        Json_PutReading(document, "value", {state.status, state.value}, words);
        (*document)["valid"] = Json_OfValid(state.valid, words);
        (*document)["isValid"] = state.status == 0 ? Json(Valid_Admits(state.valid, state.value)) : Json();
        (*document)["notes"] = Valid_Notes(state.valid);
    }
    return ExitDone;
}
