// Text in aligned columns, as wide as the terminal or narrower.
#ifndef VELK_TOOLS_LAYOUT_H
#define VELK_TOOLS_LAYOUT_H

#include <string>
#include <vector>

struct Table {
    std::vector<std::string> heads;
    std::vector<std::vector<std::string>> rows; // of shown texts; the first of each is its name
};

void Table_RemoveColumn(Table *table, size_t column);

// A head that stands over nothing goes, but the first.
void Table_RemoveEmptyColumns(Table *table);

// The columns of a terminal on which no line is broken.
size_t Table_Width(const Table &table);

// Lines of the table. What is too wide has its last column broken, or each row as a block of lines, its name
// first. Names are never cut. Escapes for bold heads if `isColoured`.
std::string Table_Lines(const Table &table, size_t width, bool isColoured);

// A blank at which no line is broken.
constexpr char Tie = '\x1F';

// The text in lines of at most `width` columns, broken at blanks, each behind `indent` blanks; those behind
// the first have `hanging` more.
std::string Text_Wrapped(const std::string &text, size_t width, size_t indent = 0, size_t hanging = 0);

#endif
