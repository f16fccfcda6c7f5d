#include "values/number_list.h"

#include "values/text.h"

#include <cstring>

// Where the values of a list go.
struct NumberSink {
    void *target;
    NumberAppendFn append;
    uint32_t *numbersLeft;
};

static StatusCode Take(const NumberSink *sink, uint32_t value)
{
    if (*sink->numbersLeft == 0)
        return StatusOutOfMemory;
    --*sink->numbersLeft;
    return sink->append(sink->target, value);
}

// Reads `count` numbers that stand behind the first character of `text` with a colon ahead of each
// further one.
static StatusCode ReadBounds(const char *text, uint32_t *bounds, int32_t count)
{
    for (int32_t n = 0; n < count; ++n) {
        if (text == nullptr || Number_Parse(text + 1, 0, &bounds[n]) < 0)
            return StatusBadNumber;
        text = strchr(text + 1, ':');
    }
    return 0;
}

static StatusCode ExpandStepped(const char *element, const NumberSink *sink)
{
    uint32_t bounds[3];
    if (ReadBounds(element, bounds, 3) < 0)
        return StatusBadNumber;
    const uint32_t start = bounds[0];
    const uint32_t step = bounds[1];
    const uint32_t end = bounds[2];
    if (step == 0 && start <= end && start != UINT32_MAX)
        return StatusBadNumber; // it would never end

    // Wider than a value, so that a range ends where it would pass the largest one.
    for (uint64_t value = start; value <= end; value += step) {
        const StatusCode status = Take(sink, static_cast<uint32_t>(value));
        if (status < 0)
            return status;
        if (value == UINT32_MAX)
            break; // for a step of 0
    }
    return 0;
}

static StatusCode ExpandDoubling(const char *element, const NumberSink *sink)
{
    uint32_t bounds[2];
    if (ReadBounds(element, bounds, 2) < 0)
        return StatusBadNumber;

    // Ends at the latest when the top bit is shifted out.
    for (uint32_t value = bounds[0]; value <= bounds[1] && value != 0; value <<= 1) {
        const StatusCode status = Take(sink, value);
        if (status < 0)
            return status;
    }
    return 0;
}

static StatusCode ExpandElement(const char *element, const NumberSink *sink)
{
    if (*element == ':')
        return ExpandStepped(element, sink);
    if (*element == '^')
        return ExpandDoubling(element, sink);

    uint32_t value;
    if (Number_Parse(element, 0, &value) < 0)
        return StatusBadNumber;
    return Take(sink, value);
}

StatusCode NumberList_Parse(char *text, void *target, NumberAppendFn append, uint32_t *numbersLeft)
{
    const NumberSink sink = {target, append, numbersLeft};
    char *position = text;
    const char *element = Text_Trim(Text_NextPiece(&position, "(,)"));
    if (element == nullptr || *element == '\0')
        return 0;

    // An opening parenthesis separates ahead of the first number only.
    while (element != nullptr) {
        const StatusCode status = ExpandElement(element, &sink);
        if (status < 0)
            return status;
        element = Text_Trim(Text_NextPiece(&position, ",)"));
    }
    return 0;
}

StatusCode List_AppendNumber(void *target, uint32_t value)
{
    return List_Append(static_cast<List *>(target), value);
}
