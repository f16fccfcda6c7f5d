// The name table once more, with look-ups that no chain makes slow: what a class load costs beside the chains
// of the library's own table shows in a program that is linked with this one. Names come in the order of
// their insertion.
#include <cstring>
#include <deque>
#include <string_view>
#include <utility>
#include <vector>

#include "values/memory.h"
#include "values/name_table.h"

namespace
{

// An open hash table, at least half of it empty.
struct Names {
    struct Slot {
        size_t hash;
        NameNode *node;
    };
    std::deque<NameNode> nodes;
    std::vector<Slot> slots = std::vector<Slot>(1024);

    // The slot of the name, or the empty one where it would stand.
    Slot &Seek(size_t hash, const char *name)
    {
        size_t at = hash % slots.size();
        while (slots[at].node != nullptr &&
               (slots[at].hash != hash || strcmp(slots[at].node->name, name) != 0))
            at = (at + 1) % slots.size();
        return slots[at];
    }

    void Grow()
    {
        const std::vector<Slot> old = std::exchange(slots, std::vector<Slot>(4 * slots.size()));
        for (const Slot &slot : old)
            if (slot.node != nullptr)
                Seek(slot.hash, slot.node->name) = slot;
    }
};

// The only bucket head holds them.
Names *NamesOf(const NameTable *table)
{
    return static_cast<Names *>(table->buckets->value);
}

size_t HashOf(const char *name)
{
    return std::hash<std::string_view>()(name);
}

} // namespace

StatusCode NameTable_Init(NameTable *table, int32_t bucketCount)
{
    *table = {new NameNode{nullptr, nullptr, nullptr, new Names}, bucketCount};
    return 0;
}

NameNode *NameTable_Insert(NameTable *table, const char *name, void *value)
{
    Names *names = NamesOf(table);
    if (names->nodes.size() >= names->slots.size() / 2)
        names->Grow();
    names->nodes.push_back({nullptr, nullptr, String_CopyNew(name), value});
    NameNode *node = &names->nodes.back();
    const size_t hash = HashOf(name);
    names->Seek(hash, name) = {hash, node};
    return node;
}

NameNode *NameTable_Find(const NameTable *table, const char *name)
{
    return NamesOf(table)->Seek(HashOf(name), name).node;
}

void *NameTable_GetValue(const NameTable *table, const char *name)
{
    const NameNode *node = NameTable_Find(table, name);
    return node == nullptr ? nullptr : node->value;
}

// No class of a benchmark fails to load.
void NameTable_Remove(NameNode *)
{
    abort();
}

int32_t NameTable_ForEach(const NameTable *table, NameVisitor visit, void *context)
{
    for (const NameNode &node : NamesOf(table)->nodes) {
        const int32_t result = visit(&node, context);
        if (result < 0)
            return result;
    }
    return 0;
}

void NameTable_Destroy(NameTable *table, void (*release)(void *value))
{
    if (table->buckets == nullptr)
        return;
    for (const NameNode &node : NamesOf(table)->nodes) {
        release(node.value);
        String_Delete(node.name);
    }
    delete NamesOf(table);
    delete table->buckets;
}
