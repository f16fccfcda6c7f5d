#include "tools/velk/write.h"

#include "tools/velk/bytes.h"
#include "tools/velk/signals.h"

#include <fmt/format.h>

#include <iostream>
#include <set>

#include <sys/stat.h>
#include <unistd.h>

namespace
{

bool CanAsk(const Arguments &arguments)
{
    return arguments.from != "-" && isatty(STDIN_FILENO) == 1 && isatty(STDERR_FILENO) == 1;
}

void Ask(const Change &change)
{
    if (change.arguments.isYes)
        return;
    std::string answer;
    Stream_Write(STDERR_FILENO, fmt::format("Write this to {}? [y/N] ", Place_Shown(change.target)));
    if (!std::getline(std::cin, answer))
        Stream_Write(STDERR_FILENO, "\n"); // what follows is not to stand behind the question
    if (!Bytes_AreAlike(answer, "y") && !Bytes_AreAlike(answer, "yes"))
        throw Failure{ExitInterrupted, fmt::format("did not {}: the answer was not yes", change.doing)};
}

// What it comes to goes to standard error, since standard output belongs to what was done.
void Show(Output *output)
{
    if (output->isJson)
        return;
    if (!Stream_Write(STDERR_FILENO, output->text))
        throw Failure{ExitUsage, "cannot show what would change: standard error takes nothing more",
                      "look at --dry-run"};
    output->text.clear();
}

bool IsSameFile(const std::string &first, const std::string &second)
{
    struct stat one, other;
    return stat(first.c_str(), &one) == 0 && stat(second.c_str(), &other) == 0 &&
           one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

// It would be written over, or be what is loaded.
void RequireOwnBackup(const Change &change)
{
    const std::string &file = change.arguments.backup;
    if (IsSameFile(file, change.target.file) || IsSameFile(file, change.loaded))
        throw Failure{
            ExitUsage,
            fmt::format("cannot {}: the backup would be the same file, {}", change.doing, Bytes_Shown(file)),
            "give another one to --backup"};
}

std::string BackupLine(const std::string &file)
{
    return fmt::format("What was there is saved to {}.", Bytes_Shown(file));
}

void SaveBackup(const Change &change, Output *output)
{
    const std::string &file = change.arguments.backup;
    if (file.empty() || change.arguments.isDryRun)
        return;
    const std::string &key =
        change.target.kind == Place::SaveFile ? change.target.key : change.session.className;
    const StatusCode status = VelkSaveToFile(change.before, file.c_str(), key.c_str());
    if (status < 0)
        throw Failure_Of(ExitEngine, fmt::format("save the backup {}", Bytes_Shown(file)), status);
    Output_Line(output, BackupLine(file));
}

StatusCode Store(const Change &change)
{
    const Place &target = change.target;
    if (target.kind == Place::Board)
        return VelkSaveCurrentConfig(change.after, target.first, target.second);
    return VelkSaveToFile(change.after, target.file.c_str(), target.key.c_str());
}

// The registers that are not what they are to be, of those that change; or none, and why they cannot be read.
struct ReadBack {
    std::vector<Register> different;
    size_t changed;
    std::string failure;
};

ReadBack ReadTarget(const Change &change, const std::vector<Register> &wanted,
                    const std::vector<Register> &changed)
{
    ReadBack result = {{}, changed.size(), ""};
    try {
        const ConfigHandle again = Session_NewConfig(change.session);
        Config_Load(again.get(), change.target);
        std::set<std::pair<uint32_t, uint32_t>> ours;
        for (const Register &slot : changed)
            ours.emplace(slot.id, slot.instance);
        for (const Register &slot : Registers_Changed(Config_Registers(again.get()), wanted))
            if (ours.contains({slot.id, slot.instance}))
                result.different.push_back(slot);
    } catch (const Failure &failure) {
        result.failure = failure.message;
    }
    return result;
}

std::string Count(size_t count)
{
    return fmt::format("{} register{}", count, count == 1 ? "" : "s");
}

// What stands on the target after a write that failed.
struct Truth {
    bool isWritten; // nothing is known to be as it was
    std::string words;
};

Truth TruthAfterFailure(const Change &change, const std::vector<Register> &changed)
{
    const ReadBack old = ReadTarget(change, Config_Registers(change.before), changed);
    if (!old.failure.empty())
        return {true, fmt::format("what it holds now is unknown, since it cannot be read: {}", old.failure)};
    if (old.different.empty())
        return {false, "it is not written: it was read again, and holds what it held"};
    const ReadBack now = ReadTarget(change, Config_Registers(change.after), changed);
    if (now.failure.empty() && now.different.empty())
        return {true, "it is written all the same: it was read again, and holds what it was to hold"};
    return {true, fmt::format("it is written in part: of {} that change {} read back as before",
                              Count(old.changed), old.changed - old.different.size())};
}

void PutResult(Output *output, bool isWritten, bool isReadBack, size_t registers, const std::string &result)
{
    output->document["outcome"] = {
        {"written", isWritten}, {"readBack", isReadBack}, {"registers", registers}, {"result", result}};
}

void StoreAndReadBack(const Change &change, const std::vector<Register> &changed, Output *output)
{
    const std::string target = Place_Shown(change.target);
    const std::string &backup = change.arguments.backup;
    output->truth = backup.empty() ? "" : "  " + BackupLine(backup) + "\n";
    const StatusCode status = Store(change);
    if (status < 0) {
        const bool isBoards = change.target.kind == Place::Board && status != StatusOutOfMemory;
        const Truth truth = TruthAfterFailure(change, changed);
        PutResult(output, truth.isWritten, false, changed.size(), truth.words);
        Failure failure = Failure_Of(isBoards ? ExitBoard : ExitEngine, change.doing, status);
        failure.message += ", and " + truth.words;
        Fail(failure);
    }
    const ReadBack back = ReadTarget(change, Config_Registers(change.after), changed);
    PutResult(output, true, false, changed.size(), "written");
    if (!back.failure.empty())
        throw Failure{ExitBoard,
                      fmt::format("{} is written, but cannot be read back: {}", target, back.failure),
                      "read it with `velk list`"};
    if (!back.different.empty()) {
        std::string details;
        for (const Register &slot : back.different)
            details += fmt::format("  Register 0x{:08X}:{} was to be {}.\n", slot.id, slot.instance,
                                   Value_Shown(slot.value, {}));
        throw Failure{
            ExitNotAsWritten,
            fmt::format("{} is written, but {} read back different", target, Count(back.different.size())),
            "look at `velk list --registers`", 0, details};
    }
    Output_WarnOfStatus(output, "writing " + target, status);
    PutResult(output, true, true, changed.size(), "written and read back");
    Output_Line(output,
                Bytes_Capital(fmt::format("{}: {}, written and read back.", target, Count(changed.size()))));
}

} // namespace

void Write_Begin(Output *output)
{
    output->truth = "  Not written.\n";
    PutResult(output, false, false, 0, "not written");
}

void Write_Prepare(const Arguments &arguments, Output *output)
{
    if (!arguments.isYes && !arguments.isDryRun && (output->isJson || !CanAsk(arguments)))
        throw Failure{ExitUsage,
                      fmt::format("cannot ask whether to write: {}",
                                  output->isJson          ? "--json asks nothing"
                                  : arguments.from == "-" ? "standard input holds the assignments"
                                                          : "this is no terminal"),
                      "say --yes to write, or --dry-run to look"};
    if (!arguments.isDryRun)
        Output_LayOutForErrors(output);
}

void Write_Run(const Change &change, Output *output)
{
    RequireOwnBackup(change);
    const std::vector<Register> changed =
        Registers_Changed(Config_Registers(change.before), Config_Registers(change.after));
    if (changed.empty()) {
        Signals_Wait();
        SaveBackup(change, output);
        PutResult(output, false, false, 0, "not written");
        Output_Line(output,
                    Bytes_Capital(Place_Shown(change.target)) + ": not written, since nothing changes.");
        return;
    }
    if (change.arguments.isDryRun) {
        PutResult(output, false, false, changed.size(), "not written");
        Output_Line(output, Bytes_Capital(fmt::format("{}: not written. {} would change.",
                                                      Place_Shown(change.target), Count(changed.size()))));
        return;
    }
    Output_Line(output, fmt::format("{} change{}.", Count(changed.size()), changed.size() == 1 ? "s" : ""));
    Show(output);
    Ask(change);
    Signals_Wait();
    SaveBackup(change, output);
    StoreAndReadBack(change, changed, output);
}
