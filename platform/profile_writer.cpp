// Writes a handle as a text that reads back as the same sections, names and values.
#include "platform/file.h"
#include "platform/profile.h"
#include "platform/profile_store.h"

// The letter that stands for a byte behind a backslash, or 0: the byte stands for itself.
static char Byte_Escape(char byte)
{
    switch (byte) {
    case '\n':
        return 'n';
    case '\r':
        return 'r';
    case '\t':
        return 't';
    case '"':
    case '\\':
        return byte;
    default:
        return 0;
    }
}

static char *Quoted_Write(char *to, const char *text)
{
    *to++ = '"';
    for (; *text != 0; ++text) {
        const char escape = Byte_Escape(*text);
        if (escape != 0)
            *to++ = '\\';
        *to++ = escape != 0 ? escape : *text;
    }
    *to++ = '"';
    return to;
}

// Copies a text as it is: where it ends, or null if it would not read back so, since it begins with a quote
// or a blank, ends with a blank or a carriage return, or has a line end or `sign` in it.
static char *Plain_Write(char *to, const char *text, char sign)
{
    if (*text == '"' || Char_IsBlank(*text))
        return nullptr;
    char last = 0;
    for (; *text != 0; ++text) {
        last = *text;
        if (last == '\n' || last == sign)
            return nullptr;
        *to++ = last;
    }
    return Char_IsBlank(last) || last == '\r' ? nullptr : to;
}

static char *Text_Write(char *to, const char *text)
{
    char *end = Plain_Write(to, text, '\n');
    return end != nullptr ? end : Quoted_Write(to, text);
}

static char *ItemName_Write(char *to, const char *name)
{
    const bool isPlain = *name != 0 && *name != '[' && *name != ';' && *name != '#';
    char *end = isPlain ? Plain_Write(to, name, '=') : nullptr;
    return end != nullptr ? end : Quoted_Write(to, name);
}

static char *Item_Write(char *to, const Record *item)
{
    to = ItemName_Write(to, item->name);
    *to++ = '=';
    to = Text_Write(to, item->value);
    *to++ = '\n';
    return to;
}

static char *Section_Write(char *to, const Profile *profile, const Section *section)
{
    *to++ = '[';
    to = Text_Write(to, section->name);
    *to++ = ']';
    *to++ = '\n';
    for (uint32_t n = 1; n <= section->count; ++n)
        to = Item_Write(to, Section_Item(profile, section, n));
    return to;
}

static char *Profile_Write(char *to, const Profile *profile)
{
    for (size_t n = 0; n < profile->sections.count; ++n) {
        if (n > 0)
            *to++ = '\n';
        to = Section_Write(to, profile, &profile->sections.items[n]);
    }
    return to;
}

// At most: every byte of text escaped, and for each section and item quotes, the signs and the line ends
// around it.
static size_t Profile_WrittenSize(const Profile *profile)
{
    size_t size = 8 * (profile->records.count + profile->sections.count);
    for (const Block *block = profile->blocks; block != nullptr; block = block->next)
        size += 2 * block->used;
    return size;
}

int32_t IniWriteToFile(Profile *profile, const char *path)
{
    auto *text = static_cast<char *>(malloc(Profile_WrittenSize(profile) + 1));
    if (text == nullptr)
        return -1;
    const char *end = Profile_Write(text, profile);
    const FileStatus status = File_Replace(path, text, static_cast<size_t>(end - text));
    free(text);
    return status == FileDone ? 0 : -1;
}
