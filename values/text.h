// Scanning of definition text. Texts stand in writable buffers of the caller and are worked on in
// place. White space is exactly blank, tab, line feed, vertical tab, form feed and carriage return,
// whatever the locale.
#ifndef VELK_VALUES_TEXT_H
#define VELK_VALUES_TEXT_H

#include "velk32.h"

#include <cstddef>

// The buffers that definition texts are fetched into: bytes, terminator included. A longer text is not
// delivered.
constexpr int32_t DefinitionTextSize = 1024;

// The first character that is not white space; null for null.
const char *Text_SkipSpace(const char *text);

// Cuts white space at both ends. Gives `text`; null for null.
char *Text_Trim(char *text);

// Compares without regard to ASCII case.
bool Text_EqualsIgnoringCase(const char *first, const char *second);

// The next name of a list separated by white space and commas, zero-terminated in place. The first
// call gives the list, the next ones null; `position` is the scan's own, null before and behind it. A
// list that ends in a separator has an empty last name. Null: the scan is over.
char *Text_NextFileName(char *text, char **position);

// The next piece of a text, from the first character that is none of `separators` up to the next one
// that is, which is overwritten by a terminator. `position` goes behind it. Null: nothing is left.
char *Text_NextPiece(char **position, const char *separators);

// Reads an unsigned 32-bit number at the head of a text, behind white space and a sign if there are any:
// in base 10; in base 16, with or without "0x"; or in base 0, where "0x" leads to base 16 and "0" to base
// 8. What stands behind the digits is ignored, a number too large is 0xFFFFFFFF, a minus sign gives the
// two's complement. Gives 0, or -1 with `value` 0: no digit.
StatusCode Number_Parse(const char *text, int32_t base, uint32_t *value);

// The longest that Number_Compose writes, with its terminator, in bytes.
constexpr size_t NumberTextSize = sizeof "0xFFFFFFFF";

// Writes a number in base 16 behind "0x", in upper-case letters and with leading zeros up to `digits` digits,
// and a terminator. Gives the place of that.
char *Number_Compose(char *text, uint32_t value, int32_t digits);

#endif
