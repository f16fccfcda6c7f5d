// Save files.
#include <string>

#include <gtest/gtest.h>

#include "tests/support/board.h"

namespace
{

const char *const keys = "[T]\n0x0B000001 (0)=String\n";

std::string File(const std::string &data, const std::string &key = "Key=k\n")
{
    return "[Information]\nClass=other\n" + key + "[Data]\n" + data;
}

StatusCode Load(const Board &board, const char *key = "k")
{
    return VelkLoadFromFile(board.config, board.directory.Path("file").c_str(), key);
}

StatusCode Save(const Board &board, const char *key = "k")
{
    return VelkSaveToFile(board.config, board.directory.Path("file").c_str(), key);
}

} // namespace

TEST(SaveFiles, BringBackEveryRegister)
{
    std::string list = "0";
    for (int n = 0; n < 300; ++n)
        list += ",fffffff" + std::string(1, "0123456789abcdef"[n % 16]);
    const Board board(keys, "",
                      ("10=1 11=ffffffff F0000001=5 10*=3 A000001=7 B000001=abc F000001=" + list +
                       " B000002= F000002= FB000001=gone FF000001=1")
                          .c_str());
    for (const char *text :
         {"two words ", " \"quoted\" ", "line\nline\r\n", "[x]", ";", "=", "\xE9\x01", "  ", "abc"}) {
        SCOPED_TRACE(text);
        ASSERT_EQ(VelkSetKey(board.config, "T", Word(text)), 0);
        ASSERT_EQ(Save(board, text), 0);
        EXPECT_EQ(Load(board, "other"), -5);
        ASSERT_EQ(Load(board, text), 0);
        EXPECT_EQ(board.Run("."), "10*=1 11*=ffffffff 10*=3 a000001*=7 b000001*=" + std::string(text) +
                                      " f000001*=" + list + " b000002*= f000002*=");
    }
}

TEST(SaveFiles, HaveOneForm)
{
    const Board board(keys, "", "10=ff B000001=a F000001=1,ff,0 B000002=- F000002=- 10=2 F0000001=5");
    ASSERT_EQ(Save(board), 0);
    EXPECT_EQ(board.directory.Read("file"),
              "[Information]\nClass=C\nKey=k\nVersion=1.0\n\n[Data]\n0x00000010=0x000000FF\n0x0B000001=a\n"
              "0x0F000001=0x1, 0xFF, "
              "0x0\n0x0B000002=\n0x0F000002=\n0x00000010=0x00000002\n0xF0000001=0x00000005\n");
    EXPECT_EQ(board.Run("."), "10=ff b000001=a f000001=1,ff,0 b000002=- f000002=- 10=2 f0000001=5");
    EXPECT_EQ(VelkSaveToFile(board.config, board.directory.path.c_str(), "k"), -6);
}

TEST(SaveFiles, AreCheckedWhenRead)
{
    const struct {
        std::string file;
        StatusCode status;
        const char *after;
    } rows[] = {{File("10=10\n0x11zz=ff x\n0x0F000001=(10, :1:1:3)\n0B000001=\n"), 0,
                 "10*=10 11*=ff f000001*=a,1,2,3 b000001*="},
                {File("10=1\n0x10=2\n10=3\n"), 0, "10*=1 10*=2 10*=3"},
                {File("FF000001=(x)\n10=5\n-1=\n"), 0, "10*=5"}, // internal ones are not looked at
                {File("F0000001=x\n"), 0, ""},
                {File("10=1\n", ""), -4, nullptr},
                {File("x=1\n", "Key=K\n"), -5, nullptr},
                {File(""), -4, nullptr},
                {"[Information]\nKey=k\n", -4, nullptr},
                {File("10=1\nx\n"), -4, nullptr},
                {File("0B000001=x\nx=1\n"), -4, nullptr},
                {File("0F000001=1,2\n0x0=1\n"), -4, nullptr},
                {File("0B000001=x\n0F000001=1\n10=x\n"), -4, nullptr},
                {File("0B000001=x\n0F000001=1,x\n0=1\n"), -10, nullptr}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.file);
        const Board board(keys, "", "10=1 0B000001=old");
        board.directory.Write("file", row.file);
        EXPECT_EQ(Load(board), row.status);
        EXPECT_EQ(board.Run("."), row.status == 0 ? row.after : "10=1 b000001=old");
        EXPECT_EQ(VelkIsConfigModified(board.config), row.status == 0 && *row.after != '\0');
        // The accessor is asked for what is not in the file, or to read what is no such file.
        EXPECT_EQ(board.answers.calls, row.status == 0    ? "SetInternal "
                                       : row.status == -4 ? "LoadFromFile(file) "
                                                          : "");
    }
    EXPECT_EQ(Load(Board(keys, "", nullptr)), -4); // no file
}

TEST(SaveFiles, LetTheAccessorHelp)
{
    static const struct {
        const char *file, *oldFile;
        StatusCode loadFromFile;
        const char *internal;
        StatusCode setInternal, status;
        const char *after;
    } rows[] = {{"[x]\n", "10*=8", 0, nullptr, 0, 2, "10*=8"},
                {"[x]\n", "10=8", 0, "F0000001=5 FB000001=x", 7, 2, "10=8 f0000001=5 fb000001=x"},
                {"[x]\n", "0B000001=8", 0, "FB000001=x", -107, -107, "10=1 b000001=old"},
                {"[x]\n", "0B000001=8", 1, nullptr, 0, -4, "10=1 b000001=old"}, // not taken, but a table left
                {"[x]\n", nullptr, -108, nullptr, 0, -4, "10=1 b000001=old"},
                {"[Information]\nKey=k\n[Data]\n10=4\nF0000001=1\n", nullptr, -1, "F0000001=5", 0, 0,
                 "10*=4 f0000001=5"},
                {"[Information]\nKey=k\n[Data]\n0B000001=4\n", nullptr, -1, "FB000001=x", -1, -1,
                 "10=1 b000001=old"}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.file + std::to_string(row.status));
        Board board(keys, "", "10=1 0B000001=old");
        board.directory.Write("file", row.file);
        board.answers.loadFromFile = row.loadFromFile;
        board.answers.oldFile = row.oldFile;
        board.answers.internal = row.internal;
        board.answers.setInternal = row.setInternal;
        EXPECT_EQ(Load(board), row.status);
        EXPECT_EQ(board.Run("."), row.after);
    }
}

TEST(SaveFiles, NeedNoHelpfulAccessor)
{
    for (const char *missing : {"Cfg_LoadFromFile", "Cfg_SetInternalVRegs"}) {
        SCOPED_TRACE(missing);
        Desk desk;
        desk.directory.Write("none", "");
        desk.directory.Write("file", File("10=4\n"));
        ASSERT_EQ(desk.Start("[A]\nAccessor=" + desk.directory.Module("m", missing) +
                             "\nKeys=none\nOptions=none\n"),
                  0);
        desk.answers.loadFromFile = -1;
        Config *config;
        ASSERT_EQ(VelkCreateConfig(desk.engine, "A", &config), 0);
        EXPECT_EQ(VelkLoadFromFile(config, desk.directory.Path("none").c_str(), "k"), -4);
        EXPECT_EQ(VelkIsConfigLoaded(config), 0);
        EXPECT_EQ(VelkLoadFromFile(config, desk.directory.Path("file").c_str(), "k"), 0);
        EXPECT_EQ(Table_Text(TableOf(config)), "10*=4");
        VelkDiscardConfig(config);
    }
}
