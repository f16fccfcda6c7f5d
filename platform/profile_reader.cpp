// Reads a file into one block and cuts it up in place, line by line.
#include "platform/file.h"
#include "platform/profile.h"
#include "platform/profile_store.h"

#include <algorithm>
#include <cstring>

constexpr int64_t SmallestRoom = 4096;
constexpr int64_t LargestFirstRoom = int64_t{64} << 20; // what a file's size alone is trusted for
constexpr size_t PieceSize = size_t{1} << 20;

enum LineResult { LineDone, LineMalformed, LineNoMemory };

struct Reader {
    Profile *profile;
    uint32_t section; // number of the one that the lines belong to; 0 ahead of the first
    int32_t line;
};

// A text within the block, terminated.
struct Text {
    char *start;
    size_t length;
};

static char *Blank_Skip(char *at, const char *end)
{
    while (at < end && Char_IsBlank(*at))
        ++at;
    return at;
}

static char *Blank_Cut(const char *start, char *end)
{
    while (end > start && Char_IsBlank(end[-1]))
        --end;
    return end;
}

// The byte at `end` is the text's to overwrite.
static Text Text_Cut(char *start, char *end)
{
    end = Blank_Cut(start, end);
    *end = 0;
    return {start, static_cast<size_t>(end - start)};
}

