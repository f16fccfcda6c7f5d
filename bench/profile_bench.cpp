// Profile files: reading them, and finding items in them.
#include <benchmark/benchmark.h>
#include <glib.h>
#include <ini.h>

#include "bench/sample.h"
#include "platform/profile.h"

namespace
{

void SetSize(benchmark::State &state, const ProfileText &profile)
{
    state.counters["bytes"] = static_cast<double>(profile.text.size());
    state.counters["items"] = static_cast<double>(profile.places.size());
}

// The shape, and the size in megabytes.
ProfileText TextOf(const benchmark::State &state)
{
    return {static_cast<Shape>(state.range(0)), static_cast<size_t>(state.range(1)) << 20};
}

Profile *ReadProfile(const std::string &file)
{
    Profile *profile = IniNew(0);
    Require(profile != nullptr && IniReadFromFile(profile, file.c_str()) == 0, "read the profile file");
    return profile;
}

void ProfileRead(benchmark::State &state)
{
    const ProfileText profile = TextOf(state);
    const Folder folder;
    const std::string file = folder.Write("profile.ini", profile.text);
    for ([[maybe_unused]] auto round : state)
        IniDispose(ReadProfile(file));
    SetSize(state, profile);
}

int IgnoreItem(void *count, const char * /*section*/, const char * /*item*/, const char * /*value*/)
{
    ++*static_cast<size_t *>(count);
    return 1;
}

void IniParse(benchmark::State &state)
{
    const ProfileText profile = TextOf(state);
    const Folder folder;
    const std::string file = folder.Write("profile.ini", profile.text);
    for ([[maybe_unused]] auto round : state) {
        size_t count = 0;
        Require(ini_parse(file.c_str(), IgnoreItem, &count) == 0 && count == profile.places.size(),
                "parse the profile file");
    }
    SetSize(state, profile);
}

// Every item once, in an order that no cache foresees.
void ProfileFind(benchmark::State &state)
{
    ProfileText profile = TextOf(state);
    const Folder folder;
    Profile *handle = ReadProfile(folder.Write("profile.ini", profile.text));
    Shuffle(&profile.places);
    for ([[maybe_unused]] auto round : state)
        for (const auto &place : profile.places) {
            char *value;
            Require(IniGetPointerToString(handle, place.section.c_str(), place.item.c_str(), &value) == 1,
                    "find an item");
        }
    IniDispose(handle);
    SetSize(state, profile);
}

// Finds every item as `find` does, which gives whether it is there.
template <typename Find> void FindInKeyFile(benchmark::State &state, Find find)
{
    ProfileText profile = TextOf(state);
    const Folder folder;
    GKeyFile *handle = g_key_file_new();
    Require(g_key_file_load_from_file(handle, folder.Write("profile.ini", profile.text).c_str(),
                                      G_KEY_FILE_NONE, nullptr) != 0,
            "read the profile file with GLib");
    Shuffle(&profile.places);
    for ([[maybe_unused]] auto round : state)
        for (const auto &place : profile.places)
            Require(find(handle, place.section.c_str(), place.item.c_str()), "find an item with GLib");
    g_key_file_free(handle);
    SetSize(state, profile);
}

// GLib gives a value as a copy.
void KeyFileFind(benchmark::State &state)
{
    FindInKeyFile(state, [](GKeyFile *handle, const char *section, const char *item) {
        char *value = g_key_file_get_string(handle, section, item, nullptr);
        g_free(value);
        return value != nullptr;
    });
}

// The look-up alone, without the value.
void KeyFileHas(benchmark::State &state)
{
    FindInKeyFile(state, [](GKeyFile *handle, const char *section, const char *item) {
        return g_key_file_has_key(handle, section, item, nullptr) != 0;
    });
}

} // namespace

BENCHMARK(ProfileRead)->ArgsProduct({{0, 1, 2}, {1, 32}});
BENCHMARK(IniParse)->ArgsProduct({{0, 1, 2}, {1}});
BENCHMARK(ProfileFind)->ArgsProduct({{0, 1, 2}, {1}});
BENCHMARK(KeyFileFind)->ArgsProduct({{0, 1, 2}, {1}});
BENCHMARK(KeyFileHas)->ArgsProduct({{0, 1, 2}, {1}});
