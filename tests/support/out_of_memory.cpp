#include "tests/support/out_of_memory.h"

#include <cctype>
#include <cstdio>

int64_t outOfMemoryPoints;

std::set<std::string> Words(const std::string &text)
{
    const std::vector<std::string> words = Split(text, ' ');
    return {words.begin(), words.end()};
}

void Outcomes_Append(std::string *outcomes, const std::string &outcome)
{
    if (outcomes->substr(outcomes->rfind(' ') + 1) != outcome)
        *outcomes += (outcomes->empty() ? "" : " ") + outcome;
}

std::set<std::string> NamesIn(const std::string &file, const std::string &prefix, char end)
{
    std::set<std::string> names;
    std::string name;
    for (const char c : ReadFile(VELK_SOURCE_DIR "/" + file)) {
        if (c == end && !name.empty() && name.compare(0, prefix.size(), prefix) == 0)
            names.insert(name);
        if (c == '_' || isalnum(static_cast<unsigned char>(c)) != 0)
            name += c;
        else
            name.clear();
    }
    return names;
}

bool IsButForPayloads(const std::string &seen, const std::string &whole)
{
    const std::vector<std::string> words = Split(seen, ' '), others = Split(whole, ' ');
    return std::equal(words.begin(), words.end(), others.begin(), others.end(),
                      [](const std::string &word, const std::string &other) {
                          return word == other || word == other.substr(0, other.find('=')) + "=-";
                      });
}

void OutOfMemory_Report(int64_t committed)
{
    printf("measured: out of memory at %lld points\n", static_cast<long long>(outOfMemoryPoints));
    EXPECT_GE(outOfMemoryPoints, committed);
}
