// The profile-file reader and writer: what is read, written and read again is equal, and look-ups find what a
// search through all names finds. The first byte of an input turns duplicate checking on or off, the rest is
// the text of one or more files, which are read behind each other.
#include "platform/profile.h"

#include <cctype>
#include <cstring>
#include <strings.h>

#include "fuzz/support.h"

constexpr size_t MaxFiles = 3;
constexpr size_t MaxLookUps = 16;

struct Item {
    std::string section, name, value;
    bool operator==(const Item &) const = default;
};

static std::vector<Item> Profile_Items(Profile *profile)
{
    std::vector<Item> items;
    char *section;
    char *name;
    char *value;
    for (int32_t s = 1; IniNthSectionName(profile, s, &section) == 1; ++s) {
        const int32_t count = IniNumberOfItems(profile, section);
        for (int32_t n = 1; n <= count; ++n) {
            Check(IniNthItemName(profile, section, n, &name) == 1, "an item that is counted has a name");
            Check(IniNthItemPointerToString(profile, section, n, &value) == 1, "and a value");
            items.push_back({section, name, value});
        }
        Check(IniNthItemName(profile, section, count + 1, &name) == 0, "there are no more than are counted");
        if (count == 0)
            items.push_back({section, "", "a section without items"});
    }
    return items;
}

// The first item of that name, exactly or, if there is none, but for case.
static void CheckLookUp(Profile *profile, const char *section, const char *wanted)
{
    char *name;
    char *expected = nullptr;
    char *value = nullptr;
    for (const auto compare : {strcmp, strcasecmp})
        for (int32_t n = 1; expected == nullptr && IniNthItemName(profile, section, n, &name) == 1; ++n)
            if (compare(name, wanted) == 0)
                IniNthItemPointerToString(profile, section, n, &expected);
    IniGetPointerToString(profile, section, wanted, &value);
    Check(value == expected, "an item is found by its name");
}

static void ReadFiles(Profile *profile, const std::vector<std::string> &files)
{
    bool isRead = true;
    for (const std::string &file : files) {
        char *name;
        MemoryFile("file") = file;
        if (IniReadFromFile(profile, "file") == 0)
            continue;
        isRead = false;
        Check(IniNthSectionName(profile, 1, &name) == 0, "a handle is empty after a failed read");
        Check(IniFailedLine(profile) > 0, "a failed read names its line");
    }
    Input_Count(isRead);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const Bounds bounds(size);
    if (size == 0)
        return 0;
    Profile *profiles[] = {IniNew(0), IniNew(0)};
    for (Profile *profile : profiles)
        IniSetDuplicateChecking(profile, data[0] % 2);
    ReadFiles(profiles[0], Input_Split(data + 1, size - 1, MaxFiles));
    const std::vector<Item> items = Profile_Items(profiles[0]);
    for (size_t n = 0; n < items.size(); n += items.size() / MaxLookUps + 1) {
        std::string other = items[n].name;
        for (char &c : other)
            c = static_cast<char>(toupper(static_cast<uint8_t>(c)));
        CheckLookUp(profiles[0], items[n].section.c_str(), items[n].name.c_str());
        CheckLookUp(profiles[0], items[n].section.c_str(), other.c_str());
    }

    Check(IniWriteToFile(profiles[0], "file") == 0, "what is read can be written");
    Check(IniReadFromFile(profiles[1], "file") == 0, "what is written can be read");
    Check(Profile_Items(profiles[1]) == items, "what is read, written and read again is equal");
    for (Profile *profile : profiles)
        IniDispose(profile);
    return 0;
}
