// To the board and back.
#include "tests/support/board.h"

TEST(Transfer, CombinesTheStatuses)
{
    // What Cfg_Read leaves; statuses of session, transfer, call; what a read then has loaded.
    static const std::tuple<const char *, StatusCode, StatusCode, StatusCode, int32_t, const char *> rows[] =
        {{"10=5", 0, 0, 0, 1, "10=5"},
         {"10=5", 102, 0, 102, 1, "10=5"},
         {"10=5", 0, 100, 100, 0, "10=5"}, // left, but not loaded
         {"B000001=x", 102, -107, -107, 0, "b000001=x"},
         {nullptr, 0, -107, -107, 0, "none"},
         {nullptr, 0, 0, 0, 1, "none"},
         {"10=5", -102, 0, -102, 1, "b000001*=old"}};
    const std::string open = "CreateSession(3,4294967295) ", refused = open + open,
                      done = open + "Write(77: b000001*=old) CloseSession(77) " + open +
                             "Read(77) CloseSession(77) ";
    for (const auto &[registers, session, transfer, status, loaded, after] : rows) {
        SCOPED_TRACE(std::to_string(session) + " " + std::to_string(transfer));
        Board board("", "", "B000001*=old");
        board.answers.createSession = session;
        board.answers.registers = registers;
        board.answers.read = board.answers.write = transfer;
        EXPECT_EQ(board.Save(3, ~0U), status);
        EXPECT_EQ(board.Run("."), "b000001*=old");
        EXPECT_EQ(board.Load(3, ~0U), status);
        EXPECT_EQ(VelkIsConfigLoaded(board.config), loaded);
        EXPECT_EQ(board.Run("."), after);
        EXPECT_EQ(board.answers.calls, session < 0 ? refused : done);
    }
}

TEST(Transfer, ReplacesWhatAFailedReadLeft)
{
    const Board board("", "", "10=1");
    for (int way = 0; way < 4; ++way) { // the last is to discard it
        SCOPED_TRACE(way);
        Board other("", "", "10=1");
        ASSERT_EQ(other.SaveFile(), 0);
        other.answers.registers = "B000001=left";
        other.answers.read = -1;
        EXPECT_EQ(other.Load(), -1);
        EXPECT_EQ(other.Save(), -2);
        other.answers.read = 0;
        EXPECT_EQ(way == 0   ? other.Load()
                  : way == 1 ? other.LoadFile()
                  : way == 2 ? VelkDuplicateConfig(board.config, other.config)
                             : 0,
                  0);
        EXPECT_EQ(other.answers.calls.find("table"), std::string::npos);
    }
}

TEST(Transfer, TakesNoTableForAnEmptyOne)
{
    Board board("", "", "10=1"), copy("", "", nullptr);
    copy.answers.registers = nullptr; // its script is the one in force
    ASSERT_EQ(board.Load(), 0);
    EXPECT_EQ(VelkIsConfigModified(board.config), 0);
    EXPECT_EQ(board.Save(), 0);
    EXPECT_NE(copy.answers.calls.find("Write(77: none) "), std::string::npos);
    EXPECT_EQ(board.SaveFile(), 0);
    EXPECT_EQ(board.LoadFile(), -4); // nothing in it
    EXPECT_EQ(VelkDuplicateConfig(board.config, copy.config), 0);
    EXPECT_EQ(VelkIsConfigLoaded(copy.config), 1);
}
