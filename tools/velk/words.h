// What the catalogue says of the values of an option: words for its numbers, and what to tell a user.
#ifndef VELK_TOOLS_WORDS_H
#define VELK_TOOLS_WORDS_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

struct Words {
    std::map<uint32_t, std::string> byNumber = {};
    std::string label = {};
    std::string unit = {};
    std::string help = {};
};

// The numbers that a word may stand for: those that have it exactly, or else but for case, or else as the
// beginning of theirs.
std::vector<uint32_t> Words_Find(const Words &words, const std::string &word);

// The word of a number, or an empty text.
std::string Words_Of(const Words &words, uint32_t number);

#endif
