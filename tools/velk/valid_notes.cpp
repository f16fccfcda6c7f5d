#include "tools/velk/valid_notes.h"

#include <fmt/format.h>

#include <algorithm>

namespace
{

// The last value of a range on its grid.
uint32_t LastOnGrid(const ValidNow &valid)
{
    return valid.high - (valid.high - valid.low) % valid.step;
}

bool EndsOffGrid(const ValidNow &valid)
{
    return valid.kind == ValidKindRange && valid.step != 0 && valid.high >= valid.low &&
           LastOnGrid(valid) != valid.high;
}

std::string NoteOnHigh(const ValidNow &valid)
{
    return fmt::format(
        "{} ends the range off its steps: it is stored for what lies above, stays until it is set again, "
        "and then becomes {}.",
        valid.high, LastOnGrid(valid));
}

uint32_t DistanceOf(uint32_t one, uint32_t other)
{
    return one < other ? other - one : one - other;
}

} // namespace

std::vector<std::string> Valid_Notes(const ValidNow &valid)
{
    if (Valid_IsNone(valid))
        return {"No value is valid now: setting it succeeds and changes nothing."};
    if (EndsOffGrid(valid))
        return {NoteOnHigh(valid)};
    if (valid.kind == ValidKindList && valid.numbers.size() > 1)
        return {"A value between two of a list becomes the next larger one, not the nearest."};
    return {};
}

std::string Valid_NoteOnMove(const ValidNow &valid, const Value &asked, const Value &stored)
{
    if (EndsOffGrid(valid) && (stored.number == valid.high || asked.number == valid.high))
        return NoteOnHigh(valid);
    if (valid.kind != ValidKindList || stored.number < asked.number || Valid_Admits(valid, asked))
        return {};
    const auto nearest =
        std::min_element(valid.numbers.begin(), valid.numbers.end(), [&](uint32_t one, uint32_t other) {
            return DistanceOf(one, asked.number) < DistanceOf(other, asked.number);
        });
    if (nearest == valid.numbers.end() ||
        DistanceOf(*nearest, asked.number) == DistanceOf(stored.number, asked.number))
        return {};
    return fmt::format("A list moves a value up to the next larger one, though {} is nearer.", *nearest);
}
