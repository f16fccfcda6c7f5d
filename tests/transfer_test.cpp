// To the board and back, beside what faulty_accessor_test.cpp drives.
#include "tests/support/board.h"

TEST(Transfer, IsASessionOfOneCall)
{
    Board board("", "", "B000001*=old");
    board.answers.registers = "10=5";
    EXPECT_EQ(board.Save(3, ~0U) + board.Load(3, ~0U), 0);
    const std::string open = "CreateSession(3,4294967295) ", close = "CloseSession(77) ";
    EXPECT_EQ(board.answers.calls, open + "Write(77: b000001*=old) " + close + open + "Read(77) " + close);
}

TEST(Transfer, LeavesWhatAFailedReadLeft)
{
    const Board board("", "", "10=1");
    for (const bool isReplaced : {true, false}) {
        Board other("", "", nullptr);
        other.answers.registers = "B000001=left";
        other.answers.read = -1;
        EXPECT_EQ(other.Load(), -1);
        EXPECT_EQ(isReplaced ? VelkDuplicateConfig(board.config, other.config) : 0, 0);
        EXPECT_EQ(other.Run("."), isReplaced ? "10=1" : "b000001=left");
    }
}

TEST(Transfer, TakesNoTableForAnEmptyOne)
{
    Board board("", "", "10=1");
    const Board copy("", "", nullptr); // its script is the one in force, and leaves no table
    ASSERT_EQ(board.Load(), 0);
    EXPECT_EQ(VelkIsConfigModified(board.config), 0);
    EXPECT_EQ(board.Save(), 0);
    EXPECT_NE(copy.answers.calls.find("Write(77: none) "), std::string::npos);
    EXPECT_EQ(VelkDuplicateConfig(board.config, copy.config), 0);
    EXPECT_EQ(VelkIsConfigLoaded(copy.config), 1);
}