// The value of a hexadecimal digit, or -1.
static int32_t Digit_Value(char digit)
{
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    const char lower = static_cast<char>(digit | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

static char *HexEscape_Read(char *at, const char *end, char *byte)
{
    if (end - at < 2)
        return nullptr;
    const int32_t high = Digit_Value(at[0]);
    const int32_t low = Digit_Value(at[1]);
    if (high < 0 || low < 0 || high + low == 0)
        return nullptr;
    *byte = static_cast<char>(high << 4 | low);
    return at + 2;
}

// Reads what stands behind a backslash: where it ends, or null.
static char *Escape_Read(char *at, const char *end, char *byte)
{
    if (at == end)
        return nullptr;
    if (*at == 'x')
        return HexEscape_Read(at + 1, end, byte);

    static constexpr char letters[] = "\\\"nrt";
    static constexpr char bytes[] = "\\\"\n\r\t";
    const void *letter = memchr(letters, *at, sizeof letters - 1);
    if (letter == nullptr)
        return nullptr;
    *byte = bytes[static_cast<const char *>(letter) - letters];
    return at + 1;
}

// Reads the quoted text that begins at `at`: the place behind its closing quote, or null. An escape
// is longer than its byte, so the text shrinks towards its start.
static char *Quoted_Read(char *at, const char *end, Text *text)
{
    char *start = ++at;
    char *to = start;
    while (at < end && *at != '"') {
        if (*at != '\\') {
            *to++ = *at++;
            continue;
        }
        at = Escape_Read(at + 1, end, to++);
        if (at == nullptr)
            return nullptr;
    }
    if (at == end)
        return nullptr;
    *to = 0;
    *text = {start, static_cast<size_t>(to - start)};
    return at + 1;
}

static bool SectionName_Read(char *at, char *end, Text *name)
{
    if (end[-1] != ']')
        return false;
    --end;
    at = Blank_Skip(at + 1, end);
    if (at < end && *at == '"') {
        at = Quoted_Read(at, end, name);
        return at != nullptr && Blank_Skip(at, end) == end;
    }
    *name = Text_Cut(at, end);
    return true;
}

// Gives the place behind the `=` that ends the name, or null.
static char *ItemName_Read(char *at, char *end, Text *name)
{
    if (*at == '"') {
        at = Quoted_Read(at, end, name);
        if (at == nullptr)
            return nullptr;
        at = Blank_Skip(at, end);
        return at < end && *at == '=' ? at + 1 : nullptr;
    }

    auto *equals = static_cast<char *>(memchr(at, '=', static_cast<size_t>(end - at)));
    if (equals == nullptr || equals == at)
        return nullptr;
    *name = Text_Cut(at, equals);
    return equals + 1;
}

static bool Value_Read(char *at, char *end, Text *value)
{
    at = Blank_Skip(at, end);
    if (at < end && *at == '"')
        return Quoted_Read(at, end, value) == end;
    *value = Text_Cut(at, end);
    return true;
}

static LineResult Section_Read(Reader *reader, char *at, char *end)
{
    Text name;
    if (!SectionName_Read(at, end, &name))
        return LineMalformed;
    reader->section = Profile_OpenSection(reader->profile, name.start, name.length, reader->line);
    return reader->section != 0 ? LineDone : LineNoMemory;
}

static LineResult Item_Read(Reader *reader, char *at, char *end)
{
    if (reader->section == 0)
        return LineMalformed;
    Text name;
    at = ItemName_Read(at, end, &name);
    Text value;
    if (at == nullptr || !Value_Read(at, end, &value))
        return LineMalformed;
    const Record item = {name.start, value.start, reader->section, reader->line};
    return Profile_AddItem(reader->profile, item, name.length) ? LineDone : LineNoMemory;
}

static LineResult Line_Read(Reader *reader, char *at, char *end)
{
    at = Blank_Skip(at, end);
    end = Blank_Cut(at, end);
    if (at == end || *at == ';' || *at == '#')
        return LineDone;
    return *at == '[' ? Section_Read(reader, at, end) : Item_Read(reader, at, end);
}

static LineResult Lines_Read(Reader *reader, char *at, char *end)
{
    while (at < end) {
        if (reader->line < std::numeric_limits<int32_t>::max())
            ++reader->line;
        auto *feed = static_cast<char *>(memchr(at, '\n', static_cast<size_t>(end - at)));
        char *lineEnd = feed == nullptr ? end : feed;
        if (feed != nullptr && feed > at && feed[-1] == '\r')
            --lineEnd;

        const LineResult result = Line_Read(reader, at, lineEnd);
        if (result != LineDone)
            return result;
        at = feed == nullptr ? end : feed + 1;
    }
    return LineDone;
}

static int32_t Text_LineAt(const char *text, const char *at)
{
    int32_t line = 1;
    for (; text < at; ++text)
        line += *text == '\n' && line < std::numeric_limits<int32_t>::max() ? 1 : 0;
    return line;
}

static bool Block_Resize(Block **block, size_t capacity)
{
    if (capacity > std::numeric_limits<size_t>::max() / 2)
        return false;
    void *grown = realloc(*block, sizeof(Block) + capacity);
    if (grown == nullptr)
        return false;
    *block = static_cast<Block *>(grown);
    (*block)->capacity = capacity;
    return true;
}

// Appends the rest of a file, and the byte behind its end. Pieces are looked through as they come, so
// that a source of zeros is refused however long it is.
static bool Block_Fill(Block **block, File file, int32_t *failedLine)
{
    for (;;) {
        if ((*block)->used + 1 == (*block)->capacity && !Block_Resize(block, (*block)->capacity * 2))
            return false;
        char *text = Block_Text(*block);
        char *piece = text + (*block)->used;
        const size_t room = (*block)->capacity - (*block)->used - 1;
        const int64_t got = File_ReadNext(file, piece, room < PieceSize ? room : PieceSize);
        if (got < 0)
            return false;
        (*block)->used += static_cast<size_t>(got) + (got == 0 ? 1 : 0);
        if (got == 0)
            return true;

        const void *zero = memchr(piece, 0, static_cast<size_t>(got));
        if (zero != nullptr) {
            *failedLine = Text_LineAt(text, static_cast<const char *>(zero));
            return false;
        }
    }
}

static Block *Block_ReadFile(const char *path, int32_t *failedLine)
{
    File file;
    if (File_OpenToRead(path, &file) != FileDone)
        return nullptr;
    const int64_t size = File_Size(file) + 2; // one to see the end by, one behind the end
    const auto room = static_cast<size_t>(std::clamp(size, SmallestRoom, LargestFirstRoom));
    Block *block = Block_New(room);
    if (block != nullptr && !Block_Fill(&block, file, failedLine)) {
        free(block);
        block = nullptr;
    }
    File_Close(file);
    return block;
}

static char *ByteOrderMark_Skip(char *text, size_t size)
{
    return size >= 3 && memcmp(text, "\xEF\xBB\xBF", 3) == 0 ? text + 3 : text;
}

static bool Profile_ReadBlock(Profile *profile, Block *block)
{
    Reader reader = {};
    const size_t size = block->used - 1;
    reader.profile = profile;
    char *text = Block_Text(block);
    const LineResult result = Lines_Read(&reader, ByteOrderMark_Skip(text, size), text + size);
    if (result == LineMalformed)
        profile->failedLine = reader.line;
    return result == LineDone;
}

int32_t IniReadFromFile(Profile *profile, const char *path)
{
    profile->failedLine = 0;
    Block *block = Block_ReadFile(path, &profile->failedLine);
    if (block == nullptr || !Profile_ReadBlock(profile, block)) {
        Profile_Clear(profile);
        free(block);
        return -1;
    }
    block->next = profile->blocks;
    profile->blocks = block;
    return 0;
}
