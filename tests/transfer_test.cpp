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

TEST(Transfer, ReplacesWhatAFailedReadLeft)
{
    const Board board("", "", "10=1");
    Board other("", "", nullptr);
    other.answers.registers = "B000001=left";
    other.answers.read = -1;
    EXPECT_EQ(other.Load(), -1);
    EXPECT_EQ(VelkDuplicateConfig(board.config, other.config), 0);
    EXPECT_EQ(other.Run("."), "10=1");
}

TEST(Transfer, TakesNoTableForAnEmptyOne)
{
    const Board board("", "", "10=1"), copy("", "", nullptr); // whose script is the one in force
    ASSERT_EQ(board.Load(), 0);
    EXPECT_EQ(VelkIsConfigModified(board.config), 0);
    EXPECT_EQ(board.Save(), 0);
    EXPECT_EQ(VelkDuplicateConfig(board.config, copy.config), 0);
    EXPECT_EQ(VelkIsConfigLoaded(copy.config), 1);
}
