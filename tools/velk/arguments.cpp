#include "tools/velk/arguments.h"

#include "tools/velk/bytes.h"
#include "tools/velk/layout.h"
#include "velk32.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace
{

// A bit for each command.
constexpr uint32_t Classes = 1;
constexpr uint32_t List = 2;
constexpr uint32_t Get = 4;
constexpr uint32_t Values = 8;
constexpr uint32_t Set = 16;
constexpr uint32_t Diff = 32;
constexpr uint32_t Save = 64;
constexpr uint32_t Load = 128;
constexpr uint32_t Status = 256;
constexpr uint32_t Help = 512;
constexpr uint32_t All = 1023;

struct CommandText {
    uint32_t bit;
    const char *name;
    const char *names; // what stands behind it
    const char *summary;
    const char *more;
    const char *examples;
};

constexpr CommandText Commands[] = {
    {Classes, "classes", "", "Shows the classes of boards that the definitions describe.",
     "For each class its accessor, its files, and how many keys and options they define.", "velk classes\n"},
    {List, "list", "[PATTERN...]", "Shows each option: its value, and the values that are valid now.",
     "Only options, keys or registers whose names match a PATTERN, such as 'Mem*', whatever the case of its "
     "letters. Of many valid values the middle is left out: `velk values` shows them all. Without --board "
     "or --file it shows what is defined.",
     "velk list --board 8\n"
     "velk list --board 8 'Mem*'\n"
     "velk list --board 8 --keys\n"
     "velk list --board 8 --registers\n"},
    {Get, "get", "NAME...", "Shows values alone, a line each.",
     "A NAME is that of an option or else of a key, of a --board or a --file. Numbers are decimal, lists in "
     "parentheses; --json gives words and exact bytes too.",
     "velk get AddressSpace Memory --board 8\n"
     "velk get --board 8 --key ModelCode\n"},
    {Values, "values", "NAME", "Shows the values that an option may take now, with their words.",
     "What is valid depends on the other options, so it wants a --board or a --file.",
     "velk values Memory --board 8\n"},
    {Set, "set", "NAME=VALUE...", "Sets options, all of them or none.",
     "The assignments are made in order on a working copy. Then it shows what they and the options behind "
     "them "
     "come to, and asks before it writes. A VALUE is a number in any base, a word or the beginning of one, a "
     "list "
     "such as (1, 2, :4:2:10), or a text.",
     "velk set AddressSpace=1 Memory=0x20000 --board 8 --dry-run\n"
     "velk set 'AddressSpace=A16 and A32' --board 8 --yes\n"
     "velk set 'TriggerLines=(1, 2)' --board 8 --dry-run\n"
     "velk set Averages=16 --board 8 --yes --backup before.cfg\n"
     "velk set --board 8 --yes --key Averages=4\n"},
    {Diff, "diff", "A B", "Shows what differs between two configurations.",
     "A and B are boards (5, or 5,1) or save files (./5 for a file of that name). Exits with 1 if they "
     "differ.",
     "velk diff 8 24\n"
     "velk diff 8 24 --registers\n"},
    {Save, "save", "FILE", "Saves a board to a file.", "A file that is there is replaced as a whole.",
     "velk save board8.cfg --board 8\n"},
    {Load, "load", "FILE", "Loads a save file into a board.",
     "It shows what changes and asks before it writes, as `velk set` does.",
     "velk save board8.cfg --board 8\n"
     "velk load board8.cfg --board 8 --dry-run\n"
     "velk load board8.cfg --board 8 --yes --strict\n"},
    {Status, "status", "CODE...", "Shows the messages of status codes.",
     "An error names the code of what went wrong in parentheses.", "velk status -102 -16 1\n"},
    {Help, "help", "[COMMAND]", "Shows how to use a command.", "", "velk help set\n"},
};

struct OptionText {
    uint32_t commands;
    const char *names;
    const char *argument; // of a flag: null
    const char *text;
    bool Arguments::*flag;
    std::string Arguments::*value;
};

constexpr int MostNames = 1 << 28;

constexpr uint32_t WithPlace = List | Get | Values | Set;

constexpr OptionText Options[] = {
    {WithPlace | Save | Load, "--board", "N[,M]", "the board: the two words that its accessor knows it by",
     nullptr, &Arguments::board},
    {WithPlace, "--file", "SAVE", "a save file in place of a board", nullptr, &Arguments::file},
    {List | Values | Diff | Save | Load, "--key", "KEY",
     "the key of save files; the class's name if it is not given", nullptr, &Arguments::key},
    {Get | Set, "--key", "KEY", "with --file, the key of the save file; with --board, as --keys", nullptr,
     &Arguments::key},
    {List | Diff, "--keys", nullptr, "the keys, the layer below the options", &Arguments::areKeys, nullptr},
    {Get | Set, "--keys", nullptr, "the names are those of keys", &Arguments::areKeys, nullptr},
    {List | Diff, "--registers", nullptr, "the registers, the layer below the keys", &Arguments::areRegisters,
     nullptr},
    {Set, "--from", "FILE", "assignments ahead of these, a line each, # for comments; - is standard input",
     nullptr, &Arguments::from},
    {Set | Load, "--dry-run,-n", nullptr, "show what would change, and write nothing", &Arguments::isDryRun,
     nullptr},
    {Set | Load, "--yes,-y", nullptr, "write without asking", &Arguments::isYes, nullptr},
    {Set | Load, "--backup", "FILE", "save what was there first", nullptr, &Arguments::backup},
    {Set, "--strict", nullptr, "a value that would be moved, or a save file that does not fit, is an error",
     &Arguments::isStrict, nullptr},
    {List | Get | Values | Diff | Load, "--strict", nullptr, "a save file that does not fit is an error",
     &Arguments::isStrict, nullptr},
    {WithPlace | Diff | Load, "--force", nullptr, "take a save file of another class or version",
     &Arguments::isForced, nullptr},
    {All & ~(Status | Help), "--definitions,-d", "DIR",
     "the definition directory; else VELK_DEFINITIONS, or the working directory", nullptr,
     &Arguments::definitions},
    {All & ~(Classes | Status | Help), "--class,-c", "NAME",
     "the class, where there are several; else VELK_CLASS", nullptr, &Arguments::className},
    {All, "--json", nullptr, "one JSON document on standard output, whatever happens", &Arguments::isJson,
     nullptr},
    {All, "--help,-h", nullptr, "show this", &Arguments::wantsHelp, nullptr},
};

const CommandText *FindCommand(const std::string &name)
{
    for (const CommandText &command : Commands)
        if (name == command.name)
            return &command;
    return nullptr;
}

// Ahead of a command, too: what several commands know, and all that this one does.
bool StandsAhead(const OptionText &option, const CommandText *command)
{
    return (command != nullptr && (option.commands & command->bit) != 0) || option.commands == All ||
           option.value == &Arguments::definitions || option.value == &Arguments::className;
}

// A script whose variable is empty would do without its board or, worse, its backup.
std::string RequireText(const std::string &text)
{
    return text.empty() ? "it is empty" : "";
}

void AddOption(CLI::App *app, const OptionText &option, Arguments *arguments)
{
    if (option.flag != nullptr) {
        app->add_flag(option.names, arguments->*option.flag)->disable_flag_override();
        return;
    }
    CLI::Option *added = app->add_option(option.names, arguments->*option.value);
    if (option.value == &Arguments::key)
        added->expected(0, 1);
    else
        added->expected(1)->type_name(option.argument)->check(RequireText);
}

// The command that is called alone gets its options: a script calls this program often.
void AddCommand(CLI::App *app, const CommandText &command, bool isCalled, Arguments *arguments)
{
    CLI::App *added = app->add_subcommand(command.name);
    added->set_help_flag();
    if (!isCalled)
        return;
    for (const OptionText &option : Options)
        if ((option.commands & command.bit) != 0)
            AddOption(added, option, arguments);
    // As many as there are, but none for more than one: the parser would take a pattern in brackets for a
    // list.
    added->add_option("NAMES", arguments->names)
        ->expected(MostNames)
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

// Where --key stands, or `argc`: nowhere.
int KeyPosition(int argc, char **argv)
{
    for (int n = 1; n < argc; ++n)
        if (argv[n] == std::string_view("--key") || std::string_view(argv[n]).starts_with("--key="))
            return n;
    return argc;
}

// How many of the names stand ahead of a position.
size_t NamesAhead(const std::vector<std::string> &names, int position, char **argv)
{
    size_t ahead = 0;
    for (int n = 1; n < position && ahead < names.size(); ++n)
        if (argv[n] == names[ahead])
            ++ahead;
    return ahead;
}

// Behind --key stands the key of a save file, if there is one. On a board it only says that names are those
// of keys, and what stands behind it is one of them.
void SettleKey(Arguments *arguments, int argc, char **argv)
{
    const int position = KeyPosition(argc, argv);
    arguments->hasKey = position < argc;
    if (!arguments->hasKey || (arguments->command != "get" && arguments->command != "set") ||
        !arguments->file.empty())
        return;
    arguments->areKeys = true;
    if (!arguments->key.empty()) {
        const size_t ahead = NamesAhead(arguments->names, position, argv);
        arguments->names.insert(arguments->names.begin() + static_cast<std::ptrdiff_t>(ahead),
                                arguments->key);
    }
    arguments->key.clear();
}

void CheckNames(const Arguments &arguments)
{
    const size_t count = arguments.names.size();
    const std::string &command = arguments.command;
    const char *wanted = nullptr;
    if (command == "get" && count == 0)
        wanted = "the NAME of an option";
    if (command == "set" && count == 0 && arguments.from.empty())
        wanted = "a NAME=VALUE";
    if (command == "values" && count != 1)
        wanted = "the NAME of one option";
    if (command == "diff" && count != 2)
        wanted = "two boards or save files";
    if ((command == "save" || command == "load") && count != 1)
        wanted = "one FILE";
    // As of an option's argument: a script's variable may be empty.
    if ((command == "diff" || command == "save" || command == "load") &&
        std::find(arguments.names.begin(), arguments.names.end(), "") != arguments.names.end())
        wanted = "names that are not empty";
    if (command == "status" && count == 0)
        wanted = "a CODE";
    if (command == "classes" && count != 0)
        wanted = "nothing behind it";
    if (command == "help" && count > 1)
        wanted = "one COMMAND";
    if (wanted != nullptr)
        throw Failure{ExitUsage, fmt::format("cannot run {}: it wants {}", command, wanted),
                      fmt::format("see `velk help {}`", command)};
}

std::string FromEnvironment(const std::string &given, const char *variable)
{
    const char *value = getenv(variable);
    return !given.empty() || value == nullptr ? given : value;
}

std::vector<std::string> CommandNames()
{
    std::vector<std::string> names;
    for (const CommandText &command : Commands)
        names.emplace_back(command.name);
    return names;
}

// The names of the options that a command takes.
std::vector<std::string> OptionNames(const CommandText *command)
{
    std::vector<std::string> names;
    for (const OptionText &option : Options)
        if (StandsAhead(option, command))
            names.push_back(std::string(option.names, strcspn(option.names, ",")));
    return names;
}

// What to do about options that the parser does not know.
std::string NearOptions(const std::vector<std::string> &unknown, const CommandText *command)
{
    for (const std::string &word : unknown) {
        const std::vector<std::string> near =
            word.starts_with("--") ? Names_Near(OptionNames(command), word.substr(0, word.find('=')))
                                   : std::vector<std::string>();
        if (!near.empty())
            return "did you mean " + Names_Join(near, " or ") + "?";
    }
    return {};
}

// What the parser of the command line says begins in upper case and may end with a full stop.
Failure UsageFailure(const CLI::ParseError &error, const Arguments &arguments)
{
    std::string message = Bytes_Shown(error.what());
    while (message.ends_with('.') || message.ends_with('\n'))
        message.pop_back();
    if (message.starts_with("The "))
        message[0] = 't';
    const std::string help = arguments.command.empty() ? "velk help" : "velk help " + arguments.command;
    return {ExitUsage, "cannot read the command line: " + message, "see `" + help + "`"};
}

[[noreturn]] void FailUnknownCommand(const std::string &name)
{
    Failure failure = {ExitUsage, fmt::format("there is no command '{}'", Bytes_Shown(name)),
                       "see `velk help`"};
    const std::vector<std::string> near = Names_Near(CommandNames(), name);
    if (!near.empty())
        failure.next = "did you mean " + Names_Join(near, " or ") + "?";
    Fail(failure);
}

// Whether an option, by one of its names, has something behind it, other than --key, which may have nothing.
bool WantsArgument(std::string_view word)
{
    for (const OptionText &option : Options) {
        const std::string_view names = option.names;
        const size_t comma = std::min(names.find(','), names.size());
        const bool isIt =
            word == names.substr(0, comma) || (comma < names.size() && word == names.substr(comma + 1));
        if (isIt && option.argument != nullptr && option.value != &Arguments::key)
            return true;
    }
    return false;
}

// The first word that is no option, nor what stands behind one.
std::string CalledCommand(int argc, char **argv)
{
    for (int n = 1; n < argc; ++n) {
        const std::string_view word = argv[n];
        if (WantsArgument(word))
            ++n;
        else if (!word.starts_with('-'))
            return std::string(word);
    }
    return {};
}

} // namespace

std::string Arguments_Command(int argc, char **argv)
{
    std::string called = CalledCommand(argc, argv);
    return FindCommand(called) == nullptr ? "" : called;
}

bool Arguments_WantJson(int argc, char **argv)
{
    for (int n = 1; n < argc && std::string_view(argv[n]) != "--"; ++n)
        if (argv[n] == std::string_view("--json") || std::string_view(argv[n]).starts_with("--json="))
            return true;
    return false;
}

Arguments Arguments_Parse(int argc, char **argv)
{
    Arguments arguments;
    arguments.command = CalledCommand(argc, argv);
    const CommandText *called = FindCommand(arguments.command);
    if (!arguments.command.empty() && called == nullptr)
        FailUnknownCommand(arguments.command);

    CLI::App app;
    app.set_help_flag();
    app.require_subcommand(0, 1);
    app.add_flag("--version,-V", arguments.wantsVersion);
    for (const OptionText &option : Options)
        if (StandsAhead(option, called))
            AddOption(&app, option, &arguments);
    for (const CommandText &command : Commands)
        AddCommand(&app, command, &command == called, &arguments);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        Failure failure = UsageFailure(error, arguments);
        const std::string near = NearOptions(app.remaining(true), called);
        if (!near.empty())
            failure.next = near;
        Fail(failure);
    }
    SettleKey(&arguments, argc, argv);
    if (!arguments.wantsHelp && !arguments.wantsVersion)
        CheckNames(arguments);
    return arguments;
}

