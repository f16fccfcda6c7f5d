// Writes a handle as a text that reads back as the same sections, names and values.
#include "platform/file.h"
#include "platform/profile.h"
#include "platform/profile_store.h"

#include <cstring>

static bool Text_NeedsQuotes(const char *text, size_t length)
{
    if (length == 0)
        return false;
    const char last = text[length - 1];
    return *text == '"' || Char_IsBlank(*text) || Char_IsBlank(last) || last == '\r' ||
           memchr(text, '\n', length) != nullptr;
}

static bool ItemName_NeedsQuotes(const char *name, size_t length)
{
    return length == 0 || *name == '[' || *name == ';' || *name == '#' ||
           memchr(name, '=', length) != nullptr || Text_NeedsQuotes(name, length);
}

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

static char *Plain_Write(char *to, const char *text, size_t length)
{
    memcpy(to, text, length);
    return to + length;
}

static char *Quoted_Write(char *to, const char *text, size_t length)
{
    *to++ = '"';
    for (size_t i = 0; i < length; ++i) {
        const char escape = Byte_Escape(text[i]);
        if (escape != 0)
            *to++ = '\\';
        *to++ = escape != 0 ? escape : text[i];
    }
    *to++ = '"';
    return to;
}

static char *Text_Write(char *to, const char *text)
{
    const size_t length = strlen(text);
    return Text_NeedsQuotes(text, length) ? Quoted_Write(to, text, length) : Plain_Write(to, text, length);
}

static char *Item_Write(char *to, const Record *item)
{
    const size_t length = strlen(item->name);
    to = ItemName_NeedsQuotes(item->name, length) ? Quoted_Write(to, item->name, length)
                                                  : Plain_Write(to, item->name, length);
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
