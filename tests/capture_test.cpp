// A program that has a function of the same name as one of the library's, which must not get its calls.
#include <gtest/gtest.h>

#include "velk32.h"

static int captured;

VELK_API List *List_New(int32_t /*capacity*/)
{
    ++captured;
    return nullptr;
}

TEST(Library, CallsItselfDespiteTheProgramsNames)
{
    uint32_t items[] = {1, 2};
    const List list{2, items};
    List *copy = List_CopyNew(&list);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(List_AreEqual(copy, &list), 1);
    List_Delete(copy);
    EXPECT_EQ(captured, 0);
}
