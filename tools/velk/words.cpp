#include "tools/velk/words.h"

#include "tools/velk/bytes.h"

namespace
{

template <typename Match> std::vector<uint32_t> FindBy(const Words &words, Match match)
{
    std::vector<uint32_t> numbers;
    for (const auto &[number, word] : words.byNumber)
        if (match(word))
            numbers.push_back(number);
    return numbers;
}

} // namespace

std::vector<uint32_t> Words_Find(const Words &words, const std::string &word)
{
    if (word.empty())
        return {};
    std::vector<uint32_t> found = FindBy(words, [&](const std::string &other) { return other == word; });
    if (found.empty())
        found = FindBy(words, [&](const std::string &other) { return Bytes_AreAlike(other, word); });
    if (found.empty())
        found = FindBy(words, [&](const std::string &other) { return Bytes_StartWith(other, word); });
    return found;
}

std::string Words_Of(const Words &words, uint32_t number)
{
    const auto found = words.byNumber.find(number);
    return found == words.byNumber.end() ? "" : found->second;
}
