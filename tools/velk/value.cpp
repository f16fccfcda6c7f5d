#include "tools/velk/value.h"

#include "tools/velk/bytes.h"
#include "tools/velk/failure.h"
#include "tools/velk/layout.h"
#include "values/limits.h"
#include "values/number_list.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

namespace
{

// Numbers of a list that are shown before its middle is left out, and of those the ones ahead of the gap.
constexpr size_t ShownNumbers = 8;
constexpr size_t ShownAhead = 4;

std::vector<uint32_t> Copy(const List *list)
{
    return list->count < 1 ? std::vector<uint32_t>()
                           : std::vector<uint32_t>(list->items, list->items + list->count);
}

StatusCode Append(void *target, uint32_t number)
{
    static_cast<std::vector<uint32_t> *>(target)->push_back(number);
    return 0;
}

int DigitOf(char letter)
{
    if (letter >= '0' && letter <= '9')
        return letter - '0';
    const char lower = static_cast<char>(letter | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : 16;
}

// Takes the prefix that states a base.
uint32_t TakeBase(std::string_view *digits)
{
    if (Bytes_StartWith(*digits, "0x")) {
        digits->remove_prefix(2);
        return 16;
    }
    if (Bytes_StartWith(*digits, "0b")) {
        digits->remove_prefix(2);
        return 2;
    }
    return digits->size() > 1 && digits->front() == '0' ? 8 : 10;
}

std::string NumberShown(uint32_t number, const Words &words)
{
    std::string shown = std::to_string(number);
    if (!words.unit.empty())
        shown += " " + Bytes_Shown(words.unit);
    const std::string word = Words_Of(words, number);
    return word.empty() ? shown : fmt::format("{} ({})", shown, Bytes_Shown(word));
}

std::string ListShown(const std::vector<uint32_t> &list, const Words &words)
{
    std::vector<std::string> shown;
    shown.reserve(list.size());
    for (const uint32_t number : list)
        shown.push_back(NumberShown(number, words));
    return fmt::format("({})", fmt::join(shown, ", "));
}

Failure NotAValue(const std::string &what, const std::string &text, const Words &words, const char *advice)
{
    std::vector<std::string> known;
    for (const auto &[number, word] : words.byNumber)
        known.push_back(word);
    Failure failure = {
        ExitUsage,
        fmt::format("cannot read the value for {}: '{}' is no 32-bit number", what, Bytes_Shown(text)),
        advice};
    if (!known.empty()) {
        failure.message += " and none of its words";
        const std::vector<std::string> near = Names_Near(known, text);
        if (known.size() > ShownNumbers)
            known.resize(ShownAhead);
        failure.next = near.empty() ? "give a number, or a word such as " + Names_Join(known, " or ")
                                    : "did you mean " + Names_Join(near, " or ") + "?";
    }
    return failure;
}

uint32_t ParseNumber(const std::string &text, const Words &words, const std::string &what, const char *advice)
{
    uint32_t number;
    if (Number_Read(text, &number))
        return number;
    const std::vector<uint32_t> found = Words_Find(words, text);
    if (found.size() == 1)
        return found[0];
    if (found.empty())
        throw NotAValue(what, text, words, advice);
    std::vector<std::string> candidates;
    candidates.reserve(found.size());
    for (const uint32_t candidate : found)
        candidates.push_back(fmt::format("{} ({})", Words_Of(words, candidate), candidate));
    throw Failure{ExitUsage,
                  fmt::format("cannot read the value for {}: '{}' may be {}", what, Bytes_Shown(text),
                              Names_Join(candidates, " or ")),
                  "give more of the word, or the number"};
}

// The engine reads a number as far as it goes, and ranges with whatever stands behind them; a user gets to
// know what is wrong instead.
bool IsRange(const std::string &piece)
{
    return (piece[0] == ':' || piece[0] == '^') &&
           piece.find_first_not_of(":^0123456789abcdefABCDEFxX") == std::string::npos;
}

// Words become numbers, and the notation is the engine's.
std::vector<uint32_t> ParseList(const std::string &text, const Words &words, const std::string &what)
{
    std::string_view inside = Bytes_Trimmed(text);
    if (inside.starts_with('(') && inside.ends_with(')'))
        inside = inside.substr(1, inside.size() - 2);
    if (Bytes_Trimmed(inside).empty())
        return {};
    std::string notation;
    while (true) {
        const size_t comma = inside.find(',');
        const std::string piece(Bytes_Trimmed(inside.substr(0, comma)));
        if (!notation.empty())
            notation += ',';
        notation +=
            !piece.empty() && IsRange(piece)
                ? piece
                : std::to_string(ParseNumber(piece, words, what, "give a list, such as (1, 2, :4:2:10)"));
        if (comma == std::string_view::npos)
            break;
        inside.remove_prefix(comma + 1);
    }
    std::vector<uint32_t> list;
    uint32_t numbersLeft = NumberListLimit;
    const StatusCode status = NumberList_Parse(notation.data(), &list, Append, &numbersLeft);
    if (status < 0)
        throw Failure{ExitUsage, fmt::format("cannot read the list for {}: {}", what, Status_Text(status)),
                      status == StatusOutOfMemory ? "give a shorter one" : "give one such as (1, 2, :4:2:10)",
                      status};
    return list;
}

} // namespace

Value Value_Copy(int32_t kind, VelkWord word)
{
    Value value;
    value.kind = kind;
    if (kind == ValueKindNumber)
        value.number = static_cast<uint32_t>(word);
    else if (word == 0)
        value.isMissing = true;
    else if (kind == ValueKindList)
        value.list = Copy(reinterpret_cast<const List *>(word));
    else
        value.text = reinterpret_cast<const char *>(word);
    return value;
}

bool Value_IsSame(const Value &first, const Value &second)
{
    return first.kind == second.kind && first.number == second.number && first.list == second.list &&
           first.text == second.text;
}

void Value_Lend(const Value &value, ValueWord *lent)
{
    // The engine copies what it is given, and never changes it.
    lent->list = {static_cast<int32_t>(value.list.size()), const_cast<uint32_t *>(value.list.data())};
    lent->word = value.number;
    if (value.kind == ValueKindList)
        lent->word = reinterpret_cast<VelkWord>(&lent->list);
    if (value.kind == ValueKindString)
        lent->word = reinterpret_cast<VelkWord>(value.text.c_str());
}

ValidNow Valid_Copy(Config *config, uint32_t kind, VelkValidRef rule)
{
    VelkWord words[3];
    VelkDataFromValidValueRef(config, rule, words);
    ValidNow valid;
    valid.kind = kind;
    const auto count = static_cast<int32_t>(words[0]);
    if (kind == ValidKindRange) {
        valid.low = static_cast<uint32_t>(words[0]);
        valid.step = static_cast<uint32_t>(words[1]);
        valid.high = static_cast<uint32_t>(words[2]);
    } else if (kind == ValidKindList && count > 0) {
        valid.numbers.resize(static_cast<size_t>(count));
        VelkDataFromValueListRef(config, reinterpret_cast<const uint32_t *>(words[1]), valid.numbers.data(),
                                 count);
    } else if (kind == ValidKindListSet) {
        valid.isAny = count < 0;
        const auto *lists = reinterpret_cast<const List *>(words[1]);
        for (int32_t n = 0; n < count; ++n)
            valid.lists.push_back(Copy(&lists[n]));
    } else if (kind == ValidKindString) {
        valid.isAny = words[0] == 0;
        if (!valid.isAny)
            valid.text = reinterpret_cast<const char *>(words[0]);
    }
    return valid;
}

bool Valid_Admits(const ValidNow &valid, const Value &value)
{
    switch (valid.kind) {
    case ValidKindRange:
        return valid.step != 0 && value.number >= valid.low && value.number <= valid.high &&
               (value.number - valid.low) % valid.step == 0;
    case ValidKindList:
        return std::find(valid.numbers.begin(), valid.numbers.end(), value.number) != valid.numbers.end();
    case ValidKindListSet:
        return valid.isAny ||
               std::find(valid.lists.begin(), valid.lists.end(), value.list) != valid.lists.end();
    default:
        return valid.isAny || value.text == valid.text;
    }
}

bool Valid_IsNone(const ValidNow &valid)
{
    return (valid.kind == ValidKindRange && valid.step == 0) ||
           (valid.kind == ValidKindList && valid.numbers.empty()) ||
           (valid.kind == ValidKindListSet && !valid.isAny && valid.lists.empty());
}

const char *Valid_KindName(uint32_t kind)
{
    static constexpr const char *names[] = {"range", "list", "lists", "text"};
    return names[kind];
}

bool Number_Read(std::string_view text, uint32_t *number)
{
    const bool isNegative = text.starts_with('-');
    if (isNegative || text.starts_with('+'))
        text.remove_prefix(1);
    const uint32_t base = TakeBase(&text);
    uint64_t read = 0;
    for (const char letter : text) {
        const auto digit = static_cast<uint32_t>(DigitOf(letter));
        if (digit >= base)
            return false;
        read = read * base + digit;
        if (read > UINT32_MAX)
            return false;
    }
    *number = isNegative ? 0 - static_cast<uint32_t>(read) : static_cast<uint32_t>(read);
    return !text.empty();
}

Value Value_Parse(const std::string &text, int32_t kind, const Words &words, const std::string &what)
{
    Value value;
    value.kind = kind;
    if (kind == ValueKindNumber)
        value.number =
            ParseNumber(std::string(Bytes_Trimmed(text)), words, what, "give one, such as 16 or 0x10");
    else if (kind == ValueKindList)
        value.list = ParseList(text, words, what);
    else
        value.text = text;
    return value;
}

std::string Value_Shown(const Value &value, const Words &words)
{
    if (value.isMissing)
        return "none";
    if (value.kind == ValueKindNumber)
        return NumberShown(value.number, words);
    return value.kind == ValueKindList ? ListShown(value.list, words)
                                       : fmt::format("\"{}\"", Bytes_Shown(value.text));
}

std::string Value_Plain(const Value &value)
{
    if (value.kind == ValueKindNumber)
        return std::to_string(value.number);
    return value.kind == ValueKindList ? ListShown(value.list, {}) : Bytes_Shown(value.text);
}

// On one line with its word, wherever lines are broken.
static std::string Tied(std::string shown)
{
    std::replace(shown.begin(), shown.end(), ' ', Tie);
    return shown;
}

static std::string NumbersShown(const std::vector<uint32_t> &numbers, const Words &words, bool isWhole)
{
    std::vector<std::string> shown;
    const size_t count = numbers.size();
    for (size_t n = 0; n < count; ++n) {
        if (!isWhole && count > ShownNumbers && n == ShownAhead) {
            shown.emplace_back("..");
            n = count - 1;
        }
        shown.push_back(Tied(NumberShown(numbers[n], words)));
    }
    return fmt::format("{}", fmt::join(shown, ", "));
}

std::string Valid_Shown(const ValidNow &valid, const Words &words, bool isWhole)
{
    if (Valid_IsNone(valid))
        return "none";
    switch (valid.kind) {
    case ValidKindRange: {
        const std::string range = NumberShown(valid.low, words) + " to " + NumberShown(valid.high, words);
        return valid.step == 1 ? range : fmt::format("{} in steps of {}", range, valid.step);
    }
    case ValidKindList:
        return NumbersShown(valid.numbers, words, isWhole);
    case ValidKindListSet: {
        std::vector<std::string> lists;
        for (const auto &list : valid.lists)
            lists.push_back(ListShown(list, words));
        return valid.isAny ? "any list" : fmt::format("{}", fmt::join(lists, ", "));
    }
    default:
        return valid.isAny ? "any text" : fmt::format("\"{}\"", Bytes_Shown(valid.text));
    }
}
