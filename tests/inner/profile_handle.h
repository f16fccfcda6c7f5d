// A profile handle and what tests ask of it.
#ifndef VELK_TESTS_INNER_PROFILE_HANDLE_H
#define VELK_TESTS_INNER_PROFILE_HANDLE_H

#include <memory>

#include "platform/profile.h"
#include "tests/support/board.h"

struct Handle {
    const std::unique_ptr<Profile, void (*)(Profile *)> owner{IniNew(0), IniDispose};
    Profile *const profile = owner.get();

    [[nodiscard]] int32_t Read(const std::string &text) const
    {
        const Directory directory;
        directory.Write("file", text);
        return IniReadFromFile(profile, directory.Path("file").c_str());
    }

    int32_t Put(const std::string &section, const std::string &item, const std::string &value) const
    {
        return IniPutString(profile, section.c_str(), item.c_str(), value.c_str());
    }

    [[nodiscard]] std::string Get(const char *section, const char *item) const
    {
        char *value = nullptr;
        return IniGetPointerToString(profile, section, item, &value) == 1 ? value : "(none)";
    }

    // Sections and items in order, by number.
    [[nodiscard]] std::string Text() const
    {
        std::string text;
        char *section = nullptr;
        for (int32_t s = 1; IniNthSectionName(profile, s, &section) == 1; ++s) {
            text += std::string("[") + section + "]";
            char *name = nullptr, *value = nullptr;
            for (int32_t n = 1; IniNthItemName(profile, section, n, &name) == 1; ++n) {
                EXPECT_EQ(IniNthItemPointerToString(profile, section, n, &value), 1);
                text += std::string(" ") + name + "=" + value + ";";
            }
        }
        return text;
    }
};

// A text for each number up to count.
inline std::string Items(int count, const std::string &ahead = "filler", const std::string &behind = "=\n")
{
    std::string text;
    for (int i = 0; i < count; ++i)
        text.append(ahead).append(std::to_string(i)).append(behind);
    return text;
}

#endif
