#include "tools/velk/session.h"

#include "tools/velk/bytes.h"
#include "tools/velk/definitions.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <map>

#include <unistd.h>

std::string Place_Shown(const Place &place)
{
    if (place.kind == Place::SaveFile)
        return "save file " + Bytes_Shown(place.file);
    if (place.kind == Place::Nowhere)
        return "no board or file";
    return place.second == 0 ? fmt::format("board {}", place.first)
                             : fmt::format("board {},{}", place.first, place.second);
}

std::string Reading_Shown(const Reading &reading, const Words &words)
{
    return reading.status == 0 ? Value_Shown(reading.value, words) : Status_Text(reading.status);
}

void Fail_Unknown(const char *what, const std::string &name, const std::vector<std::string> &names,
                  StatusCode code)
{
    Failure failure = Failure_Of(ExitEngine, fmt::format("find the {} '{}'", what, Bytes_Shown(name)), code);
    const std::vector<std::string> near = Names_Near(names, name);
    if (!near.empty())
        failure.next = "did you mean " + Names_Join(near, " or ") + "?";
    Fail(failure);
}

void Fail_UnknownOption(const Session &session, const std::string &name, const char *ofKeys)
{
    const std::vector<std::string> keys =
        Catalogue_DefinedNames(session.catalogue, session.className, "Keys");
    if (std::find(keys.begin(), keys.end(), name) == keys.end())
        Fail_Unknown("option", name, Session_OptionNames(session), StatusUnknownOption);
    Failure failure =
        Failure_Of(ExitEngine, fmt::format("find the option '{}'", Bytes_Shown(name)), StatusUnknownOption);
    failure.next = fmt::format("there is a key of this name, {}", ofKeys);
    Fail(failure);
}

std::string Catalogue_Choose(const Catalogue &catalogue, const std::string &className)
{
    const std::vector<std::string> classes = Catalogue_Classes(catalogue);
    if (className.empty() && classes.size() == 1)
        return classes[0];
    const std::string directory = Bytes_Shown(catalogue.directory);
    if (classes.empty())
        throw Failure{ExitEngine, fmt::format("cannot find a class in the catalogue of {}", directory),
                      "give another directory, by -d DIR", StatusBadClass};
    if (className.empty())
        throw Failure{
            ExitUsage,
            fmt::format("cannot choose a class: {} has {}", directory, Names_Join(classes, " and ")),
            "give one, by -c NAME or VELK_CLASS"};
    if (std::find(classes.begin(), classes.end(), className) != classes.end())
        return className;
    Failure failure = {ExitEngine,
                       fmt::format("cannot find the class '{}' in {}: {}", Bytes_Shown(className), directory,
                                   Status_Text(StatusBadClass)),
                       "look at `velk classes`", StatusBadClass};
    const std::vector<std::string> near = Names_Near(classes, className);
    if (!near.empty())
        failure.next = "did you mean " + Names_Join(near, " or ") + "?";
    Fail(failure);
}

static void LoadClass(const Session &session, Config **config)
{
    const StatusCode status = VelkCreateConfig(session.engine.get(), session.className.c_str(), config);
    if (status >= 0)
        return;
    Failure failure = Failure_Of(Status_IsAccessors(status) ? ExitBoard : ExitEngine,
                                 fmt::format("load the class {} of {}", Bytes_Shown(session.className),
                                             Bytes_Shown(session.catalogue.directory)),
                                 status);
    const std::string place = Definitions_Explain(session.catalogue, session.className, status);
    if (!place.empty())
        failure.next = place;
    if (status == StatusAccessorLoadFailed)
        failure.next = fmt::format(
            "install the module '{}' that the catalogue names as its Accessor",
            Bytes_Shown(Catalogue_Item(session.catalogue, session.className, "Accessor").value_or("")));
    Fail(failure);
}

Session Session_Open(Catalogue catalogue, const std::string &className)
{
    Session session = {std::move(catalogue), "", nullptr, nullptr};
    session.className = Catalogue_Choose(session.catalogue, className);
    ConfigEngine *engine;
    const std::string &directory = session.catalogue.directory;
    const StatusCode status = VelkInitializeConfigEngine(directory.c_str(), &engine);
    if (status < 0)
        throw Failure_Of(ExitEngine, fmt::format("read the catalogue of {}", Bytes_Shown(directory)), status);
    session.engine.reset(engine);
    Config *config = nullptr;
    LoadClass(session, &config);
    session.first.reset(config);
    return session;
}

ConfigHandle Session_NewConfig(const Session &session)
{
    Config *config = nullptr;
    const StatusCode status = VelkCreateConfig(session.engine.get(), session.className.c_str(), &config);
    if (status < 0)
        throw Failure_Of(ExitEngine, "make a configuration", status);
    return ConfigHandle(config);
}

