#include "values/name_table.h"

#include "values/memory.h"

#include <cstring>

uint32_t NameTable_Hash(const char *name)
{
    uint32_t hash = 0;
    for (; *name != '\0'; ++name) {
        // A byte from 0x80 up sets the high bits, whatever the sign of the platform's char.
        const auto signedByte = static_cast<int8_t>(*name);
        hash ^= static_cast<uint32_t>(signedByte) << 3;
    }
    return hash;
}

static NameNode *Bucket(const NameTable *table, const char *name)
{
    return &table->buckets[NameTable_Hash(name) % static_cast<uint32_t>(table->bucketCount)];
}

StatusCode NameTable_Init(NameTable *table, int32_t bucketCount)
{
    table->bucketCount = bucketCount;
    table->buckets = Memory_New<NameNode>(static_cast<size_t>(bucketCount));
    if (table->buckets == nullptr)
        return StatusOutOfMemory;
    for (NameNode *head = table->buckets; head != table->buckets + bucketCount; ++head)
        head->next = head->prev = head;
    return 0;
}

// A node and its name are one block.
static NameNode *Node_New(const char *name)
{
    const size_t size = strlen(name) + 1;
    auto *node = static_cast<NameNode *>(malloc(sizeof(NameNode) + size));
    if (node == nullptr)
        return nullptr;
    node->name = reinterpret_cast<char *>(node + 1);
    memcpy(node->name, name, size);
    return node;
}

NameNode *NameTable_Insert(NameTable *table, const char *name, void *value)
{
    NameNode *node = Node_New(name);
    if (node == nullptr)
        return nullptr;
    NameNode *head = Bucket(table, name);
    node->value = value;
    node->next = head->next;
    node->prev = head;
    head->next->prev = node;
    head->next = node;
    return node;
}

NameNode *NameTable_Find(const NameTable *table, const char *name)
{
    NameNode *head = Bucket(table, name);
    for (NameNode *node = head->next; node != head; node = node->next)
        if (strcmp(node->name, name) == 0)
            return node;
    return nullptr;
}

void *NameTable_GetValue(const NameTable *table, const char *name)
{
    const NameNode *node = NameTable_Find(table, name);
    return node == nullptr ? nullptr : node->value;
}

void NameTable_Remove(NameNode *node)
{
    node->prev->next = node->next;
    node->next->prev = node->prev;
    free(node);
}

int32_t NameTable_ForEach(const NameTable *table, NameVisitor visit, void *context)
{
    for (const NameNode *head = table->buckets; head != table->buckets + table->bucketCount; ++head)
        for (const NameNode *node = head->next; node != head; node = node->next) {
            const int32_t result = visit(node, context);
            if (result < 0)
                return result;
        }
    return 0;
}

void NameTable_Destroy(NameTable *table, void (*release)(void *value))
{
    if (table->buckets == nullptr)
        return;
    for (NameNode *head = table->buckets; head != table->buckets + table->bucketCount; ++head)
        for (NameNode *node = head->next; node != head;) {
            NameNode *next = node->next;
            release(node->value);
            free(node);
            node = next;
        }
    free(table->buckets);
}
