#include "platform/profile_store.h"

#include <bit>
#include <cstring>

constexpr uint32_t FirstIndexBits = 4;

// As many items of a section are looked through in file order; more are in the index. So are as many
// sections, which are in the index all the same.
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
    uint32_t exact; // number of the first one of exactly this name, or 0
    uint32_t first; // number of the first one of this name but for case, or 0
    bool isVariant; // a new one of this name enters `variants` and not `firsts`
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

// Names in a row mostly differ at their ends.
static uint32_t Name_Sign(const char *text, size_t length)
{
    const auto last = static_cast<uint32_t>(length > 0 ? Letter_Lower(text[length - 1]) : 0);
    const auto before = static_cast<uint32_t>(length > 1 ? Letter_Lower(text[length - 2]) : 0);
    return static_cast<uint32_t>(length) << 16 | before << 8 | last;
}

static bool Text_IsButForCase(const char *text, const char *other)
{
    while (*text != 0 && Letter_Lower(*text) == Letter_Lower(*other)) {
        ++text;
        ++other;
    }
    return *text == *other;
}

// How a section or an item bears a name, from the least to the most.
enum Match { MatchNone, MatchButForCase, MatchExact };

// Nearly all names are asked for as they were written, which is told faster.
static inline Match Text_Match(const char *text, const char *name, Match least)
{
    if (*text == *name && strcmp(text, name) == 0)
        return MatchExact;
    return least == MatchButForCase && Text_IsButForCase(text, name) ? MatchButForCase : MatchNone;
}

static Match Owner_Match(const Profile *profile, uint32_t owner, const Name &name, Match least)
{
    if ((owner & SectionBit) != 0) {
        const Section *section = Profile_Section(profile, owner & ~SectionBit);
        return name.section == 0 ? Text_Match(section->name, name.text, least) : MatchNone;
    }
    const Record *record = Profile_Record(profile, owner);
    return name.section == record->section ? Text_Match(record->name, name.text, least) : MatchNone;
}

