#include "tools/velk/save_check.h"

#include "tools/velk/bytes.h"
#include "tools/velk/definitions.h"

#include <fmt/format.h>

#include <map>
#include <set>

namespace
{

using RegisterName = std::pair<uint32_t, uint32_t>; // id and instance

constexpr char KnownVersion[] = "1.0";

// Null: no file of this syntax.
ProfileHandle ReadSaveFile(const std::string &path)
{
    ProfileHandle file = Profile_Make();
    IniSetDuplicateChecking(file.get(), 0); // several registers may bear one id
    if (IniReadFromFile(file.get(), path.c_str()) < 0)
        file.reset();
    return file;
}

std::optional<std::string> Information(Profile *file, const char *item)
{
    char *text;
    if (IniGetPointerToString(file, "Information", item, &text) != 1)
        return std::nullopt;
    return text;
}

void CheckOrigin(Profile *file, const Session &session, const Arguments &arguments, const Place &place,
                 Output *output)
{
    std::string wrong;
    const std::optional<std::string> className = Information(file, "Class");
    const std::optional<std::string> version = Information(file, "Version");
    if (className && *className != session.className)
        wrong = fmt::format("it was saved for the class '{}', not '{}'", Bytes_Shown(*className),
                            Bytes_Shown(session.className));
    else if (version && *version != KnownVersion)
        wrong = fmt::format("it is of version '{}', not '{}'", Bytes_Shown(*version), KnownVersion);
    if (wrong.empty())
        return;
    if (!arguments.isForced)
        throw Failure{ExitEngine, fmt::format("cannot use {}: {}", Place_Shown(place), wrong),
                      "take it all the same with --force", StatusIncompatibleFile};
    Output_Warn(output, fmt::format("{} is used all the same: {}", Place_Shown(place), wrong));
}

bool IsInternal(uint32_t id)
{
    return (id & 0xF0000000) == 0xF0000000;
}

std::set<RegisterName> RegistersOf(Profile *file)
{
    std::set<RegisterName> registers;
    std::map<uint32_t, uint32_t> instances;
    IniItems items = IniItemsOf(file, "Data");
    char *name;
    char *value;
    while (IniTakeItem(file, &items, &name, &value) == 1) {
        const auto id = static_cast<uint32_t>(strtoul(name, nullptr, 16)); // as the engine has read it
        registers.emplace(id, ++instances[id]);
    }
    return registers;
}

std::string Shown(const std::set<RegisterName> &registers)
{
    std::vector<std::string> names;
    names.reserve(registers.size());
    for (const auto &[id, instance] : registers)
        names.push_back(instance == 1 ? fmt::format("0x{:08X}", id)
                                      : fmt::format("0x{:08X}:{}", id, instance));
    return Names_Join(names, " and ");
}

// An internal register comes from the accessor, whether the file has it or not.
void CheckRegisters(Profile *file, const Session &session, const Arguments &arguments, const Place &place,
                    Output *output)
{
    DefinitionsHandle definitions;
    if (Definitions_Read(session.catalogue, session.className, &definitions) < 0)
        return; // the engine has read them, a moment ago
    const std::set<RegisterName> there = RegistersOf(file);
    std::set<RegisterName> unused = there;
    std::set<RegisterName> missing;
    for (const NamedKey &named : Definitions_Keys(*definitions, session.catalogue, session.className)) {
        const RegisterName name = {named.key->vregId, named.key->instance};
        unused.erase(name);
        if (!there.contains(name) && !IsInternal(name.first))
            missing.insert(name);
    }
    std::erase_if(unused, [](const RegisterName &name) { return IsInternal(name.first); });

    std::string wrong;
    if (!missing.empty())
        wrong = "it lacks registers that keys need, " + Shown(missing);
    if (!unused.empty())
        wrong += (wrong.empty() ? "it has" : ", and has") + (" registers that no key uses, " + Shown(unused));
    if (wrong.empty())
        return;
    if (arguments.isStrict)
        throw Failure{ExitEngine, fmt::format("cannot use {}: {}", Place_Shown(place), wrong),
                      "take it without --strict", StatusIncompatibleFile};
    Output_Warn(output, fmt::format("{} does not fit the class: {}", Place_Shown(place), wrong));
}

// A forced file of another class brings its own key.
Place WithKey(const Place &place, const Arguments &arguments, Profile *file)
{
    Place settled = place;
    if (arguments.isForced && !arguments.hasKey)
        settled.key = Information(file, "Key").value_or(place.key);
    return settled;
}

} // namespace

ConfigHandle Place_Load(const Session &session, const Arguments &arguments, const Place &place,
                        Output *output)
{
    ConfigHandle config = Session_NewConfig(session);
    ProfileHandle file = place.kind == Place::SaveFile ? ReadSaveFile(place.file) : nullptr;
    if (file != nullptr)
        CheckOrigin(file.get(), session, arguments, place, output);
    const Place settled = file == nullptr ? place : WithKey(place, arguments, file.get());
    Output_WarnOfStatus(output, "reading " + Place_Shown(place), Config_Load(config.get(), settled));
    if (file != nullptr)
        CheckRegisters(file.get(), session, arguments, place, output);
    return config;
}
