// To the board and back.
#include <string>

#include <gtest/gtest.h>

#include "tests/support/board.h"

TEST(Transfer, CombinesTheStatuses)
{
    static const struct {
        const char *registers; // that Cfg_Read leaves
        StatusCode session, transfer, status;
        int32_t loaded; // by a read
        const char *after;
    } rows[] = {{"10=5", 0, 0, 0, 1, "10=5"},
                {"10=5", 102, 0, 102, 1, "10=5"},
                {"10=5", 0, 100, 100, 0, "10=5"}, // left, but not loaded
                {"B000001=x", 102, -107, -107, 0, "b000001=x"},
                {nullptr, 0, -107, -107, 0, "none"},
                {nullptr, 0, 0, 0, 1, "none"},
                {"10=5", -102, 0, -102, 1, "b000001*=old"}};
    for (const auto &row : rows) {
        SCOPED_TRACE(std::to_string(row.session) + " " + std::to_string(row.transfer));
        Board board("", "", "B000001*=old");
        board.answers.createSession = row.session;
        board.answers.registers = row.registers;
        board.answers.read = board.answers.write = row.transfer;
        const auto session = [&](const std::string &transfer) {
            return "CreateSession(3,4294967295) " + (row.session < 0 ? "" : transfer + " CloseSession(77) ");
        };
        EXPECT_EQ(VelkSaveCurrentConfig(board.config, 3, ~0U), row.status);
        EXPECT_EQ(board.answers.TakeCalls(), session("Write(77: b000001*=old)"));
        EXPECT_EQ(board.Run("."), "b000001*=old");
        EXPECT_EQ(VelkLoadCurrentConfig(board.config, 3, ~0U), row.status);
        EXPECT_EQ(board.answers.calls, session("Read(77)"));
        EXPECT_EQ(VelkIsConfigLoaded(board.config), row.loaded);
        EXPECT_EQ(board.Run("."), row.after);
    }
}

TEST(Transfer, ReplacesWhatAFailedReadLeft)
{
    Board board("", "", "10=1");
    const std::string file = board.directory.Path("file");
    ASSERT_EQ(VelkSaveToFile(board.config, file.c_str(), "k"), 0);
    for (int way = 0; way < 4; ++way) {
        SCOPED_TRACE(way);
        Config *other;
        ASSERT_EQ(VelkCreateConfig(board.engine, "C", &other), 0);
        board.answers.registers = "B000001=left";
        board.answers.read = -1;
        EXPECT_EQ(VelkLoadCurrentConfig(other, 0, 0), -1);
        EXPECT_EQ(VelkSaveCurrentConfig(other, 0, 0), -2);
        board.answers.read = 0;
        const StatusCode statuses[] = {way == 0 ? VelkLoadCurrentConfig(other, 0, 0) : 0,
                                       way == 1 ? VelkLoadFromFile(other, file.c_str(), "k") : 0,
                                       way == 2 ? VelkDuplicateConfig(board.config, other) : 0};
        EXPECT_EQ(statuses[0] + statuses[1] + statuses[2], 0);
        VelkDiscardConfig(other);
    }
    EXPECT_EQ(board.answers.calls.find("table"), std::string::npos);
}

TEST(Transfer, TakesNoTableForAnEmptyOne)
{
    Board board("", "", "10=1");
    board.answers.registers = nullptr;
    ASSERT_EQ(VelkLoadCurrentConfig(board.config, 0, 0), 0);
    EXPECT_EQ(VelkIsConfigModified(board.config), 0);
    board.answers.calls.clear();
    EXPECT_EQ(VelkSaveCurrentConfig(board.config, 0, 0), 0);
    EXPECT_EQ(board.answers.calls, "CreateSession(0,0) Write(77: none) CloseSession(77) ");
    const std::string path = board.directory.Path("file");
    EXPECT_EQ(VelkSaveToFile(board.config, path.c_str(), "k"), 0);
    EXPECT_EQ(VelkLoadFromFile(board.config, path.c_str(), "k"), -4); // nothing in it
    Config *copy;
    ASSERT_EQ(VelkCreateConfig(board.engine, "C", &copy), 0);
    EXPECT_EQ(VelkDuplicateConfig(board.config, copy), 0);
    EXPECT_EQ(VelkIsConfigLoaded(copy), 1);
    VelkDiscardConfig(copy);
}