static bool Index_Resize(Index *index, uint32_t bits)
{
    auto *slots = static_cast<Slot *>(calloc(size_t{1} << bits, sizeof(Slot)));
    if (slots == nullptr)
        return false;

    const size_t last = (size_t{1} << bits) - 1;
    for (size_t i = 0; index->slots != nullptr && i < size_t{1} << index->bits; ++i) {
        const Slot &slot = index->slots[i];
        if (slot.owner == 0)
            continue;
        size_t at = slot.hash >> (32 - bits);
        while (slots[at].owner != 0)
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
    uint32_t bits = index->bits + (index->bits < 16 ? 2 : 1); // filling it anew costs more than a little room
    while (!Index_HasRoom(bits, index->count + extra))
        ++bits;
    return Index_Resize(index, bits);
}

static void Index_Clear(Index *index)
{
    memset(index->slots, 0, sizeof(Slot) << index->bits);
    index->count = 0;
}

static uint32_t Slot_Number(const Slot *slot)
{
    return slot->owner & ~SectionBit;
}

struct Found {
    Slot *slot; // of the owner that matches, or the empty one where it would stand
    Match match;
};

static Found Index_Seek(const Profile *profile, const Index *index, uint32_t hash, const Name &name,
                        Match least)
{
    const size_t last = (size_t{1} << index->bits) - 1;
    size_t at = hash >> (32 - index->bits);
    while (index->slots[at].owner != 0) {
        Slot *slot = &index->slots[at];
        if (slot->hash == hash) {
            const Match match = Owner_Match(profile, slot->owner, name, least);
            if (match != MatchNone)
                return {slot, match};
        }
        at = (at + 1) & last;
    }
    return {&index->slots[at], MatchNone};
}

// A name whose text its receiver has changed is not found in `firsts`, nor does it hide its variants.
static Spot Profile_Seek(const Profile *profile, const Name &name)
{
    const uint32_t hash = Name_Hash(profile->seed, name, CaseIgnored);
    const Found first = Index_Seek(profile, &profile->firsts, hash, name, MatchButForCase);
    if (first.match == MatchExact)
        return {Slot_Number(first.slot), Slot_Number(first.slot), false, first.slot, hash};
    if (first.match == MatchNone && profile->variants.count == 0)
        return {0, 0, false, first.slot, hash};

    const uint32_t exactHash = Name_Hash(profile->seed, name, CaseKept);
    const Found variant = Index_Seek(profile, &profile->variants, exactHash, name, MatchExact);
    if (first.match == MatchNone)
        return {Slot_Number(variant.slot), 0, false, first.slot, hash};
    return {Slot_Number(variant.slot), Slot_Number(first.slot), true, variant.slot, exactHash};
}

static void Profile_Enter(Profile *profile, const Spot &spot, uint32_t owner)
{
    *spot.slot = {spot.hash, owner};
    ++(spot.isVariant ? profile->variants : profile->firsts).count;
}

static bool Profile_ReserveIndex(Profile *profile, size_t extra)
{
    return Index_Reserve(&profile->firsts, extra) && Index_Reserve(&profile->variants, extra);
}

// Numbers are handed out as int32_t, so there are no more than that.
template <typename Element> static bool Numbered_Reserve(Array<Element> *array)
{
    constexpr size_t most = std::numeric_limits<int32_t>::max();
    return array->count < most && Array_Reserve(array, 1);
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
    Array<Place> *places = &profile->places;
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

// The first place of that sign, or `end`. Where it is decides no jump, which would be guessed wrong: all
// places are walked, from the last to the first.
static const Place *Place_Seek(const Place *start, const Place *end, uint32_t sign)
{
    const Place *found = end;
    for (const Place *place = end; place != start;) {
        --place;
        found = place->sign == sign ? place : found;
    }
    return found;
}

// The first item in file order that matches, or 0.
static uint32_t Items_Scan(const Profile *profile, const Section *section, const char *name, Match least)
{
    const uint32_t sign = Name_Sign(name, strlen(name));
    const Place *start = profile->places.items + section->firstPlace;
    const Place *end = start + section->count;
    for (const Place *place = Place_Seek(start, end, sign); place != end; ++place)
        if (place->sign == sign &&
            Text_Match(Profile_Record(profile, place->record)->name, name, least) != MatchNone)
            return place->record;
    return 0;
}

static uint32_t Sections_Scan(const Profile *profile, const char *name, Match least)
{
    for (uint32_t number = 1; number <= profile->sections.count; ++number)
        if (Text_Match(Profile_Section(profile, number)->name, name, least) != MatchNone)
            return number;
    return 0;
}

static uint32_t Names_Scan(const Profile *profile, uint32_t section, const char *name, Match least)
{
    return section == 0 ? Sections_Scan(profile, name, least)
                        : Items_Scan(profile, Profile_Section(profile, section), name, least);
}

static uint32_t Section_AppendItem(Profile *profile, Section *section, const Record &item, const Name &name)
{
    const uint32_t record = Profile_NewRecord(profile, item);
    const Place place = {record, Name_Sign(name.text, name.length)};
    profile->places.items[section->firstPlace + section->count++] = place;
    return record;
}

static void Item_Replace(Record *item, const Record &by)
{
    item->value = by.value;
    item->line = by.line;
}

static bool Section_EnterItems(Profile *profile, Section *section)
{
    if (!Profile_ReserveIndex(profile, section->count))
        return false;
    for (uint32_t i = 0; i < section->count; ++i) {
        const uint32_t record = profile->places.items[section->firstPlace + i].record;
        const Record *item = Profile_Record(profile, record);
        const Spot spot = Profile_Seek(profile, {item->name, strlen(item->name), item->section});
        if (spot.exact == 0)
            Profile_Enter(profile, spot, record);
    }
    section->isIndexed = true;
    return true;
}

// Without memory for the index, many items are looked through too.
static bool Names_AreScanned(Profile *profile, uint32_t number)
{
    if (number == 0)
        return profile->sections.count <= ScannedItems;
    Section *section = Profile_Section(profile, number);
    return !section->isIndexed && (section->count <= ScannedItems || !Section_EnterItems(profile, section));
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
    return Numbered_Reserve(&profile->records) && Profile_ReserveIndex(profile, 1) &&
           Numbered_Reserve(&profile->sections) && Array_Reserve(&profile->places, 1);
}

uint32_t Profile_FindExactly(Profile *profile, uint32_t section, const char *name)
{
    if (Names_AreScanned(profile, section))
        return Names_Scan(profile, section, name, MatchExact);
    return Profile_Seek(profile, {name, strlen(name), section}).exact;
}

uint32_t Profile_Find(Profile *profile, uint32_t section, const char *name)
{
    if (Names_AreScanned(profile, section)) {
        const uint32_t exact = Names_Scan(profile, section, name, MatchExact);
        return exact != 0 ? exact : Names_Scan(profile, section, name, MatchButForCase);
    }
    const Spot spot = Profile_Seek(profile, {name, strlen(name), section});
    return spot.exact != 0 ? spot.exact : spot.first;
}

uint32_t Profile_OpenSection(Profile *profile, char *name, size_t length, int32_t line)
{
    if (!Numbered_Reserve(&profile->sections) || !Profile_ReserveIndex(profile, 1))
        return 0;
    const Spot spot = Profile_Seek(profile, {name, length, 0});
    if (spot.exact != 0)
        return spot.exact;

    profile->sections.items[profile->sections.count] = {name, profile->places.count, 0, 0, line, false};
    const auto number = static_cast<uint32_t>(++profile->sections.count);
    Profile_Enter(profile, spot, number | SectionBit);
    return number;
}

static bool Section_AddToIndexed(Profile *profile, Section *section, const Record &item, const Name &name)
{
    if (!Profile_ReserveIndex(profile, 1))
        return false;
    const Spot spot = Profile_Seek(profile, name);
    if (spot.exact != 0 && !profile->keepsDuplicates) {
        Item_Replace(Profile_Record(profile, spot.exact), item);
        return true;
    }
    const uint32_t record = Section_AppendItem(profile, section, item, name);
    if (spot.exact == 0)
        Profile_Enter(profile, spot, record);
    return true;
}

// Where duplicates are kept, nothing has to be looked for.
static bool Section_AddToScanned(Profile *profile, Section *section, const Record &item, const Name &name)
{
    if (profile->keepsDuplicates) {
        Section_AppendItem(profile, section, item, name);
        return true;
    }
    if (section->count >= ScannedItems)
        return Section_EnterItems(profile, section) && Section_AddToIndexed(profile, section, item, name);
    const uint32_t exact = Items_Scan(profile, section, item.name, MatchExact);
    if (exact != 0)
        Item_Replace(Profile_Record(profile, exact), item);
    else
        Section_AppendItem(profile, section, item, name);
    return true;
}

bool Profile_AddItem(Profile *profile, const Record &item, size_t nameLength)
{
    Section *section = Profile_Section(profile, item.section);
    if (!Numbered_Reserve(&profile->records) || !Section_ReservePlace(profile, section))
        return false;
    const Name name = {item.name, nameLength, item.section};
    return section->isIndexed ? Section_AddToIndexed(profile, section, item, name)
                              : Section_AddToScanned(profile, section, item, name);
}

char *Profile_CopyText(Profile *profile, const char *text, size_t length)
{
    const size_t size = length + 1;
    if (!Profile_ReserveText(profile, size))
        return nullptr;
    char *copy = Block_Text(profile->blocks) + profile->blocks->used;
    memcpy(copy, text, size);
    profile->blocks->used += size;
    return copy;
}