bool Place_ReadBoard(const std::string &text, Place *place)
{
    const size_t comma = text.find(',');
    place->kind = Place::Board;
    place->second = 0;
    return Number_Read(text.substr(0, comma), &place->first) &&
           (comma == std::string::npos || Number_Read(text.substr(comma + 1), &place->second));
}

Place Arguments_Place(const Arguments &arguments, const std::string &className, bool isNeeded)
{
    Place place;
    if (!arguments.board.empty() && !arguments.file.empty())
        throw Failure{ExitUsage, fmt::format("cannot run {} with both --board and --file", arguments.command),
                      "give one of them"};
    if (arguments.hasKey && arguments.file.empty() &&
        (arguments.command == "list" || arguments.command == "values"))
        throw Failure{ExitUsage,
                      fmt::format("cannot run {} with --key but without --file", arguments.command),
                      fmt::format("leave it out, or see `velk help {}`", arguments.command)};
    if (!arguments.board.empty() && !Place_ReadBoard(arguments.board, &place))
        throw Failure{ExitUsage, fmt::format("cannot read the board '{}'", Bytes_Shown(arguments.board)),
                      "give one or two numbers, such as 5 or 5,1"};
    if (!arguments.file.empty()) {
        place.kind = Place::SaveFile;
        place.file = arguments.file;
        place.key = arguments.hasKey ? arguments.key : className;
    }
    if (isNeeded && place.kind == Place::Nowhere)
        throw Failure{ExitUsage, fmt::format("cannot run {} without a configuration", arguments.command),
                      arguments.command == "save" || arguments.command == "load"
                          ? "say which board, by --board N"
                          : "say which, by --board N or --file SAVE"};
    return place;
}

