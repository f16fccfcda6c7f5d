// The map from names to records: a hash table of a fixed number of buckets, each a ring of nodes with
// a sentinel head. Clients see its walking order through VelkGetOptionNames, so the hash, the place of
// an insertion and the direction of a walk are part of the interface.
//
// Names are not unique: the one inserted last is the one found. The table owns its nodes and names,
// not the values. Once filled it is only read, and then serves any number of threads.
#ifndef VELK_VALUES_NAME_TABLE_H
#define VELK_VALUES_NAME_TABLE_H

#include "velk32.h"

struct NameNode {
    NameNode *next; // the head behind the last node
    NameNode *prev; // the head before the first node
    char *name;     // null in a head, which is no entry
    void *value;
};

struct NameTable {
    NameNode *buckets; // heads; null in a zeroed table and after a failure of NameTable_Init
    int32_t bucketCount;
};

// Gives a negative result to end the walk; must not remove the node.
using NameVisitor = int32_t (*)(const NameNode *node, void *context);

uint32_t NameTable_Hash(const char *name);

// 0, or -1 when memory runs out.
StatusCode NameTable_Init(NameTable *table, int32_t bucketCount);

// Puts an entry with a copy of the name at the front of its bucket. Null when memory runs out, with
// the table as it was.
NameNode *NameTable_Insert(NameTable *table, const char *name, void *value);

// The newest entry of that exact name, or null.
NameNode *NameTable_Find(const NameTable *table, const char *name);

// Its value, or null.
void *NameTable_GetValue(const NameTable *table, const char *name);

// Takes an entry out. Its value stays the caller's.
void NameTable_Remove(NameNode *node);

// Visits the buckets in order, in each the newest entry first. Gives 0, or the visitor's negative
// result that ended the walk.
int32_t NameTable_ForEach(const NameTable *table, NameVisitor visit, void *context);

// Releases the entries, each after `release` got its value, and the buckets. A table without buckets
// is ignored. The record is not reset: the table is not to be used again.
void NameTable_Destroy(NameTable *table, void (*release)(void *value));

#endif
