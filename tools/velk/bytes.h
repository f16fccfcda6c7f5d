// Texts are bytes: they come from boards and files, and may hold anything but a zero.
#ifndef VELK_TOOLS_BYTES_H
#define VELK_TOOLS_BYTES_H

#include <string>
#include <string_view>
#include <vector>

// Safe for a terminal: control characters and what is no UTF-8 stand as escapes, \n, \t or \xHH.
std::string Bytes_Shown(std::string_view bytes);

// As UTF-8, with U+FFFD in place of each byte that is part of none.
std::string Bytes_AsUtf8(std::string_view bytes);

std::string Bytes_AsHex(std::string_view bytes);

// The columns that a shown text takes on a terminal.
size_t Bytes_Width(std::string_view shown);

// With a capital, to begin a sentence.
std::string Bytes_Capital(std::string bytes);

// The bytes without blanks and tabs at both ends.
std::string_view Bytes_Trimmed(std::string_view bytes);

// Without regard to ASCII case.
bool Bytes_StartWith(std::string_view bytes, std::string_view start);
bool Bytes_AreAlike(std::string_view first, std::string_view second);

// The names that a mistyped one may have meant, each once, the likeliest first; at most three.
std::vector<std::string> Names_Near(const std::vector<std::string> &names, std::string_view mistyped);

// "a, b or c".
std::string Names_Join(const std::vector<std::string> &names, const char *lastSeparator);

#endif
