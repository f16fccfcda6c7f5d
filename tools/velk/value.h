// The values of options, keys and registers, as this program holds, reads and shows them.
#ifndef VELK_TOOLS_VALUE_H
#define VELK_TOOLS_VALUE_H

#include "tools/velk/words.h"
#include "velk32.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

struct Value {
    int32_t kind = ValueKindNumber;
    bool isMissing = false; // a register of a text or list may hold none
    uint32_t number = 0;
    std::vector<uint32_t> list = {};
    std::string text = {};

    bool operator==(const Value &) const = default;
};

// Whether both hold the same; a missing text or list counts as an empty one, as in save files.
bool Value_IsSame(const Value &first, const Value &second);

// A copy of what the engine handed out.
Value Value_Copy(int32_t kind, VelkWord word);

// What the engine takes. It refers to the value, which it must not outlive.
struct ValueWord {
    List list;
    VelkWord word;
};
void Value_Lend(const Value &value, ValueWord *lent);

// The values that an option may take.
struct ValidNow {
    uint32_t kind = ValidKindRange;       // ValidValuesKind
    uint32_t low = 0, step = 0, high = 0; // of a range; none if the step is 0
    std::vector<uint32_t> numbers = {};   // of a list, as the definition has them
    bool isAny = false;                   // any list, or any text
    std::vector<std::vector<uint32_t>> lists = {};
    std::string text = {}; // the one valid text, unless any is

    bool operator==(const ValidNow &) const = default;
};

ValidNow Valid_Copy(Config *config, uint32_t kind, VelkValidRef rule);
bool Valid_Admits(const ValidNow &valid, const Value &value);
bool Valid_IsNone(const ValidNow &valid);

// "range", "list", "lists" or "text".
const char *Valid_KindName(uint32_t kind);

// A number in any base: 0x, 0b or 0 ahead of it, or none; with a sign. False: it is none as a whole, or needs
// more than 32 bits.
bool Number_Read(std::string_view text, uint32_t *number);

// Reads what a user gives for `what`. Throws a Failure of usage.
Value Value_Parse(const std::string &text, int32_t kind, const Words &words, const std::string &what);

// For a person: numbers with their words and unit, texts in quotes.
std::string Value_Shown(const Value &value, const Words &words);

// For a script: the value alone, on one line.
std::string Value_Plain(const Value &value);

// To be broken into lines: a number is tied to its word. A long list has its middle left out unless
// `isWhole`.
std::string Valid_Shown(const ValidNow &valid, const Words &words, bool isWhole);

#endif
