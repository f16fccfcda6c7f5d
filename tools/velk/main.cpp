// velk: shows and sets the options of boards.
#include "tools/velk/commands.h"
#include "tools/velk/signals.h"
#include "tools/velk/write.h"

#include <fmt/format.h>

#include <iterator>

namespace
{

using Runner = ExitStatus (*)(const Arguments &arguments, Output *output);

ExitStatus Run_Help(const Arguments &arguments, Output *output)
{
    const std::string command = arguments.wantsHelp       ? arguments.command
                                : arguments.names.empty() ? ""
                                                          : arguments.names[0];
    output->text = Help_Text(command, output->width);
    if (output->isJson) {
        output->document["command"] = "help";
        output->document["text"] = output->text;
    }
    return ExitDone;
}

ExitStatus Run_Version(Output *output)
{
    output->text = "velk " VELK_VERSION "\n";
    if (output->isJson) {
        output->document["command"] = nullptr;
        output->document["version"] = VELK_VERSION;
    }
    return ExitDone;
}

ExitStatus Run_Nothing(Output *output)
{
    output->text = Help_Greeting(output->width);
    if (output->isJson)
        output->document["text"] = output->text;
    return ExitDone;
}

constexpr struct {
    const char *name;
    Runner run;
} Runners[] = {
    {"classes", Run_Classes}, {"list", Run_List}, {"get", Run_Get},   {"values", Run_Values},
    {"set", Run_Set},         {"diff", Run_Diff}, {"save", Run_Save}, {"load", Run_Load},
    {"status", Run_Status},   {"help", Run_Help},
};

ExitStatus Run(const Arguments &arguments, Output *output)
{
    if (arguments.wantsVersion)
        return Run_Version(output);
    if (arguments.wantsHelp)
        return Run_Help(arguments, output);
    for (const auto &runner : Runners)
        if (arguments.command == runner.name)
            return runner.run(arguments, output);
    return Run_Nothing(output);
}

// An interrupt may come at any time, so that its words are made ahead.
void CatchSignals(const Output &output)
{
    const Failure failure = {ExitInterrupted, "interrupted, and nothing was written"};
    if (!output.isJson) {
        Signals_Catch("", Failure_Text(failure));
        return;
    }
    Json document = output.document;
    document["error"] = Json_OfFailure(failure);
    Signals_Catch(Document_Text(document), "");
}

ExitStatus EndWith(const Failure &failure, Output *output)
{
    Output_Fail(output, failure);
    return failure.exit;
}

ExitStatus RunCommandLine(int argc, char **argv, Output *output)
{
    try {
        const std::string command = Arguments_Command(argc, argv);
        if (output->isJson && !command.empty())
            output->document["command"] = command;
        if (command == "set" || command == "load")
            Write_Begin(output);
        const Arguments arguments = Arguments_Parse(argc, argv);
        CatchSignals(*output);
        return Run(arguments, output);
    } catch (const Failure &failure) {
        return EndWith(failure, output);
    } catch (const std::bad_alloc &) {
        return EndWith(Failure_Of(ExitEngine, "go on", StatusOutOfMemory), output);
    }
}

} // namespace

int main(int argc, char **argv)
{
    Output output = Output_Make(Arguments_WantJson(argc, argv));
    const ExitStatus status = RunCommandLine(argc, argv, &output);
    return Output_Finish(&output, status);
}
