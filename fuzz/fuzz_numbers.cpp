// Number lists, which are equal when their values are written out, and numbers, against the C library's
// conversion. The first byte of an input tells how many values there is room for, the second which one is not
// taken.
#include <algorithm>
#include <cctype>
#include <cstdlib>

#include "fuzz/support.h"
#include "values/number_list.h"
#include "values/text.h"

constexpr StatusCode NotTaken = -77;

struct Sink {
    std::vector<uint32_t> values;
    size_t refused; // position of the value that is not taken
};

static StatusCode Sink_Append(void *target, uint32_t value)
{
    auto *sink = static_cast<Sink *>(target);
    sink->values.push_back(value);
    return sink->values.size() > sink->refused ? NotTaken : 0;
}

// The conversion of the C library reads a lone prefix as its zero, and takes space and a sign of its own.
static StatusCode ReadSlowly(const std::string &text, int base, uint32_t *value)
{
    *value = 0;
    size_t at = std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size());
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

    const uint32_t room = 8 * uint32_t{data[0]};
    uint32_t left = room;
    Sink sink = {{}, 8 * size_t{data[1]}};
    const StatusCode status = NumberList_Parse(text.data(), &sink, Sink_Append, &left);
    const size_t count = sink.values.size();
    Check(left + count == room, "each value takes room for one");
    Check((status == NotTaken) == (count > sink.refused), "a value that is not taken ends a list");
    Check(status != StatusOutOfMemory || left == 0, "a list ends early for want of room alone");

    std::string written;
    for (const uint32_t value : sink.values)
        written += std::to_string(value) + ",";
    written.resize(written.size() - (written.empty() ? 0 : 1));
    Sink again = {{}, count};
    left = room;
    Check(NumberList_Parse(written.data(), &again, Sink_Append, &left) == 0, "values written out are a list");
    Check(again.values == sink.values, "which is equal");
    return 0;
}
