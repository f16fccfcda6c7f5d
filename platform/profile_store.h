// What a profile handle holds, for the parts of this layer alone: its reader, its writer, its calls.
//
// Texts lie in blocks, which live until the handle does and never move. A file read is one block, in
// which its names and values are terminated in place; texts that are put share blocks. Everything
// else is numbers and references into these, kept in a few arrays that may move as they grow.
#ifndef VELK_PLATFORM_PROFILE_STORE_H
#define VELK_PLATFORM_PROFILE_STORE_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>

// An item. Numbers of records and of sections count from 1, and 0 is none.
struct Record {
    char *name;
    char *value;
    uint32_t section;
    int32_t line; // 0 for one that was put
};

// An item of a section.
struct Place {
    uint32_t record;
    uint32_t sign; // of its name, case aside; most other names have another one
};

// Its items stand in `places`, in file order, with room for `capacity`.
struct Section {
    char *name;
    size_t firstPlace;
    uint32_t count;
    uint32_t capacity;
    int32_t line;   // 0 for one that was put
    bool isIndexed; // what names its items have is in the index
};

constexpr uint32_t SectionBit = 0x80000000;

// An open hash table from names to the sections, and to the items of every section that has too
// many to look through; where duplicates are kept, from the first look-up by name on. The upper bits of
// a hash are its slot, so that a table which grows is walked and filled in order.
struct Slot {
    uint32_t hash;
    uint32_t owner; // number of a record, or of a section with SectionBit; 0: empty
};

struct Index {
    Slot *slots;
    size_t count;
    uint32_t bits; // there are 1 << bits slots, at least a third of them empty
};

// Room for texts: the bytes follow the header.
struct Block {
    Block *next;
    size_t capacity;
    size_t used;
};

template <typename Element> struct Array {
    Element *items;
    size_t count;
    size_t capacity;
};

struct Profile {
    Array<Record> records;
    Array<Section> sections;
    Array<Place> places;
    Index firsts;   // of each name, case aside, its first owner in file order
    Index variants; // the first of each further spelling, which differs from one in `firsts` by case
    Block *blocks;
    size_t nextCapacity; // of the next block for texts that are put
    uint64_t seed;       // of the hashes
    int32_t failedLine;
    bool keepsDuplicates;
};

inline bool Char_IsBlank(char c)
{
    return c == ' ' || c == '\t';
}

inline char *Block_Text(Block *block)
{
    return reinterpret_cast<char *>(block + 1);
}

inline Record *Profile_Record(const Profile *profile, uint32_t number)
{
    return &profile->records.items[number - 1];
}

inline Section *Profile_Section(const Profile *profile, uint32_t number)
{
    return &profile->sections.items[number - 1];
}

// The record of the n-th item, n from 1 to the section's count.
inline Record *Section_Item(const Profile *profile, const Section *section, uint32_t n)
{
    return Profile_Record(profile, profile->places.items[section->firstPlace + n - 1].record);
}

template <typename Element> bool Array_Resize(Array<Element> *array, size_t capacity)
{
    if (capacity > std::numeric_limits<size_t>::max() / sizeof(Element))
        return false;
    void *const items = realloc(array->items, capacity * sizeof(Element));
    if (items == nullptr)
        return false;
    array->items = static_cast<Element *>(items);
    array->capacity = capacity;
    return true;
}

template <typename Element> bool Array_HasRoom(const Array<Element> *array, size_t extra)
{
    return extra <= array->capacity - array->count;
}

// Makes room for `extra` more elements, which leaves what is there as it is. False without memory. More often
// than not others follow; where it is known how many, the room is for just these.
template <typename Element> bool Array_Reserve(Array<Element> *array, size_t extra)
{
    return Array_HasRoom(array, extra) || Array_Resize(array, 2 * (array->count + extra));
}
template <typename Element> bool Array_ReserveExactly(Array<Element> *array, size_t extra)
{
    return Array_HasRoom(array, extra) || Array_Resize(array, array->count + extra);
}

// Makes an empty store out of a zero-filled record. False without memory; Profile_Release is due then too.
bool Profile_Prepare(Profile *profile);

void Profile_Release(Profile *profile);

// Removes all sections and items. Their texts stay.
void Profile_Clear(Profile *profile);

// Sees to it that a new section and its first item can be added without a failure.
bool Profile_ReservePut(Profile *profile);

// The number of a section (`section` 0) or of the record of an item in a section, or 0: the first of
// exactly this name; and that one or else the first whose name differs by ASCII case alone.
uint32_t Profile_FindExactly(Profile *profile, uint32_t section, const char *name);
uint32_t Profile_Find(Profile *profile, uint32_t section, const char *name);

// The number of the section with exactly this name, which is added if it is new, or 0 without memory.
// The name is kept, not copied.
uint32_t Profile_OpenSection(Profile *profile, char *name, size_t length, int32_t line);

// Adds an item to a section, or replaces the value of the one with exactly its name when duplicates
// are not kept. The texts are kept, not copied. False without memory, with the store as it was.
bool Profile_AddItem(Profile *profile, const Record &item, size_t nameLength);

// A block of its own, not yet the store's; null without memory.
Block *Block_New(size_t capacity);

// Copies a text into a block; null without memory.
char *Profile_CopyText(Profile *profile, const char *text, size_t length);

#endif