Catalogue Arguments_Catalogue(const Arguments &arguments)
{
    const std::string directory = FromEnvironment(arguments.definitions, "VELK_DEFINITIONS");
    return Catalogue_Read(directory.empty() ? "." : directory);
}

std::string Arguments_Class(const Arguments &arguments)
{
    return FromEnvironment(arguments.className, "VELK_CLASS");
}

Session Arguments_Session(const Arguments &arguments)
{
    return Session_Open(Arguments_Catalogue(arguments), Arguments_Class(arguments));
}

static std::string Help_Overview(size_t width)
{
    Table table = {{"Command", "What it does"}, {}};
    for (const CommandText &command : Commands)
        table.rows.push_back({command.name, command.summary});
    std::string text = "Usage: velk COMMAND [ARGUMENT...]\n\n" + Table_Lines(table, width, false) + "\n";
    text += Text_Wrapped(
        "`velk help COMMAND` shows the arguments of one, with examples. `velk --version` shows the "
        "version.",
        width);
    text += "\n";
    Table statuses = {{"Exit status", "Means"}, {}};
    statuses.rows = {{"0", "done"},
                     {"1", "the configurations differ, or --strict met a value that would be moved"},
                     {"2", "the command line is wrong, or standard output takes nothing more"},
                     {"3", "the engine refused: definitions, values or save files"},
                     {"4", "the board or its accessor refused"},
                     {"5", "written, but something else was read back"},
                     {"130", "interrupted, or the answer was not yes; nothing was written"}};
    return text + Table_Lines(statuses, width, false);
}