// What to do about a save file that neither the engine nor the accessor can read.
static std::string ExplainBadFile(const std::string &path, const std::string &otherwise)
{
    if (access(path.c_str(), R_OK) != 0)
        return fmt::format("look whether it is there and may be read: {}", strerror(errno));
    const ProfileHandle file = Profile_Make();
    IniReadFromFile(file.get(), path.c_str());
    const int32_t line = IniFailedLine(file.get());
    return line > 0 ? fmt::format("mend its line {}, or {}", line, otherwise) : otherwise;
}

// What to do about a save file of another key, which only the file knows.
static std::string ExplainOtherKey(const std::string &path, const std::string &otherwise)
{
    const ProfileHandle file = Profile_Make();
    char *key;
    if (IniReadFromFile(file.get(), path.c_str()) < 0 ||
        IniGetPointerToString(file.get(), "Information", "Key", &key) != 1)
        return otherwise;
    return fmt::format("say --key '{}' if a file of that key is meant", Bytes_Shown(key));
}

StatusCode Config_Load(Config *config, const Place &place)
{
    StatusCode status;
    if (place.kind == Place::Board)
        status = VelkLoadCurrentConfig(config, place.first, place.second);
    else
        status = VelkLoadFromFile(config, place.file.c_str(), place.key.c_str());
    // A board that was read with a warning is not loaded.
    if (status == 0 || (status > 0 && VelkIsConfigLoaded(config) == 1))
        return status;
    // The accessor has a part in save files, too.
    const bool isBoards =
        Status_IsAccessors(status) || (place.kind == Place::Board && status != StatusOutOfMemory);
    Failure failure = Failure_Of(isBoards ? ExitBoard : ExitEngine, "read " + Place_Shown(place), status);
    if (place.kind == Place::SaveFile && status == StatusBadFile)
        failure.next = ExplainBadFile(place.file, failure.next);
    if (place.kind == Place::SaveFile && status == StatusIncompatibleFile)
        failure.next = ExplainOtherKey(place.file, failure.next);
    Fail(failure);
}

ConfigHandle Config_Copy(const Session &session, Config *config)
{
    ConfigHandle copy = Session_NewConfig(session);
    const StatusCode status = VelkDuplicateConfig(config, copy.get());
    if (status < 0)
        throw Failure_Of(ExitEngine, "make a working copy", status);
    return copy;
}

std::vector<std::string> Session_OptionNames(const Session &session)
{
    uint32_t count = 0;
    VelkNumberOfOptions(session.first.get(), &count);
    std::vector<const char *> names(count);
    VelkGetOptionNames(session.first.get(), names.data(), count);

    std::map<std::string, size_t> order;
    for (const std::string &name : Catalogue_DefinedNames(session.catalogue, session.className, "Options"))
        order.emplace(name, order.size());
    std::vector<std::string> sorted(names.begin(), names.end());
    const auto placeOf = [&](const std::string &name) {
        const auto found = order.find(name);
        return found == order.end() ? order.size() : found->second;
    };
    std::stable_sort(sorted.begin(), sorted.end(),
                     [&](const auto &one, const auto &other) { return placeOf(one) < placeOf(other); });
    return sorted;
}

OptionState Config_Option(Config *config, const std::string &name)
{
    OptionState state = {name, 0, {}, 0, {}};
    VelkWord word = 0;
    int32_t kind = ValueKindNumber;
    state.status = VelkGetOptionEx(config, name.c_str(), -1, &word, &kind);
    state.value = Value_Copy(kind, state.status == 0 ? word : 0);

    VelkValidRef rule = nullptr;
    state.validStatus = VelkQueryOptionValidValues(config, name.c_str(), &state.valid.kind, &rule);
    if (state.validStatus == 0)
        state.valid = Valid_Copy(config, state.valid.kind, rule);
    return state;
}

static int32_t KindOf(uint32_t id)
{
    const uint32_t nibble = id >> 24 & 0xF;
    return nibble == 0xB ? ValueKindString : nibble == 0xF ? ValueKindList : ValueKindNumber;
}

// The table is the first field of a configuration, as accessors see it too.
std::vector<Register> Config_Registers(Config *config)
{
    const VRegTable *table = *reinterpret_cast<VRegTable **>(config);
    std::vector<Register> registers;
    std::map<uint32_t, uint32_t> instances;
    for (int32_t n = 0; table != nullptr && n < table->count; ++n) {
        const VReg &slot = table->regs[n];
        registers.push_back({slot.id, ++instances[slot.id], Value_Copy(KindOf(slot.id), slot.value),
                             (slot.flags & VRegModified) != 0});
    }
    return registers;
}

std::vector<Register> Registers_Changed(const std::vector<Register> &before,
                                        const std::vector<Register> &after)
{
    std::map<std::pair<uint32_t, uint32_t>, const Value *> old;
    for (const Register &slot : before)
        old.emplace(std::pair(slot.id, slot.instance), &slot.value);
    std::vector<Register> changed;
    for (const Register &slot : after) {
        const auto found = old.find({slot.id, slot.instance});
        if (found == old.end() || !Value_IsSame(*found->second, slot.value))
            changed.push_back(slot);
    }
    return changed;
}
