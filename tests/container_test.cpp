// Lists, strings and register tables.
#include "tests/support/board.h"

TEST(Containers, HoldWhatIsPutInThem)
{
    const int64_t live = LiveAllocations();
    List *list = List_New(5), *bare = List_New(-1);
    EXPECT_TRUE(list->count == 0 && list->items[4] == 0 && bare->count == 0 && bare->items == nullptr);
    EXPECT_EQ(List_Append(list, 1) + List_Append(bare, 1), 0);
    String_Delete(String_CopyNew("What lies here later.")); // a text without its end goes on with it
    char *text = String_CopyNew("What lies here");
    EXPECT_EQ(List_AreEqual(list, bare), 1);
    list->items[0] = 2;
    EXPECT_EQ(List_AreEqual(list, bare), 0);
    EXPECT_EQ(List_Append(bare, 2), 0);
    EXPECT_EQ(List_AreEqual(list, bare), 0);
    text = String_Append(String_Append(text, ""), " now");
    EXPECT_TRUE(String_AreEqual(text, "What lies here now") == 1);
    EXPECT_EQ(String_AreEqual(text, "What lies here noW"), 0);
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
    for (const auto &[id, instance] :
         {std::pair{0xAU, 3}, {0xA, 0}, {0xA, -1}, {0xA, INT32_MIN}, {0x1000000A, 1}})
        EXPECT_EQ(LookupVReg(table, id, instance), nullptr) << id << ":" << instance;
    EXPECT_EQ(LookupVReg(table, 0xA, 1), table->regs);
    EXPECT_EQ(LookupVReg(table, 0xA, 2), table->regs + 2);
    table->count = -1;
    EXPECT_EQ(LookupVReg(table, 0xA, 1), nullptr);
    FreeVRegTable(table);
    FreeVRegTable(nullptr);

    // Wherever the rounds of the search begin and end.
    table = AllocateVRegTable(30);
    for (uint32_t n = 0; n < table->capacity; ++n)
        table->regs[n].id = n % 15;
    for (int32_t n = 0; n < 30; ++n) {
        table->count = n;
        EXPECT_EQ(LookupVReg(table, static_cast<uint32_t>(n % 15), n / 15 + 1), nullptr) << n;
        table->count = n + 1;
        EXPECT_EQ(LookupVReg(table, static_cast<uint32_t>(n % 15), n / 15 + 1), table->regs + n) << n;
    }
    FreeVRegTable(table);
}

TEST(Registers, GrowAndCopyDeeply)
{
    const int64_t live = LiveAllocations();
    const std::string text = "a*=5 b000001=abc f000001=1,2 b000002=- f000002=- a000001=9";
    VRegTable *source = Table_FromText(text);
    EXPECT_EQ(GrowVRegTable(source, UINT32_MAX), nullptr);
    EXPECT_EQ(source->capacity, 6U);
    source = GrowVRegTable(source, 1000); // far, so that the block moves
    EXPECT_EQ(source->capacity, 1006U);
    EXPECT_EQ(source->regs, reinterpret_cast<VReg *>(source) + 1);
    EXPECT_TRUE(source->regs[6].id == 0 && source->regs[1005].value == 0);

    VRegTable *copy = AllocateVRegTable(6);
    CopyVRegTable(source, copy);
    FreeVRegTable(source);
    EXPECT_EQ(Table_Text(copy), text);
    EXPECT_EQ(copy->capacity, 1006U); // stated by the copy too, though its block is smaller
    EXPECT_EQ(copy->regs, reinterpret_cast<VReg *>(copy) + 1);
    FreeVRegTable(copy);
    EXPECT_EQ(LiveAllocations(), live);
}
