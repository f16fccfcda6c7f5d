#include "platform/profile_store.h"

#include <bit>
#include <cstring>

constexpr uint32_t FirstIndexBits = 4;

// As many items of a section are looked through in file order; with one more they are in the index.
constexpr uint32_t ScannedItems = 8;

constexpr size_t FirstBlockCapacity = 1000;
constexpr size_t LargestBlockCapacity = size_t{1} << 20;

// Of a section (`section` 0) or of an item in a section.
struct Name {
    const char *text;
    size_t length;
    uint32_t section;
};

// Where a name stands in the index or would stand.
struct Spot {
    uint32_t exact; // the first record of exactly this name, or 0
    uint32_t first; // the first record of this name but for case, or 0
    bool isVariant; // a new record of this name enters `variants` and not `firsts`
    Slot *slot;     // where, and under what hash
    uint32_t hash;
};

// Laid over eight letters: the bit that tells upper from lower case, or nothing.
constexpr uint64_t CaseIgnored = 0x2020202020202020;
constexpr uint64_t CaseKept = 0;

static unsigned char Letter_Lower(char letter)
{
    const auto byte = static_cast<unsigned char>(letter);
    return byte >= 'A' && byte <= 'Z' ? static_cast<unsigned char>(byte | 0x20) : byte;
}

// The case bit of each byte that is an upper-case ASCII letter. The sums can't carry into the next byte.
static uint64_t Word_UpperCaseBits(uint64_t word)
{
    constexpr uint64_t ones = 0x0101010101010101;
    const uint64_t low = word & 0x7F * ones;
    const uint64_t fromA = low + (0x80 - 'A') * ones;
    const uint64_t beyondZ = low + (0x7F - 'Z') * ones;
    return (fromA & ~beyondZ & ~word & 0x80 * ones) >> 2;
}

static uint64_t Word_Mix(uint64_t state, uint64_t word)
{
    const uint64_t mixed = state ^ word;
    return (mixed & 0xFFFFFFFF) * (mixed >> 32) + std::rotl(mixed, 23);
}

static uint32_t Bytes_Four(const char *bytes)
{
    uint32_t four;
    memcpy(&four, bytes, sizeof four);
    return four;
}

// All of up to eight bytes in a word. Which bytes of it they fill depends on their number alone.
static uint64_t Bytes_Word(const char *bytes, size_t size)
{
    if (size >= 4)
        return Bytes_Four(bytes) | static_cast<uint64_t>(Bytes_Four(bytes + size - 4)) << 32;

    uint64_t word = 0;
    for (size_t i = 0; i < size; ++i)
        word = word << 8 | static_cast<unsigned char>(bytes[i]);
    return word;
}

static uint32_t Name_Hash(uint64_t seed, const Name &name, uint64_t caseBits)
{
    uint64_t state = Word_Mix(seed, static_cast<uint64_t>(name.section) << 32 ^ name.length);
    for (size_t at = 0; at < name.length; at += 8) {
        const size_t left = name.length - at;
        const uint64_t word = Bytes_Word(name.text + at, left < 8 ? left : 8);
        state = Word_Mix(state, word | (Word_UpperCaseBits(word) & caseBits));
    }
    return static_cast<uint32_t>((state ^ state >> 32) * 0x9E3779B97F4A7C15 >> 32);
}

static bool Record_IsUnder(const Record *record, uint32_t section)
{
    return (record->value == nullptr ? 0 : record->section) == section;
}

static bool Record_Is(const Record *record, const Name &name)
{
    return Record_IsUnder(record, name.section) && strcmp(record->name, name.text) == 0;
}

static bool Record_IsButForCase(const Record *record, const Name &name)
{
    if (!Record_IsUnder(record, name.section))
        return false;

    const char *mine = record->name;
    const char *its = name.text;
    while (*mine != 0 && Letter_Lower(*mine) == Letter_Lower(*its)) {
        ++mine;
        ++its;
    }
    return *mine == *its;
}

static bool Index_Resize(Index *index, uint32_t bits)
{
    auto *slots = static_cast<Slot *>(calloc(size_t{1} << bits, sizeof(Slot)));
    if (slots == nullptr)
        return false;

    const size_t last = (size_t{1} << bits) - 1;
    for (size_t i = 0; index->slots != nullptr && i < size_t{1} << index->bits; ++i) {
        const Slot &slot = index->slots[i];
        if (slot.record == 0)
            continue;
        size_t at = slot.hash >> (32 - bits);
        while (slots[at].record != 0)
            at = (at + 1) & last;
        slots[at] = slot;
    }
    free(index->slots);
    index->slots = slots;
    index->bits = bits;
    return true;
}

static bool Index_HasRoom(uint32_t bits, size_t count)
{
    const size_t slots = size_t{1} << bits;
    return count <= slots - slots / 3;
}

