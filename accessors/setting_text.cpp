#include "accessors/setting_text.h"

#include <cstring>

static bool Character_IsBlank(char character)
{
    return character == ' ' || character == '\t';
}

static const char *Text_SkipBlank(const char *text)
{
    while (Character_IsBlank(*text))
        ++text;
    return text;
}

Word Setting_NextWord(const char **text)
{
    const char *start = Text_SkipBlank(*text);
    const char *end = start;
    while (*end != '\0' && *end != ',' && !Character_IsBlank(*end))
        ++end;
    *text = end;
    return {start, static_cast<size_t>(end - start)};
}

bool Setting_TakeComma(const char **text)
{
    const char *next = Text_SkipBlank(*text);
    if (*next != ',')
        return false;
    *text = next + 1;
    return true;
}

bool Setting_IsAtEnd(const char *text)
{
    return *Text_SkipBlank(text) == '\0';
}

bool Word_Is(Word word, const char *text)
{
    return strlen(text) == word.length && memcmp(word.start, text, word.length) == 0;
}

// The digit's value, or 16 for what is no digit.
static uint32_t Digit_Value(char digit)
{
    if (digit >= '0' && digit <= '9')
        return static_cast<uint32_t>(digit - '0');
    if (digit >= 'a' && digit <= 'f')
        return static_cast<uint32_t>(digit - 'a' + 10);
    if (digit >= 'A' && digit <= 'F')
        return static_cast<uint32_t>(digit - 'A' + 10);
    return 16;
}

// `length` is at most 10, so that no sum passes 64 bits.
static bool Digits_ToNumber(const char *digits, size_t length, uint32_t base, uint32_t *value)
{
    uint64_t sum = 0;
    for (size_t i = 0; i < length; ++i) {
        const uint32_t digit = Digit_Value(digits[i]);
        if (digit >= base)
            return false;
        sum = sum * base + digit;
    }
    if (length == 0 || sum > UINT32_MAX)
        return false;
    *value = static_cast<uint32_t>(sum);
    return true;
}

bool Word_ToNumber(Word word, uint32_t *value)
{
    if (word.length > 10)
        return false;
    if (word.length < 2 || word.start[0] != '0')
        return Digits_ToNumber(word.start, word.length, 10, value);
    if (word.start[1] != 'x' && word.start[1] != 'X')
        return false;
    return Digits_ToNumber(word.start + 2, word.length - 2, 16, value);
}
