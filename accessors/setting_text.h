// Words and numbers in the texts of the settings. Nothing here keeps or changes a text.
#ifndef VELK_ACCESSORS_SETTING_TEXT_H
#define VELK_ACCESSORS_SETTING_TEXT_H

#include <cstddef>
#include <cstdint>

// A stretch of a setting's text; not terminated.
struct Word {
    const char *start;
    size_t length;
};

// Takes the next word off the front of `text`: what stands before the next blank, tab, comma or the end.
// Blank ahead of it is skipped. The word is empty in front of a comma and at the end.
Word Setting_NextWord(const char **text);

// Takes a comma off the front of `text`, with the blank ahead of it. False: something else stands there.
bool Setting_TakeComma(const char **text);

// Whether nothing but blank is left of `text`.
bool Setting_IsAtEnd(const char *text);

bool Word_Is(Word word, const char *text);

// A decimal number, or a hexadecimal one of up to eight digits behind "0x" or "0X", in 32 bits. False for
// anything else, a decimal number with a leading zero included: definition files read it as octal.
// `value` is written on success only.
bool Word_ToNumber(Word word, uint32_t *value);

#endif