static bool Index_Reserve(Index *index, size_t extra)
{
    if (Index_HasRoom(index->bits, index->count + extra))
        return true;
    uint32_t bits = index->bits + 2; // filling it anew costs more than the room
    while (!Index_HasRoom(bits, index->count + extra))
        ++bits;
    return Index_Resize(index, bits);
}

static void Index_Clear(Index *index)
{
    memset(index->slots, 0, sizeof(Slot) << index->bits);
    index->count = 0;
}

// The slot of the record that matches, or the empty one where it would stand.
static Slot *Index_Seek(const Profile *profile, const Index *index, uint32_t hash, const Name &name,
                        bool (*isMatch)(const Record *, const Name &))
{
    const size_t last = (size_t{1} << index->bits) - 1;
    size_t at = hash >> (32 - index->bits);
    while (index->slots[at].record != 0) {
        const Slot &slot = index->slots[at];
        if (slot.hash == hash && isMatch(Profile_Record(profile, slot.record), name))
            break;
        at = (at + 1) & last;
    }
    return &index->slots[at];
}

// A name whose text its receiver has changed is not found in `firsts`, nor does it hide its variants.
static Spot Profile_Seek(const Profile *profile, const Name &name)
{
    Spot spot = {0, 0, false, nullptr, Name_Hash(profile->seed, name, CaseIgnored)};
    spot.slot = Index_Seek(profile, &profile->firsts, spot.hash, name, Record_IsButForCase);
    spot.first = spot.slot->record;
    if (spot.first != 0 && strcmp(Profile_Record(profile, spot.first)->name, name.text) == 0) {
        spot.exact = spot.first;
        return spot;
    }
    if (spot.first == 0 && profile->variants.count == 0)
        return spot;

    const uint32_t hash = Name_Hash(profile->seed, name, CaseKept);
    Slot *slot = Index_Seek(profile, &profile->variants, hash, name, Record_Is);
    spot.exact = slot->record;
    if (spot.first == 0)
        return spot;
    return {spot.exact, spot.first, true, slot, hash};
}

static void Profile_Enter(Profile *profile, const Spot &spot, uint32_t record)
{
    *spot.slot = {spot.hash, record};
    ++(spot.isVariant ? profile->variants : profile->firsts).count;
}

static bool Profile_ReserveIndex(Profile *profile, size_t extra)
{
    return Index_Reserve(&profile->firsts, extra) && Index_Reserve(&profile->variants, extra);
}

// Numbers of items are handed out as int32_t, so there are no more than that.
static bool Profile_ReserveRecords(Profile *profile, size_t extra)
{
    constexpr size_t most = std::numeric_limits<int32_t>::max();
    return profile->records.count + extra <= most && Array_Reserve(&profile->records, extra);
}

static uint32_t Profile_NewRecord(Profile *profile, const Record &record)
{
    profile->records.items[profile->records.count] = record;
    return static_cast<uint32_t>(++profile->records.count);
}

// The section whose places are the last ones grows where it is; another one moves behind them, with
// twice its room.
static bool Section_ReservePlace(Profile *profile, Section *section)
{
    Array<uint32_t> *places = &profile->places;
    if (section->count < section->capacity)
        return true;
    if (section->firstPlace + section->capacity == places->count) {
        if (!Array_Reserve(places, 1))
            return false;
        ++places->count;
        ++section->capacity;
        return true;
    }

    const size_t room = 2 * static_cast<size_t>(section->count) + 1;
    if (!Array_Reserve(places, room))
        return false;
    memcpy(places->items + places->count, places->items + section->firstPlace,
           section->count * sizeof *places->items);
    section->firstPlace = places->count;
    section->capacity = static_cast<uint32_t>(room);
    places->count += room;
    return true;
}

// The first item in file order that matches, or 0.
static uint32_t Section_Scan(const Profile *profile, const Section *section, const Name &name,
                             bool (*isMatch)(const Record *, const Name &))
{
    const uint32_t *places = profile->places.items + section->firstPlace;
    for (uint32_t i = 0; i < section->count; ++i)
        if (isMatch(Profile_Record(profile, places[i]), name))
            return places[i];
    return 0;
}

static bool Section_IsScanned(const Profile *profile, uint32_t section)
{
    return section != 0 && Profile_Section(profile, section)->count <= ScannedItems;
}

static void Section_AppendItem(Profile *profile, Section *section, const Record &item)
{
    profile->places.items[section->firstPlace + section->count++] = Profile_NewRecord(profile, item);
}

static void Section_EnterItems(Profile *profile, const Section *section)
{
    for (uint32_t i = 0; i < section->count; ++i) {
        const uint32_t record = profile->places.items[section->firstPlace + i];
        const Record *item = Profile_Record(profile, record);
        const Spot spot = Profile_Seek(profile, {item->name, strlen(item->name), item->section});
        if (spot.exact == 0)
            Profile_Enter(profile, spot, record);
    }
}

Block *Block_New(size_t capacity)
{
    if (capacity > std::numeric_limits<size_t>::max() - sizeof(Block))
        return nullptr;
    auto *block = static_cast<Block *>(malloc(sizeof(Block) + capacity));
    if (block != nullptr)
        *block = {nullptr, capacity, 0};
    return block;
}

