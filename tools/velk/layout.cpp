#include "tools/velk/layout.h"

#include "tools/velk/bytes.h"

#include <algorithm>

namespace
{

constexpr size_t Gap = 2;              // columns between two columns
constexpr size_t LeastLastColumn = 16; // a narrower one is not worth breaking

std::string Padded(const std::string &text, size_t width)
{
    const size_t used = Bytes_Width(text);
    return used < width ? text + std::string(width - used, ' ') : text;
}

// The widths that the columns would like.
std::vector<size_t> Widths(const Table &table)
{
    std::vector<size_t> widths;
    for (const std::string &head : table.heads)
        widths.push_back(Bytes_Width(head));
    for (const auto &row : table.rows)
        for (size_t n = 0; n < row.size(); ++n)
            widths[n] = std::max(widths[n], Bytes_Width(row[n]));
    return widths;
}

// Pieces of at most `width` columns; a longer word has a piece of its own.
std::vector<std::string> Pieces(const std::string &text, size_t width)
{
    std::vector<std::string> pieces;
    std::string piece;
    for (size_t at = 0; at <= text.size();) {
        const size_t end = std::min(text.find(' ', at), text.size());
        const std::string word = text.substr(at, end - at);
        if (!piece.empty() && Bytes_Width(piece) + 1 + Bytes_Width(word) > width) {
            pieces.push_back(piece);
            piece.clear();
        }
        piece += piece.empty() ? word : " " + word;
        at = end + 1;
    }
    pieces.push_back(piece);
    for (std::string &tied : pieces)
        std::replace(tied.begin(), tied.end(), Tie, ' ');
    return pieces;
}

std::string WithoutBlanksBehind(std::string line)
{
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

// One row in columns, the last one broken to its width.
std::string RowLines(const std::vector<std::string> &row, const std::vector<size_t> &widths)
{
    std::string lead;
    for (size_t n = 0; n + 1 < row.size(); ++n)
        lead += Padded(row[n], widths[n]) + std::string(Gap, ' ');
    std::string lines;
    for (const std::string &piece : Pieces(row.back(), widths.back())) {
        lines += WithoutBlanksBehind(lead + piece) + "\n";
        lead.assign(Bytes_Width(lead), ' ');
    }
    return lines;
}

// One row as a block: its name, and below it what else it has, under its heads.
std::string RowBlock(const Table &table, const std::vector<std::string> &row, size_t width)
{
    std::string lines = row[0] + "\n";
    for (size_t n = 1; n < row.size(); ++n)
        if (!row[n].empty())
            lines += Text_Wrapped(table.heads[n] + ": " + row[n], width, 2, 2);
    return lines;
}

std::string Bold(const std::string &text, bool isColoured)
{
    return isColoured ? "\x1b[1m" + text + "\x1b[0m" : text;
}

} // namespace

// Columns that all but the last one take.
static size_t Taken(const std::vector<size_t> &widths)
{
    size_t taken = 0;
    for (size_t n = 0; n + 1 < widths.size(); ++n)
        taken += widths[n] + Gap;
    return taken;
}

void Table_RemoveColumn(Table *table, size_t column)
{
    const auto at = static_cast<std::ptrdiff_t>(column);
    table->heads.erase(table->heads.begin() + at);
    for (auto &row : table->rows)
        row.erase(row.begin() + at);
}

void Table_RemoveEmptyColumns(Table *table)
{
    for (size_t n = table->heads.size(); n-- > 1;)
        if (std::all_of(table->rows.begin(), table->rows.end(),
                        [&](const auto &row) { return row[n].empty(); }))
            Table_RemoveColumn(table, n);
}

size_t Table_Width(const Table &table)
{
    const std::vector<size_t> widths = Widths(table);
    return Taken(widths) + widths.back();
}

std::string Table_Lines(const Table &table, size_t width, bool isColoured)
{
    std::string lines;
    std::vector<size_t> widths = Widths(table);
    if (Taken(widths) + std::min(widths.back(), LeastLastColumn) > width) {
        for (const auto &row : table.rows)
            lines += RowBlock(table, row, width);
        return lines;
    }
    widths.back() = std::min(widths.back(), width - Taken(widths));
    const std::string heads = RowLines(table.heads, widths);
    lines = Bold(heads.substr(0, heads.size() - 1), isColoured) + "\n";
    for (const auto &row : table.rows)
        lines += RowLines(row, widths);
    return lines;
}

std::string Text_Wrapped(const std::string &text, size_t width, size_t indent, size_t hanging)
{
    const size_t room = width > indent + hanging ? width - indent - hanging : 1;
    std::string lines;
    size_t before = indent;
    for (const std::string &piece : Pieces(text, room)) {
        lines += std::string(before, ' ') + piece + "\n";
        before = indent + hanging;
    }
    return lines;
}
