// Save files.
#include "tests/support/board.h"

namespace
{

std::string File(const std::string &data, const std::string &key = "Key=k\n")
{
    return "[Information]\nClass=other\n" + key + "[Data]\n" + data;
}

} // namespace

TEST(SaveFiles, HaveOneForm)
{
    const std::string registers = "10=ff b000001=a f000001=1,1f,0 b000002=- f000002=- 10=2 f0000001=5";
    const Board board("", "", registers.c_str());
    ASSERT_EQ(board.SaveFile(), 0);
    EXPECT_EQ(board.directory.Read("file"),
              "[Information]\nClass=C\nKey=k\nVersion=1.0\n\n[Data]\n0x00000010=0x000000FF\n0x0B000001=a\n"
              "0x0F000001=0x1, 0x1F, 0x0\n0x0B000002=\n0x0F000002=\n0x00000010=0x00000002\n"
              "0xF0000001=0x00000005\n");
    EXPECT_EQ(board.Run("."), registers);
    EXPECT_EQ(VelkSaveToFile(board.config, board.directory.path.c_str(), "k"), -6);
}

TEST(SaveFiles, BringBackEveryRegister)
{
    std::string list = "0";
    for (int n = 0; n < 300; ++n)
        list += ",fffffff" + std::string(1, "0123456789abcdef"[n % 16]);
    const std::string others = "11=ffffffff F0000001=5 11*=3 A000001=7 F000001=" + list + " B000001=abc";
    const std::string text = " \"[two=\xE9\x01];\r\nlines\r\n ";
    const Board board(sampleKeys, "", others.c_str());
    ASSERT_EQ(VelkSetKey(board.config, "T", Word(text.c_str())), 0);
    ASSERT_EQ(board.SaveFile(text), 0);
    EXPECT_EQ(board.LoadFile("other"), -5);
    ASSERT_EQ(board.LoadFile(text), 0);
    EXPECT_EQ(board.Run("."), "11*=ffffffff 11*=3 a000001*=7 f000001*=" + list + " b000001*=" + text);
}

TEST(SaveFiles, AreCheckedWhenRead)
{
    const std::string untouched = "10=1 b000001=old";
    // The accessor is asked for what is not in the file, or to read what is no such file.
    const struct {
        StatusCode status;
        std::string after;
        const char *asked;
        std::vector<std::string> files;
    } rows[] = {
        {0,
         "10*=10 11*=ff f000001*=a,1,2,3 b000001*=",
         "SetInternal ",
         {File("10=10\n0x11zz=ff x\n0x0F000001=(10, :1:1:3)\n0B000001=\n")}},
        {0, "10*=1 10*=2 10*=3", "SetInternal ", {File("10=1\n0x10=2\n10=3\n")}},
        {0, "10*=5", "SetInternal ", {File("FF000001=(x)\n10=5\n-1=\n")}}, // internal ones are not looked at
        {0, "", "SetInternal ", {File("F0000001=x\n")}},
        {-4,
         untouched,
         "LoadFromFile",
         {"", File("10=1\n", ""), File(""), "[Information]\nKey=k\n", File("10=1\nx\n"), File("10=x\n"),
          File("0B000001=x\nx=1\n"), File("0F000001=1,2\n0x0=1\n")}},
        {-5, untouched, "", {File("x=1\n", "Key=K\n")}},
        {-10, untouched, "", {File("0B000001=x\n0F000001=1,x\n0=1\n")}}};
    for (const auto &[status, after, asked, files] : rows)
        for (const std::string &file : files) {
            SCOPED_TRACE(file);
            const Board board("", "", "10=1 0B000001=old");
            board.directory.Write("file", file);
            EXPECT_EQ(board.LoadFile(), status);
            EXPECT_EQ(board.Run("."), after);
            EXPECT_EQ(VelkIsConfigModified(board.config), after.find('*') != std::string::npos);
            EXPECT_EQ(Split(board.answers.calls + "(", '(')[0], asked);
        }
    EXPECT_EQ(Board("", "", nullptr).LoadFile(), -4); // no file
}

TEST(SaveFiles, LetTheAccessorAddInternalRegisters)
{
    for (const std::string &file : {std::string("[x]\n"), File("10=4\nF0000001=1\n")}) {
        const StatusCode status = file[1] == 'x' ? 2 : 0;
        Board board("", "", "10=1 0B000001=old");
        board.directory.Write("file", file);
        board.answers.loadFromFile = 0;
        board.answers.setInternal = 7; // as good as 0
        board.answers.oldFile = "10*=4";
        board.answers.internal = "F0000001=5 FB000001=x";
        EXPECT_EQ(board.LoadFile(), status);
        EXPECT_EQ(board.Run("."), "10*=4 f0000001=5 fb000001=x");
    }
}

TEST(SaveFiles, NeedNoHelpfulAccessor)
{
    for (const char *missing : {"Cfg_LoadFromFile", "Cfg_SetInternalVRegs"}) {
        SCOPED_TRACE(missing);
        Desk desk;
        desk.directory.Write("file", "");
        desk.answers.loadFromFile = -1;
        desk.Start("[A]\nAccessor=" + desk.directory.Module("m", missing) + "\nKeys=file\nOptions=file\n");
        ASSERT_EQ(desk.Open("A"), 0);
        EXPECT_EQ(desk.LoadFile(), -4);
        EXPECT_EQ(VelkIsConfigLoaded(desk.config), 0);
        desk.directory.Write("file", File("10=4\n"));
        EXPECT_EQ(desk.LoadFile(), 0);
        EXPECT_EQ(desk.Run("."), "10*=4");
    }
}