static bool Profile_ReserveText(Profile *profile, size_t size)
{
    if (profile->blocks != nullptr && size <= profile->blocks->capacity - profile->blocks->used)
        return true;

    Block *block = Block_New(size > profile->nextCapacity ? size : profile->nextCapacity);
    if (block == nullptr)
        return false;
    block->next = profile->blocks;
    profile->blocks = block;
    if (profile->nextCapacity < LargestBlockCapacity)
        profile->nextCapacity *= 2;
    return true;
}

bool Profile_Prepare(Profile *profile)
{
    // The address differs from run to run, so no file can be made whose names all collide.
    profile->seed = reinterpret_cast<uintptr_t>(profile) * 0xD6E8FEB86659FD93;
    profile->nextCapacity = FirstBlockCapacity;
    return Index_Resize(&profile->firsts, FirstIndexBits) && Index_Resize(&profile->variants, FirstIndexBits);
}

void Profile_Release(Profile *profile)
{
    while (profile->blocks != nullptr) {
        Block *next = profile->blocks->next;
        free(profile->blocks);
        profile->blocks = next;
    }
    free(profile->variants.slots);
    free(profile->firsts.slots);
    free(profile->places.items);
    free(profile->sections.items);
    free(profile->records.items);
}

void Profile_Clear(Profile *profile)
{
    profile->records.count = 0;
    profile->sections.count = 0;
    profile->places.count = 0;
    Index_Clear(&profile->firsts);
    Index_Clear(&profile->variants);
}

bool Profile_ReservePut(Profile *profile)
{
    return Profile_ReserveRecords(profile, 2) && Profile_ReserveIndex(profile, 1) &&
           Array_Reserve(&profile->sections, 1) && Array_Reserve(&profile->places, 1);
}

uint32_t Profile_FindExactly(const Profile *profile, uint32_t section, const char *name)
{
    const Name key = {name, strlen(name), section};
    if (Section_IsScanned(profile, section))
        return Section_Scan(profile, Profile_Section(profile, section), key, Record_Is);
    return Profile_Seek(profile, key).exact;
}

uint32_t Profile_Find(const Profile *profile, uint32_t section, const char *name)
{
    const Name key = {name, strlen(name), section};
    if (Section_IsScanned(profile, section)) {
        const Section *items = Profile_Section(profile, section);
        const uint32_t exact = Section_Scan(profile, items, key, Record_Is);
        return exact != 0 ? exact : Section_Scan(profile, items, key, Record_IsButForCase);
    }
    const Spot spot = Profile_Seek(profile, key);
    return spot.exact != 0 ? spot.exact : spot.first;
}

uint32_t Profile_OpenSection(Profile *profile, char *name, size_t length, int32_t line)
{
    if (!Profile_ReserveRecords(profile, 1) || !Profile_ReserveIndex(profile, 1) ||
        !Array_Reserve(&profile->sections, 1))
        return 0;
    const Spot spot = Profile_Seek(profile, {name, length, 0});
    if (spot.exact != 0)
        return Profile_Record(profile, spot.exact)->section;

    const auto number = static_cast<uint32_t>(profile->sections.count + 1);
    const uint32_t record = Profile_NewRecord(profile, {name, nullptr, number, line});
    profile->sections.items[profile->sections.count++] = {profile->places.count, record, 0, 0};
    Profile_Enter(profile, spot, record);
    return number;
}

bool Profile_AddItem(Profile *profile, const Record &item, size_t nameLength)
{
    Section *section = Profile_Section(profile, item.section);
    if (!Profile_ReserveRecords(profile, 1) || !Section_ReservePlace(profile, section))
        return false;
    if (section->count >= ScannedItems && !Profile_ReserveIndex(profile, ScannedItems + 1))
        return false;

    const Name name = {item.name, nameLength, item.section};
    const bool isScanned = section->count <= ScannedItems;
    const Spot spot = isScanned ? Spot{Section_Scan(profile, section, name, Record_Is), 0, false, nullptr, 0}
                                : Profile_Seek(profile, name);
    if (spot.exact != 0 && !profile->keepsDuplicates) {
        Record *first = Profile_Record(profile, spot.exact);
        first->value = item.value;
        first->line = item.line;
        return true;
    }
    Section_AppendItem(profile, section, item);
    if (!isScanned && spot.exact == 0)
        Profile_Enter(profile, spot, static_cast<uint32_t>(profile->records.count));
    if (isScanned && section->count > ScannedItems)
        Section_EnterItems(profile, section);
    return true;
}

char *Profile_CopyText(Profile *profile, const char *text)
{
    const size_t size = strlen(text) + 1;
    if (!Profile_ReserveText(profile, size))
        return nullptr;
    char *copy = Block_Text(profile->blocks) + profile->blocks->used;
    memcpy(copy, text, size);
    profile->blocks->used += size;
    return copy;
}
