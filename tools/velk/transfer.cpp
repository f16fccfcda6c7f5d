#include "tools/velk/bytes.h"
#include "tools/velk/commands.h"
#include "tools/velk/report.h"
#include "tools/velk/save_check.h"
#include "tools/velk/signals.h"
#include "tools/velk/write.h"

#include <fmt/format.h>

namespace
{

Place FileOf(const Arguments &arguments, const Session &session)
{
    Place place;
    place.kind = Place::SaveFile;
    place.file = arguments.names[0];
    place.key = arguments.hasKey ? arguments.key : session.className;
    return place;
}

} // namespace

ExitStatus Run_Save(const Arguments &arguments, Output *output)
{
    const Session session = Arguments_Session(arguments);
    const Place board = Arguments_Place(arguments, session.className, true);
    const Place file = FileOf(arguments, session);
    const ConfigHandle config = Place_Load(session, arguments, board, output);
    Signals_Wait();
    const StatusCode status = VelkSaveToFile(config.get(), file.file.c_str(), file.key.c_str());
    if (status < 0)
        throw Failure_Of(ExitEngine, fmt::format("save {} to {}", Place_Shown(board), Bytes_Shown(file.file)),
                         status);
    const size_t count = Config_Registers(config.get()).size();
    Output_Line(output, fmt::format("{}: {} registers, saved to {}.", Place_Heading(session, board), count,
                                    Bytes_Shown(file.file)));
    if (output->isJson) {
        output->document["source"] = Json_OfPlace(session, board);
        output->document["target"] = Json_OfPlace(session, file);
        output->document["registers"] = count;
    }
    return ExitDone;
}

ExitStatus Run_Load(const Arguments &arguments, Output *output)
{
    const Session session = Arguments_Session(arguments);
    const Place board = Arguments_Place(arguments, session.className, true);
    Write_Prepare(arguments, output);
    const Place file = FileOf(arguments, session);
    const ConfigHandle after = Place_Load(session, arguments, file, output);
    const ConfigHandle before = Place_Load(session, arguments, board, output);

    const Report report = Report_Make(session, before.get(), after.get(), {});
    const std::string doing = fmt::format("load {} into {}", Bytes_Shown(file.file), Place_Shown(board));
    Output_Line(output, fmt::format("{}, in place of {}:", Place_Heading(session, file), Place_Shown(board)));
    if (report.changes.empty())
        Output_Line(output, "No option changes.");
    Report_Show(report, session, "On the board", "In the file", output);
    if (output->isJson) {
        output->document["source"] = Json_OfPlace(session, file);
        output->document["target"] = Json_OfPlace(session, board);
        output->document["dryRun"] = arguments.isDryRun;
        Report_PutJson(report, session, output);
    }
    Write_Run({session, arguments, board, before.get(), after.get(), doing, file.file}, output);
    return ExitDone;
}
