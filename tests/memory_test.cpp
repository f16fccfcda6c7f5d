// Memory: what a copy says of its room, and that nothing grows.
#include "tests/support/board.h"

namespace
{

const char *const state = "10=0 11=1 b000001=other f000001=2 b000002=-";

// Options that all follow A.
const std::string options = Option("A", "A", "Range", "default=0:1:3") +
                            Option("B", "B", "List", "A:1=(5,6)\ndefault=(1,2)") +
                            Option("T", "T", "String", "A:1=one\ndefault=other") +
                            Option("L", "L", "ListSet", "A:1=[(1,1)]\ndefault=[(2)]");

} // namespace

TEST(Memory, ACopyStatesTheRoomThatItHas)
{
    const Board board(sampleKeys, options, state), copy(sampleKeys, options, nullptr);
    TableOf(board.config)->capacity = 9; // room that the copy can do without
    // Without its first allocation it has no more room than it needs; without the second it lacks a text.
    const char *const poor = "10=0 11=1 b000001=- f000001=2 b000002=-";
    for (const auto &[nth, text, capacity] : {std::tuple{1, state, 5U}, {2, poor, 9U}}) {
        const FailAllocations fail(nth);
        EXPECT_EQ(VelkDuplicateConfig(board.config, copy.config), 0);
        EXPECT_EQ(copy.Run("."), text);
        EXPECT_EQ(TableOf(copy.config)->capacity, capacity);
    }
}

TEST(Memory, StaysLevel)
{
    const Board board(sampleKeys, options, state);
    TableOf(board.config)->count = 2; // a table of numbers
    const int64_t calls = AllocationCalls();
    EXPECT_EQ(board.Run("B=6"), "0");
    EXPECT_EQ(AllocationCalls(), calls + 1); // its snapshot
    TableOf(board.config)->count = 5;

    // What grew with the number of sets would be made larger from time to time.
    const auto setTwice = [&] {
        const int64_t before = AllocationCalls();
        EXPECT_EQ(VelkSetOption(board.config, "A", 0) + VelkSetOption(board.config, "A", 1), 0);
        return AllocationCalls() - before;
    };
    setTwice(); // finds A at 0 already
    const int64_t callsOfTwo = setTwice(), live = LiveAllocations();
    for (int n = 0; n < 10000; ++n) {
        ASSERT_EQ(setTwice(), callsOfTwo) << n;
        ASSERT_EQ(LiveAllocations(), live) << n;
    }
}

TEST(Memory, BoundsTheNumberListsOfALoad)
{
    if (IsSanitizedFor("address") || IsSanitizedFor("thread"))
        GTEST_SKIP() << "where every growth is a copy";
    for (const bool fits : {true, false}) {
        SCOPED_TRACE(fits);
        const std::string rest = fits ? "(1,2,3,4)" : "(1,2,3,4,5)";
        const Board board("[A]\n0x10 (1)=Index\nArray=:1:1:4194300\n",
                          Option("A", "A", "List", "default=" + rest), nullptr);
        EXPECT_EQ(board.status, fits ? 0 : -206);
        const Board saved("", "", nullptr);
        saved.directory.Write("file",
                              "[Information]\nKey=k\n[Data]\n0F000001=:1:1:4194300\n0F000001=" + rest + "\n");
        EXPECT_EQ(saved.LoadFile(), fits ? 0 : -1);
    }
}
