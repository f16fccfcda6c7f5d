#include "tools/velk/bytes.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>

namespace
{

unsigned char ByteAt(std::string_view bytes, size_t at)
{
    return static_cast<unsigned char>(bytes[at]);
}

// The bytes of the UTF-8 character at `at`, or 0: there is none. Neither surrogates nor longer forms than
// needed are characters.
size_t CharacterLength(std::string_view bytes, size_t at)
{
    const unsigned char lead = ByteAt(bytes, at);
    if (lead < 0x80)
        return 1;
    const size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || at + length > bytes.size())
        return 0;
    for (size_t next = 1; next < length; ++next)
        if ((ByteAt(bytes, at + next) & 0xC0) != 0x80)
            return 0;
    const unsigned char second = ByteAt(bytes, at + 1);
    const bool bad = (lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) ||
                     (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F);
    return bad ? 0 : length;
}

// Also the controls that UTF-8 has behind ASCII's.
bool IsControl(std::string_view bytes, size_t at)
{
    const unsigned char byte = ByteAt(bytes, at);
    return byte < 0x20 || byte == 0x7F || (byte == 0xC2 && ByteAt(bytes, at + 1) < 0xA0);
}

std::string Escaped(char byte)
{
    switch (byte) {
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        return fmt::format("\\x{:02X}", static_cast<unsigned char>(byte));
    }
}

char Lower(char letter)
{
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter | 0x20) : letter;
}

// Letters to insert, remove or exchange to make one name of the other, case aside.
size_t Distance(std::string_view first, std::string_view second)
{
    std::vector<size_t> row(second.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t i = 0; i < first.size(); ++i) {
        size_t diagonal = row[0]++;
        for (size_t j = 0; j < second.size(); ++j) {
            const size_t exchanged = diagonal + (Lower(first[i]) == Lower(second[j]) ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({exchanged, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

} // namespace

std::string Bytes_Shown(std::string_view bytes)
{
    std::string shown;
    for (size_t at = 0; at < bytes.size();) {
        const size_t length = CharacterLength(bytes, at);
        const size_t taken = length == 0 ? 1 : length;
        if (length == 0 || IsControl(bytes, at))
            for (const char byte : bytes.substr(at, taken))
                shown += Escaped(byte);
        else
            shown += bytes.substr(at, taken);
        at += taken;
    }
    return shown;
}

std::string Bytes_AsUtf8(std::string_view bytes)
{
    std::string text;
    for (size_t at = 0; at < bytes.size();) {
        const size_t length = CharacterLength(bytes, at);
        text += length == 0 ? std::string_view("\xEF\xBF\xBD") : bytes.substr(at, length);
        at += length == 0 ? 1 : length;
    }
    return text;
}

std::string Bytes_AsHex(std::string_view bytes)
{
    std::string hex;
    for (const char byte : bytes)
        hex += fmt::format("{:02X}", static_cast<unsigned char>(byte));
    return hex;
}

size_t Bytes_Width(std::string_view shown)
{
    return static_cast<size_t>(
        std::count_if(shown.begin(), shown.end(), [](char byte) { return (byte & 0xC0) != 0x80; }));
}

std::string Bytes_Capital(std::string bytes)
{
    if (!bytes.empty() && bytes[0] >= 'a' && bytes[0] <= 'z')
        bytes[0] = static_cast<char>(bytes[0] & ~0x20);
    return bytes;
}

std::string_view Bytes_Trimmed(std::string_view bytes)
{
    const size_t first = bytes.find_first_not_of(" \t");
    if (first == std::string_view::npos)
        return {};
    return bytes.substr(first, bytes.find_last_not_of(" \t") - first + 1);
}

bool Bytes_StartWith(std::string_view bytes, std::string_view start)
{
    return bytes.size() >= start.size() &&
           std::equal(start.begin(), start.end(), bytes.begin(),
                      [](char first, char second) { return Lower(first) == Lower(second); });
}

bool Bytes_AreAlike(std::string_view first, std::string_view second)
{
    return first.size() == second.size() && Bytes_StartWith(first, second);
}

std::vector<std::string> Names_Near(const std::vector<std::string> &names, std::string_view mistyped)
{
    const size_t farthest = mistyped.size() < 4 ? 1 : std::max<size_t>(2, mistyped.size() / 3);
    std::vector<std::pair<size_t, std::string>> near;
    for (const std::string &name : names) {
        const bool begins = mistyped.size() >= 3 && Bytes_StartWith(name, mistyped);
        const size_t distance = Bytes_AreAlike(name, mistyped) ? 0 : begins ? 1 : Distance(name, mistyped);
        if (distance <= farthest && distance < mistyped.size())
            near.emplace_back(distance, name);
    }
    std::stable_sort(near.begin(), near.end(),
                     [](const auto &one, const auto &other) { return one.first < other.first; });
    std::vector<std::string> nearest;
    for (const auto &[distance, name] : near)
        if (nearest.size() < 3 && std::find(nearest.begin(), nearest.end(), name) == nearest.end())
            nearest.push_back(name);
    return nearest;
}

std::string Names_Join(const std::vector<std::string> &names, const char *lastSeparator)
{
    std::string joined;
    for (size_t n = 0; n < names.size(); ++n) {
        if (n > 0)
            joined += n + 1 == names.size() ? lastSeparator : ", ";
        joined += Bytes_Shown(names[n]);
    }
    return joined;
}