// "--dry-run,-n" as "-n, --dry-run".
static std::string OptionShown(const OptionText &option)
{
    std::string names = option.names;
    const size_t comma = names.find(',');
    if (comma != std::string::npos)
        names = names.substr(comma + 1) + ", " + names.substr(0, comma);
    return option.argument == nullptr ? names : names + " " + option.argument;
}

std::string Help_Text(const std::string &command, size_t width)
{
    if (command.empty())
        return Help_Overview(width);
    const CommandText *found = FindCommand(command);
    if (found == nullptr)
        FailUnknownCommand(command);
    std::string text = fmt::format("Usage: velk {} {} [OPTION...]\n\n", found->name, found->names);
    text += Text_Wrapped(found->summary, width);
    if (*found->more != '\0')
        text += Text_Wrapped(found->more, width);
    Table table = {{"Option", ""}, {}};
    for (const OptionText &option : Options)
        if ((option.commands & found->bit) != 0)
            table.rows.push_back({OptionShown(option), option.text});
    text += "\n" + Table_Lines(table, width, false) + "\nExamples:\n";
    std::string examples = found->examples;
    for (size_t at = 0; at < examples.size(); at = examples.find('\n', at) + 1)
        text += "  " + examples.substr(at, examples.find('\n', at) - at) + "\n";
    return text;
}

std::string Help_Greeting(size_t width)
{
    std::string text =
        Text_Wrapped("velk sets up boards: it shows their options and the values that are valid now, "
                     "and sets them.",
                     width);
    text += "\nTry:\n"
            "  velk list --board 8\n"
            "  velk set AddressSpace=1 --board 8 --dry-run\n"
            "  velk help\n\n";
    return text +
           Text_Wrapped(
               "Definitions are looked for in the directory that -d DIR names, or VELK_DEFINITIONS, or "
               "else in the working directory. There has to be a catalogue in it, CfgClass.ini.",
               width);
}
