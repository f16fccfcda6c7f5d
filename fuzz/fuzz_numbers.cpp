// Number lists and numbers, against a slow expansion on the C library's conversion. The first byte of an
// input tells how many values there is room for, the second which one is not taken.
#include <algorithm>
#include <cctype>
#include <cstdlib>

#include "fuzz/support.h"
#include "values/number_list.h"
#include "values/text.h"

constexpr char Space[] = " \t\n\v\f\r";

struct Sink {
    std::vector<uint32_t> values;
    size_t refused; // position of the value that is not taken
};

static StatusCode Sink_Append(void *target, uint32_t value)
{
    auto *sink = static_cast<Sink *>(target);
    sink->values.push_back(value);
    return sink->values.size() > sink->refused ? -77 : 0;
}

// The conversion of the C library reads a lone prefix as its zero, and takes space and a sign of its own.
static StatusCode ReadSlowly(const std::string &text, int base, uint32_t *value)
{
    *value = 0;
    size_t at = std::min(text.find_first_not_of(Space), text.size());
    const bool isNegative = text[at] == '-';
    at += isNegative || text[at] == '+' ? 1 : 0;
    const bool hasPrefix = base != 10 && text[at] == '0' && tolower(text[at + 1]) == 'x';
    if (isxdigit(static_cast<uint8_t>(text[hasPrefix ? at + 2 : at])) == 0)
        return -1;
    char *end;
    const uint64_t number = strtoull(text.c_str() + at, &end, base);
    const auto word = static_cast<uint32_t>(std::min<uint64_t>(number, UINT32_MAX));
    *value = isNegative ? -word : word;
    return end == text.c_str() + at ? -1 : 0;
}

// Stops behind `room` values. A plain number is a range of itself.
static StatusCode ExpandElement(std::string element, size_t room, std::vector<uint32_t> *values)
{
    const size_t count = element[0] == ':' ? 3 : element[0] == '^' ? 2 : 1;
    uint32_t numbers[] = {0, 1, 0};
    for (size_t n = 0; n < count; ++n) {
        const size_t colon = count == 1 ? 0 : n == 0 ? 1 : element.find(':') + 1;
        if ((n > 0 && colon == 0) || ReadSlowly(element.erase(0, colon), 0, &numbers[n]) < 0)
            return StatusBadNumber;
    }
    const auto [start, step, last] = numbers;
    const uint32_t end = count == 1 ? start : count == 2 ? step : last;
    if (step == 0 && count == 3 && start <= end && start != UINT32_MAX)
        return StatusBadNumber;
    for (uint64_t value = start; value <= end && (count != 2 || value != 0) && values->size() <= room;) {
        values->push_back(static_cast<uint32_t>(value));
        const uint64_t next = value + (value == UINT32_MAX ? 1 : step); // also for a step of 0
        value = count == 2 ? value << 1 & UINT32_MAX : next;
    }
    return 0;
}

static StatusCode ExpandSlowly(const std::string &text, size_t room, std::vector<uint32_t> *values)
{
    StatusCode status = 0;
    const char *separators = "(,)";
    size_t at = text.find_first_not_of(separators);
    while (at != std::string::npos && status == 0 && values->size() <= room) {
        const size_t end = std::min(text.find_first_of(separators, at), text.size());
        std::string element = text.substr(at, end - at);
        element.erase(0, element.find_first_not_of(Space)).erase(element.find_last_not_of(Space) + 1);
        if (element.empty() && *separators == '(')
            break;
        separators = ",)";
        status = ExpandElement(element, room, values);
        at = text.find_first_not_of(separators, end + 1);
    }
    return status;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const Bounds bounds(size);
    if (size < 2)
        return 0;
    std::string text(reinterpret_cast<const char *>(data) + 2, size - 2);
    text.erase(std::min(text.find('\0'), text.size()));
    for (const int base : {0, 10, 16}) {
        uint32_t expected;
        uint32_t value;
        const StatusCode status = ReadSlowly(text, base, &expected);
        Check(Number_Parse(text.c_str(), base, &value) == status && value == expected,
              "a number is as it says");
    }

    const size_t limit = 8 * size_t{data[0]};
    const size_t refused = 8 * size_t{data[1]};
    const size_t room = std::min(limit, refused);
    std::vector<uint32_t> expected;
    StatusCode expectedStatus = ExpandSlowly(text, room, &expected);
    if (expected.size() > room) {
        expectedStatus = limit <= refused ? StatusOutOfMemory : -77;
        expected.resize(limit <= refused ? room : room + 1);
    }
    Sink sink = {{}, refused};
    auto left = static_cast<uint32_t>(limit);
    Check(NumberList_Parse(text.data(), &sink, Sink_Append, &left) == expectedStatus, "a list's status");
    Check(sink.values == expected && left == limit - expected.size(), "a list holds what it says");
    return 0;
}
