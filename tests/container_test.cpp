// Lists, strings and register tables.
#include <string>

#include <gtest/gtest.h>

#include "tests/support/board.h"

TEST(Containers, StayWholeWhenMemoryRunsOut)
{
    const int64_t live = LiveAllocations();
    List *list = List_New(5), *bare = List_New(-1);
    EXPECT_TRUE(list->count == 0 && list->items[4] == 0 && bare->count == 0 && bare->items == nullptr);
    EXPECT_EQ(List_Append(list, 1) + List_Append(bare, 1), 0);
    char *text = String_CopyNew("abc");
    {
        const FailNthAllocation fail(2);
        EXPECT_EQ(List_New(4), nullptr);
    }
    {
        const FailAllocationsFrom fail(1);
        EXPECT_EQ(List_Append(list, 2), -1);
        EXPECT_EQ(String_Append(text, "def"), nullptr);
        EXPECT_TRUE(List_CopyNew(list) == nullptr && String_CopyNew("x") == nullptr);
    }
    EXPECT_EQ(List_AreEqual(list, bare), 1);
    EXPECT_EQ(List_Append(bare, 2), 0);
    EXPECT_EQ(List_AreEqual(list, bare), 0);
    text = String_Append(String_Append(text, ""), "def");
    EXPECT_TRUE(String_AreEqual(text, "abcdef") == 1 && String_AreEqual(text, "abcdeF") == 0);
    EXPECT_EQ(String_CopyNew(nullptr), nullptr);
    String_Delete(nullptr);
    String_Delete(text);
    List_Delete(list);
    List_Delete(bare);
    EXPECT_EQ(LiveAllocations(), live);
}

TEST(Registers, AreFoundByInstance)
{
    VRegTable *table = Table_FromText("a=1 b=2 a=3");
    static const struct {
        uint32_t id;
        int32_t instance, slot;
    } rows[] = {{0xA, 1, 0},   {0xA, 2, 2},  {0xB, 1, 1},          {0xA, 3, -1},       {0xA, 0, -1},
                {0xA, -1, -1}, {0xC, 1, -1}, {0xA, INT32_MIN, -1}, {0x1000000A, 1, -1}};
    for (const auto &row : rows)
        EXPECT_EQ(LookupVReg(table, row.id, row.instance), row.slot < 0 ? nullptr : table->regs + row.slot)
            << row.id << ":" << row.instance;
    table->count = -1;
    EXPECT_EQ(LookupVReg(table, 0xA, 1), nullptr);
    FreeVRegTable(table);
    FreeVRegTable(nullptr);
}

TEST(Registers, GrowInOneBlock)
{
    VRegTable *table = Table_FromText("a*=5");
    {
        const FailNthAllocation fail(1);
        EXPECT_EQ(GrowVRegTable(table, 2), nullptr);
    }
    EXPECT_EQ(GrowVRegTable(table, UINT32_MAX), nullptr);
    EXPECT_EQ(table->capacity, 1U);
    table = GrowVRegTable(table, 1000);
    EXPECT_EQ(table->capacity, 1001U);
    EXPECT_EQ(table->regs, reinterpret_cast<VReg *>(table) + 1);
    table->count = 4;
    EXPECT_EQ(Table_Text(table), "a*=5 0=0 0=0 0=0");
    FreeVRegTable(table);
}

TEST(Registers, CopyDeeply)
{
    const int64_t live = LiveAllocations();
    const std::string text = "a*=5 b000001=abc f000001=1,2 b000002=- f000002=- a000001=9";
    VRegTable *source = Table_FromText(text.c_str());
    VRegTable *copy = AllocateVRegTable(6), *poor = AllocateVRegTable(6);
    source->capacity = 60; // stated by the copy too, though its block is smaller
    CopyVRegTable(source, copy);
    {
        const FailNthAllocation fail(1); // the string's; the list behind it is copied
        CopyVRegTable(source, poor);
    }
    FreeVRegTable(source);
    EXPECT_EQ(Table_Text(copy), text);
    EXPECT_EQ(copy->capacity, 60U);
    EXPECT_EQ(copy->regs, reinterpret_cast<VReg *>(copy) + 1);
    EXPECT_EQ(Table_Text(poor), "a*=5 b000001=- f000001=1,2 b000002=- f000002=- a000001=9");
    FreeVRegTable(copy);
    FreeVRegTable(poor);
    EXPECT_EQ(LiveAllocations(), live);
}
