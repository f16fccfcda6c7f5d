#include "values/text.h"

#include <array>
#include <bit>
#include <cstring>
#include <type_traits>

static bool IsSpace(char character)
{
    return character == ' ' || (character >= '\t' && character <= '\r');
}

const char *Text_SkipSpace(const char *text)
{
    while (text != nullptr && IsSpace(*text))
        ++text;
    return text;
}

char *Text_Trim(char *text)
{
    if (text == nullptr)
        return nullptr;
    const char *first = Text_SkipSpace(text);
    size_t length = strlen(first);
    while (length > 0 && IsSpace(first[length - 1]))
        --length;
    memmove(text, first, length);
    text[length] = '\0';
    return text;
}

static char LowerCase(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character + ('a' - 'A')) : character;
}

bool Text_EqualsIgnoringCase(const char *first, const char *second)
{
    while (*first != '\0' && LowerCase(*first) == LowerCase(*second)) {
        ++first;
        ++second;
    }
    return *first == *second;
}

static bool SeparatesNames(char character)
{
    return character == ',' || IsSpace(character);
}

char *Text_NextFileName(char *text, char **position)
{
    char *name = text != nullptr ? text : *position;
    if (name == nullptr)
        return nullptr;
    while (SeparatesNames(*name))
        ++name;

    char *end = name;
    while (*end != '\0' && !SeparatesNames(*end))
        ++end;
    *position = nullptr;
    if (*end != '\0') {
        *end = '\0';
        *position = end + 1;
    }
    return name;
}

char *Text_NextPiece(char **position, const char *separators)
{
    char *piece = *position + strspn(*position, separators);
    if (*piece == '\0')
        return nullptr;
    char *end = piece + strcspn(piece, separators);
    *position = end;
    if (*end != '\0') {
        *end = '\0';
        ++*position;
    }
    return piece;
}

constexpr uint8_t NoDigit = 16;

// The value of a digit in any base up to 16; 16 for a character that is none.
static uint32_t DigitValue(char character)
{
    static constexpr auto values = [] {
        std::array<uint8_t, 256> table;
        table.fill(NoDigit);
        for (uint8_t digit = 0; digit < 10; ++digit)
            table['0' + digit] = digit;
        for (uint8_t digit = 10; digit < 16; ++digit)
            table['a' + digit - 10] = table['A' + digit - 10] = digit;
        return table;
    }();
    return values[static_cast<unsigned char>(character)];
}

// Skips a prefix that the base allows and gives the base that it leads to.
static uint32_t TakeBase(const char **text, int32_t base)
{
    const bool zero = **text == '0';
    if (base != 10 && zero && LowerCase((*text)[1]) == 'x') {
        *text += 2;
        return 16;
    }
    if (base == 0)
        return zero ? 8 : 10;
    return static_cast<uint32_t>(base);
}

// Takes digits, and gives their number, or 0xFFFFFFFF if it is larger. To know the base when this is compiled
// is worth a third of the time of long numbers.
template <typename Base> static uint32_t TakeDigits(const char **text, Base base)
{
    uint64_t number = 0;
    for (uint32_t digit; (digit = DigitValue(**text)) < base; ++*text)
        if (number <= UINT32_MAX)
            number = number * base + digit;
    return number > UINT32_MAX ? UINT32_MAX : static_cast<uint32_t>(number);
}

StatusCode Number_Parse(const char *text, int32_t base, uint32_t *value)
{
    text = Text_SkipSpace(text);
    const bool negative = *text == '-';
    if (*text == '-' || *text == '+')
        ++text;

    const uint32_t radix = TakeBase(&text, base);
    const char *digits = text;
    const uint32_t number =
        radix == 16 ? TakeDigits(&text, std::integral_constant<uint32_t, 16>()) : TakeDigits(&text, radix);
    *value = negative ? 0 - number : number;
    return text == digits ? -1 : 0;
}

char *Number_Compose(char *text, uint32_t value, int32_t digits)
{
    const int32_t needed = (std::bit_width(value) + 3) / 4;
    memcpy(text, "0x", 2);
    char *end = text + 2 + (needed > digits ? needed : digits);
    *end = '\0';
    for (char *digit = end; digit != text + 2; value >>= 4)
        *--digit = "0123456789ABCDEF"[value & 0xF];
    return end;
}
